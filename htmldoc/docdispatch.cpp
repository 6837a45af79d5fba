// The automation surface of the document and of its ranges.
#include "htmldoc/htmldocument.h"
#include "htmldoc/sourcerange.h"
#include "platform/com/automation.h"

namespace {

enum DocDispId : DISPID { kDocText = 1, kDocLength, kDocPathName, kDocModified, kDocLineCount,
                          kDocUndo, kDocRedo, kDocLoad, kDocSave, kDocEncoding, kDocDefaultEncoding,
                          kDocByteOrderMark };
enum RangeDispId : DISPID { kRangeStart = 1, kRangeEnd, kRangeActive, kRangeAnchor, kRangeText };

using Args = std::vector<Variant>;

void Check(HRESULT hr, const std::string& message) {
    if (FAILED(hr)) throw AutomationError(hr, message);
}

// The value of a property put, converted; a value of the wrong type is a type mismatch.
template <class T, class F>
T ValueAs(const Variant& v, F convert) {
    T out{};
    if (!(v.*convert)(&out)) throw DispatchTypeMismatch{};
    return out;
}
std::string StrValue(const Variant& v) { return ValueAs<std::string>(v, &Variant::ToStr); }
bool BoolValue(const Variant& v) { return ValueAs<bool>(v, &Variant::ToBool); }
int32_t LongValue(const Variant& v) { return ValueAs<int32_t>(v, &Variant::ToLong); }

const CDispatchTable<CHtmlDocument>& DocumentTable() {
    using D = CHtmlDocument;
    static const CDispatchTable<D> table = [] {
        CDispatchTable<D> t("IHtmlDocument", IID_IDispatch, "The HTML document");
        t.Property(kDocText, "BSTR Text", [](D& d, const Args&) { return Variant::Str(d.GetText()); },
                   [](D& d, const Args&, const Variant& v) { Check(d.SetText(StrValue(v)), "The text is too large"); });
        t.Property(kDocLength, "long Length", [](D& d, const Args&) { return Variant::Long(d.GetLength()); });
        t.Property(kDocPathName, "BSTR PathName", [](D& d, const Args&) { return Variant::Str(d.PathName()); },
                   [](D& d, const Args&, const Variant& v) { d.SetPathName(StrValue(v)); });
        t.Property(kDocModified, "BOOL Modified", [](D& d, const Args&) { return Variant::Bool(d.IsModified()); },
                   [](D& d, const Args&, const Variant& v) { d.SetModified(BoolValue(v)); });
        t.Property(kDocLineCount, "long LineCount", [](D& d, const Args&) { return Variant::Long(d.LineCount()); });
        t.Property(kDocEncoding, "BSTR Encoding", [](D& d, const Args&) { return Variant::Str(d.Encoding()); },
                   [](D& d, const Args&, const Variant& v) {
                       if (FAILED(d.SetEncoding(StrValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kDocDefaultEncoding, "BSTR DefaultEncoding", [](D& d, const Args&) { return Variant::Str(d.DefaultEncoding()); },
                   [](D& d, const Args&, const Variant& v) {
                       if (FAILED(d.SetDefaultEncoding(StrValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kDocByteOrderMark, "BOOL ByteOrderMark", [](D& d, const Args&) { return Variant::Bool(d.ByteOrderMark()); },
                   [](D& d, const Args&, const Variant& v) { d.SetByteOrderMark(BoolValue(v)); });
        t.Method(kDocUndo, "BOOL Undo()", [](D& d, Args&) { return Variant::Bool(SUCCEEDED(d.Undo(nullptr, nullptr))); });
        t.Method(kDocRedo, "BOOL Redo()", [](D& d, Args&) { return Variant::Bool(SUCCEEDED(d.Redo(nullptr, nullptr))); });
        t.Method(kDocLoad, "void Load(BSTR lpszPathName)", [](D& d, Args& a) {
            std::string error;
            Check(d.LoadFile(ArgStr(a, 0), &error), error);
            return Variant();
        });
        t.Method(kDocSave, "void Save(BSTR lpszPathName)", [](D& d, Args& a) {
            std::string error;
            Check(d.SaveFile(ArgStr(a, 0), &error), error);
            return Variant();
        });
        return t;
    }();
    return table;
}

const CDispatchTable<CSourceRange>& RangeTable() {
    using R = CSourceRange;
    static const CDispatchTable<R> table = [] {
        CDispatchTable<R> t("ISourceRange", IID_IDispatch, "A range of the document's text");
        t.Property(kRangeStart, "long Start", [](R& r, const Args&) { return Variant::Long(r.GetStart()); });
        t.Property(kRangeEnd, "long End", [](R& r, const Args&) { return Variant::Long(r.GetEnd()); });
        t.Property(kRangeActive, "long Active", [](R& r, const Args&) { return Variant::Long(r.GetActive()); },
                   [](R& r, const Args&, const Variant& v) {
                       if (FAILED(r.SetActive(LongValue(v), TRUE))) throw AutomationError::InvalidValue();
                   });
        t.Property(kRangeAnchor, "long Anchor", [](R& r, const Args&) { return Variant::Long(r.GetAnchor()); },
                   [](R& r, const Args&, const Variant& v) {
                       if (FAILED(r.SetAnchor(LongValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kRangeText, "BSTR Text", [](R& r, const Args&) { return Variant::Str(r.Text()); },
                   [](R& r, const Args&, const Variant& v) {
                       std::string text = StrValue(v);
                       Check(r.ReplaceText(text.data(), static_cast<long>(text.size()), nullptr), "The text cannot be replaced");
                   });
        return t;
    }();
    return table;
}

}  // namespace

const CInterfaceInfo* CHtmlDocument::GetTypeInfo() { return &DocumentTable().Info(); }

HRESULT CHtmlDocument::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return DocumentTable().GetIDsOfNames(name, pDispId);
}

HRESULT CHtmlDocument::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                              ExcepInfo* excep) {
    ComPtr<CHtmlDocument> alive(this);
    return DocumentTable().Invoke(*this, dispid, flags, args, result, excep);
}

const CInterfaceInfo* CSourceRange::GetTypeInfo() { return &RangeTable().Info(); }

HRESULT CSourceRange::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return RangeTable().GetIDsOfNames(name, pDispId);
}

HRESULT CSourceRange::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                             ExcepInfo* excep) {
    ComPtr<CSourceRange> alive(this);
    return RangeTable().Invoke(*this, dispid, flags, args, result, excep);
}
