// Bookmarks: named, live ranges of the text that the view keeps beside the document. Each holds
// one tracked range, which the document moves through edits; a bookmark whose text is deleted
// stays, empty, where the text was. The list is newest first, and every set and clear is told to
// the host.
#pragma once
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/com/classfactory.h"
#include "src/annotations/bookmarkindex.h"
#include "src/document/sourcetext.h"

class CZentrelCtrl;
class CBookmarkManager;

class CBookmark {
public:
    CBookmark() = default;
    CBookmark(const CBookmark&) = delete;
    CBookmark& operator=(const CBookmark&) = delete;
    // Gives the range back to its document.
    ~CBookmark();

    // Makes the range in the manager's document and sets its ends as given; false, with no
    // range, if the document cannot make one.
    bool Init(CBookmarkManager* manager, const std::string& name, long activePos, long anchorPos);
    // Scrolls the bookmarked text into view and selects it, ends as they were set; TRUE if the
    // selection took it.
    BOOL Goto();
    // The gutter picture: a flag with the digit of a name "bookmark N" (any case, N from 0 to
    // 9), else the plain flag.
    int GetBitmapId() const;

    const std::string& GetName() const { return m_strName; }
    ISourceRange* GetRange() const { return m_pRange.Get(); }
    // Higher for a bookmark put in the list later: the newest of a line is the one shown.
    unsigned long GetSerial() const { return m_nSerial; }
    void SetSerial(unsigned long serial) { m_nSerial = serial; }

private:
    friend class CBookmarkManager;  // renames through the manager, which finds bookmarks by name

    CModuleLock m_moduleLock;  // a live bookmark keeps the module loaded
    CBookmarkManager* m_pManager = nullptr;
    unsigned long m_nSerial = 0;
    std::string m_strName;
    ComPtr<ISourceRange> m_pRange;
};

class CBookmarkManager {
public:
    void SetOwner(CZentrelCtrl* owner) { m_pOwner = owner; }
    CZentrelCtrl* GetOwner() const { return m_pOwner; }
    // The document whose ranges the bookmarks hold; null at detach. A document held before
    // loses its bookmarks first.
    void SetDocument(ISourceText* doc);
    ISourceText* GetDocument() const { return m_pDoc; }

    long GetCount() const { return static_cast<long>(m_bookmarks.size()); }
    // The bookmark at an index of the list, newest first; null outside it.
    CBookmark* GetAt(long index) const;
    // Sets the bookmark of that name to the ends given: an existing one is moved quietly, a new
    // one goes to the front of the list and is announced. Null if no range could be made.
    CBookmark* Add(long activePos, long anchorPos, const std::string& name);
    // Drops the bookmark and announces it; FALSE if it is not in the list.
    BOOL Remove(CBookmark* bookmark);
    // Puts a bookmark at the front of the list as a load does: no event, and no look for one of
    // the same name. Null if its range cannot be made.
    CBookmark* InsertLoaded(const std::string& name, long activePos, long anchorPos);
    // With a document: drops every bookmark and announces that once with an empty name, also
    // for an empty list. Without one nothing happens.
    void RemoveAll();
    // The first bookmark of the name, case-sensitively, newest first; null if none.
    CBookmark* FindByName(const std::string& name) const;
    // Gives the bookmark another name; its place in the list stays.
    void Rename(CBookmark* bookmark, const std::string& name);
    // The newest bookmark whose lower end lies on the line of `pos`; null if none.
    CBookmark* FindAtPosition(long pos) const;
    // Keeps the lookup by position right after a change of the document's text that may have
    // moved ends onto one another from lo to hi, in positions after the change.
    void OnTextChanged(long lo, long hi) { m_index.ResortChanged(lo, hi); }

private:
    void FireChanged(bool set, const std::string& name);
    // Makes a bookmark and puts it at the front of the list; null if its range cannot be made.
    CBookmark* PushFront(const std::string& name, long activePos, long anchorPos);
    // Files the bookmark under its name, or takes it out of that file.
    void FileName(CBookmark* bookmark);
    void UnfileName(CBookmark* bookmark);

    CZentrelCtrl* m_pOwner = nullptr;
    ISourceText* m_pDoc = nullptr;  // not counted: the control holds the document
    // The list, oldest first, so that a new bookmark goes on at the back; serials ascend along it.
    std::vector<std::unique_ptr<CBookmark>> m_bookmarks;
    // The same bookmarks by name, each name's oldest first: names repeat after a load or a rename.
    std::unordered_map<std::string, std::vector<CBookmark*>> m_byName;
    CBookmarkIndex m_index;          // the same bookmarks by position
    unsigned long m_nNextSerial = 0;
};
