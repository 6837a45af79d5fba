// The module's registration in a store the host names, creation through the store, and the
// counts that decide whether the module may be unloaded.
#include <gtest/gtest.h>
#include <strings.h>

#include <filesystem>
#include <random>

#include "htmldoc/htmldocument.h"
#include "platform/com/regstore.h"
#include "platform/testing/testplatform.h"
#include "platform/window/proppage.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace fs = std::filesystem;

namespace {

class Registration : public ::testing::Test, protected CTempFolder {
protected:
    Registration() : CTempFolder("registration_test"), store(PathOf("classes.reg")) {
        ZentrelSetRegistrationStore(store.c_str());
    }
    ~Registration() override { ZentrelSetRegistrationStore(nullptr); }
    CRegistrationStore Loaded() {
        CRegistrationStore s(store);
        EXPECT_TRUE(s.Load().Ok());
        return s;
    }
    // Files in the folder other than the store: a save that left its temporary file behind.
    std::vector<std::string> Leftovers() {
        std::vector<std::string> out;
        for (const auto& e : fs::directory_iterator(dir))
            if (e.path().filename() != "classes.reg") out.push_back(e.path().filename().string());
        return out;
    }

    const std::string store;
};

TEST_F(Registration, RegisteringTwiceAndUnregisteringGiveZeroAndLeaveTheStoreClean) {
    ASSERT_EQ(DllRegisterServer(), S_OK) << ZentrelRegistrationError();
    const std::string once = ReadAll(store);
    ASSERT_EQ(DllRegisterServer(), S_OK);
    EXPECT_EQ(ReadAll(store), once);

    CRegistrationStore s = Loaded();
    const std::string control = "CLSID\\{09D5F3E5-B21C-11D1-9B66-0000C0E4E6E4}";
    EXPECT_EQ(s.Value(control), "Zentrel Control");
    EXPECT_EQ(s.Value(control + "\\InprocServer32"), CurrentModulePath());
    EXPECT_EQ(s.Value(control + "\\InprocServer32", "ThreadingModel"), "Apartment");
    EXPECT_EQ(s.Value(control + "\\MiscStatus\\1"), std::to_string(0x20191));
    EXPECT_EQ(s.Value(control + "\\TypeLib"), "{09D5F3E2-B21C-11D1-9B66-0000C0E4E6E4}");
    EXPECT_EQ(s.Value("clsid\\{5f908d45-7604-11d0-9725-0000c051c3e3}"), "Zentrel Property Page");
    EXPECT_TRUE(s.HasKey("TypeLib\\{09D5F3E2-B21C-11D1-9B66-0000C0E4E6E4}\\1.0"));
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(s, "Morvane.Zentrel2.1", &clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_Zentrel);
    EXPECT_EQ(CLSIDFromProgID(s, "ZENTREL.ZentrelPropPage.1", &clsid), S_OK);
    EXPECT_EQ(clsid, CLSID_ZentrelPropPage);
    std::string progId;
    EXPECT_EQ(ProgIDFromCLSID(s, CLSID_Zentrel, &progId), S_OK);
    EXPECT_EQ(progId, "Morvane.Zentrel2.1");

    ASSERT_EQ(DllUnregisterServer(), S_OK);
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    s = Loaded();
    for (const std::string& key : s.Keys()) EXPECT_TRUE(key.find('{') == std::string::npos && key.find('.') == std::string::npos) << key;
    EXPECT_EQ(CLSIDFromProgID(s, "Morvane.Zentrel2.1", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(ProgIDFromCLSID(s, CLSID_Zentrel, &progId), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(Leftovers().empty());
}

TEST_F(Registration, EntriesOfOtherModulesSurviveRegistrationAndUnregistration) {
    CRegistrationStore s(store);
    s.SetValue("Other.Thing.1\\CLSID", "", "{11111111-2222-3333-4444-555555555555}");
    s.SetValue("CLSID\\{11111111-2222-3333-4444-555555555555}\\InprocServer32", "", "/opt/other/libother.so");
    ASSERT_TRUE(s.Save().Ok());
    ASSERT_EQ(DllRegisterServer(), S_OK);
    ASSERT_EQ(DllUnregisterServer(), S_OK);
    CRegistrationStore after = Loaded();
    EXPECT_EQ(after.Value("Other.Thing.1\\CLSID"), "{11111111-2222-3333-4444-555555555555}");
    EXPECT_EQ(after.Value("CLSID\\{11111111-2222-3333-4444-555555555555}\\InprocServer32"), "/opt/other/libother.so");
}

TEST_F(Registration, CreatesByClassIdAndByProgIdThroughTheStore) {
    ASSERT_EQ(DllRegisterServer(), S_OK);
    CRegistrationStore s = Loaded();
    CLSID clsid{};
    ASSERT_EQ(CLSIDFromProgID(s, "Morvane.Zentrel2.1", &clsid), S_OK);
    ComPtr<IDispatch> byProgId, byClsid;
    ASSERT_EQ(CreateInstanceFromStore(s, clsid, IID_DZentrel, reinterpret_cast<void**>(byProgId.Out())), S_OK);
    ASSERT_EQ(CreateInstanceFromStore(s, CLSID_Zentrel, IID_IDispatch, reinterpret_cast<void**>(byClsid.Out())), S_OK);
    EXPECT_NE(byProgId.Get(), byClsid.Get());
    DISPID id = 0;
    EXPECT_EQ(byProgId->GetIDsOfNames("TabSize", &id), S_OK);

    ComPtr<IPropertyPage> page;
    ASSERT_EQ(CLSIDFromProgID(s, "ZENTREL.ZentrelPropPage.1", &clsid), S_OK);
    ASSERT_EQ(CreateInstanceFromStore(s, clsid, IID_IPropertyPage, reinterpret_cast<void**>(page.Out())), S_OK);
    EXPECT_EQ(page->GetPageTemplate().caption, "General");

    // What a host gets for what the store does not know, or cannot load.
    void* out = &clsid;
    const CLSID unknown = MakeGuid("{01234567-89AB-CDEF-0123-456789ABCDEF}");
    EXPECT_EQ(CreateInstanceFromStore(s, unknown, IID_IUnknown, &out), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(CLSIDFromProgID(s, "Morvane.Zentrel9", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(CLSIDFromProgID(s, "", &clsid), CO_E_CLASSSTRING);
    EXPECT_EQ(DllGetClassObject(unknown, IID_IClassFactory, &out), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(CreateInstanceFromStore(s, CLSID_Zentrel, IID_IStream, &out), E_NOINTERFACE);
    s.SetValue("CLSID\\" + StringFromGuid(CLSID_Zentrel) + "\\InprocServer32", "", (dir / "gone.so").string());
    EXPECT_EQ(CreateInstanceFromStore(s, CLSID_Zentrel, IID_IUnknown, &out), CO_E_DLLNOTFOUND);
}

TEST(ModuleUnload, WaitsForEveryControlPageBookmarkAndLock) {
    CTestPlatformScope platform;
    ASSERT_EQ(DllCanUnloadNow(), S_OK);
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(DllGetClassObject(CLSID_Zentrel, IID_IClassFactory, reinterpret_cast<void**>(factory.Out())), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_OK) << "a factory alone does not hold the module";
    factory->LockServer(TRUE);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    factory->LockServer(FALSE);
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    ComPtr<IDispatch> control;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_DZentrel, reinterpret_cast<void**>(control.Out())), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    control = nullptr;
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    {
        CBookmark bookmark;  // as a picker item does, a bookmark holds the module while it lives
        EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
        EXPECT_EQ(ModuleLockCount(), 1);
    }
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    // Bookmarks of a living control: each one holds the module until it is removed.
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText("<p>one</p>\n<p>two</p>\n");
    CZentrelCtrl* ctrl = CreateZentrelCtrl();
    ctrl->SetDocument(doc.Get());
    ASSERT_TRUE(ctrl->ToggleBookmark("a"));
    ASSERT_TRUE(ctrl->ToggleBookmark("b"));
    EXPECT_EQ(ModuleLockCount(), 2);
    ctrl->RemoveAllBookmarks();
    EXPECT_EQ(ModuleLockCount(), 0);
    ASSERT_TRUE(ctrl->ToggleBookmark("c"));
    EXPECT_EQ(ModuleLockCount(), 1);
    ctrl->Release();  // the control goes, and its bookmark with it
    EXPECT_EQ(DllCanUnloadNow(), S_OK);

    ComPtr<IClassFactory> pages;
    ASSERT_EQ(DllGetClassObject(CLSID_ZentrelPropPage, IID_IClassFactory, reinterpret_cast<void**>(pages.Out())), S_OK);
    ComPtr<IPropertyPage> page;
    ASSERT_EQ(pages->CreateInstance(nullptr, IID_IPropertyPage, reinterpret_cast<void**>(page.Out())), S_OK);
    EXPECT_EQ(DllCanUnloadNow(), S_FALSE);
    page = nullptr;
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

TEST_F(Registration, BadStoresGiveClearErrorsAndStayAsTheyWere) {
    for (const CaseRow& bad : ReadCaseRows("module/cases/badstores.cases")) {
        SCOPED_TRACE(bad.where);
        const bool missing = bad[1] == "-";
        fs::remove(store);
        if (!missing) Write("classes.reg", bad[1]);
        CRegistrationStore s(store);
        CRegistrationStore::Result r = s.Load();
        EXPECT_EQ(r.hr, bad[2] == "missing" ? STG_E_FILENOTFOUND : STG_E_DOCFILECORRUPT);
        EXPECT_NE(r.message.find(store), std::string::npos) << r.message;
        EXPECT_NE(r.message.find(bad[3]), std::string::npos) << r.message;
        EXPECT_TRUE(s.Keys().empty());

        // Registration refuses it at its first step; a missing store is made, but unregistering
        // from one is an error.
        if (!missing) {
            EXPECT_EQ(DllRegisterServer(), SELFREG_E_TYPELIB);
            EXPECT_NE(std::string(ZentrelRegistrationError()).find(bad[3]), std::string::npos);
            EXPECT_EQ(DllUnregisterServer(), SELFREG_E_TYPELIB);
            EXPECT_EQ(ReadAll(store), bad[1]);
        } else {
            EXPECT_EQ(DllUnregisterServer(), SELFREG_E_TYPELIB);
            EXPECT_FALSE(fs::exists(store));
        }
        EXPECT_TRUE(Leftovers().empty());
    }
}

TEST_F(Registration, UnreadableOrUnwritableStoresAndNoStoreNamed) {
    fs::create_directory(store);  // a folder where the file should be cannot be read
    CRegistrationStore folder(store);
    EXPECT_EQ(folder.Load().hr, STG_E_READFAULT);
    EXPECT_EQ(DllRegisterServer(), SELFREG_E_TYPELIB);
    EXPECT_NE(std::string(ZentrelRegistrationError()).find("is a directory"), std::string::npos);
    fs::remove(store);

    const std::string nowhere = (dir / "no-such-folder" / "classes.reg").string();
    ZentrelSetRegistrationStore(nowhere.c_str());
    EXPECT_EQ(DllRegisterServer(), SELFREG_E_TYPELIB);
    EXPECT_NE(std::string(ZentrelRegistrationError()).find(nowhere), std::string::npos);

    ZentrelSetRegistrationStore(nullptr);
    EXPECT_EQ(DllRegisterServer(), SELFREG_E_TYPELIB);
    EXPECT_NE(std::string(ZentrelRegistrationError()).find("no registration store"), std::string::npos);
    EXPECT_TRUE(Leftovers().empty());
}

// Random keys and values with every character the format has to carry, saved and read back,
// against a map of what was set.
TEST_F(Registration, WhatIsSavedIsReadBack) {
    std::mt19937 rng(17);
    const std::string alphabet = "abcXYZ019 .-_{}\\\n=#\t\xE9";
    auto word = [&](size_t max, const std::string& forbidden) {
        std::string w;
        size_t n = 1 + rng() % max;
        while (w.size() < n) {
            char c = alphabet[rng() % alphabet.size()];
            if (forbidden.find(c) == std::string::npos) w += c;
        }
        return w;
    };
    for (int round = 0; round < 20; ++round) {
        std::map<std::pair<std::string, std::string>, std::string> model;
        CRegistrationStore s(store);
        for (int i = 0; i < 30; ++i) {
            std::string key = word(3, "\n\\") + "\\" + word(6, "\n");
            std::string name = rng() % 3 ? word(5, "=\n#") : "";
            std::string value = word(12, "");
            // Keys and names compare without regard to case: the model keeps the last spelling's value.
            for (auto it = model.begin(); it != model.end();)
                it = strcasecmp(it->first.first.c_str(), key.c_str()) == 0 && strcasecmp(it->first.second.c_str(), name.c_str()) == 0
                         ? model.erase(it) : std::next(it);
            model[{key, name}] = value;
            s.SetValue(key, name, value);
        }
        ASSERT_TRUE(s.Save().Ok());
        CRegistrationStore back(store);
        ASSERT_TRUE(back.Load().Ok()) << back.Load().message;
        for (const auto& [where, value] : model) EXPECT_EQ(back.Value(where.first, where.second), value);
        EXPECT_EQ(back.Keys(), s.Keys());
    }
}

}  // namespace
