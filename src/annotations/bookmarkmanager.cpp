#include "src/annotations/bookmarkmanager.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "src/resources/gutterpictures.h"
#include "src/view/zentrelctrl.h"

namespace {

// Gutter pictures: the flags with the digits 0 to 9, and the plain flag.
constexpr int kFlagDigit0 = IDB_FLAG_DIGIT0;
constexpr int kFlagPlain = IDB_FLAG_NAMED;

bool StartsCaseless(const std::string& s, const char* prefix) {
    const size_t n = std::strlen(prefix);
    if (s.size() < n) return false;
    for (size_t i = 0; i < n; ++i)
        if (std::tolower(static_cast<unsigned char>(s[i])) != prefix[i]) return false;
    return true;
}

}  // namespace

// --- CBookmark ---

CBookmark::~CBookmark() {
    if (!m_pRange) return;
    ISourceText* doc = nullptr;
    if (SUCCEEDED(m_pRange->GetDocument(&doc)) && doc) doc->DestroyRange(m_pRange.Get());
}

bool CBookmark::Init(CBookmarkManager* manager, const std::string& name, long activePos, long anchorPos) {
    ISourceText* doc = manager->GetDocument();
    ComPtr<ISourceRange> range;
    if (!doc || FAILED(doc->CreateRange(range.Out())) || !range) return false;
    range->SetRange(activePos, anchorPos);
    m_pManager = manager;
    m_pRange = std::move(range);
    m_strName = name;
    return true;
}

BOOL CBookmark::Goto() {
    CZentrelCtrl* view = m_pManager ? m_pManager->GetOwner() : nullptr;
    if (!view || !m_pRange || !view->m_pSelection) return FALSE;
    const long active = m_pRange->GetActive(), anchor = m_pRange->GetAnchor();
    view->ScrollRangeIntoView(active, anchor);
    return view->m_pSelection->SetRange(active, anchor) == S_OK ? TRUE : FALSE;
}

int CBookmark::GetBitmapId() const {
    if (!StartsCaseless(m_strName, "bookmark ")) return kFlagPlain;
    const char* digits = m_strName.c_str() + 9;
    char* end = nullptr;
    const long n = std::strtol(digits, &end, 10);
    if (end == digits || n < 0 || n > 9) return kFlagPlain;
    return kFlagDigit0 + static_cast<int>(n);
}

// --- CBookmarkManager ---

void CBookmarkManager::SetDocument(ISourceText* doc) {
    if (m_pDoc) RemoveAll();
    m_pDoc = doc;
}

CBookmark* CBookmarkManager::GetAt(long index) const {
    if (index < 0 || index >= GetCount()) return nullptr;
    return m_bookmarks[m_bookmarks.size() - 1 - static_cast<size_t>(index)].get();
}

void CBookmarkManager::FireChanged(bool set, const std::string& name) {
    if (m_pOwner) m_pOwner->FireEvent(EVENT_BOOKMARKCHANGED, {Variant::Bool(set), Variant::Str(name)});
}

CBookmark* CBookmarkManager::PushFront(const std::string& name, long activePos, long anchorPos) {
    auto bookmark = std::make_unique<CBookmark>();
    if (!bookmark->Init(this, name, activePos, anchorPos)) return nullptr;
    CBookmark* added = bookmark.get();
    added->SetSerial(++m_nNextSerial);
    m_bookmarks.push_back(std::move(bookmark));
    m_index.Insert(added);
    FileName(added);
    return added;
}

void CBookmarkManager::FileName(CBookmark* bookmark) {
    std::vector<CBookmark*>& same = m_byName[bookmark->GetName()];
    const auto at = std::partition_point(same.begin(), same.end(), [bookmark](const CBookmark* b) {
        return b->GetSerial() < bookmark->GetSerial();
    });
    same.insert(at, bookmark);
}

void CBookmarkManager::UnfileName(CBookmark* bookmark) {
    const auto it = m_byName.find(bookmark->GetName());
    if (it == m_byName.end()) return;
    std::erase(it->second, bookmark);
    if (it->second.empty()) m_byName.erase(it);
}

CBookmark* CBookmarkManager::Add(long activePos, long anchorPos, const std::string& name) {
    if (CBookmark* found = FindByName(name)) {
        m_index.Erase(found);
        found->GetRange()->SetRange(activePos, anchorPos);
        m_index.Insert(found);
        return found;
    }
    CBookmark* added = PushFront(name, activePos, anchorPos);
    if (added) FireChanged(true, name);
    return added;
}

CBookmark* CBookmarkManager::InsertLoaded(const std::string& name, long activePos, long anchorPos) {
    return PushFront(name, activePos, anchorPos);
}

BOOL CBookmarkManager::Remove(CBookmark* bookmark) {
    if (!bookmark) return FALSE;
    // Serials ascend along the list, so the halving finds the only place it can be.
    const auto it = std::partition_point(m_bookmarks.begin(), m_bookmarks.end(), [bookmark](const std::unique_ptr<CBookmark>& b) {
        return b->GetSerial() < bookmark->GetSerial();
    });
    if (it == m_bookmarks.end() || it->get() != bookmark) return FALSE;
    const std::string name = (*it)->GetName();
    m_index.Erase(bookmark);
    UnfileName(bookmark);
    m_bookmarks.erase(it);
    FireChanged(false, name);
    return TRUE;
}

void CBookmarkManager::RemoveAll() {
    if (!m_pDoc) return;
    std::vector<std::unique_ptr<CBookmark>> gone;
    m_index.Clear();
    m_byName.clear();
    gone.swap(m_bookmarks);
    while (!gone.empty()) gone.pop_back();  // newest first, each giving its range back
    FireChanged(false, std::string());
}

CBookmark* CBookmarkManager::FindByName(const std::string& name) const {
    const auto it = m_byName.find(name);
    return it == m_byName.end() ? nullptr : it->second.back();
}

void CBookmarkManager::Rename(CBookmark* bookmark, const std::string& name) {
    UnfileName(bookmark);
    bookmark->m_strName = name;
    FileName(bookmark);
}

CBookmark* CBookmarkManager::FindAtPosition(long pos) const {
    if (!m_pOwner || !m_pDoc || m_bookmarks.empty()) return nullptr;
    // The line of a position below the text's length is the line table's; any other
    // position counts as on the last line. So a lower end belongs to the line of `pos` when
    // it lies from the line's start up to its end, or anywhere behind it on the last line.
    const CLineIndex& lines = m_pOwner->Lines();
    const long docLen = m_pDoc->GetLength();
    const long last = lines.m_nCount - 1;
    long lineStart = 0;
    const long line = pos < docLen ? lines.FindLineAndStart(pos, &lineStart) : last;
    if (line == last) lineStart = lines.GetLineStart(last);
    const long lineEnd = line == last ? POS_TO_END : lineStart + lines.GetAt(line);
    return m_index.FindNewestIn(lineStart, lineEnd);
}
