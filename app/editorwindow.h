// The editor's main window: a menu, the control over a document, and a status line that lists
// the events the control fires.
#pragma once
#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <memory>

#include "htmldoc/htmldocument.h"
#include "platform/qt/qtplatform.h"
#include "src/view/zentrelctrl.h"

class CStatusSink;

class CEditorWindow : public QMainWindow {
    Q_OBJECT
public:
    CEditorWindow();
    ~CEditorWindow() override;

    // Loads a file into the document; on failure says why in a message box or on stderr.
    bool OpenFile(const QString& path);
    void ShowEvent(const QString& text);

private:
    void BuildMenus();
    void Open();
    void Save();
    void ToggleOption(DWORD mask, bool on);
    void ChooseFont();
    void ChooseRightMargin();

    CQtPlatform m_platform;  // the window services of this process; outlives the control's window
    IPlatformBackend* m_pPreviousPlatform = nullptr;
    ComPtr<CHtmlDocument> m_doc;
    CZentrelCtrl* m_pCtrl = nullptr;  // one reference, released in the destructor
    std::unique_ptr<CStatusSink> m_sink;
    static constexpr int kShownEvents = 4;  // events the status line lists, newest first
    QStringList m_events;
    DWORD m_dwCookie = 0;
};
