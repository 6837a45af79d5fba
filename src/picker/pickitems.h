// The rows of the picker's lists: small counted objects that know the text a row inserts and
// the help text the status pane shows. Each live item holds the module's object count, so the
// module stays loaded while a list or a recent-value list still has one.
#pragma once
#include <string>

#include "platform/com/unknown.h"
#include "platform/gdi/gditypes.h"
#include "src/document/sourcetext.h"

class CHTMLSyntaxPickItem {
public:
    CHTMLSyntaxPickItem(const CHTMLSyntaxPickItem&) = delete;
    CHTMLSyntaxPickItem& operator=(const CHTMLSyntaxPickItem&) = delete;

    ULONG ExternalAddRef() { return m_refs.Increment(); }
    ULONG ExternalRelease();
    // The names ComPtr holds items by.
    ULONG AddRef() { return ExternalAddRef(); }
    ULONG Release() { return ExternalRelease(); }

    // The row's text before the page formats it, and its help text.
    virtual void GetText(std::string& out) = 0;
    virtual void GetDescription(std::string& out) = 0;

protected:
    CHTMLSyntaxPickItem();
    virtual ~CHTMLSyntaxPickItem();

private:
    CRefCount m_refs;
};

// A row that stands for an object of the schema tree.
class CHTMLSyntaxLookupItem : public CHTMLSyntaxPickItem {
public:
    // A null object changes nothing.
    void SetSchema(ISourceSchema* pSchema);
    // The stored object, without a new reference.
    ISourceSchema* GetSchema() const { return m_pSchema.Get(); }
    void GetText(std::string& out) override;
    void GetDescription(std::string& out) override;

private:
    ComPtr<ISourceSchema> m_pSchema;
};

// An attribute: its text ends in "=" when the attribute takes a value.
class CHTMLSyntaxAttrItem : public CHTMLSyntaxLookupItem {
public:
    void GetText(std::string& out) override;
};

class CHTMLSyntaxTextItem : public CHTMLSyntaxPickItem {
public:
    void SetText(std::string text) { m_strText = std::move(text); }
    void SetDescription(std::string text) { m_strDescription = std::move(text); }
    void GetText(std::string& out) override { out = m_strText; }
    void GetDescription(std::string& out) override { out = m_strDescription; }

protected:
    std::string m_strText;
    std::string m_strDescription;
};

// A colour, 0x00BBGGRR, with a name or read as "#RRGGBB".
class CHTMLSyntaxColorItem : public CHTMLSyntaxTextItem {
public:
    void SetColor(COLORREF color) { m_Color = color & 0xFFFFFF; }
    COLORREF GetColor() const { return m_Color; }
    // The colour of a schema value; black when the object has none. A null object changes nothing.
    void SetColorFromSchema(ISourceSchema* pSchema);
    // The same, but an object without a colour leaves the colour as it is.
    void TakeColorFromSchema(ISourceSchema* pSchema);
    void GetText(std::string& out) override;
    void GetDescription(std::string& out) override;

private:
    COLORREF m_Color = 0;
};

class CHTMLSyntaxFontItem : public CHTMLSyntaxPickItem {
public:
    void SetLogFont(const LOGFONTA& lf) { m_LogFont = lf; }
    const LOGFONTA& GetLogFont() const { return m_LogFont; }
    void GetText(std::string& out) override;
    void GetDescription(std::string& out) override { GetText(out); }

private:
    LOGFONTA m_LogFont{};
};

// Makes an item with its first reference owned by the pointer.
template <class T>
ComPtr<T> MakePickItem() {
    return ComPtr<T>(new T);
}

// The same item held as a row holds it.
template <class T>
ComPtr<CHTMLSyntaxPickItem> AsPickItem(const ComPtr<T>& item) {
    return ComPtr<CHTMLSyntaxPickItem>(item.Get());
}

// A font item as a dialog or a host gives one: a face name at height 15 with all else zero.
ComPtr<CHTMLSyntaxFontItem> MakeFontItem(const std::string& faceName);
