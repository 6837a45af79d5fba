#include "platform/testing/testdragdrop.h"

namespace {

// The drag as it passes over windows: which it is over, where, and the last answer there.
class CDragPass {
public:
    CDragPass(IDataObject* data, DROPEFFECT allowed) : m_data(data), m_allowed(allowed) {}

    DROPEFFECT Over(HWND hwnd, POINT pt, DWORD keys) {
        if (hwnd != m_hwnd) {
            Leave();
            m_hwnd = hwnd;
            if (IDropTarget* target = Target()) target->OnDragEnter(m_data, keys, pt);
        }
        m_pt = pt;
        return Tick(keys);
    }

    DROPEFFECT Tick(DWORD keys) {
        IDropTarget* target = Target();
        m_effect = target ? DragOverTick(target, m_data, keys, m_pt, m_allowed) : DROPEFFECT_NONE;
        return m_effect;
    }

    // The effect of the last answer, if the target takes the data.
    DROPEFFECT Drop() {
        IDropTarget* target = Target();
        const DROPEFFECT effect = m_effect & ~DROPEFFECT_SCROLL;
        m_hwnd = nullptr;
        if (!target) return DROPEFFECT_NONE;
        if (effect == DROPEFFECT_NONE) {
            target->OnDragLeave();
            return DROPEFFECT_NONE;
        }
        return target->OnDrop(m_data, effect, m_pt) ? effect : DROPEFFECT_NONE;
    }

    void Leave() {
        if (IDropTarget* target = Target()) target->OnDragLeave();
        m_hwnd = nullptr;
    }

private:
    IDropTarget* Target() const { return m_hwnd ? GetDropTarget(m_hwnd) : nullptr; }

    IDataObject* m_data;
    DROPEFFECT m_allowed;
    HWND m_hwnd = nullptr;
    POINT m_pt{};
    DROPEFFECT m_effect = DROPEFFECT_NONE;
};

}  // namespace

DROPEFFECT CTestDragDrop::DoDragDrop(HWND source, IDataObject* data, DROPEFFECT allowed) {
    m_hwndSource = source;
    return Play(data, allowed);
}

DROPEFFECT CTestDragDrop::Play(IDataObject* data, DROPEFFECT allowed) {
    ++m_nDrags;
    m_answers.clear();
    const std::vector<Step> script = std::move(m_script);
    m_script.clear();
    CDragPass pass(data, allowed);
    for (const Step& step : script) {
        switch (step.kind) {
            case Step::Over: m_answers.push_back(pass.Over(step.hwnd, step.pt, step.keyState)); break;
            case Step::Tick: m_answers.push_back(pass.Tick(step.keyState)); break;
            case Step::Drop: return pass.Drop();
            case Step::Cancel: pass.Leave(); return DROPEFFECT_NONE;
        }
    }
    // A script without an end is a button let go where the drag began: nothing dropped.
    pass.Leave();
    return DROPEFFECT_NONE;
}
