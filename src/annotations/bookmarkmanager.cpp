#include "src/annotations/bookmarkmanager.h"

void CBookmarkManager::RemoveAll() {
    std::vector<Bookmark> gone;
    gone.swap(m_bookmarks);
    for (Bookmark& b : gone) {
        if (m_pDoc && b.range) m_pDoc->DestroyRange(b.range.Get());
    }
}
