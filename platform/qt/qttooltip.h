// The tooltip's popup on Qt: a label in the desktop's tooltip colours and font, placed on the
// screen where the window layer puts it, sized to its text, with the timers of the tip's logic.
#pragma once
#include <QTimer>
#include <map>
#include <memory>

#include "platform/qt/qtchildcontrol.h"

class QLabel;

class CQtToolTip : public CQtChildControl {
public:
    explicit CQtToolTip(HWND hwnd);
    ~CQtToolTip() override;

    void SetTimer(UINT id, UINT ms) override;
    void KillTimer(UINT id) override;
    void SetText(const std::string& text) override;
    // Only the top left counts: the popup is as large as its text, and stays on the screen.
    void Move(const RECT& rc) override;

    // The popup's label, for tests.
    QLabel* Label() const;

private:
    HWND m_hwnd;
    std::map<UINT, std::unique_ptr<QTimer>> m_timers;
};
