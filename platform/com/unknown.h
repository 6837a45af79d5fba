// IUnknown, the counted base of every interface, and ComPtr, the counted smart pointer.
#pragma once
#include "platform/com/export.h"
#include <utility>

#include "platform/com/guid.h"
#include "platform/com/types.h"

ZENTREL_EXPORT extern const IID IID_IUnknown;

class IUnknown {
public:
    virtual HRESULT QueryInterface(REFIID riid, void** ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

protected:
    ~IUnknown() = default;  // objects end through Release, never through delete on an interface
};

// Holds one reference. Assignment from a raw pointer adds a reference; Attach takes one over.
template <class T>
class ComPtr {
public:
    ComPtr() = default;
    ComPtr(std::nullptr_t) {}
    ComPtr(T* p) : m_p(p) { if (m_p) m_p->AddRef(); }
    ComPtr(const ComPtr& o) : ComPtr(o.m_p) {}
    ComPtr(ComPtr&& o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
    ~ComPtr() { Reset(); }

    ComPtr& operator=(const ComPtr& o) { ComPtr(o).Swap(*this); return *this; }
    ComPtr& operator=(ComPtr&& o) noexcept { ComPtr(std::move(o)).Swap(*this); return *this; }
    ComPtr& operator=(T* p) { ComPtr(p).Swap(*this); return *this; }
    ComPtr& operator=(std::nullptr_t) { Reset(); return *this; }

    // Takes over a reference that the caller already owns.
    static ComPtr Adopt(T* p) { ComPtr c; c.m_p = p; return c; }
    void Attach(T* p) { Reset(); m_p = p; }
    // Gives up the reference without releasing it.
    T* Detach() { return std::exchange(m_p, nullptr); }
    void Reset() { if (T* p = std::exchange(m_p, nullptr)) p->Release(); }
    void Swap(ComPtr& o) noexcept { std::swap(m_p, o.m_p); }

    T* Get() const { return m_p; }
    T* operator->() const { return m_p; }
    T& operator*() const { return *m_p; }
    explicit operator bool() const { return m_p != nullptr; }
    // Address for an out parameter; the pointer must be empty.
    T** Out() { Reset(); return &m_p; }

    // QueryInterface into another smart pointer; empty on failure.
    template <class U>
    ComPtr<U> As(REFIID riid) const {
        ComPtr<U> out;
        if (m_p) m_p->QueryInterface(riid, reinterpret_cast<void**>(out.Out()));
        return out;
    }

    friend bool operator==(const ComPtr& a, const ComPtr& b) { return a.m_p == b.m_p; }

private:
    T* m_p = nullptr;
};

// Queries any interface pointer for another, giving a counted pointer (empty on failure).
template <class U, class T>
ComPtr<U> QueryAs(T* p, REFIID riid) {
    ComPtr<U> out;
    if (p) p->QueryInterface(riid, reinterpret_cast<void**>(out.Out()));
    return out;
}

// Reference count shared by the small objects of the library. Starts at 0; the creator's
// first AddRef (usually through a ComPtr) gives it its first reference.
class CRefCount {
public:
    ULONG Increment() { return ++m_nRefs; }
    ULONG Decrement() { return --m_nRefs; }
    ULONG Count() const { return m_nRefs; }

private:
    ULONG m_nRefs = 0;
};

// Gives out `self` through ppv after an AddRef, the common tail of QueryInterface.
template <class I>
HRESULT HandOut(I* self, void** ppv) {
    self->AddRef();
    *ppv = self;
    return S_OK;
}

// Reference counting and QueryInterface of a small object with one interface, which ends when
// its last reference goes.
template <class I, const IID& kIid>
class CUnknownImpl : public I {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (riid == IID_IUnknown || riid == kIid) return HandOut(static_cast<I*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override {
        ULONG n = m_refs.Decrement();
        if (n == 0) delete this;
        return n;
    }

protected:
    virtual ~CUnknownImpl() = default;

private:
    CRefCount m_refs;
};
