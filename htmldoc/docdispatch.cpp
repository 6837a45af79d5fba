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
        CDispatchTable<D> t;
        t.Property(kDocText, "Text", [](D& d, const Args&) { return Variant::Str(d.GetText()); },
                   [](D& d, const Args&, const Variant& v) { Check(d.SetText(StrValue(v)), "The text is too large"); });
        t.Property(kDocLength, "Length", [](D& d, const Args&) { return Variant::Long(d.GetLength()); });
        t.Property(kDocPathName, "PathName", [](D& d, const Args&) { return Variant::Str(d.PathName()); },
                   [](D& d, const Args&, const Variant& v) { d.SetPathName(StrValue(v)); });
        t.Property(kDocModified, "Modified", [](D& d, const Args&) { return Variant::Bool(d.IsModified()); },
                   [](D& d, const Args&, const Variant& v) { d.SetModified(BoolValue(v)); });
        t.Property(kDocLineCount, "LineCount", [](D& d, const Args&) { return Variant::Long(d.LineCount()); });
        t.Property(kDocEncoding, "Encoding", [](D& d, const Args&) { return Variant::Str(d.Encoding()); },
                   [](D& d, const Args&, const Variant& v) {
                       if (FAILED(d.SetEncoding(StrValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kDocDefaultEncoding, "DefaultEncoding", [](D& d, const Args&) { return Variant::Str(d.DefaultEncoding()); },
                   [](D& d, const Args&, const Variant& v) {
                       if (FAILED(d.SetDefaultEncoding(StrValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kDocByteOrderMark, "ByteOrderMark", [](D& d, const Args&) { return Variant::Bool(d.ByteOrderMark()); },
                   [](D& d, const Args&, const Variant& v) { d.SetByteOrderMark(BoolValue(v)); });
        t.Method(kDocUndo, "Undo", 0, [](D& d, Args&) { return Variant::Bool(SUCCEEDED(d.Undo(nullptr, nullptr))); });
        t.Method(kDocRedo, "Redo", 0, [](D& d, Args&) { return Variant::Bool(SUCCEEDED(d.Redo(nullptr, nullptr))); });
        t.Method(kDocLoad, "Load", 1, [](D& d, Args& a) {
            std::string error;
            Check(d.LoadFile(ArgStr(a, 0), &error), error);
            return Variant();
        });
        t.Method(kDocSave, "Save", 1, [](D& d, Args& a) {
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
        CDispatchTable<R> t;
        t.Property(kRangeStart, "Start", [](R& r, const Args&) { return Variant::Long(r.GetStart()); });
        t.Property(kRangeEnd, "End", [](R& r, const Args&) { return Variant::Long(r.GetEnd()); });
        t.Property(kRangeActive, "Active", [](R& r, const Args&) { return Variant::Long(r.GetActive()); },
                   [](R& r, const Args&, const Variant& v) {
                       if (FAILED(r.SetActive(LongValue(v), TRUE))) throw AutomationError::InvalidValue();
                   });
        t.Property(kRangeAnchor, "Anchor", [](R& r, const Args&) { return Variant::Long(r.GetAnchor()); },
                   [](R& r, const Args&, const Variant& v) {
                       if (FAILED(r.SetAnchor(LongValue(v)))) throw AutomationError::InvalidValue();
                   });
        t.Property(kRangeText, "Text", [](R& r, const Args&) { return Variant::Str(r.Text()); },
                   [](R& r, const Args&, const Variant& v) {
                       std::string text = StrValue(v);
                       Check(r.ReplaceText(text.data(), static_cast<long>(text.size()), nullptr), "The text cannot be replaced");
                   });
        return t;
    }();
    return table;
}

}  // namespace

HRESULT CHtmlDocument::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return DocumentTable().GetIDsOfNames(name, pDispId);
}

HRESULT CHtmlDocument::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                              ExcepInfo* excep) {
    ComPtr<CHtmlDocument> alive(this);
    return DocumentTable().Invoke(*this, dispid, flags, args, result, excep);
}

HRESULT CSourceRange::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return RangeTable().GetIDsOfNames(name, pDispId);
}

HRESULT CSourceRange::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                             ExcepInfo* excep) {
    ComPtr<CSourceRange> alive(this);
    return RangeTable().Invoke(*this, dispid, flags, args, result, excep);
}
