// Hosts come and go in any order: widgets, their parents, bare controls whose windows are
// destroyed and made again, and documents attached, dropped and shared. A random order of a few
// hundred such steps must leave exactly the live controls counted by the module, and none once
// everything has gone.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <random>

#include "htmldoc/htmldocument.h"
#include "platform/com/classfactory.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "src/view/zentrelctrl.h"
#include "widget/zentrelwidget.h"

namespace {

// A control hosted by hand, as a host without the widget does it.
struct BareControl {
    CZentrelCtrl* ctrl = CreateZentrelCtrl();
    bool hasWindow = false;
};

class LifeCycle {
public:
    explicit LifeCycle(unsigned seed) : m_random(seed) {}
    ~LifeCycle() {
        m_containers.clear();  // with the widgets inside them
        for (QPointer<ZentrelWidget>& w : m_widgets) delete w.data();
        for (BareControl& c : m_bare) c.ctrl->Release();
    }

    void Step() {
        switch (Pick(10)) {
            case 0: m_containers.push_back(std::make_unique<QWidget>()); break;
            case 1: TakeRandom(m_containers); break;
            case 2: m_widgets.emplace_back(new ZentrelWidget(RandomContainer())); break;
            case 3: if (ZentrelWidget* w = RandomWidget()) delete w; break;
            case 4: if (ZentrelWidget* w = RandomWidget()) Reparent(w); break;
            case 5: m_documents.push_back(CreateHtmlDocument()); m_documents.back()->SetText("<p>text</p>\n<b>more</b>"); break;
            case 6: TakeRandom(m_documents); break;
            case 7: Attach(); break;
            case 8: m_bare.push_back({}); break;
            default: BareStep(); break;
        }
        m_widgets.erase(std::remove_if(m_widgets.begin(), m_widgets.end(), [](const auto& w) { return w.isNull(); }), m_widgets.end());
    }

    // The controls that the module must still count.
    LONG LiveControls() const { return static_cast<LONG>(m_widgets.size() + m_bare.size()); }

private:
    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_random); }

    template <class T>
    void TakeRandom(std::vector<T>& items) {
        if (!items.empty()) items.erase(items.begin() + static_cast<std::ptrdiff_t>(Pick(items.size())));
    }

    QWidget* RandomContainer() {
        const size_t i = Pick(m_containers.size() + 1);
        return i < m_containers.size() ? m_containers[i].get() : nullptr;
    }
    ZentrelWidget* RandomWidget() { return m_widgets.empty() ? nullptr : m_widgets[Pick(m_widgets.size())].data(); }
    IDispatch* RandomDocument() {
        const size_t i = Pick(m_documents.size() + 1);
        return i < m_documents.size() ? static_cast<IDispatch*>(m_documents[i].Get()) : nullptr;
    }

    // A widget moved to another parent keeps its window, its fonts and its document.
    void Reparent(ZentrelWidget* w) {
        const ComPtr<IDispatch> doc = w->document();
        w->setParent(RandomContainer());
        w->show();
        EXPECT_NE(w->hWnd(), 0);
        EXPECT_EQ(w->document(), doc);
        EXPECT_FALSE(static_cast<CZentrelCtrl*>(w->dispatch())->m_FontMetrics.empty());
    }

    void Attach() {
        if (Pick(2) && !m_bare.empty()) m_bare[Pick(m_bare.size())].ctrl->SetDocument(RandomDocument());
        else if (ZentrelWidget* w = RandomWidget()) w->setDocument(RandomDocument());
    }

    // A bare control is released, its window made or destroyed, or its completion mode changed.
    void BareStep() {
        if (m_bare.empty()) return;
        const size_t i = Pick(m_bare.size());
        BareControl& c = m_bare[i];
        switch (Pick(4)) {
            case 0:
                c.ctrl->Release();
                m_bare.erase(m_bare.begin() + static_cast<std::ptrdiff_t>(i));
                break;
            case 1: c.ctrl->SetCodeCompletionMode(static_cast<SHORT>(Pick(2))); break;
            default: ToggleWindow(c); break;
        }
    }

    void ToggleWindow(BareControl& c) {
        if (c.hasWindow) {
            c.ctrl->DestroyControlWindow();
            c.hasWindow = false;
            // Every destroy detaches the document and lets the fonts go.
            EXPECT_EQ(c.ctrl->GetDocumentText(), nullptr);
            EXPECT_TRUE(c.ctrl->m_FontMetrics.empty());
            EXPECT_EQ(c.ctrl->m_bCompletionTimer, 0);
            return;
        }
        c.hasWindow = CreateQtChildWindow(c.ctrl, RandomContainer(), {0, 0, 200, 100}) != nullptr;
        ASSERT_TRUE(c.hasWindow);
        // Every new window measures its fonts again and, in completion mode 1, polls again.
        EXPECT_FALSE(c.ctrl->m_FontMetrics.empty());
        EXPECT_GT(c.ctrl->m_nLineHeight, 1);
        EXPECT_EQ(c.ctrl->m_bCompletionTimer != 0, c.ctrl->GetCodeCompletionMode() == 1);
    }

    std::mt19937 m_random;
    std::vector<std::unique_ptr<QWidget>> m_containers;
    std::vector<QPointer<ZentrelWidget>> m_widgets;
    std::vector<ComPtr<CHtmlDocument>> m_documents;
    std::vector<BareControl> m_bare;
};

TEST(LifeCycle, AnyOrderOfHostsWindowsAndDocumentsLeavesOnlyTheLiveControls) {
    // The bare controls' windows need the Qt backend even while no widget holds it.
    CQtPlatform platform;
    IPlatformBackend* previous = SetPlatformBackend(&platform);
    const LONG before = ModuleObjectCount();
    for (unsigned seed = 1; seed <= 3; ++seed) {
        SCOPED_TRACE(seed);
        {
            LifeCycle life(seed);
            for (int step = 0; step < 250 && !HasFatalFailure(); ++step) {
                life.Step();
                ASSERT_EQ(ModuleObjectCount() - before, life.LiveControls()) << "step " << step;
            }
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(ModuleObjectCount(), before);
    }
    SetPlatformBackend(previous);
}

}  // namespace
