// The bookmark list of a view. Each bookmark holds one tracked range of the document; the list
// gives the ranges back while the document still lives.
#pragma once
#include <string>
#include <vector>

#include "src/document/sourcetext.h"

class CZentrelCtrl;

class CBookmarkManager {
public:
    struct Bookmark {
        std::string name;
        ComPtr<ISourceRange> range;
    };

    void SetOwner(CZentrelCtrl* owner) { m_pOwner = owner; }
    // The document whose ranges the bookmarks hold; null at detach.
    void SetDocument(ISourceText* doc) { m_pDoc = doc; }
    ISourceText* GetDocument() const { return m_pDoc; }
    long GetCount() const { return static_cast<long>(m_bookmarks.size()); }
    // Destroys every bookmark's range in the document and empties the list.
    void RemoveAll();

private:
    CZentrelCtrl* m_pOwner = nullptr;
    ISourceText* m_pDoc = nullptr;  // not counted: the control holds the document
    std::vector<Bookmark> m_bookmarks;
};
