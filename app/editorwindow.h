// The editor's main window: a menu, the control over a document, and a status line that lists
// the events the control fires.
#pragma once
#include <QMainWindow>
#include <QString>
#include <QStringList>
#include <memory>

#include "app/editorlook.h"
#include "app/viewstates.h"

#include "htmldoc/htmldocument.h"
#include "platform/com/events.h"
#include "platform/qt/qtplatform.h"
#include "src/view/zentrelctrl.h"

class QLabel;
class ZentrelWidget;

class CEditorWindow : public QMainWindow {
    Q_OBJECT
public:
    CEditorWindow();
    ~CEditorWindow() override;

    // Loads a file into the document; on failure says why in a message box or on stderr.
    bool OpenFile(const QString& path);
    // Hears an event of the control: the status line lists it, and the title and the mode
    // fields follow what it changed.
    void OnControlEvent(DISPID id, const QString& text);
    // The control and the document, for hosts that drive them through automation (scripts).
    IDispatch* Control() const { return m_pCtrl; }
    IDispatch* Document() const { return static_cast<IDispatch*>(m_doc.Get()); }
    // Prints the document to a PDF with the request's page setup, without a dialog; 0 on success.
    int PrintWithoutDialog(const struct PrintRequest& request, const QString& docName);
    // Opens a file dropped on the view, after the drop, offering unsaved changes for saving.
    void OpenDroppedFile(const QString& path);

private:
    void BuildMenus();
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildViewMenu();
    void Open();
    bool OfferToSave();
    bool Save();
    bool SaveAs();
    void ToggleOption(DWORD mask, bool on);
    void ChooseFont();
    void ChooseRightMargin();
    void UpdateTitle();
    void FitGutter();
    void UpdateModes();
    void closeEvent(QCloseEvent* e) override;
    void OnEvent(DISPID id, std::vector<Variant>& args);
    // Keeps the view's state for the open file, when the file holds what the view shows.
    void KeepViewState();

    CQtPlatform m_platform;  // the window services of this process; outlives the control's window
    IPlatformBackend* m_pPreviousPlatform = nullptr;
    ComPtr<CHtmlDocument> m_doc;
    ZentrelWidget* m_pWidget = nullptr;  // deleted in the destructor, while the window services stand
    CZentrelCtrl* m_pCtrl = nullptr;     // the widget's control
    ComPtr<CEventSink> m_sink;  // the control's events, for the status line
    static constexpr int kShownEvents = 4;  // events the status line lists, newest first
    QStringList m_events;
    DWORD m_dwCookie = 0;
    // The status line: recent events, then the typing mode and the converter, as fields that
    // stay when a menu shows its own tips.
    QLabel* m_pEvents = nullptr;
    QLabel* m_pMode = nullptr;
    QLabel* m_pConvert = nullptr;
    CViewStates m_viewStates{CViewStates::DefaultDirectory()};
};
