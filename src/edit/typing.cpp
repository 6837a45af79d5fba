// Typing: characters become text through the selection range (or, for double-byte characters,
// through the document), with auto indent on Enter, the bracket pair on '<' and conversion to
// entity references. The document places the caret behind what it inserted and says so.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>

#include "src/edit/entitytable.h"
#include "src/resources/strings.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kBeep = static_cast<UINT>(-1);
constexpr BYTE kCR = '\r', kTab = '\t';
constexpr UINT kStringInsertConverted = 179;
constexpr UINT kStringReplaceConverted = 180;

}  // namespace

void CZentrelCtrl::OnChar(UINT nChar, UINT, UINT) {
    if (!m_pDoc || GetOption(OPT_READONLY)) {
        MessageBeep(kBeep);
        return;
    }
    m_nGoalX = -1;
    if (nChar < 0x100 && std::iscntrl(static_cast<int>(nChar)) && nChar != '\r' && nChar != '\t') {
        OnControlChar(nChar);
        return;
    }
    const auto ch = static_cast<BYTE>(nChar & 0xFF);
    if (nChar == '\r') {
        TypeEnter();
    } else {
        if (GetOption(OPT_OVERWRITE))
            TypeOvertype(ch);
        else
            TypeInsert(ch);
        if (m_nCompletionMode == 2 && nChar == '<') ShowPicker();
        if (m_nCompletionMode == 2 && nChar == '>') HidePicker();
    }
    if (IsPickerVisible()) ShowPicker();
}

// The Ctrl+letter commands; every other control character is ignored.
void CZentrelCtrl::OnControlChar(UINT nChar) {
    switch (nChar) {
        case 1: SelectAll(); break;
        case 3: Copy(); break;
        case 22: Paste(); break;
        case 24: Cut(); break;
        case 25: DoRedo(); break;
        case 26: DoUndo(); break;
        default: break;
    }
}

// A line break is always CR LF; with AutoIndent the tabs that open the line where the
// selection began open the new line too.
void CZentrelCtrl::TypeEnter() {
    const long selMin = std::min(m_nSelActive, m_nSelAnchor);
    m_pSelection->ReplaceText("\r\n", 2, &m_xTextSink);
    if (!GetOption(OPT_AUTOINDENT)) return;
    // Back to the CR in front of that line, or to the start of the text.
    long p = PrevCharPos(selMin);
    for (;;) {
        if (static_cast<BYTE>(m_pDoc->GetCharAt(p)) == kCR) {
            p = NextCharPos(p);
            break;
        }
        if (p == 0) break;
        const long q = PrevCharPos(p);
        if (q == p) return;
        p = q;
    }
    const long length = m_pDoc->GetLength();
    long tabs = 0;
    while (p < length && static_cast<BYTE>(m_pDoc->GetCharAt(p)) == kTab) {
        ++tabs;
        p = NextCharPos(p);
    }
    if (tabs > 0) {
        const std::string indent(static_cast<size_t>(tabs), '\t');
        m_pSelection->ReplaceText(indent.data(), tabs, &m_xTextSink);
    }
}

void CZentrelCtrl::TypeOvertype(BYTE ch) {
    const char* entity = GetOption(OPT_AUTOCONVERT) ? LookupEntity(ch) : nullptr;
    if (entity)
        m_pSelection->OvertypeText(entity, static_cast<long>(std::strlen(entity)), &m_xTextSink);
    else
        m_pSelection->OvertypeText(reinterpret_cast<const char*>(&ch), 1, &m_xTextSink);
}

void CZentrelCtrl::TypeInsert(BYTE ch) {
    const char* text = reinterpret_cast<const char*>(&ch);
    if (GetOption(OPT_AUTOCONVERT)) {
        const char* entity = LookupEntity(ch);
        if (!entity) {
            m_pSelection->ReplaceText(text, 1, &m_xTextSink);
            return;
        }
        // A converted character is one undo step, named for what it did.
        ComPtr<ISourceUndo> undo;
        if (FAILED(m_pDoc->GetUndoManager(undo.Out()))) undo = nullptr;
        const UINT title = m_nSelActive != m_nSelAnchor ? kStringReplaceConverted : kStringInsertConverted;
        if (undo) undo->BeginGroup(LoadString(title).c_str());
        m_pSelection->ReplaceText(entity, static_cast<long>(std::strlen(entity)), &m_xTextSink);
        if (undo) undo->EndGroup();
    } else if (GetOption(OPT_AUTOCLOSEBRACKET) && ch == '<') {
        m_pSelection->ReplaceText("<>", 2, &m_xTextSink);
        m_pSelection->MoveCharLeft(FALSE, 1);
    } else {
        m_pSelection->ReplaceText(text, 1, &m_xTextSink);
    }
}

// A double-byte character, lead byte in the high byte of wParam. It goes straight to the
// document; in overwrite mode it takes the place of one whole character, never of a line end.
LRESULT CZentrelCtrl::OnImeChar(WPARAM wParam, LPARAM) {
    if (!m_pDoc || GetOption(OPT_READONLY)) {
        MessageBeep(kBeep);
        return 0;
    }
    const char buffer[2] = {static_cast<char>((wParam >> 8) & 0xFF), static_cast<char>(wParam & 0xFF)};
    if (!IsLeadByte(static_cast<BYTE>(buffer[0]))) return 1;
    const long start = std::min(m_nSelActive, m_nSelAnchor);
    long count = std::abs(m_nSelActive - m_nSelAnchor);
    if (count == 0 && GetOption(OPT_OVERWRITE) && start != m_pDoc->GetLength() &&
        static_cast<BYTE>(m_pDoc->GetCharAt(start)) != kCR)
        count = NextCharPos(start) - start;
    if (count == 0)
        m_pDoc->InsertText(start, buffer, 2, &m_xTextSink);
    else
        m_pDoc->ReplaceText(start, count, buffer, 2, &m_xTextSink);
    return 0;
}
