// The test backend's drags: a script of steps, played when a drag starts (from DoDragDrop) or
// when a test drags data in from another program (Play). Each step moves the drag over a
// window, rests it there for a tick, drops it or cancels it; the drop targets of the windows
// hear what a desktop would tell them, in the same order.
#pragma once
#include <string>
#include <vector>

#include "platform/window/dragdrop.h"

class CTestDragDrop final : public IDragDropBackend {
public:
    struct Step {
        enum Kind { Over, Tick, Drop, Cancel } kind;
        HWND hwnd = nullptr;   // Over: the window under the drag
        POINT pt{};            // Over: client point in that window
        DWORD keyState = 0;    // Over and Tick: MK_ flags held
    };

    DROPEFFECT DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) override;
    // A drag of data from another program, by the script; gives the drop's effect.
    DROPEFFECT Play(IDataObject* data, DROPEFFECT allowed);

    // The script for the next drag; it is used up by that drag.
    void SetScript(std::vector<Step> steps) { m_script = std::move(steps); }
    void AddStep(const Step& step) { m_script.push_back(step); }
    bool HasScript() const { return !m_script.empty(); }

    // How many drags ran, and the answer of the target to each Over or Tick of the last.
    int DragCount() const { return m_nDrags; }
    const std::vector<DROPEFFECT>& Answers() const { return m_answers; }
    // The source of the last drag begun through DoDragDrop.
    HWND LastSource() const { return m_hwndSource; }

private:
    std::vector<Step> m_script;
    std::vector<DROPEFFECT> m_answers;
    int m_nDrags = 0;
    HWND m_hwndSource = nullptr;
};
