#include "tests/view/scriptedsyntax.h"

namespace {

// A tag item with a fixed name.
class CTagItem final : public ISourceSyntaxItem, public ISourceTagItem {
public:
    explicit CTagItem(std::string name) : m_name(std::move(name)) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_ISourceSyntaxItem) return HandOut(static_cast<ISourceSyntaxItem*>(this), ppv);
        if (riid == IID_ISourceTagItem) return HandOut(static_cast<ISourceTagItem*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++m_refs; }
    ULONG Release() override {
        ULONG n = --m_refs;
        if (n == 0) delete this;
        return n;
    }
    long GetItemKind() override { return 1; }
    HRESULT GetTagName(std::string* out) override {
        *out = m_name;
        return S_OK;
    }

private:
    std::string m_name;
    ULONG m_refs = 0;
};

}  // namespace

HRESULT CScriptedSyntax::GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) {
    auto it = m_tagNames.find(pos);
    if (it == m_tagNames.end()) {
        *out = nullptr;
        return E_FAIL;
    }
    *itemStart = pos;
    auto* item = new CTagItem(it->second);
    item->AddRef();
    *out = item;
    return S_OK;
}
