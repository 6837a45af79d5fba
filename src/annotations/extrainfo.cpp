// The extra info of a view: its record saved to and loaded from a stream, a file or a global
// memory block. Every store answers TRUE or FALSE and never raises an error to the host; a
// record that cannot be read whole is refused and the view stays as it was.
#include <new>

#include "platform/com/globalmemory.h"
#include "src/annotations/extrainfoannotations.h"
#include "src/view/zentrelctrl.h"

namespace {

// Turns Enabled off for a save or a load, so that the load does not lay the text out step by
// step, and back to what it was at the end: that reformats and repaints once.
class CDisabledView {
public:
    explicit CDisabledView(CZentrelCtrl& ctrl) : m_ctrl(ctrl), m_bWasEnabled(ctrl.GetEnabled()) {
        m_ctrl.SetEnabled(FALSE);
    }
    ~CDisabledView() {
        if (m_bWasEnabled) m_ctrl.SetEnabled(TRUE);
    }
    CDisabledView(const CDisabledView&) = delete;
    CDisabledView& operator=(const CDisabledView&) = delete;

private:
    CZentrelCtrl& m_ctrl;
    BOOL m_bWasEnabled;
};

// Runs a store's work, giving FALSE for anything thrown on the way.
template <class Work>
BOOL Guarded(Work work) {
    try {
        return work() ? TRUE : FALSE;
    } catch (const std::bad_alloc&) {
        return FALSE;
    }
}

}  // namespace

BOOL CZentrelCtrl::SaveExtraInfoTo(IStream* pStream) {
    if (!m_pDoc || !pStream) return FALSE;
    ExtraInfoRecord record;
    record.active = m_nSelActive;
    record.anchor = m_nSelAnchor;
    if (!CollectExtraInfoAnnotations(*this, &record)) return FALSE;
    CDisabledView disabled(*this);
    return WriteExtraInfo(pStream, record) == ExtraInfoError::None;
}

BOOL CZentrelCtrl::LoadExtraInfoFrom(IStream* pStream) {
    if (!m_pDoc || !pStream) return FALSE;
    ExtraInfoRecord record;
    if (ReadExtraInfo(pStream, &record) != ExtraInfoError::None) return FALSE;
    record = FitExtraInfoToText(std::move(record), m_pDoc->GetLength());
    CDisabledView disabled(*this);
    m_pSelection->SetRange(record.active, record.anchor);
    ScrollRangeIntoView(record.active, record.anchor);
    RestoreExtraInfoAnnotations(*this, record);
    return TRUE;
}

BOOL CZentrelCtrl::SaveExtraInfo(IUnknown* punkStream) {
    return Guarded([&] {
        ComPtr<IUnknown> unknown(punkStream);
        ComPtr<IStream> stream = unknown.As<IStream>(IID_IStream);
        return stream && SaveExtraInfoTo(stream.Get()) != FALSE;
    });
}

BOOL CZentrelCtrl::LoadExtraInfo(IUnknown* punkStream) {
    return Guarded([&] {
        ComPtr<IUnknown> unknown(punkStream);
        ComPtr<IStream> stream = unknown.As<IStream>(IID_IStream);
        return stream && LoadExtraInfoFrom(stream.Get()) != FALSE;
    });
}

BOOL CZentrelCtrl::SaveExtraInfoToFile(const std::string& lpszFileName) {
    return Guarded([&] {
        if (!m_pDoc) return false;
        ComPtr<IStream> file;
        return SUCCEEDED(CreateFileStream(lpszFileName, FileMode::Write, &file)) && SaveExtraInfoTo(file.Get()) != FALSE;
    });
}

BOOL CZentrelCtrl::LoadExtraInfoFromFile(const std::string& lpszFileName) {
    return Guarded([&] {
        ComPtr<IStream> file;
        return m_pDoc && SUCCEEDED(CreateFileStream(lpszFileName, FileMode::Read, &file)) &&
               LoadExtraInfoFrom(file.Get()) != FALSE;
    });
}

BOOL CZentrelCtrl::SaveExtraInfoToMemory(HGLOBAL* lphGlobalMemory) {
    return Guarded([&] {
        if (!lphGlobalMemory) return false;
        ComPtr<IStream> memory = CreateMemoryStream();
        if (!SaveExtraInfoTo(memory.Get())) return false;
        const std::string bytes = MemoryStreamContents(memory.Get());
        if (bytes.empty()) return false;
        const HGLOBAL block = GlobalAlloc(0, bytes.size());
        if (!block) return false;
        void* p = GlobalLock(block);
        if (!p) {
            GlobalFree(block);
            return false;
        }
        std::copy(bytes.begin(), bytes.end(), static_cast<char*>(p));
        GlobalUnlock(block);
        *lphGlobalMemory = block;
        return true;
    });
}

BOOL CZentrelCtrl::LoadExtraInfoFromMemory(HGLOBAL hGlobalMemory, long nMemorySize) {
    return Guarded([&] {
        if (!hGlobalMemory || nMemorySize < 1) return false;
        // The caller's size may not run past the block.
        if (static_cast<size_t>(nMemorySize) > GlobalSize(hGlobalMemory)) return false;
        const void* p = GlobalLock(hGlobalMemory);
        if (!p) return false;
        ComPtr<IStream> memory;
        try {
            memory = CreateMemoryStream(std::string(static_cast<const char*>(p), static_cast<size_t>(nMemorySize)));
        } catch (...) {
            GlobalUnlock(hGlobalMemory);
            throw;
        }
        GlobalUnlock(hGlobalMemory);
        return LoadExtraInfoFrom(memory.Get()) != FALSE;
    });
}
