// The component layer: identifiers, values, dispatch, events, streams, property bags.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <functional>

#include "platform/com/automation.h"
#include "platform/com/classfactory.h"
#include "platform/com/events.h"
#include "platform/com/propbag.h"
#include "platform/com/stream.h"
#include "platform/com/textdataobject.h"

namespace {

TEST(Guid, ParsesPrintsAndRejects) {
    const char* text = "{09D5F3E5-B21C-11D1-9B66-0000C0E4E6E4}";
    auto guid = GuidFromString(text);
    ASSERT_TRUE(guid);
    EXPECT_EQ(StringFromGuid(*guid), text);
    EXPECT_EQ(guid->Data1, 0x09D5F3E5u);
    EXPECT_EQ(guid->Data4[7], 0xE4);
    EXPECT_EQ(*GuidFromString("09d5f3e5-b21c-11d1-9b66-0000c0e4e6e4"), *guid);
    for (const char* bad : {"", "{09D5F3E5-B21C-11D1-9B66-0000C0E4E6E4", "{09D5F3E5-B21C-11D1-9B66-0000C0E4E6EG}",
                            "{09D5F3E5+B21C-11D1-9B66-0000C0E4E6E4}", "09D5F3E5-B21C-11D1-9B66-0000C0E4E6E"})
        EXPECT_FALSE(GuidFromString(bad)) << bad;
}

// A dispatch object that counts its references and records what it was called with.
class CRecordingSink final : public IDispatch {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID id, WORD, std::vector<Variant>& args, Variant*, ExcepInfo*) override {
        calls.push_back(id);
        if (onCall) onCall(args);
        return S_OK;
    }
    ULONG refs = 0;
    std::vector<DISPID> calls;
    std::function<void(std::vector<Variant>&)> onCall;
};

TEST(Variant, KeepsReferencesAndConvertsByReference) {
    CRecordingSink sink;
    {
        Variant a = Variant::Dispatch(&sink);
        Variant b = a;
        EXPECT_EQ(sink.refs, 2u);
        Variant c = std::move(b);
        EXPECT_EQ(sink.refs, 2u);
        a = Variant::Long(5);
        EXPECT_EQ(sink.refs, 1u);
    }
    EXPECT_EQ(sink.refs, 0u);

    int16_t shortValue = 0;
    Variant ref = Variant::RefShort(&shortValue);
    EXPECT_TRUE(ref.SetByRef(Variant::Long(-7)));
    EXPECT_EQ(shortValue, -7);
    EXPECT_FALSE(ref.SetByRef(Variant::Long(70000)));  // does not fit a short
    EXPECT_FALSE(ref.SetByRef(Variant::Str("x")));
    int32_t out = 0;
    EXPECT_TRUE(ref.ToLong(&out));
    EXPECT_EQ(out, -7);
    std::string s;
    EXPECT_FALSE(Variant::Long(1).ToStr(&s));
}

// Member signatures: what each one declares, and the ones that are not signatures. How a table
// uses the declarations is walked through the control's own table.
TEST(MemberSignature, ParsesTypesNamesAndReferences) {
    CMemberInfo m;
    ASSERT_TRUE(ParseMemberSignature("BOOL FindPointFromPosition(long nPosition, long* nX, long* nY)", MemberKind::Method, &m));
    EXPECT_EQ(m.name, "FindPointFromPosition");
    EXPECT_EQ(m.result.type, AutoType::Bool);
    ASSERT_EQ(m.params.size(), 3u);
    EXPECT_FALSE(m.params[0].byRef);
    EXPECT_TRUE(m.params[2].byRef);
    EXPECT_EQ(m.params[2].name, "nY");
    EXPECT_EQ(m.OutParamCount(), 2u);
    ASSERT_TRUE(ParseMemberSignature("IDispatch* FindCollapseFromPos(long nPos)", MemberKind::Method, &m));
    EXPECT_EQ(m.result.type, AutoType::Dispatch);
    EXPECT_FALSE(m.result.byRef);
    ASSERT_TRUE(ParseMemberSignature("OLE_COLOR FormatBackColor(short nFormat)", MemberKind::Property, &m));
    EXPECT_EQ(m.params.size(), 1u);
    ASSERT_TRUE(ParseMemberSignature("Error(short Number, BSTR* Description)", MemberKind::Event, &m));
    EXPECT_EQ(m.params[1].type, AutoType::Str);
    EXPECT_TRUE(m.params[1].byRef);
    for (const char* bad : {"", "short", "TabSize", "float TabSize", "short TabSize(", "void Go(long)", "void Go(long a,)",
                            "void Go(void a)", "long* Get()", "void Prop"})
        EXPECT_FALSE(ParseMemberSignature(bad, std::string(bad) == "void Prop" ? MemberKind::Property : MemberKind::Method, &m))
            << bad;
    EXPECT_FALSE(ParseMemberSignature("long Go()", MemberKind::Event, &m));
}

TEST(ConnectionPoint, FiresToEverySinkAndReadsAnswersBack) {
    CConnectionPoint cp;
    CRecordingSink first, second;
    DWORD c1 = cp.Advise(&first);
    DWORD c2 = cp.Advise(&second);
    EXPECT_NE(c1, c2);
    EXPECT_EQ(cp.Advise(nullptr), 0u);
    // The first sink unadvises the second while the round runs: the round still reaches it.
    first.onCall = [&](std::vector<Variant>& args) {
        args[0].SetByRef(Variant::Bool(true));
        cp.Unadvise(c2);
    };
    VARIANT_BOOL answered = VARIANT_FALSE;
    std::vector<Variant> args{Variant::RefBool(&answered)};
    cp.Fire(8, args);
    EXPECT_EQ(answered, VARIANT_TRUE);
    EXPECT_EQ(first.calls, std::vector<DISPID>{8});
    EXPECT_EQ(second.calls, std::vector<DISPID>{8});
    EXPECT_EQ(cp.SinkCount(), 1u);
    EXPECT_EQ(cp.Unadvise(c2), CONNECT_E_NOCONNECTION);
    cp.UnadviseAll();
    EXPECT_EQ(first.refs, 0u);
    EXPECT_EQ(second.refs, 0u);
}

TEST(Stream, MemoryAndFileStreamsReadWriteAndSeek) {
    ComPtr<IStream> mem = CreateMemoryStream("hello");
    char buf[8] = {};
    ULONG n = 0;
    EXPECT_EQ(mem->Read(buf, 3, &n), S_OK);
    EXPECT_EQ(std::string(buf, n), "hel");
    EXPECT_EQ(mem->Seek(-1, STREAM_SEEK_END, nullptr), S_OK);
    EXPECT_EQ(mem->Write("p!", 2, &n), S_OK);
    EXPECT_EQ(MemoryStreamContents(mem.Get()), "hellp!");
    EXPECT_EQ(mem->Seek(-100, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(mem->Read(buf, 8, &n), S_OK);
    EXPECT_EQ(n, 0u);

    auto path = (std::filesystem::temp_directory_path() / "zentrel_stream_test.bin").string();
    ComPtr<IStream> file;
    ASSERT_EQ(CreateFileStream(path, FileMode::Write, &file), S_OK);
    EXPECT_EQ(file->Write("abcdef", 6, &n), S_OK);
    file = nullptr;
    ASSERT_EQ(CreateFileStream(path, FileMode::Read, &file), S_OK);
    uint64_t size = 0;
    file->GetSize(&size);
    EXPECT_EQ(size, 6u);
    file->Seek(2, STREAM_SEEK_SET, nullptr);
    file->Read(buf, 8, &n);
    EXPECT_EQ(std::string(buf, n), "cdef");
    file = nullptr;
    std::remove(path.c_str());
    ComPtr<IStream> missing;
    EXPECT_EQ(CreateFileStream(path, FileMode::Read, &missing), STG_E_FILENOTFOUND);
    EXPECT_FALSE(missing);
}

CPropertyBag SampleBag() {
    CPropertyBag bag;
    bag.Write("Count", int32_t{-5});
    bag.Write("Small", int16_t{7});
    bag.Write("Flag", true);
    bag.Write("Name", std::string("x\0y", 3));
    bag.Write("Font", FontDesc{"Serif", 120000, 700, 1, true, false, true});
    return bag;
}

TEST(PropertyBag, RoundTripsItsByteForm) {
    CPropertyBag bag = SampleBag();
    CPropertyBag back;
    std::string error;
    ASSERT_TRUE(CPropertyBag::Parse(bag.Serialize(), &back, &error)) << error;
    ASSERT_EQ(back.Count(), bag.Count());
    for (size_t i = 0; i < bag.Count(); ++i) {
        EXPECT_EQ(back.Items()[i].first, bag.Items()[i].first);
        EXPECT_TRUE(back.Items()[i].second == bag.Items()[i].second) << bag.Items()[i].first;
    }
}

TEST(PropertyBag, RefusesEveryTruncationAndCorruption) {
    std::string bytes = SampleBag().Serialize();
    CPropertyBag target;
    target.Write("Keep", int32_t{1});
    std::string error;
    for (size_t cut = 0; cut < bytes.size(); ++cut) {
        EXPECT_FALSE(CPropertyBag::Parse(bytes.substr(0, cut), &target, &error)) << cut;
        EXPECT_FALSE(error.empty());
    }
    for (size_t i = 0; i < bytes.size(); ++i) {
        std::string broken = bytes;
        broken[i] = static_cast<char>(broken[i] ^ 0x5A);
        EXPECT_FALSE(CPropertyBag::Parse(broken, &target, &error)) << i;
    }
    ASSERT_EQ(target.Count(), 1u);  // a refused parse leaves the target alone
}

TEST(PropExchange, LoadsDefaultsForMissingOrMistypedValues) {
    CPropertyBag bag;
    LONG n = 12;
    SHORT s = 3;
    {
        CPropExchange save(bag, false);
        PX_Long(&save, "N", n, 0);
        PX_Short(&save, "S", s, 0);
    }
    bag.Write("S", std::string("not a short"));
    LONG n2 = 0, missing = 0;
    SHORT s2 = 0;
    CPropExchange load(bag, true);
    PX_Long(&load, "N", n2, 99);
    PX_Long(&load, "Missing", missing, 77);
    PX_Short(&load, "S", s2, 5);
    EXPECT_EQ(n2, 12);
    EXPECT_EQ(missing, 77);
    EXPECT_EQ(s2, 5);
    std::string error;
    EXPECT_FALSE(bag.CheckKinds({{"S", PropKind::Short}}, &error));
    EXPECT_NE(error.find("\"S\""), std::string::npos);
}

TEST(ClassFactory, CreatesRegisteredClassesAndCountsObjects) {
    const CLSID clsid = MakeGuid("{11111111-2222-3333-4444-555555555555}");
    void* p = nullptr;
    EXPECT_EQ(CreateInstance(clsid, IID_IUnknown, &p), CLASS_E_CLASSNOTAVAILABLE);
    RegisterClassObject(clsid, [] { return static_cast<IUnknown*>(CreateTextDataObject("x").Detach()); });
    EXPECT_EQ(CreateInstance(clsid, IID_IUnknown, nullptr), E_POINTER);
    ComPtr<IDataObject> data;
    ASSERT_EQ(CreateInstance(clsid, IID_IDataObject, reinterpret_cast<void**>(data.Out())), S_OK);
    std::string bytes;
    EXPECT_EQ(data->GetData(CF_TEXT, &bytes), S_OK);
    EXPECT_EQ(bytes, std::string("x\0", 2));
    EXPECT_EQ(data->GetData(RegisterClipboardFormat("FileName"), &bytes), DV_E_FORMATETC);
    EXPECT_EQ(RegisterClipboardFormat("FileName"), RegisterClipboardFormat("FileName"));
    EXPECT_EQ(GetClipboardFormatName(RegisterClipboardFormat("FileName")), "FileName");
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Out())), S_OK);
    EXPECT_EQ(CanUnloadNow(), S_OK);
    factory->LockServer(TRUE);
    EXPECT_EQ(CanUnloadNow(), S_FALSE);
    factory->LockServer(FALSE);
    UnregisterClassObject(clsid);
    EXPECT_EQ(CreateInstance(clsid, IID_IUnknown, &p), CLASS_E_CLASSNOTAVAILABLE);
}

}  // namespace
