// Window services of the test backend played from scripts (cases/*.script): messages, timers,
// painting, scroll bars, the caret, child controls, and a device context drawing on a surface of
// its own. Each case starts on a fresh backend.
//
// A line is a step, `VERB ARGS`, optionally followed by `=> RESULT`, which the step's result must
// equal. Windows are named; each has a handler of its own that logs what it hears as
// `name:MESSAGE(wParam,lParam)` (SIZE as `(wParam,WxH)`, the focus messages with the other
// window's name, TIMER with the timer's id). `on NAME MESSAGE[#N] STEP` makes the handler run
// STEP when it hears the message (the Nth time only, with #N), noted in the log as `->RESULT`;
// `on NAME MESSAGE return N` makes it answer N. Rectangles are written L,T,R,B; regions as their
// rectangles; colours in hex; a window named - is none.
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "platform/testing/testplatform.h"
#include "platform/window/caret.h"
#include "platform/window/controls.h"
#include "platform/window/paint.h"
#include "platform/window/scrollbar.h"
#include "tests/codepagescope.h"
#include "tests/platform/casefile.h"
#include "tests/platform/fontrequest.h"

namespace {

constexpr UINT WM_REPAINT = WM_USER + 1;
const std::map<std::string, UINT> kMessages{
    {"CREATE", WM_CREATE},   {"DESTROY", WM_DESTROY}, {"SIZE", WM_SIZE},           {"SETFOCUS", WM_SETFOCUS},
    {"KILLFOCUS", WM_KILLFOCUS}, {"PAINT", WM_PAINT}, {"KEYDOWN", WM_KEYDOWN},     {"TIMER", WM_TIMER},
    {"MOUSEMOVE", WM_MOUSEMOVE}, {"MOUSEWHEEL", WM_MOUSEWHEEL}, {"REPAINT", WM_REPAINT}};

std::string Str(long value) { return std::to_string(value); }
// Items joined by spaces, or `none` for no items.
template <class List, class Format>
std::string Joined(const List& items, Format format, const char* none = "none") {
    std::string out;
    for (const auto& item : items) out += (out.empty() ? "" : " ") + format(item);
    return out.empty() ? none : out;
}
std::string MessageName(UINT message) {
    for (const auto& [name, number] : kMessages)
        if (number == message) return name;
    return Str(static_cast<long>(message));
}
// Flags named in a spec joined by +, as `all+disable`.
UINT Flags(const std::string& spec, const std::map<std::string, UINT>& names) {
    UINT flags = 0;
    std::istringstream parts(spec);
    for (std::string part; std::getline(parts, part, '+');) flags |= names.at(part);
    return flags;
}
std::string Str(const RECT& rc) { return Str(rc.left) + "," + Str(rc.top) + "," + Str(rc.right) + "," + Str(rc.bottom); }
std::string Str(const CRgn& rgn) {
    return Joined(rgn.Rects(), [](const RECT& rc) { return Str(rc); }, "empty");
}
std::string Hex(COLORREF colour) {
    std::ostringstream out;
    out << std::hex << std::uppercase << colour;
    return out.str();
}

// The words of a step, read as the verbs need them.
struct Args {
    std::vector<std::string> words;
    size_t Count() const { return words.size(); }
    const std::string& Word(size_t i) const {
        static const std::string none;
        return i < words.size() ? words[i] : none;
    }
    int Int(size_t i) const { return i < words.size() ? static_cast<int>(std::stol(words[i], nullptr, 0)) : 0; }
    RECT Rect(size_t i) const { return RECT{Int(i), Int(i + 1), Int(i + 2), Int(i + 3)}; }
    std::string Rest(size_t i) const {
        if (i >= words.size()) return "";
        return Joined(std::vector<std::string>(words.begin() + i, words.end()), [](const std::string& w) { return w; }, "");
    }
};

class CScript;

class CNamedHandler final : public IMessageHandler {
public:
    CNamedHandler(CScript* script, std::string name) : m_pScript(script), m_name(std::move(name)) {}
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    CScript* m_pScript;
    std::string m_name;
};

// A context on a surface of its own, with what is selected into it.
struct CDrawing {
    CFont font;
    CPen pen;
    CBitmap bitmap;
    std::shared_ptr<CTestSurface> surface;
    std::unique_ptr<CTestDC> dc;
    std::unique_ptr<CDC> mem;  // a context compatible with dc, drawing on bitmap
    size_t seen = 0;           // records of dc's log already looked at

    const DrawRecord* Last(DrawKind kind) const {
        for (auto it = dc->Log().rbegin(); it != dc->Log().rend(); ++it)
            if (it->kind == kind) return &*it;
        return nullptr;
    }
};

class CScript {
public:
    CScript() : m_scope(std::make_unique<CTestPlatformScope>()) {
        AddVerbs();
        AddDrawingVerbs();
    }
    ~CScript() {
        DestroyCaret();
        m_drawing.reset();
        m_scope.reset();  // abandons the windows before their handlers go
        m_codePage.reset();
    }

    std::string Run(const std::string& step) {
        Args args;
        std::istringstream in(step);
        std::string verb;
        in >> verb;
        for (std::string word; in >> word;) args.words.push_back(word);
        auto found = m_verbs.find(verb);
        if (found == m_verbs.end()) return "unknown verb " + verb;
        try {
            return found->second(args);
        } catch (const std::exception& e) {  // a malformed step: say so at its line
            return std::string("bad step: ") + e.what();
        }
    }

    LRESULT Heard(const std::string& name, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (!m_windows.count(name)) m_windows[name] = hwnd;  // a creation refused before it returned
        const std::string messageName = MessageName(message);
        std::string entry = name + ":" + messageName + "(";
        if (message == WM_SIZE) entry += Str(static_cast<long>(wParam)) + "," + Str(LOWORD(lParam)) + "x" + Str(HIWORD(lParam));
        else if (message == WM_SETFOCUS || message == WM_KILLFOCUS) entry += NameOf(reinterpret_cast<HWND>(wParam));
        else if (message == WM_TIMER) entry += Str(static_cast<long>(wParam));
        else entry += Str(static_cast<long>(wParam)) + "," + Str(static_cast<long>(lParam));
        const size_t at = m_log.size();
        m_log.push_back(entry + ")");
        const std::string key = name + " " + messageName;
        auto reaction = m_reactions.find(key + "#" + Str(++m_heard[key]));
        if (reaction == m_reactions.end()) reaction = m_reactions.find(key);
        if (reaction == m_reactions.end()) return 0;
        if (reaction->second.starts_with("return ")) return std::stol(reaction->second.substr(7));
        const std::string result = Run(reaction->second);
        if (!result.empty()) m_log[at] += "->" + result;
        return 0;
    }

private:
    HWND Win(const Args& a, size_t i) const {
        auto found = i < a.Count() ? m_windows.find(a.words[i]) : m_windows.end();
        return found == m_windows.end() ? nullptr : found->second;
    }
    // The backend of a living window; a step on a window that is gone or was never made is malformed.
    CTestWindowBackend* Backend(const Args& a, size_t i) const {
        CTestWindowBackend* window = TestWindow(Win(a, i));
        if (!window) throw std::invalid_argument("no window " + a.Word(i));
        return window;
    }
    CDrawing& Drawing() const {
        if (!m_drawing) throw std::invalid_argument("no context: `dc` comes first");
        return *m_drawing;
    }
    CTestPlatform& Platform() { return m_scope->Platform(); }
    std::string NameOf(HWND hwnd) const {
        for (const auto& [name, handle] : m_windows)
            if (hwnd && handle == hwnd) return name;
        return hwnd ? "?" : "-";
    }
    static std::string Bool(BOOL value) { return value ? "1" : "0"; }
    static UINT Message(const std::string& name) {
        auto found = kMessages.find(name);
        return found != kMessages.end() ? found->second : static_cast<UINT>(std::stoul(name, nullptr, 0));
    }
    static int Bar(const std::string& name) {
        return name == "vert" ? SB_VERT : name == "horz" ? SB_HORZ : name == "both" ? SB_BOTH : std::stoi(name);
    }
    // A window of the named handler: `window NAME [PARENT [W H]]`, or a child control.
    std::string Made(const std::string& name, HWND hwnd) {
        if (hwnd && m_windows.count(name) && m_windows[name] != hwnd) return "handle differs from the one handled";
        if (hwnd) m_windows[name] = hwnd;
        return hwnd ? "ok" : "null";
    }
    CNamedHandler* Handler(const std::string& name) {
        auto& handler = m_handlers[name];
        if (!handler) handler = std::make_unique<CNamedHandler>(this, name);
        return handler.get();
    }
    std::string Paint(const Args& a, bool fill) {
        PAINTSTRUCT ps;
        CDC* dc = BeginPaint(Win(a, 0), &ps);
        if (!dc) return std::string("none");
        RECT client{};
        GetClientRect(Win(a, 0), &client);
        if (fill) dc->FillSolidRect(client, m_paintColour);
        EndPaint(Win(a, 0), &ps);
        return Str(ps.rcPaint);
    }
    std::string SetScroll(const Args& a) {
        static const std::map<std::string, UINT> masks{{"all", SIF_ALL}, {"pos", SIF_POS}, {"page", SIF_PAGE},
                                                       {"range", SIF_RANGE}, {"disable", SIF_DISABLENOSCROLL}};
        SCROLLINFO si;
        si.fMask = Flags(a.Word(2), masks);
        si.nMin = a.Int(3);
        si.nMax = a.Int(4);
        si.nPage = static_cast<UINT>(a.Int(5));
        si.nPos = a.Int(6);
        return Str(SetScrollInfo(Win(a, 0), Bar(a.Word(1)), &si, TRUE));
    }

    void AddVerbs();
    void AddDrawingVerbs();

    std::unique_ptr<CTestPlatformScope> m_scope;
    std::map<std::string, std::unique_ptr<CNamedHandler>> m_handlers;
    std::map<std::string, HWND> m_windows;
    std::map<std::string, std::string> m_reactions;
    std::map<std::string, int> m_heard;
    std::vector<std::string> m_log;
    COLORREF m_paintColour = 0;
    std::unique_ptr<CDrawing> m_drawing;
    std::unique_ptr<CodePageScope> m_codePage;
    std::map<std::string, std::function<std::string(const Args&)>> m_verbs;
};

LRESULT CNamedHandler::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return m_pScript->Heard(m_name, hwnd, message, wParam, lParam);
}

void CScript::AddVerbs() {
    auto& v = m_verbs;
    // Windows and messages.
    v["window"] = [this](const Args& a) {
        const RECT rc{0, 0, a.Count() > 3 ? a.Int(2) : 300, a.Count() > 3 ? a.Int(3) : 200};
        return Made(a.Word(0), CreateWindowFor(Handler(a.Word(0)), Win(a, 1), rc));
    };
    v["nohandler"] = [](const Args&) { return CreateWindowFor(nullptr, nullptr, RECT{0, 0, 10, 10}) ? "ok" : "null"; };
    v["destroy"] = [this](const Args& a) { return Bool(DestroyWindow(Win(a, 0))); };
    v["destroyall"] = [this](const Args&) { return Platform().DestroyAllWindows(), ""; };
    v["iswindow"] = [this](const Args& a) { return Bool(IsWindow(Win(a, 0))); };
    v["backend"] = [this](const Args& a) { return GetWindowBackend(Win(a, 0)) ? "some" : "none"; };
    v["same"] = [this](const Args& a) { return Bool(Win(a, 0) == Win(a, 1)); };
    v["windows"] = [this](const Args&) { return Str(static_cast<long>(Platform().Windows().size())); };
    v["resized"] = [this](const Args& a) { return NotifyWindowResized(Win(a, 0)), ""; };
    v["client"] = [this](const Args& a) {
        RECT rc;
        return GetClientRect(Win(a, 0), &rc) ? Str(rc) : "fail";
    };
    v["resize"] = [this](const Args& a) { return Backend(a, 0)->SetClientSize(a.Int(1), a.Int(2)), ""; };
    v["post"] = [this](const Args& a) { return Bool(PostMessage(Win(a, 0), Message(a.Word(1)), a.Int(2), a.Int(3))); };
    v["send"] = [this](const Args& a) { return Str(SendMessage(Win(a, 0), Message(a.Word(1)), 0, 0)); };
    v["peek"] = [this](const Args& a) {
        MSG msg;
        const UINT flags = a.Word(3) == "keep" ? PM_NOREMOVE : PM_REMOVE;
        if (!PeekMessage(a.Word(3) == "null" ? nullptr : &msg, Win(a, 0), Message(a.Word(1)), Message(a.Word(2)), flags))
            return std::string("none");
        const std::string seen = MessageName(msg.message) + "(" + Str(static_cast<long>(msg.wParam)) + "," + Str(msg.lParam) + ")";
        return msg.hwnd == Win(a, 0) ? seen : seen + " of another window";
    };
    v["dispatch"] = [this](const Args& a) { return Str(DispatchPostedMessages(Win(a, 0))); };
    v["discard"] = [this](const Args& a) {
        static std::string dropped;
        dropped.clear();
        DiscardPostedMessages(Win(a, 0), a.Count() > 1 ? nullptr : +[](const MSG& m) { dropped += " " + Str(m.lParam); });
        return dropped.empty() ? std::string("none") : dropped.substr(1);
    };
    // Takes out the REPAINT messages behind the one handled, up to one whose lParam is 0.
    v["swallow"] = [this](const Args& a) {
        MSG next;
        while (PeekMessage(&next, Win(a, 0), WM_REPAINT, WM_REPAINT, PM_NOREMOVE) && next.lParam != 0)
            PeekMessage(&next, Win(a, 0), WM_REPAINT, WM_REPAINT, PM_REMOVE);
        return "";
    };
    v["on"] = [this](const Args& a) { return m_reactions[a.Word(0) + " " + a.Word(1)] = a.Rest(2), ""; };
    v["log"] = [this](const Args&) {
        const std::string out = Joined(m_log, [](const std::string& entry) { return entry; }, "");
        m_log.clear();
        return out;
    };
    // Timers and the clock.
    v["settimer"] = [this](const Args& a) { return Str(SetTimer(Win(a, 0), static_cast<UINT>(a.Int(1)), static_cast<UINT>(a.Int(2)))); };
    v["killtimer"] = [this](const Args& a) { return Bool(KillTimer(Win(a, 0), static_cast<UINT>(a.Int(1)))); };
    v["timers"] = [this](const Args& a) {
        return Joined(Backend(a, 0)->Timers(), [](const auto& timer) { return Str(timer.first) + ":" + Str(timer.second); });
    };
    v["fire"] = [this](const Args& a) { return Bool(Backend(a, 0)->FireTimer(static_cast<UINT>(a.Int(1)))); };
    v["clock"] = [this](const Args& a) { return Platform().AdvanceClock(static_cast<DWORD>(a.Int(0))), ""; };
    v["settick"] = [this](const Args& a) { return Platform().SetTickCount(static_cast<DWORD>(std::stoul(a.Word(0), nullptr, 0))), ""; };
    v["tick"] = [](const Args&) { return Str(static_cast<long>(GetTickCount())); };
    // Focus.
    v["focus"] = [this](const Args& a) { return NameOf(SetFocus(Win(a, 0))); };
    v["getfocus"] = [this](const Args&) { return NameOf(GetFocus()); };
    v["movefocus"] = [this](const Args& a) { return Platform().MoveFocus(Win(a, 0)), ""; };
    v["hasfocus"] = [this](const Args& a) { return Bool(Backend(a, 0)->HasFocus()); };
    // Invalid areas and painting.
    v["invalidate"] = [this](const Args& a) {
        const RECT rc = a.Rect(1);
        return Bool(InvalidateRect(Win(a, 0), a.Count() > 4 ? &rc : nullptr, FALSE));
    };
    v["validate"] = [this](const Args& a) {
        const RECT rc = a.Rect(1);
        return Bool(ValidateRect(Win(a, 0), a.Count() > 4 ? &rc : nullptr));
    };
    v["redraw"] = [this](const Args& a) {
        static const std::map<std::string, UINT> flags{
            {"invalidate", RDW_INVALIDATE}, {"validate", RDW_VALIDATE}, {"updatenow", RDW_UPDATENOW}};
        const RECT rc = a.Rect(2);
        return Bool(RedrawWindow(Win(a, 0), a.Count() > 5 ? &rc : nullptr, Flags(a.Word(1), flags)));
    };
    v["invalidated"] = [this](const Args& a) { return Joined(Backend(a, 0)->Invalidated(), [](const RECT& rc) { return Str(rc); }); };
    v["clearinvalidated"] = [this](const Args& a) { return Backend(a, 0)->ClearInvalidated(), ""; };
    v["pending"] = [this](const Args& a) { return Str(Backend(a, 0)->PendingUpdate()); };
    v["region"] = [this](const Args& a) { return Str(Backend(a, 0)->PendingRegion()); };
    v["updaterect"] = [this](const Args& a) {
        RECT rc{1, 2, 3, 4};
        return GetUpdateRect(Win(a, 0), &rc, FALSE) ? Str(rc) : "none " + Str(rc);
    };
    v["update"] = [this](const Args& a) { return Bool(UpdateWindow(Win(a, 0))); };
    v["paint"] = [this](const Args& a) { return Bool(Backend(a, 0)->Paint()); };
    v["counts"] = [this](const Args& a) {
        return "updates=" + Str(Backend(a, 0)->UpdateCount()) + " paints=" + Str(Backend(a, 0)->PaintCount());
    };
    v["beginpaint"] = [this](const Args& a) { return Paint(a, false); };
    v["fillpaint"] = [this](const Args& a) { return Paint(a, true); };
    v["colour"] = [this](const Args& a) { return m_paintColour = static_cast<COLORREF>(std::stoul(a.Word(0), nullptr, 16)), ""; };
    v["pixel"] = [this](const Args& a) { return Hex(Backend(a, 0)->Pixel(a.Int(1), a.Int(2))); };
    v["drawn"] = [this](const Args& a) {
        return Backend(a, 0)->Drawn().empty() ? std::string("nothing") : Str(Backend(a, 0)->Drawn().back().visible);
    };
    // A window context: inverts the rectangle, and says how many contexts were open meanwhile.
    v["invert"] = [this](const Args& a) {
        CDC* dc = GetDC(Win(a, 0));
        if (!dc) return std::string("no context");
        const int open = Backend(a, 0)->OpenWindowDCs();
        dc->InvertRect(a.Rect(1));
        const int released = ReleaseDC(Win(a, 0), dc);
        return "open=" + Str(open) + " released=" + Str(released) + " after=" + Str(Backend(a, 0)->OpenWindowDCs());
    };
    // The screen's context: for measuring, and drawing that shows nowhere; released only once.
    v["screen"] = [](const Args&) {
        CDC* screen = GetDC(nullptr);
        if (!screen) return std::string("no context");
        RECT box;
        screen->GetClipBox(&box);
        const int released = ReleaseDC(nullptr, screen);
        return "box=" + Str(box) + " released=" + Str(released) + " again=" + Str(ReleaseDC(nullptr, screen));
    };
    // Rows of distinct colours, each row y of colour y, so that a move can be traced.
    v["rows"] = [this](const Args& a) {
        CDC* dc = GetDC(Win(a, 0));
        RECT client{};
        GetClientRect(Win(a, 0), &client);
        for (LONG y = 0; y < client.bottom; ++y) dc->FillSolidRect(RECT{0, y, client.right, y + 1}, static_cast<COLORREF>(y));
        return ReleaseDC(Win(a, 0), dc), "";
    };
    v["scroll"] = [this](const Args& a) {
        const RECT rc = a.Rect(3);
        return Bool(ScrollWindow(Win(a, 0), a.Int(1), a.Int(2),
                                 a.Count() > 6 ? &rc : nullptr, a.Count() > 6 ? &rc : nullptr));
    };
    v["scrolls"] = [this](const Args& a) {
        return Joined(Backend(a, 0)->Scrolls(), [](const ScrollCall& call) { return Str(call.scroll); });
    };
    // Scroll bars: `setscroll NAME BAR MASK MIN MAX PAGE POS`, MASK of all, pos, page, range and
    // disable joined by +.
    v["setscroll"] = [this](const Args& a) { return SetScroll(a); };
    v["getscroll"] = [this](const Args& a) {
        SCROLLINFO si;
        si.fMask = SIF_ALL;
        if (!GetScrollInfo(Win(a, 0), Bar(a.Word(1)), &si)) return std::string("fail");
        return Str(si.nMin) + " " + Str(si.nMax) + " " + Str(static_cast<long>(si.nPage)) + " " + Str(si.nPos);
    };
    v["bar"] = [this](const Args& a) {
        const ScrollBarState& bar = Backend(a, 0)->Bar(Bar(a.Word(1)));
        return "visible=" + Bool(bar.visible) + " enabled=" + Bool(bar.enabled) + " page=" +
               Str(static_cast<long>(bar.info.nPage)) + " pos=" + Str(bar.info.nPos);
    };
    v["barstate"] = [this](const Args& a) {
        ScrollBarState state;
        if (!GetScrollBarState(Win(a, 0), Bar(a.Word(1)), &state)) return std::string("fail");
        return "visible=" + Bool(state.visible) + " enabled=" + Bool(state.enabled);
    };
    v["showbar"] = [this](const Args& a) { return Bool(ShowScrollBar(Win(a, 0), Bar(a.Word(1)), a.Int(2) != 0)); };
    v["barchanges"] = [this](const Args& a) { return Str(Backend(a, 0)->ScrollBarChanges()); };
    // The caret.
    v["caret"] = [this](const Args& a) {
        const int bitmap = 0;
        return Bool(CreateCaret(Win(a, 0), a.Count() > 3 ? &bitmap : nullptr, a.Int(1), a.Int(2)));
    };
    v["destroycaret"] = [](const Args&) { return Bool(DestroyCaret()); };
    v["caretowner"] = [this](const Args&) { return NameOf(GetCaretOwner()); };
    v["caretshown"] = [](const Args&) { return Bool(IsCaretShown()); };
    v["caretrect"] = [](const Args&) { return Str(GetCaretRect()); };
    v["caretpos"] = [](const Args& a) { return Bool(SetCaretPos(a.Int(0), a.Int(1))); };
    v["getcaretpos"] = [](const Args&) {
        POINT pt;
        return GetCaretPos(&pt) ? Str(pt.x) + "," + Str(pt.y) : "fail";
    };
    v["hidecaret"] = [this](const Args& a) { return Bool(HideCaret(Win(a, 0))); };
    v["showcaret"] = [this](const Args& a) { return Bool(ShowCaret(Win(a, 0))); };
    v["wincaret"] = [this](const Args& a) {
        return "shown=" + Bool(Backend(a, 0)->CaretShown()) + " " + Str(Backend(a, 0)->CaretRect()) + " changes=" +
               Str(Backend(a, 0)->CaretChanges());
    };
    // Child controls: `control NAME PARENT static|animation ID L T R B`.
    v["control"] = [this](const Args& a) {
        const auto kind = a.Word(2) == "static" ? ChildControlKind::Static : ChildControlKind::Animation;
        return Made(a.Word(0), CreateChildControl(kind, Win(a, 1), a.Int(3), a.Rect(4)));
    };
    v["controls"] = [this](const Args& a) {
        return Joined(Platform().ChildControlsOf(Win(a, 0)), [this](HWND child) { return NameOf(child); });
    };
    v["control?"] = [this](const Args& a) {
        CTestWindowBackend* w = Backend(a, 0);
        return std::string(w->Kind() == ChildControlKind::Static ? "static" : "animation") + " shown=" + Bool(w->Shown()) +
               " at " + Str(w->WindowRect()) + " text=" + w->Text() + " animation=" + Str(static_cast<long>(w->AnimationResource())) +
               (w->AnimationPlaying() ? " playing" : "");
    };
    v["settext"] = [this](const Args& a) { return Bool(SetWindowText(Win(a, 0), a.Rest(1))); };
    v["text"] = [this](const Args& a) { return GetWindowText(Win(a, 0)); };
    v["move"] = [this](const Args& a) { return Bool(MoveWindow(Win(a, 0), a.Int(1), a.Int(2), a.Int(3), a.Int(4), a.Count() < 6)); };
    v["show"] = [this](const Args& a) { return Bool(ShowWindow(Win(a, 0), a.Int(1) ? SW_SHOW : SW_HIDE)); };
    v["visible"] = [this](const Args& a) { return Bool(IsWindowVisible(Win(a, 0))); };
    v["animopen"] = [this](const Args& a) { return Bool(AnimateOpen(Win(a, 0), static_cast<UINT>(a.Int(1)))); };
    v["animplay"] = [this](const Args& a) { return Bool(AnimatePlay(Win(a, 0))); };
    v["animstop"] = [this](const Args& a) { return Bool(AnimateStop(Win(a, 0))); };
    v["waitcursor"] = [this](const Args& a) {
        a.Word(0) == "begin" ? BeginWaitCursor() : EndWaitCursor();
        return "depth=" + Str(Platform().WaitCursorDepth());
    };
}

void CScript::AddDrawingVerbs() {
    auto& v = m_verbs;
    static const std::map<std::string, UINT> kAlign{{"left", TA_LEFT}, {"center", TA_CENTER}, {"right", TA_RIGHT},
                                                    {"top", TA_TOP}, {"bottom", TA_BOTTOM}, {"baseline", TA_BASELINE}};
    static const char* const kRegionKinds[] = {"error", "null", "simple", "complex"};
    // A white surface of 200x100 with Times New Roman 18 selected, ink 800000 on FFFF.
    v["dc"] = [this](const Args&) {
        auto& d = m_drawing = std::make_unique<CDrawing>();
        d->surface = std::make_shared<CTestSurface>(200, 100);
        d->dc = std::make_unique<CTestDC>(d->surface, nullptr);
        d->dc->FillSolidRect(d->surface->Bounds(), 0xFFFFFF);
        const LOGFONTA lf = FontRequest("Times New Roman", 18);
        d->font.CreateFontIndirect(&lf);
        d->dc->SelectObject(&d->font);
        d->dc->SetTextColor(0x800000);
        d->dc->SetBkColor(0x00FFFF);
        return "";
    };
    v["codepage"] = [this](const Args& a) {
        m_codePage.reset();
        return m_codePage = std::make_unique<CodePageScope>(static_cast<UINT>(a.Int(0))), "";
    };
    v["align"] = [this](const Args& a) { return Drawing().dc->SetTextAlign(Flags(a.Word(0), kAlign)), ""; };
    v["bkmode"] = [this](const Args& a) { return Drawing().dc->SetBkMode(a.Word(0) == "opaque" ? OPAQUE : TRANSPARENT), ""; };
    // `textout X Y [opaque|clipped L T R B] TEXT`, TEXT escaped, or - for none.
    v["textout"] = [this](const Args& a) {
        const bool boxed = a.Word(2) == "opaque" || a.Word(2) == "clipped";
        const RECT rc = a.Rect(3);
        const std::string text = UnescapeCaseField(a.Rest(boxed ? 7 : 2));
        const UINT options = !boxed ? 0 : a.Word(2) == "opaque" ? ETO_OPAQUE : ETO_CLIPPED;
        return Bool(Drawing().dc->ExtTextOut(a.Int(0), a.Int(1), options, boxed ? &rc : nullptr, text == "-" ? nullptr : text.c_str(),
                                              text == "-" ? 0 : static_cast<int>(text.size())));
    };
    v["lasttext"] = [this](const Args&) {
        const DrawRecord* run = Drawing().Last(DrawKind::Text);
        if (!run) return std::string("none");
        return run->text + " at " + Str(run->origin.x) + "," + Str(run->origin.y) + " colour=" + Hex(run->color) +
               " face=" + run->font.lfFaceName + (run->clipped ? " clip=" + Str(run->clip) : "");
    };
    v["advances"] = [this](const Args&) {
        const DrawRecord* run = Drawing().Last(DrawKind::Text);
        return run ? Joined(run->advances, [](int advance) { return Str(advance); }) : "none";
    };
    v["lastfill"] = [this](const Args& a) {
        const DrawRecord* fill = Drawing().Last(DrawKind::Fill);
        return !fill ? "none" : a.Count() ? Str(fill->visible) : Str(fill->rc);
    };
    // The kinds of what was drawn since the last look.
    v["records"] = [this](const Args&) {
        static const char* const kKinds[] = {"fill", "text", "line", "blit", "invert"};
        std::vector<std::string> kinds;
        for (size_t i = Drawing().seen; i < Drawing().dc->Log().size(); ++i)
            kinds.push_back(kKinds[static_cast<int>(Drawing().dc->Log()[i].kind)]);
        Drawing().seen = Drawing().dc->Log().size();
        return Joined(kinds, [](const std::string& kind) { return kind; });
    };
    v["surface"] = [this](const Args& a) { return Hex(Drawing().surface->Pixel(a.Int(0), a.Int(1))); };
    v["extent"] = [this](const Args& a) {
        const std::string text = UnescapeCaseField(a.Word(0));
        return Str(Drawing().dc->GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx);
    };
    v["system"] = [this](const Args& a) { return Drawing().dc->SetSystemRegion(CRgn(a.Rect(0))), ""; };
    v["rectvisible"] = [this](const Args& a) { return Bool(Drawing().dc->RectVisible(a.Rect(0))); };
    v["clip"] = [this](const Args&) {
        CRgn clip;
        return Drawing().dc->GetClipRgn(&clip) ? Str(clip) : "none";
    };
    v["exclude"] = [this](const Args& a) { return kRegionKinds[Drawing().dc->ExcludeClipRect(a.Rect(0))]; };
    v["intersect"] = [this](const Args& a) { return kRegionKinds[Drawing().dc->IntersectClipRect(a.Rect(0))]; };
    v["clipbox"] = [this](const Args&) {
        RECT box;
        const int kind = Drawing().dc->GetClipBox(&box);
        return kRegionKinds[kind] + (" " + Str(box));
    };
    v["selectclip"] = [this](const Args& a) {
        const bool none = a.Word(0) == "none";
        const CRgn rgn(none ? RECT{} : a.Rect(0));
        return kRegionKinds[Drawing().dc->SelectClipRgn(none ? nullptr : &rgn)];
    };
    v["dcfill"] = [this](const Args& a) {
        return Drawing().dc->FillSolidRect(a.Rect(0), static_cast<COLORREF>(std::stoul(a.Word(4), nullptr, 16))), "";
    };
    v["memdc"] = [this](const Args& a) {
        Drawing().mem = Drawing().dc->CreateCompatibleDC();
        if (!Drawing().mem->CreateCompatibleBitmap(&Drawing().bitmap, a.Int(0), a.Int(1))) return std::string("no bitmap");
        Drawing().mem->SelectObject(&Drawing().bitmap);
        return Str(Drawing().bitmap.GetSize().cx) + "x" + Str(Drawing().bitmap.GetSize().cy);
    };
    // Fills on the memory context; says where the fill was logged: in the one log, on the bitmap.
    v["memfill"] = [this](const Args& a) {
        Drawing().mem->FillSolidRect(a.Rect(0), static_cast<COLORREF>(std::stoul(a.Word(4), nullptr, 16)));
        const bool onBitmap = Drawing().dc->Log().back().target == static_cast<const CTestSurface*>(Drawing().bitmap.Impl());
        return onBitmap ? "bitmap" : "elsewhere";
    };
    v["blit"] = [this](const Args& a) {
        const DWORD rop = a.Count() > 6 ? static_cast<DWORD>(std::stoul(a.Word(6), nullptr, 16)) : SRCCOPY;
        return Bool(Drawing().dc->BitBlt(a.Int(0), a.Int(1), a.Int(2), a.Int(3), Drawing().mem.get(), a.Int(4), a.Int(5), rop));
    };
    v["stretch"] = [this](const Args& a) {
        return Bool(Drawing().dc->StretchBlt(a.Int(0), a.Int(1), a.Int(2), a.Int(3), Drawing().mem.get(), a.Int(4), a.Int(5),
                                              a.Int(6), a.Int(7), SRCCOPY));
    };
    v["pen"] = [this](const Args& a) {
        Drawing().pen.CreatePen(PS_SOLID, 1, static_cast<COLORREF>(std::stoul(a.Word(0), nullptr, 16)));
        return Drawing().dc->SelectObject(&Drawing().pen), "";
    };
    v["moveto"] = [this](const Args& a) { return Drawing().dc->MoveTo(a.Int(0), a.Int(1)), ""; };
    v["lineto"] = [this](const Args& a) { return Drawing().dc->LineTo(a.Int(0), a.Int(1)), ""; };
}

// Plays every case of a script file; a failure names the file and line of its step.
void Play(const std::string& name) {
    const std::string path = std::string(ZENTREL_SOURCE_DIR) + "/tests/platform/cases/" + name;
    std::ifstream in(path);
    ASSERT_TRUE(in) << path;
    std::unique_ptr<CScript> script;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const size_t first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#') continue;
        if (line.starts_with("case ")) {
            script.reset();  // the old backend goes before the new one is installed
            script = std::make_unique<CScript>();
            continue;
        }
        ASSERT_TRUE(script) << name << ":" << number << ": a step before the first case";
        const size_t arrow = line.find(" =>");
        const std::string step = line.substr(0, arrow);
        const std::string result = script->Run(step);
        if (arrow == std::string::npos) continue;
        const size_t from = line.find_first_not_of(' ', arrow + 3);
        EXPECT_EQ(result, from == std::string::npos ? "" : line.substr(from)) << name << ":" << number << ": " << step;
    }
}

class WindowScripts : public ::testing::TestWithParam<const char*> {};

TEST_P(WindowScripts, StepsGiveTheirResults) { Play(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Scripts, WindowScripts,
                         ::testing::Values("windows.script", "timers.script", "paint.script", "scrollbars.script",
                                           "caret.script", "controls.script", "drawing.script"),
                         [](const auto& info) {
                             std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });

}  // namespace
