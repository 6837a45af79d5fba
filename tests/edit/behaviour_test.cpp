// Plays the behaviour cases of tests/edit/cases on a control in a window of the test backend,
// over a reference document, with keys delivered as the Qt backend delivers them. The control is
// alone in its window, so a Tab it does not claim comes back to it as a key and a character.
//
// Actions:
//   key [Shift+][Ctrl+]Name    Left Right Up Down Home End PageUp PageDown Back Delete Insert Tab
//                              Enter Escape Space Pause Plus Minus Comma Period RBracket, A..Z, 0..9
//   keydown [Shift+][Ctrl+]Name  WM_KEYDOWN alone, as from a host that offers no key first
//   type TEXT                  each byte as WM_CHAR
//   char N                     WM_CHAR with code N
//   ime 0xLLTT                 WM_IME_CHAR with lead and trail byte
//   click POINT, shiftclick POINT, dblclick POINT, ctrldblclick POINT
//                              POINT: @pos (just right of the position's left edge), x,y in
//                              client pixels, gutter@pos (in the gutter on pos's row),
//                              strip@pos (in the strip at the gutter's right edge), box@pos
//                              (the middle of the fold box on pos's row), below
//                              (10 pixels under the client area), top, bottom, left,
//                              right (the middle of that edge's outermost pixels)
//   press POINT, moveto POINT, release    a drag by hand: the button held, the mouse moved
//   mbutton POINT, rbutton POINT
//   wait MS                    the clock moves on (drag-selection passes run meanwhile)
//   The left button is the physical right one with the setup line `swapbuttons`.
//   call Name [ARG...]         an automation method with long arguments, or "quoted" strings;
//                              `out` (or `out=N`, holding N before the call) for a by-reference
//                              argument; `set Name [INDEX...] V` a property
//   vscroll CODE [POS]         the vertical bar's request: LINEUP, PAGEDOWN, THUMBPOSITION, ...
//   focus, blur                the focus comes or goes
//   lock                       the document refuses every edit, undo and redo from now on
// Checks: expect TEXT, events LIST, beeps N, result N, error [CODE] ["TEXT"], prop Name V,
//   undotitle TEXT, caretwidth N|char (char: the view's character width), goalx N,
//   mousedown 0|1, toprow N, leftpixel N, posat X Y POS (the position at a point of the
//   document), pointof POS X Y (the document point of a position's caret), clipboard TEXT|none
//   (the CF_TEXT on the clipboard, without its NUL), resulttext TEXT (a string result),
//   table N... (the line table's lengths, which must also be what a fresh layout gives),
//   blocks TREE (collapsed blocks as start-end, children in brackets: `2-9[3-5 6-8] 12-14`, or
//   none), bookmarks LIST (newest first, `name@active,anchor` joined by ` | `, or none),
//   flag LINE ID|none (the gutter flag).
// Drags: `dragover POINT [Ctrl] [Shift]`, `dragtick [Ctrl] [Shift]` (the drag rests a tick where
//   it is), `dragdrop`, `dragcancel` add to the script of the next drag, which a press inside
//   the selection starts; `dragin text TEXT|file PATH...` plays the script at once with data
//   from another program (CF_TEXT, "FileName", or both). Checks: `dragresult EFFECT` (the
//   effect the last `dragin` ended with), `answers EFFECT...` (the target's answer to each step), where
//   EFFECT is none, copy, move or link, with +scroll.
// Setting the clipboard as another program would: `putclipboard text TEXT` (CF_TEXT),
//   `putclipboard unicode TEXT` (TEXT is UTF-8, put as CF_UNICODETEXT alone), `putclipboard none`.
// The picker: `picker N ROW` (the page shown, 0 when closed, and its current row's text or -),
//   `status TEXT` (the help pane), `pickrows N TEXT | TEXT...` (the first N rows, or all with N 0),
//   `pickclick ROW`, `pickdblclick ROW`, `pickrclick ROW` (the mouse on a row of the list),
//   `host EVENT DISPATCHED ACCEPTED [VALUE]` (how the host answers that Request event from now
//   on), `dialog color|font|file|menu ok|cancel [VALUE]` (the next answer of that dialog),
//   `dialogs LIST` (the dialogs opened since the last look, `kind:start`, menus with their
//   entries, a * marking the checked one), `place X Y` (the picker's top left on the screen).
// Setup besides editscript.h: `size W H` (client pixels), `rows N` (the client N lines high),
// `nowindow`, `defaultfont` (the control's own edit face instead of a fixed-pitch one),
// `swapbuttons`, `takedrops` (the host deals with every drop itself),
// `pickerevents` (`events` also lists the picker's: Request... and SyntaxObjectChanged),
// `desktop L T R B` (the screen's rectangle), and the document's own syntax items and
// descriptions over spans (`item`, `doc`: scriptedhints.h).
// Tips and cursors: `hover POINT` (the mouse comes to POINT as the toolkit moves it: the cursor
//   is asked for, then the move), `hold Ctrl|Shift|Ctrl+Shift|none` (keys that stay down),
//   `leave` (the mouse leaves the window); checks `tip "TEXT"|none` (the tip on screen) and
//   `cursor NAME` (arrow, ibeam, gutter, hint, doc, expand, collapse).
// Formats and paint: setup `class FROM COUNT K` and `tagname POS NAME` (the document's syntax
//   classes and tag items, all else class 0: scriptedsyntax.h) or `nosyntax` (a document without
//   the syntax interfaces); `format POS ...` (a byte's colours and font); `repaint` (everything
//   painted again), after which `runs`, `run N ...`, `numbers LIST` (the gutter's texts),
//   `fill RECT COLOUR`, `pixel X Y COLOUR` and `picture ID X Y [WIDTH]` look at that paint;
//   `update` paints what is invalid, and `fresh RECT` checks that it left what a full repaint
//   gives.
// Scrolling: setup `repeat N TEXT` (TEXT N times behind the text); `hscroll CODE [POS]` (the
//   codes of vscroll), `scrollto LINE PIXEL`, `scrollrange FROM TO` (FROM is the end to show),
//   `clamp` (the top line clamped as a reformat does); checks `scrolls`, `bar`, `scale N`,
//   `caret`, `caretmoves N`, `painted`, `wrapwidth N` (see the verbs below).
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <sstream>

#include "platform/codepage/unicode.h"
#include "platform/com/textdataobject.h"
#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"
#include "platform/window/clipboard.h"
#include "platform/window/controls.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "tests/codepagescope.h"
#include "tests/edit/editscript.h"
#include "src/picker/pickerwindow.h"
#include "tests/edit/scriptedhints.h"
#include "platform/window/cursor.h"
#include "src/resources/cursors.h"
#include "src/resources/gutterpictures.h"
#include "tests/view/scriptedsyntax.h"
#include "tests/view/viewtest.h"

namespace {

const std::map<std::string, int>& KeyNames() {
    static const std::map<std::string, int> names = {
        {"Left", VK_LEFT},       {"Right", VK_RIGHT},       {"Up", VK_UP},          {"Down", VK_DOWN},
        {"Home", VK_HOME},       {"End", VK_END},           {"PageUp", VK_PRIOR},   {"PageDown", VK_NEXT},
        {"Back", VK_BACK},       {"Delete", VK_DELETE},     {"Insert", VK_INSERT},  {"Tab", VK_TAB},
        {"Enter", VK_RETURN},    {"Escape", VK_ESCAPE},     {"Space", VK_SPACE},    {"Pause", VK_PAUSE},
        {"Plus", VK_OEM_PLUS},   {"Minus", VK_OEM_MINUS},   {"Comma", VK_OEM_COMMA}, {"Period", VK_OEM_PERIOD},
        {"RBracket", VK_OEM_6},
    };
    return names;
}

const std::map<DISPID, std::string>& EventNames() {
    static const std::map<DISPID, std::string> names = {
        {EVENT_SELECTIONCHANGED, "SelectionChanged"}, {EVENT_EDITMODETOGGLED, "EditModeToggled"},
        {EVENT_DOCUMENTCHANGED, "DocumentChanged"},   {EVENT_AUTOCONVERTTOGGLED, "AutoConvertToggled"},
        {DISPID_KEYDOWN, "KeyDown"},                  {EVENT_BOOKMARKCHANGED, "BookmarkChanged"},
        {EVENT_ONOLEDROP, "OleDrop"},                 {EVENT_ONOLEDRAGOVER, "OleDragOver"},
    };
    return names;
}

const std::map<DISPID, std::string>& PickerEventNames() {
    static const std::map<DISPID, std::string> names = {
        {EVENT_REQUESTCOLOR, "RequestColor"},      {EVENT_REQUESTCOLOR + 1, "RequestFont"},
        {EVENT_REQUESTCOLOR + 2, "RequestURL"},    {EVENT_REQUESTCOLOR + 3, "RequestHTML"},
        {EVENT_REQUESTCOLOR + 4, "RequestPicture"}, {EVENT_REQUESTCOLOR + 5, "RequestSound"},
        {EVENT_REQUESTCOLOR + 6, "RequestDirectory"}, {EVENT_REQUESTCOLOR + 7, "RequestAnim"},
        {EVENT_REQUESTCOLOR + 8, "RequestJava"},   {EVENT_SYNTAXOBJECTCHANGED, "SyntaxObjectChanged"},
    };
    return names;
}

std::vector<std::string> Words(const std::string& s) {
    std::istringstream in(s);
    std::vector<std::string> words;
    for (std::string w; in >> w;) words.push_back(w);
    return words;
}

// The arguments of an automation call: numbers, and "strings" that may hold spaces.
std::vector<Variant> CallArgs(const std::string& s) {
    std::vector<Variant> args;
    for (size_t i = 0; i < s.size();) {
        if (std::isspace(static_cast<unsigned char>(s[i]))) {
            ++i;
        } else if (s[i] == '"') {
            const size_t close = s.find('"', i + 1);
            args.push_back(Variant::Str(s.substr(i + 1, close - i - 1)));
            i = close == std::string::npos ? s.size() : close + 1;
        } else {
            const size_t end = std::min(s.find(' ', i), s.size());
            args.push_back(Variant::Long(static_cast<int32_t>(std::stol(s.substr(i, end - i), nullptr, 0))));
            i = end;
        }
    }
    return args;
}

long Number(const std::string& s) { return std::stol(s, nullptr, 0); }

class CEditPlayer {
public:
    explicit CEditPlayer(const EditCase& c) : m_case(c) {}
    ~CEditPlayer() {
        if (m_ctrl) {
            m_ctrl->UnadviseEvents(m_cookie);
            m_ctrl->DestroyControlWindow();
        }
        m_control = nullptr;
        if (m_codePage) {
            m_codePage.reset();
            ZentrelApp().InitInstance();
        }
    }

    void Run() {
        Setup();
        for (const EditStep& step : m_case.steps) {
            SCOPED_TRACE(m_case.file + ":" + std::to_string(step.line) + ": " + step.verb + " " + step.rest);
            if (m_nErrorsUnchecked && step.verb != "error") ADD_FAILURE() << "an automation error nobody expected";
            Play(step);
            if (::testing::Test::HasFatalFailure()) return;
        }
        EXPECT_EQ(m_nErrorsUnchecked, 0) << "an automation error nobody expected";
    }

private:
    const std::string* SetupValue(const char* verb) const {
        for (const EditStep& s : m_case.setup)
            if (s.verb == verb) return &s.rest;
        return nullptr;
    }

    void Setup() {
        if (const std::string* cp = SetupValue("codepage")) {
            m_codePage.emplace(static_cast<UINT>(Number(*cp)));
            ZentrelApp().InitInstance();
        }
        m_control = MakeControlThroughFactory();
        m_ctrl = AsControl(m_control.Get());
        m_cookie = m_ctrl->AdviseEvents(&m_log);
        // A fixed-pitch face, so that columns are the same on every row, unless the case measures
        // in the default face's widths (plain 9 pixels a byte, bold 10, lines 19 high).
        if (!SetupValue("defaultfont")) m_ctrl->SetEditFont({"Courier New", 100000, 400, 1});
        if (const std::string* options = SetupValue("options")) SetProperties(*options);
        LONG cx = 400, cy = 300;
        if (const std::string* size = SetupValue("size")) {
            const auto wh = Words(*size);
            cx = Number(wh.at(0));
            cy = Number(wh.at(1));
        }
        if (!SetupValue("nowindow")) m_ctrl->CreateControlWindow(nullptr, {100, 50, 100 + cx, 50 + cy});
        if (const std::string* columns = SetupValue("wrapcolumns")) {
            m_ctrl->SetOption(OPT_WORDWRAP, TRUE);
            Window().SetClientSize(m_ctrl->GetIndentSize() + Number(*columns) * m_ctrl->m_nCharWidth + 1, cy);
        }
        if (const std::string* rows = SetupValue("rows")) Window().SetClientSize(cx, Number(*rows) * m_ctrl->m_nLineHeight);
        m_platform->SetButtonsSwapped(SetupValue("swapbuttons") != nullptr);
        if (const std::string* desk = SetupValue("desktop")) {
            const auto d = Words(*desk);
            m_platform->SetDesktopRect({static_cast<LONG>(Number(d.at(0))), static_cast<LONG>(Number(d.at(1))),
                                        static_cast<LONG>(Number(d.at(2))), static_cast<LONG>(Number(d.at(3)))});
        }
        const std::string* text = SetupValue("text");
        MarkedText start = ParseMarkedText(text ? *text : "");
        for (const EditStep& s : m_case.setup) {
            if (s.verb != "repeat") continue;
            const size_t space = s.rest.find(' ');
            const std::string piece = ParseMarkedText(s.rest.substr(space + 1)).text;
            for (long n = Number(s.rest.substr(0, space)); n > 0; --n) start.text += piece;
        }
        if (!SetupValue("nodoc")) {
            m_doc = CreateHtmlDocument();
            m_doc->SetText(start.text);
            m_ctrl->SetDocument(ScriptedDocument());
            m_ctrl->SetSelection(start.active, start.anchor);
        }
        if (!SetupValue("nofocus") && m_ctrl->HasWindow()) m_platform->MoveFocus(m_ctrl->GetSafeHwnd());
        m_log.takeDrops = SetupValue("takedrops") != nullptr;
        m_log.events.clear();
        m_nEventsSeen = 0;
        m_platform->ResetBeeps();
    }

    // The document itself, or the wrapper that answers the case's own items and descriptions, or
    // the one that answers the case's own syntax classes and tag names.
    IDispatch* ScriptedDocument() {
        if (SetupValue("class") || SetupValue("tagname") || SetupValue("nosyntax")) return ScriptedSyntax();
        m_hints = std::make_unique<CScriptedHints>(m_doc.Get());
        bool scripted = false;
        for (const EditStep& s : m_case.setup) {
            if (s.verb != "item" && s.verb != "doc") continue;
            scripted = true;
            const std::vector<Variant> args = CallArgs(s.rest);
            EXPECT_TRUE(s.verb == "item" ? m_hints->AddItem(args) : m_hints->AddDoc(args)) << "line " << s.line;
        }
        return scripted ? static_cast<IDispatch*>(m_hints.get()) : static_cast<IDispatch*>(m_doc.Get());
    }

    IDispatch* ScriptedSyntax() {
        m_syntax = std::make_unique<CScriptedSyntax>(m_doc.Get(), !SetupValue("nosyntax"));
        for (const EditStep& s : m_case.setup) {
            const auto words = Words(s.rest);
            if (s.verb == "class") m_syntax->SetClass(Number(words.at(0)), Number(words.at(1)), Number(words.at(2)));
            if (s.verb == "tagname") m_syntax->SetTagName(Number(words.at(0)), words.at(1));
        }
        return m_syntax.get();
    }

    void SetProperties(const std::string& assignments) {
        for (const std::string& a : Words(assignments)) {
            const size_t eq = a.find('=');
            ASSERT_NE(eq, std::string::npos) << a;
            ExcepInfo ex;
            const HRESULT hr = PutProperty(m_control.Get(), a.substr(0, eq).c_str(),
                                           Variant::Long(static_cast<int32_t>(Number(a.substr(eq + 1)))), &ex);
            ASSERT_TRUE(SUCCEEDED(hr)) << a;
        }
    }

    CTestWindowBackend& Window() { return *TestWindow(m_ctrl->GetSafeHwnd()); }
    HWND Hwnd() { return m_ctrl->GetSafeHwnd(); }

    void Play(const EditStep& step) {
        using Handler = void (CEditPlayer::*)(const std::string&);
        static const std::map<std::string, Handler> handlers = {
            {"key", &CEditPlayer::Key},          {"keydown", &CEditPlayer::KeyDown},
            {"type", &CEditPlayer::Type},
            {"char", &CEditPlayer::Char},        {"ime", &CEditPlayer::Ime},
            {"click", &CEditPlayer::Click},      {"shiftclick", &CEditPlayer::ShiftClick},
            {"dblclick", &CEditPlayer::DblClick}, {"ctrldblclick", &CEditPlayer::CtrlDblClick},
            {"press", &CEditPlayer::Press},      {"moveto", &CEditPlayer::MoveTo},
            {"release", &CEditPlayer::Release},  {"mbutton", &CEditPlayer::MButton},
            {"rbutton", &CEditPlayer::RButton},  {"wait", &CEditPlayer::Wait},
            {"call", &CEditPlayer::Call},        {"set", &CEditPlayer::Set},
            {"focus", &CEditPlayer::Focus},      {"blur", &CEditPlayer::Blur},
            {"lock", &CEditPlayer::Lock},
            {"expect", &CEditPlayer::Expect},    {"events", &CEditPlayer::Events},
            {"beeps", &CEditPlayer::Beeps},      {"result", &CEditPlayer::Result},
            {"error", &CEditPlayer::Error},      {"prop", &CEditPlayer::Prop},
            {"undotitle", &CEditPlayer::UndoTitle}, {"caretwidth", &CEditPlayer::CaretWidth},
            {"goalx", &CEditPlayer::GoalX},      {"mousedown", &CEditPlayer::MouseDown},
            {"toprow", &CEditPlayer::TopRow},    {"clipboard", &CEditPlayer::Clipboard},
            {"leftpixel", &CEditPlayer::LeftPixel}, {"posat", &CEditPlayer::PosAt},
            {"pointof", &CEditPlayer::PointOfPos}, {"vscroll", &CEditPlayer::VScroll},
            {"putclipboard", &CEditPlayer::PutClipboard}, {"resulttext", &CEditPlayer::ResultText},
            {"table", &CEditPlayer::Table},        {"blocks", &CEditPlayer::Blocks},
            {"bookmarks", &CEditPlayer::BookmarkList}, {"flag", &CEditPlayer::Flag},
            {"dragover", &CEditPlayer::DragOver}, {"dragtick", &CEditPlayer::DragTick},
            {"dragdrop", &CEditPlayer::DragDrop}, {"dragcancel", &CEditPlayer::DragCancel},
            {"dragin", &CEditPlayer::DragIn},     {"dragresult", &CEditPlayer::DragResult},
            {"answers", &CEditPlayer::Answers},
            {"picker", &CEditPlayer::PickerState}, {"status", &CEditPlayer::PickerStatus},
            {"pickrows", &CEditPlayer::PickerRows}, {"pickclick", &CEditPlayer::PickClick},
            {"pickdblclick", &CEditPlayer::PickDblClick}, {"pickrclick", &CEditPlayer::PickRClick},
            {"host", &CEditPlayer::HostAnswer},    {"dialog", &CEditPlayer::DialogAnswer},
            {"dialogs", &CEditPlayer::DialogCalls}, {"place", &CEditPlayer::PickerPlace},
            {"hover", &CEditPlayer::Hover},       {"hold", &CEditPlayer::Hold},
            {"leave", &CEditPlayer::Leave},       {"tip", &CEditPlayer::Tip},
            {"cursor", &CEditPlayer::Cursor},
            {"format", &CEditPlayer::Format},     {"repaint", &CEditPlayer::Repaint},
            {"runs", &CEditPlayer::Runs},         {"run", &CEditPlayer::TextRun},
            {"numbers", &CEditPlayer::Numbers},   {"fill", &CEditPlayer::Fill},
            {"pixel", &CEditPlayer::Pixel},
            {"hscroll", &CEditPlayer::HScroll},   {"scrollto", &CEditPlayer::ScrollTo},
            {"scrollrange", &CEditPlayer::ScrollRange}, {"clamp", &CEditPlayer::Clamp},
            {"scrolls", &CEditPlayer::Scrolls},   {"bar", &CEditPlayer::Bar},
            {"scale", &CEditPlayer::Scale},       {"caret", &CEditPlayer::Caret},
            {"caretmoves", &CEditPlayer::CaretMoves}, {"painted", &CEditPlayer::Painted},
            {"wrapwidth", &CEditPlayer::WrapWidth}, {"picture", &CEditPlayer::Picture},
            {"update", &CEditPlayer::Update},     {"fresh", &CEditPlayer::Fresh},
        };
        auto it = handlers.find(step.verb);
        ASSERT_NE(it, handlers.end()) << "unknown verb " << step.verb;
        (this->*(it->second))(step.rest);
    }

    // --- Keys and characters ---

    // A key as the Qt backend delivers it: offered first, then WM_KEYDOWN and the character.
    void Key(const std::string& what) {
        int mods = 0;
        const int vk = ParseKey(what, &mods);
        if (!vk) return;
        PressModifiers(mods);
        const LPARAM lp = 1;
        if (SendMessage(Hwnd(), WM_PRETRANSLATEKEY, vk, lp) == 0) {
            SendMessage(Hwnd(), WM_KEYDOWN, vk, lp);
            if (const int c = KeyChar(vk, mods)) SendMessage(Hwnd(), WM_CHAR, c, lp);
        }
        PressModifiers(0);
    }

    void KeyDown(const std::string& what) {
        int mods = 0;
        const int vk = ParseKey(what, &mods);
        if (!vk) return;
        PressModifiers(mods);
        SendMessage(Hwnd(), WM_KEYDOWN, vk, 1);
        PressModifiers(0);
    }

    void PressModifiers(int mods) {
        m_platform->SetKeyDown(VK_SHIFT, mods & 1);
        m_platform->SetKeyDown(VK_CONTROL, mods & 2);
    }

    // [Shift+][Ctrl+]Name: the virtual key, 0 (and a failure) for an unknown one.
    static int ParseKey(const std::string& what, int* mods) {
        std::string name = what;
        *mods = 0;
        for (;;) {
            if (name.rfind("Shift+", 0) == 0) {
                *mods |= 1;
                name = name.substr(6);
            } else if (name.rfind("Ctrl+", 0) == 0) {
                *mods |= 2;
                name = name.substr(5);
            } else {
                break;
            }
        }
        int vk = 0;
        if (auto it = KeyNames().find(name); it != KeyNames().end())
            vk = it->second;
        else if (name.size() == 1 && std::isalnum(static_cast<unsigned char>(name[0])))
            vk = std::toupper(static_cast<unsigned char>(name[0]));
        EXPECT_NE(vk, 0) << "unknown key " << what;
        return vk;
    }

    // The character a key types, as the toolkit gives it; 0 for none.
    static int KeyChar(int vk, int mods) {
        if (mods & 2) return vk >= 'A' && vk <= 'Z' ? vk - 'A' + 1 : 0;
        if (vk == VK_RETURN) return '\r';
        if (vk == VK_TAB) return '\t';
        if (vk == VK_SPACE) return ' ';
        if (vk >= 'A' && vk <= 'Z') return (mods & 1) ? vk : vk - 'A' + 'a';
        if (vk >= '0' && vk <= '9') return vk;
        return 0;
    }

    void Type(const std::string& text) {
        for (char c : ParseMarkedText(text).text) SendMessage(Hwnd(), WM_CHAR, static_cast<unsigned char>(c), 1);
    }
    void Char(const std::string& code) { SendMessage(Hwnd(), WM_CHAR, static_cast<WPARAM>(Number(code)), 1); }
    void Ime(const std::string& code) { SendMessage(Hwnd(), WM_IME_CHAR, static_cast<WPARAM>(Number(code)), 1); }

    // --- The mouse ---

    POINT PointOf(const std::string& what) {
        const LONG w = m_ctrl->m_rcClient.Width(), h = m_ctrl->m_rcClient.Height();
        if (what == "below") return {100, h + 10};
        if (what == "top") return {w / 2, 0};
        if (what == "bottom") return {w / 2, h - 1};
        if (what == "left") return {0, h / 2};
        if (what == "right") return {w - 1, h / 2};
        const size_t at = what.find('@');
        if (at == std::string::npos) {
            const size_t comma = what.find(',');
            return {static_cast<LONG>(Number(what.substr(0, comma))), static_cast<LONG>(Number(what.substr(comma + 1)))};
        }
        POINT pt;
        m_ctrl->ClientPointFromPosition(Number(what.substr(at + 1)), &pt);
        pt.y += 1;
        const std::string where = what.substr(0, at);
        const long gutterEdge = m_ctrl->GetIndentSize() - m_ctrl->m_nCharWidth;
        if (where == "gutter") {
            pt.x = 2;
        } else if (where == "box") {
            pt.x = 18;
            pt.y += m_ctrl->m_nLineHeight / 2 - 1;
        }
        else if (where == "strip")
            pt.x = gutterEdge - 1;
        else
            pt.x += 1;
        return pt;
    }

    // The physical button behind the left (primary) one.
    int PrimaryButton() const { return SetupValue("swapbuttons") ? VK_RBUTTON : VK_LBUTTON; }

    void Button(UINT message, const std::string& what, int mods, bool held) {
        const POINT pt = PointOf(what);
        POINT screen = pt;
        ClientToScreen(Hwnd(), &screen);
        m_platform->SetCursorPos(screen);
        PressModifiers(mods);
        if (held) m_platform->SetKeyDown(PrimaryButton(), true);
        WPARAM keys = (mods & 1 ? MK_SHIFT : 0) | (mods & 2 ? MK_CONTROL : 0) | (held ? MK_LBUTTON : 0);
        SendMessage(Hwnd(), message, keys, MAKELPARAM(pt.x, pt.y));
        PressModifiers(0);
    }

    // A click: down and up at one point, with time for the next click to count as a double one.
    void ClickWith(const std::string& what, int mods) {
        Button(WM_LBUTTONDOWN, what, mods, true);
        m_platform->SetKeyDown(PrimaryButton(), false);
        Button(WM_LBUTTONUP, what, mods, false);
        m_platform->AdvanceClock(10);
    }
    void Click(const std::string& what) { ClickWith(what, 0); }
    void ShiftClick(const std::string& what) { ClickWith(what, 1); }
    void DblClickWith(const std::string& what, int mods) {
        Button(WM_LBUTTONDBLCLK, what, mods, true);
        m_platform->SetKeyDown(PrimaryButton(), false);
        Button(WM_LBUTTONUP, what, mods, false);
        m_platform->AdvanceClock(10);
    }
    void DblClick(const std::string& what) { DblClickWith(what, 0); }
    void CtrlDblClick(const std::string& what) { DblClickWith(what, 2); }
    void Press(const std::string& what) { Button(WM_LBUTTONDOWN, what, 0, true); }
    void MoveTo(const std::string& what) { Button(WM_MOUSEMOVE, what, 0, m_platform->KeyState(PrimaryButton()) < 0); }
    void Release(const std::string&) {
        m_platform->SetKeyDown(PrimaryButton(), false);
        POINT pt{};
        GetCursorPos(&pt);
        ScreenToClient(Hwnd(), &pt);
        SendMessage(Hwnd(), WM_LBUTTONUP, 0, MAKELPARAM(pt.x, pt.y));
    }
    void MButton(const std::string& what) { Button(WM_MBUTTONDOWN, what, 0, false); }
    void RButton(const std::string& what) { Button(WM_RBUTTONDOWN, what, 0, false); }
    // `vscroll CODE [POS]`: the vertical bar's request, CODE as in SB_PAGEDOWN without SB_.
    static int ScrollCode(const std::string& name) {
        static const std::map<std::string, int> codes = {
            {"LINEUP", SB_LINEUP}, {"LINEDOWN", SB_LINEDOWN}, {"PAGEUP", SB_PAGEUP}, {"PAGEDOWN", SB_PAGEDOWN},
            {"THUMBPOSITION", SB_THUMBPOSITION}, {"THUMBTRACK", SB_THUMBTRACK}, {"TOP", SB_TOP}, {"BOTTOM", SB_BOTTOM}};
        EXPECT_TRUE(codes.count(name)) << "unknown scroll code " << name;
        return codes.count(name) ? codes.at(name) : SB_ENDSCROLL;
    }
    void VScroll(const std::string& rest) {
        const auto w = Words(rest);
        m_ctrl->OnVScroll(ScrollCode(w.at(0)), w.size() > 1 ? Number(w[1]) : 0);
    }
    void HScroll(const std::string& rest) {
        const auto w = Words(rest);
        m_ctrl->OnHScroll(ScrollCode(w.at(0)), w.size() > 1 ? Number(w[1]) : 0);
    }
    void ScrollTo(const std::string& rest) {
        const auto w = Words(rest);
        m_ctrl->ScrollTo(Number(w.at(0)), Number(w.at(1)));
    }
    void ScrollRange(const std::string& rest) {
        const auto w = Words(rest);
        m_ctrl->ScrollRangeIntoView(Number(w.at(0)), Number(w.at(1)));
    }
    void Clamp(const std::string&) { m_ctrl->ClampScrollPosition(); }
    void Wait(const std::string& ms) { m_platform->AdvanceClock(static_cast<DWORD>(Number(ms))); }
    void Focus(const std::string&) { m_platform->MoveFocus(Hwnd()); }
    void Lock(const std::string&) { m_doc->SetLocked(true); }
    void Blur(const std::string&) { m_platform->MoveFocus(nullptr); }

    // --- Tips and cursors ---

    void Hover(const std::string& what) {
        const POINT pt = PointOf(what);
        POINT screen = pt;
        ClientToScreen(Hwnd(), &screen);
        m_platform->SetCursorPos(screen);
        SendMessage(Hwnd(), WM_SETCURSOR, reinterpret_cast<WPARAM>(Hwnd()), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        SendMessage(Hwnd(), WM_MOUSEMOVE, 0, MAKELPARAM(pt.x, pt.y));
    }
    void Hold(const std::string& keys) {
        m_platform->SetKeyDown(VK_SHIFT, keys.find("Shift") != std::string::npos);
        m_platform->SetKeyDown(VK_CONTROL, keys.find("Ctrl") != std::string::npos);
    }
    void Leave(const std::string&) { SendMessage(Hwnd(), WM_MOUSELEAVE, 0, 0); }
    // What the tip's window shows, which must be what the tip says it shows.
    void Tip(const std::string& expected) {
        const HWND tip = m_ctrl->ToolTip().GetSafeHwnd();
        ASSERT_TRUE(tip) << "no tip window";
        const CTestWindowBackend& window = *TestWindow(tip);
        EXPECT_EQ(window.Shown(), m_ctrl->ToolTip().IsShowing());
        EXPECT_EQ(m_ctrl->m_bTipShown, window.Shown() ? TRUE : FALSE);
        const std::string text = expected == "none" ? "none" : ParseMarkedText(expected.substr(1, expected.size() - 2)).text;
        EXPECT_EQ(window.Shown() ? window.Text() : "none", text);
    }
    void Cursor(const std::string& name) {
        static const std::map<std::string, UINT> ids = {
            {"arrow", IDC_ARROW},         {"ibeam", IDC_IBEAM},        {"gutter", IDC_GUTTER_ARROW},
            {"hint", IDC_HINT_ARROW},     {"doc", IDC_DOC_ARROW},      {"expand", IDC_GUTTER_EXPAND},
            {"collapse", IDC_GUTTER_COLLAPSE}};
        ASSERT_TRUE(ids.count(name)) << "unknown cursor " << name;
        EXPECT_EQ(m_platform->CurrentCursor(), ids.at(name));
    }

    // --- Drags ---

    CTestDragDrop& Drags() { return m_platform.DragDrop(); }
    static DWORD DragKeys(const std::vector<std::string>& words, size_t from) {
        DWORD keys = 0;
        for (size_t i = from; i < words.size(); ++i) keys |= words[i] == "Ctrl" ? MK_CONTROL : words[i] == "Shift" ? MK_SHIFT : 0;
        return keys;
    }
    void DragOver(const std::string& rest) {
        const auto words = Words(rest);
        Drags().AddStep({CTestDragDrop::Step::Over, Hwnd(), PointOf(words.at(0)), DragKeys(words, 1)});
    }
    void DragTick(const std::string& rest) { Drags().AddStep({CTestDragDrop::Step::Tick, nullptr, {}, DragKeys(Words(rest), 0)}); }
    void DragDrop(const std::string&) { Drags().AddStep({CTestDragDrop::Step::Drop}); }
    void DragCancel(const std::string&) { Drags().AddStep({CTestDragDrop::Step::Cancel}); }
    // Data from another program: `text TEXT` and `file PATH`, either or both.
    void DragIn(const std::string& rest) {
        ComPtr<CDataObject> data(new CDataObject);
        const auto words = Words(rest);
        for (size_t i = 0; i + 1 < words.size(); i += 2) {
            const std::string value = ParseMarkedText(words[i + 1]).text;
            if (words[i] == "text") data->SetText(value);
            else data->SetData(RegisterClipboardFormat("FileName"), value + '\0');
        }
        m_lastDragEffect = Drags().Play(data.Get(), DROPEFFECT_COPY | DROPEFFECT_MOVE | DROPEFFECT_LINK);
    }
    static std::string EffectName(DROPEFFECT effect) {
        static const std::map<DROPEFFECT, std::string> names = {
            {DROPEFFECT_NONE, "none"}, {DROPEFFECT_COPY, "copy"}, {DROPEFFECT_MOVE, "move"}, {DROPEFFECT_LINK, "link"}};
        auto it = names.find(effect & ~DROPEFFECT_SCROLL);
        const std::string name = it == names.end() ? std::to_string(effect) : it->second;
        return effect & DROPEFFECT_SCROLL ? name + "+scroll" : name;
    }
    void DragResult(const std::string& expected) { EXPECT_EQ(EffectName(m_lastDragEffect), expected); }
    void Answers(const std::string& expected) {
        std::string actual;
        for (DROPEFFECT e : Drags().Answers()) actual += (actual.empty() ? "" : " ") + EffectName(e);
        EXPECT_EQ(actual, expected);
    }

    // --- Automation ---

    void Invoke(const std::string& name, WORD flags, std::vector<Variant> args) {
        DISPID id;
        ASSERT_EQ(m_control->GetIDsOfNames(name, &id), S_OK) << name;
        m_excep = ExcepInfo();
        m_result = Variant();
        m_hr = m_control->Invoke(id, flags, args, &m_result, &m_excep);
        if (m_hr == DISP_E_EXCEPTION) m_nErrorsUnchecked = 1;
    }
    void Call(const std::string& rest) {
        const auto words = Words(rest);
        m_outs.clear();
        std::vector<Variant> args;
        const std::string argText = rest.substr(std::min(rest.size(), words.at(0).size()));
        if (argText.find('"') != std::string::npos) {
            args = CallArgs(argText);
        } else {
            for (size_t i = 1; i < words.size(); ++i) {
                if (words[i].rfind("out", 0) == 0) {
                    m_outs.push_back(std::make_unique<int32_t>(static_cast<int32_t>(words[i].size() > 4 ? Number(words[i].substr(4)) : 0)));
                    args.push_back(Variant::RefLong(m_outs.back().get()));
                } else {
                    args.push_back(Variant::Long(static_cast<int32_t>(Number(words[i]))));
                }
            }
        }
        Invoke(words.at(0), DISPATCH_METHOD, args);
    }
    void Set(const std::string& rest) {
        const auto words = Words(rest);
        Invoke(words.at(0), DISPATCH_PROPERTYPUT, CallArgs(rest.substr(words.at(0).size())));
    }

    // --- Checks ---

    void Expect(const std::string& marked) {
        ASSERT_TRUE(m_doc) << "no document";
        const std::string actual =
            FormatMarkedText(m_doc->GetText(), m_ctrl->GetSelectionStart(), m_ctrl->GetSelectionEnd());
        const MarkedText want = ParseMarkedText(marked);
        EXPECT_EQ(actual, FormatMarkedText(want.text, want.active, want.anchor));
    }
    void Events(const std::string& list) {
        std::string actual;
        for (size_t i = m_nEventsSeen; i < m_log.events.size(); ++i) {
            const auto& e = m_log.events[i];
            auto name = EventNames().find(e.id);
            if (name == EventNames().end() && SetupValue("pickerevents")) name = PickerEventNames().find(e.id);
            if (name == EventNames().end() || name == PickerEventNames().end()) continue;
            if (!actual.empty()) actual += ' ';
            actual += name->second + "(";
            for (size_t a = 0; a < e.args.size(); ++a) {
                auto text = e.texts.find(a);
                actual += (a ? "," : "") + (text != e.texts.end() ? '"' + text->second + '"' : std::to_string(e.args[a]));
            }
            actual += ")";
        }
        m_nEventsSeen = m_log.events.size();
        EXPECT_EQ(actual, list == "none" ? "" : list);
    }
    void Beeps(const std::string& n) { EXPECT_EQ(m_platform->BeepCount(), Number(n)); }
    // `result R` for a method's value; its out arguments follow: `result R OUT1 OUT2`, or
    // `result - OUT1 OUT2` for a method without a value.
    void Result(const std::string& expected) {
        EXPECT_EQ(m_hr, S_OK) << m_excep.description;
        const auto words = Words(expected);
        ASSERT_EQ(words.size(), m_outs.size() + 1);
        if (words[0] != "-") {
            int32_t value = 0;
            EXPECT_TRUE(m_result.ToLong(&value));
            EXPECT_EQ(value, Number(words[0]));
        }
        for (size_t i = 0; i < m_outs.size(); ++i) EXPECT_EQ(*m_outs[i], Number(words[i + 1])) << "out " << i;
    }
    // `error CODE`, `error "TEXT"` or `error CODE "TEXT"`; "" is an error without a text.
    void Error(const std::string& expected) {
        EXPECT_EQ(m_hr, DISP_E_EXCEPTION);
        m_nErrorsUnchecked = 0;
        const size_t quote = expected.find('"');
        const std::string code = expected.substr(0, quote);
        if (!Words(code).empty()) {
            EXPECT_EQ(static_cast<uint32_t>(m_excep.scode), static_cast<uint32_t>(0x800A0000 | Number(code)));
        }
        if (quote != std::string::npos) {
            const size_t close = expected.rfind('"');
            EXPECT_EQ(m_excep.description, expected.substr(quote + 1, close - quote - 1));
        }
    }
    void Prop(const std::string& rest) {
        const auto words = Words(rest);
        int32_t value = 0;
        GetProperty(m_control.Get(), words.at(0).c_str()).ToLong(&value);
        EXPECT_EQ(value, Number(words.at(1))) << words[0];
    }
    void UndoTitle(const std::string& title) { EXPECT_EQ(m_doc->UndoTitle(), ParseMarkedText(title).text); }
    void CaretWidth(const std::string& n) {
        EXPECT_EQ(Window().CaretRect().Width(), n == "char" ? m_ctrl->m_nCharWidth : Number(n));
    }
    void GoalX(const std::string& n) { EXPECT_EQ(m_ctrl->m_nGoalX, Number(n)); }
    void MouseDown(const std::string& n) { EXPECT_EQ(m_ctrl->m_bMouseDown, Number(n)); }
    void TopRow(const std::string& n) { EXPECT_EQ(m_ctrl->GetTopLine(), Number(n)); }
    void LeftPixel(const std::string& n) { EXPECT_EQ(m_ctrl->m_nLeftPixel, Number(n)); }
    // Points of the document are in pixels from the text's left edge and the first row's top,
    // whatever the gutter and the scroll position.
    void PosAt(const std::string& rest) {
        const auto w = Words(rest);
        EXPECT_EQ(m_ctrl->FindPositionFromCoordinate(Number(w.at(0)), Number(w.at(1))), Number(w.at(2)));
    }
    void PointOfPos(const std::string& rest) {
        const auto w = Words(rest);
        POINT pt{-1, -1};
        m_ctrl->DocPointFromPosition(Number(w.at(0)), &pt);
        EXPECT_EQ(std::to_string(pt.x) + " " + std::to_string(pt.y), w.at(1) + " " + w.at(2));
    }
    void Clipboard(const std::string& expected) {
        const ClipboardFormats held = m_platform.Clipboard().Read();
        if (expected == "none") {
            EXPECT_TRUE(held.empty());
            return;
        }
        std::string text;
        ASSERT_TRUE(GetClipboardData(CF_TEXT, &text)) << "no CF_TEXT on the clipboard";
        ASSERT_FALSE(text.empty());
        EXPECT_EQ(text.back(), '\0') << "CF_TEXT without its NUL";
        text.pop_back();
        EXPECT_EQ(FormatMarkedText(text, 0, 0), FormatMarkedText(ParseMarkedText(expected).text, 0, 0));
    }
    void PutClipboard(const std::string& rest) {
        const size_t space = rest.find(' ');
        const std::string kind = rest.substr(0, space);
        const std::string text = space == std::string::npos ? "" : ParseMarkedText(rest.substr(space + 1)).text;
        ClipboardFormats formats;
        if (kind == "text") {
            formats.emplace_back(CF_TEXT, text + '\0');
        } else if (kind == "unicode") {
            std::u16string units;
            for (const CodePointAt& cp : DecodeUtf8(text)) AppendUtf16(units, cp.ch);
            units.push_back(0);
            formats.emplace_back(CF_UNICODETEXT, std::string(reinterpret_cast<const char*>(units.data()), units.size() * 2));
        } else {
            ASSERT_EQ(kind, "none");
        }
        m_platform.Clipboard().Write(formats);
    }
    void ResultText(const std::string& text) {
        EXPECT_EQ(m_hr, S_OK) << m_excep.description;
        std::string value;
        EXPECT_TRUE(m_result.ToStr(&value));
        EXPECT_EQ(value, ParseMarkedText(text).text);
    }
    void Table(const std::string& list) {
        const CLineIndex& lines = m_ctrl->Lines();
        std::string actual;
        for (long i = 0; i < lines.m_nCount; ++i) actual += (i ? " " : "") + std::to_string(lines.GetAt(i));
        EXPECT_EQ(actual, list);
        EXPECT_EQ(DifferenceFromWholeLayout(*m_ctrl), "");
    }
    void Blocks(const std::string& tree) {
        const std::string actual = CollapseTreeText(m_ctrl->CollapseRoot());
        EXPECT_EQ(actual.empty() ? "none" : actual, tree);
    }
    void BookmarkList(const std::string& list) {
        const CBookmarkManager& marks = m_ctrl->Bookmarks();
        std::string actual;
        for (long i = 0; i < marks.GetCount(); ++i) {
            const CBookmark& b = *marks.GetAt(i);
            actual += (i ? " | " : "") + b.GetName() + "@" + std::to_string(b.GetRange()->GetActive()) + "," +
                      std::to_string(b.GetRange()->GetAnchor());
        }
        EXPECT_EQ(actual.empty() ? "none" : actual, list);
    }
    void Flag(const std::string& rest) {
        const auto words = Words(rest);
        const CBookmark* b = m_ctrl->Bookmarks().FindAtPosition(m_ctrl->Lines().GetLineStart(Number(words.at(0))));
        EXPECT_EQ(b ? std::to_string(b->GetBitmapId()) : "none", words.at(1));
    }

    // --- What the view shows ---

    // `format POS [printed] WHAT...`: the format of the byte at POS on the screen or in a printout
    // (whose option word lacks the screen bit). WHAT: `style N` (the colours and font of that
    // style), or text=, back=, font= in hex and bytes= (the bytes the format covers).
    void Format(const std::string& rest) {
        const auto words = Words(rest);
        const long pos = Number(words.at(0));
        const bool printed = words.size() > 1 && words[1] == "printed";
        const DWORD options = m_ctrl->GetOptionsWord() & (printed ? ~OPT_SCREENMETRICS : ~0u);
        CharFormat f{};
        const int bytes = m_ctrl->GetCharFormat(static_cast<BYTE>(m_doc->GetCharAt(pos)), pos, options, &f);
        const auto field = [&](const std::string& key, const FormatStyle& from) {
            if (key == "bytes") return key + "=" + std::to_string(bytes);
            return key + "=" + Hex(key == "text" ? from.crText : key == "back" ? from.crBack : from.dwFont);
        };
        std::string expected, actual;
        for (size_t i = printed ? 2 : 1; i < words.size(); ++i) {
            if (words[i] == "style") {
                const FormatStyle& style = m_ctrl->GetFormatStyle(static_cast<int>(Number(words.at(++i))));
                for (const char* key : {"text", "back", "font"}) {
                    expected += " " + field(key, style);
                    actual += " " + field(key, f);
                }
                continue;
            }
            expected += " " + words[i];
            actual += " " + field(words[i].substr(0, words[i].find('=')), f);
        }
        EXPECT_EQ(actual, expected);
    }
    static std::string Hex(DWORD value) {
        char out[16];
        std::snprintf(out, sizeof out, "%06X", static_cast<unsigned>(value));
        return out;
    }
    static std::string Rect(const RECT& rc) {
        return std::to_string(rc.left) + "," + std::to_string(rc.top) + "," + std::to_string(rc.right) + "," + std::to_string(rc.bottom);
    }

    // Paints the whole client area again; the checks below look at what that paint did.
    void Repaint(const std::string&) {
        m_ctrl->InvalidateControl();
        Window().ClearDrawn();
        Window().Paint();
    }
    // The text runs of the last paint in the text area (`numbers`: in the gutter), in order.
    std::vector<const DrawRecord*> TextRuns(bool gutter) {
        std::vector<const DrawRecord*> runs;
        const long textLeft = m_ctrl->GetIndentSize() - m_ctrl->m_nLeftPixel;
        for (const DrawRecord& r : Window().Drawn())
            if (r.kind == DrawKind::Text && (r.origin.x < textLeft) == gutter) runs.push_back(&r);
        return runs;
    }
    // `runs TEXT@X,Y | ...`: each run's bytes, escaped, with a byte repeated more than eight times
    // written as `a*401`, and the left end of its baseline.
    void Runs(const std::string& expected) {
        std::string actual;
        for (const DrawRecord* r : TextRuns(false)) {
            const bool repeated = r->text.size() > 8 && r->text.find_first_not_of(r->text[0]) == std::string::npos;
            const std::string text = repeated ? FormatMarkedText(r->text.substr(0, 1), -1, -1) + "*" + std::to_string(r->text.size())
                                              : FormatMarkedText(r->text, -1, -1);
            actual += (actual.empty() ? "" : " | ") + text + "@" + std::to_string(r->origin.x) + "," + std::to_string(r->origin.y);
        }
        EXPECT_EQ(actual.empty() ? "none" : actual, expected);
    }
    // `run N weight=W colour=HEX face=NAME clip=L,T,R,B|none`: the look of the Nth text run.
    void TextRun(const std::string& rest) {
        const size_t space = rest.find(' ');
        const auto runs = TextRuns(false);
        const size_t n = static_cast<size_t>(Number(rest.substr(0, space)));
        ASSERT_LT(n, runs.size());
        const DrawRecord& r = *runs[n];
        EXPECT_EQ("weight=" + std::to_string(r.font.lfWeight) + " colour=" + Hex(r.color) + " face=" + r.font.lfFaceName +
                      " clip=" + (r.clipped ? Rect(r.clip) : "none"),
                  rest.substr(space + 1));
    }
    void Numbers(const std::string& expected) {
        std::string actual;
        for (const DrawRecord* r : TextRuns(true)) actual += (actual.empty() ? "" : " ") + r->text;
        EXPECT_EQ(actual.empty() ? "none" : actual, expected);
    }
    // `fill L,T,R,B COLOUR|none`: the colour of the last fill of exactly that rectangle.
    void Fill(const std::string& rest) {
        const auto words = Words(rest);
        std::string actual = "none";
        for (const DrawRecord& r : Window().Drawn())
            if (r.kind == DrawKind::Fill && Rect(r.rc) == words.at(0)) actual = Hex(r.color);
        EXPECT_EQ(actual, words.at(1));
    }
    // `pixel X[..X2] Y[..Y2] COLOUR`: every pixel of the span has the colour; the first that has
    // not is named.
    void Pixel(const std::string& rest) {
        const auto words = Words(rest);
        const auto span = [](const std::string& w) {
            const size_t dots = w.find("..");
            return std::make_pair(Number(w.substr(0, dots)), Number(dots == std::string::npos ? w : w.substr(dots + 2)));
        };
        const auto [x0, x1] = span(words.at(0));
        const auto [y0, y1] = span(words.at(1));
        for (long y = y0; y <= y1; ++y)
            for (long x = x0; x <= x1; ++x)
                ASSERT_EQ(Hex(Window().Pixel(static_cast<int>(x), static_cast<int>(y))), words.at(2)) << "at " << x << "," << y;
    }
    // `picture ID X Y [WIDTH]`: the gutter picture of that resource stands with its top left at
    // X,Y, or its first WIDTH columns do.
    void Picture(const std::string& rest) {
        const auto words = Words(rest);
        const PixelPicture* picture = FindGutterPicture(static_cast<UINT>(Number(words.at(0))));
        ASSERT_NE(picture, nullptr);
        const long left = Number(words.at(1)), top = Number(words.at(2));
        const long width = words.size() > 3 ? Number(words[3]) : picture->cx;
        for (int y = 0; y < picture->cy; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(Hex(Window().Pixel(static_cast<int>(left + x), static_cast<int>(top + y))),
                          Hex(picture->pixels[static_cast<size_t>(y * picture->cx + x)]))
                    << "at " << left + x << "," << top + y;
    }
    // Paints only what is invalid, as the window would.
    void Update(const std::string&) {
        Window().ClearDrawn();
        Window().Paint();
    }
    // `fresh L,T,R,B`: the pixels of the rectangle are those a full repaint gives.
    void Fresh(const std::string& rect) {
        int l = 0, t = 0, r = 0, b = 0;
        ASSERT_EQ(std::sscanf(rect.c_str(), "%d,%d,%d,%d", &l, &t, &r, &b), 4) << rect;
        const auto pixels = [&] {
            std::vector<COLORREF> out;
            for (int y = t; y < b; ++y)
                for (int x = l; x < r; ++x) out.push_back(Window().Pixel(x, y));
            return out;
        };
        const std::vector<COLORREF> before = pixels();
        Repaint("");
        EXPECT_EQ(before, pixels());
    }

    // --- Scrolling ---

    // `scrolls DX,DY[@SCROLLLEFT,CLIPLEFT] ...`: the window's pixels moved since the last look, or
    // none; the left edges of the scrolled rectangle and of the clip where the text moved sideways.
    void Scrolls(const std::string& expected) {
        std::string actual;
        const auto& scrolls = Window().Scrolls();
        for (size_t i = m_nScrollsSeen; i < scrolls.size(); ++i) {
            const ScrollCall& c = scrolls[i];
            actual += (actual.empty() ? "" : " ") + std::to_string(c.dx) + "," + std::to_string(c.dy);
            if (c.dx) actual += "@" + std::to_string(c.scroll.left) + "," + std::to_string(c.clip.left);
        }
        m_nScrollsSeen = scrolls.size();
        EXPECT_EQ(actual.empty() ? "none" : actual, expected);
    }
    // `bar vert|horz MAX PAGE POS shown|hidden`, a * for a field that does not matter.
    void Bar(const std::string& rest) {
        auto w = Words(rest);
        const ScrollBarState& bar = Window().Bar(w.at(0) == "vert" ? SB_VERT : SB_HORZ);
        const std::vector<std::string> actual = {w[0], std::to_string(bar.info.nMax), std::to_string(bar.info.nPage),
                                                 std::to_string(bar.info.nPos), bar.visible ? "shown" : "hidden"};
        for (size_t i = 0; i < w.size() && i < actual.size(); ++i)
            if (w[i] == "*") w[i] = actual[i];
        EXPECT_EQ(w, actual);
    }
    void Scale(const std::string& n) { EXPECT_EQ(m_ctrl->GetScrollScale(), Number(n)); }
    // `caret shown|hidden LEFT WIDTH HEIGHT`
    void Caret(const std::string& expected) {
        const auto rc = Window().CaretRect();
        EXPECT_EQ(std::string(Window().CaretShown() ? "shown " : "hidden ") + std::to_string(rc.left) + " " +
                      std::to_string(rc.Width()) + " " + std::to_string(rc.Height()),
                  expected);
    }
    // `caretmoves N|*`: the caret's changes since the last look.
    void CaretMoves(const std::string& n) {
        if (n != "*") {
            EXPECT_EQ(Window().CaretChanges() - m_nCaretChangesSeen, Number(n));
        }
        m_nCaretChangesSeen = Window().CaretChanges();
    }
    // `painted yes|no`: whether anything was drawn since the last look, and then nothing is left
    // to paint.
    void Painted(const std::string& expected) {
        EXPECT_EQ(Window().Drawn().empty() ? "no" : "yes", expected);
        EXPECT_TRUE(Window().PendingRegion().IsEmpty());
        Window().ClearDrawn();
    }
    void WrapWidth(const std::string& n) { EXPECT_EQ(m_ctrl->GetWrapWidth(), Number(n)); }

    // --- The picker ---

    const CHTMLSyntaxPicker* Picker() const { return m_ctrl->PickerIfAny(); }
    void PickerState(const std::string& rest) {
        const auto words = Words(rest);
        const CHTMLSyntaxPicker* picker = Picker();
        const bool open = m_ctrl->IsPickerVisible() && picker;
        EXPECT_EQ(open && picker->GetSafeHwnd() ? IsWindowVisible(picker->GetSafeHwnd()) != FALSE : false, open);
        const int page = open ? picker->PageIndex() : 0;
        std::string row = "-";
        if (page && picker->ActivePage() && picker->ActivePage()->GetCurSel() >= 0)
            row = picker->ActivePage()->Row(picker->ActivePage()->GetCurSel()).text;
        const size_t rowAt = rest.find(' ');
        EXPECT_EQ(std::to_string(page) + " " + row, words.at(0) + " " + (rowAt == std::string::npos ? "-" : rest.substr(rowAt + 1)));
    }
    void PickerStatus(const std::string& text) { EXPECT_EQ(Picker() ? Picker()->StatusText() : "", text == "none" ? "" : text); }
    void PickerRows(const std::string& rest) {
        const CHTMLSyntaxPickPage* page = Picker() ? Picker()->ActivePage() : nullptr;
        ASSERT_NE(page, nullptr);
        const size_t space = rest.find(' ');
        const long count = Number(rest.substr(0, space));
        std::string actual;
        for (int i = 0; i < page->GetCount() && (count == 0 || i < count); ++i) actual += (i ? " | " : "") + page->Row(i).text;
        EXPECT_EQ(actual, space == std::string::npos ? "" : rest.substr(space + 1));
    }
    void PickMouse(const std::string& row, UINT message) {
        ASSERT_NE(Picker(), nullptr);
        const POINT pt = Picker()->RowPoint(static_cast<int>(Number(row)));
        SendMessage(Picker()->GetSafeHwnd(), message, 0, MAKELPARAM(pt.x, pt.y));
    }
    void PickClick(const std::string& row) { PickMouse(row, WM_LBUTTONDOWN); }
    void PickDblClick(const std::string& row) { PickMouse(row, WM_LBUTTONDBLCLK); }
    void PickRClick(const std::string& row) { PickMouse(row, WM_RBUTTONDOWN); }
    void HostAnswer(const std::string& rest) {
        const auto words = Words(rest);
        DISPID id = 0;
        for (const auto& [dispid, name] : PickerEventNames())
            if (name == words.at(0)) id = dispid;
        ASSERT_NE(id, 0) << words.at(0);
        const std::string value = words.size() > 3 ? rest.substr(rest.find(words[3], words[0].size() + 4)) : "";
        Variant answer = id == EVENT_REQUESTCOLOR ? Variant::Color(static_cast<OLE_COLOR>(Number(value.empty() ? "0" : value)))
                                                  : Variant::Str(value);
        m_log.answers[id] = {Variant::Bool(words.at(1) == "1"), words.size() > 3 ? answer : Variant(),
                             Variant::Bool(words.at(2) == "1")};
    }
    void DialogAnswer(const std::string& rest) {
        const auto words = Words(rest);
        static const std::map<std::string, TestDialogKind> kinds = {
            {"color", TestDialogKind::Color}, {"font", TestDialogKind::Font}, {"file", TestDialogKind::File}, {"menu", TestDialogKind::Menu}};
        TestDialogAnswer a;
        a.kind = kinds.at(words.at(0));
        a.ok = words.at(1) == "ok";
        const std::string value = words.size() > 2 ? rest.substr(rest.find(words[2], words[0].size() + words[1].size() + 1)) : "";
        if (a.kind == TestDialogKind::Color && !value.empty()) a.color = static_cast<COLORREF>(Number(value));
        if (a.kind == TestDialogKind::Menu && !value.empty()) a.menuChoice = static_cast<int>(Number(value));
        a.text = value;
        m_platform.Dialogs().Queue(a);
    }
    void DialogCalls(const std::string& expected) {
        static const char* kNames[] = {"color", "font", "file", "menu"};
        std::string actual;
        const auto& calls = m_platform.Dialogs().Calls();
        for (size_t i = m_nDialogsSeen; i < calls.size(); ++i) {
            actual += (actual.empty() ? "" : " ") + std::string(kNames[static_cast<int>(calls[i].kind)]) + ":" + calls[i].start;
            for (const MenuEntry& e : calls[i].entries) actual += (e.checked ? "*" : "") + e.text + ";";
        }
        m_nDialogsSeen = calls.size();
        EXPECT_EQ(actual.empty() ? "none" : actual, expected);
    }
    void PickerPlace(const std::string& rest) {
        ASSERT_NE(Picker(), nullptr);
        POINT pt{0, 0};
        ClientToScreen(Picker()->GetSafeHwnd(), &pt);
        EXPECT_EQ(std::to_string(pt.x) + " " + std::to_string(pt.y), rest);
    }

    const EditCase& m_case;
    size_t m_nDialogsSeen = 0;
    size_t m_nScrollsSeen = 0;
    int m_nCaretChangesSeen = 0;
    std::optional<CodePageScope> m_codePage;
    CTestPlatformScope m_platform;
    ComPtr<IDispatch> m_control;
    CZentrelCtrl* m_ctrl = nullptr;
    ComPtr<CHtmlDocument> m_doc;
    std::unique_ptr<CScriptedHints> m_hints;
    std::unique_ptr<CScriptedSyntax> m_syntax;
    CEventLog m_log;
    DWORD m_cookie = 0;
    size_t m_nEventsSeen = 0;
    DROPEFFECT m_lastDragEffect = DROPEFFECT_NONE;
    HRESULT m_hr = S_OK;
    ExcepInfo m_excep;
    Variant m_result;
    int m_nErrorsUnchecked = 0;  // an error was raised and no `error` line looked at it
    std::vector<std::unique_ptr<int32_t>> m_outs;
};

std::vector<EditCase> AllCases() { return ReadEditCases(ZENTREL_SOURCE_DIR "/tests/edit/cases"); }

class EditBehaviour : public ::testing::TestWithParam<EditCase> {};

TEST_P(EditBehaviour, Plays) {
    CEditPlayer player(GetParam());
    player.Run();
}

std::string CaseName(const ::testing::TestParamInfo<EditCase>& info) {
    std::string name = info.param.file.substr(0, info.param.file.find('.')) + "_" + std::to_string(info.param.line);
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, EditBehaviour, ::testing::ValuesIn(AllCases()), CaseName);

}  // namespace
