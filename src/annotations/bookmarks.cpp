// Bookmarks as the user and the host reach them: toggling by name and by number, going to one,
// and the automation members that name them.
#include <algorithm>

#include "platform/com/automation.h"
#include "src/resources/strings.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kStringIndexOutOfRange = 101;
constexpr UINT kStringNumberedBookmark = 174;

// "Bookmark N": the name of the numbered bookmark n.
std::string NumberedBookmarkName(int n) {
    std::string name = LoadString(kStringNumberedBookmark);
    const size_t at = name.find("%d");
    if (at != std::string::npos) name.replace(at, 2, std::to_string(n));
    return name;
}

}  // namespace

// The line a toggle compares: the table's line below the text's length, else one past the last.
long CZentrelCtrl::ToggleLineOf(long nPos) const {
    return nPos < m_pDoc->GetLength() ? m_Lines.FindLine(nPos) : m_Lines.m_nCount;
}

BOOL CZentrelCtrl::SetBookmarkAtSelection(const std::string& name) {
    if (!m_Bookmarks.Add(m_nSelActive, m_nSelAnchor, name)) return FALSE;
    InvalidateGutter();
    return TRUE;
}

BOOL CZentrelCtrl::ToggleBookmark(const std::string& name) {
    if (!m_pDoc) return FALSE;
    CBookmark* found = m_Bookmarks.FindByName(name);
    if (!found) return SetBookmarkAtSelection(name);
    const long markLine = ToggleLineOf(found->GetRange()->GetStart());
    const long caretLine = ToggleLineOf(std::min(m_nSelActive, m_nSelAnchor));
    if (m_Bookmarks.Remove(found)) InvalidateGutter();
    if (markLine == caretLine) return TRUE;  // it was on the caret's line: now it is off
    return SetBookmarkAtSelection(name);     // it moves to the caret's line
}

BOOL CZentrelCtrl::ToggleNumberedBookmark(int n) { return ToggleBookmark(NumberedBookmarkName(n)); }

BOOL CZentrelCtrl::GotoNumberedBookmark(int n) {
    CBookmark* found = m_Bookmarks.FindByName(NumberedBookmarkName(n));
    return found ? found->Goto() : FALSE;
}

BOOL CZentrelCtrl::GotoBookmark(const std::string& name) {
    CBookmark* found = m_Bookmarks.FindByName(name);
    if (!found) return FALSE;
    found->Goto();
    return TRUE;
}

BOOL CZentrelCtrl::FindBookmark(const std::string& name) const {
    return m_Bookmarks.FindByName(name) ? TRUE : FALSE;
}

void CZentrelCtrl::RemoveAllBookmarks() {
    m_Bookmarks.RemoveAll();
    InvalidateGutter();
}

CBookmark& CZentrelCtrl::BookmarkAt(long nIndex) const {
    CBookmark* bookmark = m_Bookmarks.GetAt(nIndex);
    if (!bookmark) ThrowError(0, LoadString(kStringIndexOutOfRange));
    return *bookmark;
}

std::string CZentrelCtrl::GetBookmarkName(long nIndex) const { return BookmarkAt(nIndex).GetName(); }

void CZentrelCtrl::SetBookmarkName(long nIndex, const std::string& name) {
    m_Bookmarks.Rename(&BookmarkAt(nIndex), name);
    SetModifiedFlag();
}
