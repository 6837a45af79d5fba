// Long random sequences of keys, characters, clicks, automation edits, undo and redo, option
// changes and resizes, into texts with CR LF, lone CR, tabs and double-byte characters, with
// word wrap on and off. After every step: the selection lies inside the text on character
// boundaries and matches the document's; the line table is what a full layout of the same text
// gives. At the end, undoing everything gives back the first text byte for byte.
// ZENTREL_LONG_TESTS=1 runs ten times as many steps; ZENTREL_SEED=N shifts the seeds.
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "tests/codepagescope.h"
#include "tests/view/viewtest.h"

namespace {

struct Config {
    const char* name;
    UINT codePage;
    bool wordWrap;
    unsigned seed;
};

// Pieces of text that random edits put together: never half a character.
const std::vector<std::string>& Pieces(UINT codePage) {
    static const std::vector<std::string> single = {"a", "bc", " ", "-", "\t", "\r\n", "\r", "\n", "<p>", "&amp;",
                                                    "word ", "\xE9", "x\r\ny", "longerwordthatwraps"};
    static const std::vector<std::string> dbcs = {"a", " ", "\t", "\r\n", "\r", "\n", "\x82\xA0", "\x88\x9F", "\x95\x5C",
                                                  "\xB1", "ab\x82\xA0" "c", "\x82\xA0\x82\xA2\x82\xA4"};
    return codePage == 932 ? dbcs : single;
}

class RandomEditing : public ::testing::TestWithParam<Config> {
protected:
    void SetUp() override {
        const Config& c = GetParam();
        m_codePage.emplace(c.codePage);
        ZentrelApp().InitInstance();
        const char* offset = std::getenv("ZENTREL_SEED");
        m_rng.seed(c.seed + (offset ? static_cast<unsigned>(std::atoi(offset)) : 0u));
        m_control = MakeControlThroughFactory();
        m_ctrl = AsControl(m_control.Get());
        m_ctrl->SetEditFont({"Courier New", 100000, 400, 1});
        m_ctrl->SetOption(OPT_WORDWRAP, c.wordWrap ? TRUE : FALSE);
        m_ctrl->CreateControlWindow(nullptr, {0, 0, 260, 120});
        m_doc = CreateHtmlDocument();
        m_doc->SetText(RandomText(40));
        m_first = m_doc->GetText();
        m_ctrl->SetDocument(m_doc.Get());
        m_platform->MoveFocus(m_ctrl->GetSafeHwnd());
    }
    void TearDown() override {
        if (m_ctrl) m_ctrl->DestroyControlWindow();
        m_control = nullptr;
        m_codePage.reset();
        ZentrelApp().InitInstance();
    }

    size_t Pick(size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(m_rng); }
    long PickLong(long lo, long hi) { return std::uniform_int_distribution<long>(lo, hi)(m_rng); }

    std::string RandomText(int pieces) {
        const auto& all = Pieces(GetParam().codePage);
        std::string text;
        for (int i = 0; i < pieces; ++i) text += all[Pick(all.size())];
        return text;
    }

    // Character boundaries of the text, found by stepping from the start as the view does.
    std::set<long> Boundaries() {
        std::set<long> at{0};
        const long length = m_doc->GetLength();
        for (long p = 0; p < length;) at.insert(p = m_ctrl->NextCharPos(p));
        return at;
    }
    long RandomBoundary() {
        const std::set<long> at = Boundaries();
        auto it = at.begin();
        std::advance(it, static_cast<long>(Pick(at.size())));
        return *it;
    }

    HWND Hwnd() { return m_ctrl->GetSafeHwnd(); }

    void Key() {
        static const int kKeys[] = {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_HOME, VK_END, VK_PRIOR, VK_NEXT,
                                    VK_BACK, VK_DELETE, VK_TAB, VK_RETURN, VK_INSERT};
        const int vk = kKeys[Pick(std::size(kKeys))];
        const int mods = static_cast<int>(Pick(4));
        // Shift+Delete and Shift+Insert reach the clipboard, which a test must not touch.
        if ((vk == VK_DELETE || vk == VK_INSERT || vk == VK_BACK) && mods == 1) return;
        m_platform->SetKeyDown(VK_SHIFT, mods & 1);
        m_platform->SetKeyDown(VK_CONTROL, mods & 2);
        m_lastStep = "key " + std::to_string(vk) + " mods " + std::to_string(mods);
        if (SendMessage(Hwnd(), WM_PRETRANSLATEKEY, vk, 1) == 0) {
            SendMessage(Hwnd(), WM_KEYDOWN, vk, 1);
            if (vk == VK_RETURN && mods == 0) SendMessage(Hwnd(), WM_CHAR, '\r', 1);
        }
        m_platform->SetKeyDown(VK_SHIFT, false);
        m_platform->SetKeyDown(VK_CONTROL, false);
    }

    void Character() {
        static const unsigned char kChars[] = {'a', 'Z', ' ', '<', '>', '&', '"', 0xE9, '-', 26, 25, 1};
        const unsigned char c = kChars[Pick(std::size(kChars))];
        if (GetParam().codePage == 932 && Pick(2)) {
            static const WPARAM kDouble[] = {0x82A0, 0x889F, 0x955C};
            const WPARAM w = kDouble[Pick(std::size(kDouble))];
            m_lastStep = "ime " + std::to_string(w);
            SendMessage(Hwnd(), WM_IME_CHAR, w, 1);
            return;
        }
        // In a double-byte code page the Latin-1 letter is a lead byte: typed alone it would
        // start half a character.
        if (c == 0xE9 && GetParam().codePage == 932) return;
        m_lastStep = "char " + std::to_string(c);
        SendMessage(Hwnd(), WM_CHAR, c, 1);
    }

    void Mouse() {
        RECT rc;
        GetClientRect(Hwnd(), &rc);
        const int x = static_cast<int>(PickLong(0, rc.right + 20)), y = static_cast<int>(PickLong(-20, rc.bottom + 20));
        const LPARAM at = MAKELPARAM(x, y);
        m_platform->SetKeyDown(VK_SHIFT, Pick(4) == 0);
        const size_t kind = Pick(4);
        m_lastStep = "mouse " + std::to_string(kind) + " at " + std::to_string(x) + "," + std::to_string(y);
        switch (kind) {
            case 0:
                SendMessage(Hwnd(), WM_LBUTTONDOWN, MK_LBUTTON, at);
                SendMessage(Hwnd(), WM_LBUTTONUP, 0, at);
                break;
            case 1:
                SendMessage(Hwnd(), WM_LBUTTONDBLCLK, MK_LBUTTON, at);
                SendMessage(Hwnd(), WM_LBUTTONUP, 0, at);
                break;
            case 2: {
                // A drag: the button held while the mouse moves, and time for the timer to run.
                m_platform->SetKeyDown(VK_LBUTTON, true);
                SendMessage(Hwnd(), WM_LBUTTONDOWN, MK_LBUTTON, at);
                POINT to{static_cast<LONG>(PickLong(-30, rc.right + 30)), static_cast<LONG>(PickLong(-40, rc.bottom + 40))};
                POINT screen = to;
                ClientToScreen(Hwnd(), &screen);
                m_platform->SetCursorPos(screen);
                SendMessage(Hwnd(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(to.x, to.y));
                m_platform->AdvanceClock(static_cast<DWORD>(PickLong(0, 40)));
                m_platform->SetKeyDown(VK_LBUTTON, false);
                SendMessage(Hwnd(), WM_LBUTTONUP, 0, MAKELPARAM(to.x, to.y));
                break;
            }
            default:
                SendMessage(Hwnd(), WM_MBUTTONDOWN, MK_MBUTTON, at);
                break;
        }
        m_platform->SetKeyDown(VK_SHIFT, false);
        m_platform->AdvanceClock(static_cast<DWORD>(PickLong(0, 700)));
    }

    // What a host does through the document and the automation surface.
    void HostEdit() {
        const long a = RandomBoundary(), b = RandomBoundary();
        const long lo = std::min(a, b), hi = std::max(a, b);
        const std::string text = RandomText(static_cast<int>(PickLong(0, 3)));
        const size_t kind = Pick(5);
        m_lastStep = "host " + std::to_string(kind) + " " + std::to_string(a) + " " + std::to_string(b);
        switch (kind) {
            case 0: m_doc->InsertText(lo, text.data(), static_cast<long>(text.size()), nullptr); break;
            case 1: m_doc->DeleteText(lo, hi - lo, nullptr); break;
            case 2: m_doc->ReplaceText(lo, hi - lo, text.data(), static_cast<long>(text.size()), nullptr); break;
            case 3: m_ctrl->SetSelection(a, b); break;
            default: m_ctrl->SetSelectionStart(RandomBoundary()); break;
        }
    }

    void Setting() {
        m_lastStep = "setting";
        switch (Pick(4)) {
            case 0: m_ctrl->SetOption(OPT_OVERWRITE, !m_ctrl->GetOption(OPT_OVERWRITE)); break;
            case 1: m_ctrl->SetOption(OPT_AUTOCONVERT, !m_ctrl->GetOption(OPT_AUTOCONVERT)); break;
            case 2: m_ctrl->SetOption(OPT_AUTOCLOSEBRACKET, !m_ctrl->GetOption(OPT_AUTOCLOSEBRACKET)); break;
            default:
                TestWindow(Hwnd())->SetClientSize(static_cast<LONG>(PickLong(90, 400)), static_cast<LONG>(PickLong(20, 200)));
                break;
        }
    }

    void Step() {
        const size_t what = Pick(20);
        m_textBefore = m_doc->GetText();
        m_selectionBefore = {m_ctrl->GetSelectionStart(), m_ctrl->GetSelectionEnd()};
        if (what < 7)
            Key();
        else if (what < 12)
            Character();
        else if (what < 15)
            Mouse();
        else if (what < 19)
            HostEdit();
        else
            Setting();
    }

    // A position between a CR and an LF that an edit brought together is no fault of the view:
    // deleting what stood between them, or putting an LF behind a lone CR, joins them around the
    // selection's end, which stays there until something moves it.
    bool JoinedAround(long pos) {
        const std::string text = m_doc->GetText();
        const bool betweenCrLf = pos > 0 && pos < static_cast<long>(text.size()) &&
                                 text[static_cast<size_t>(pos - 1)] == '\r' && text[static_cast<size_t>(pos)] == '\n';
        const bool stayed = pos == m_selectionBefore.first || pos == m_selectionBefore.second;
        return betweenCrLf && (text != m_textBefore || stayed);
    }

    void CheckInvariants() {
        const long length = m_doc->GetLength();
        const long active = m_ctrl->GetSelectionStart(), anchor = m_ctrl->GetSelectionEnd();
        // The mirror keeps its order when only the order of the ends changed.
        ASSERT_EQ(std::min(active, anchor), m_ctrl->m_pSelection->GetStart());
        ASSERT_EQ(std::max(active, anchor), m_ctrl->m_pSelection->GetEnd());
        const std::set<long> at = Boundaries();
        ASSERT_TRUE(at.count(active) || JoinedAround(active)) << "caret " << active << " inside a character";
        ASSERT_TRUE(at.count(anchor) || JoinedAround(anchor)) << "anchor " << anchor << " inside a character";
        ASSERT_EQ(m_ctrl->Lines().m_nTotal, length);
        ASSERT_EQ(DifferenceFromWholeLayout(*m_ctrl), "");
    }

    std::optional<CodePageScope> m_codePage;
    CTestPlatformScope m_platform;
    std::mt19937 m_rng;
    ComPtr<IDispatch> m_control;
    CZentrelCtrl* m_ctrl = nullptr;
    ComPtr<CHtmlDocument> m_doc;
    std::string m_first;
    std::string m_textBefore;  // the text before the step being checked, and its selection
    std::pair<long, long> m_selectionBefore;
    std::string m_lastStep;  // what the step did, for messages
};

TEST_P(RandomEditing, KeepsSelectionAndLayoutRightAndUndoesToTheStart) {
    const int steps = std::getenv("ZENTREL_LONG_TESTS") ? 30000 : 3000;
    for (int i = 0; i < steps; ++i) {
        Step();
        SCOPED_TRACE(::testing::Message() << "step " << i << " (" << m_lastStep << ") from "
                                          << ::testing::PrintToString(m_textBefore) << " selected " << m_selectionBefore.first
                                          << ", " << m_selectionBefore.second << " to "
                                          << ::testing::PrintToString(m_doc->GetText()) << " selected "
                                          << m_ctrl->GetSelectionStart() << ", " << m_ctrl->GetSelectionEnd());
        CheckInvariants();
        if (HasFatalFailure()) return;
    }
    m_ctrl->SetOption(OPT_READONLY, FALSE);
    while (!m_doc->IsUndoEmpty()) m_ctrl->DoUndo();
    EXPECT_EQ(m_doc->GetText(), m_first);
}

INSTANTIATE_TEST_SUITE_P(Configs, RandomEditing,
                         ::testing::Values(Config{"Latin1Unwrapped", 1252, false, 1}, Config{"Latin1Wrapped", 1252, true, 2},
                                           Config{"ShiftJisUnwrapped", 932, false, 3}, Config{"ShiftJisWrapped", 932, true, 4}),
                         [](const ::testing::TestParamInfo<Config>& info) { return std::string(info.param.name); });

}  // namespace
