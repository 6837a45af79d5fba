// The host's side of the document: files, path, modified flag and automation.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "tests/htmldoc/recordingsink.h"
#include "tests/htmldoc/tempfolder.h"

namespace {

namespace fs = std::filesystem;

class HostFiles : public ::testing::Test, protected CTempFolder {
protected:
    HostFiles() : CTempFolder("htmldoc_test") {}
};

TEST_F(HostFiles, LoadAndSaveKeepTheBytesAndTheModifiedFlag) {
    const std::string bytes("<p>\r\nline\n\0x\xE9</p>", 17);
    std::ofstream(PathOf("in.htm"), std::ios::binary) << bytes;
    CAttachedDoc d("old");
    ASSERT_EQ(d.doc->LoadFile(PathOf("in.htm")), S_OK);
    EXPECT_EQ(d.Text(), bytes);
    EXPECT_EQ(d.doc->PathName(), PathOf("in.htm"));
    EXPECT_FALSE(d.doc->IsModified());
    EXPECT_EQ(d.sink.Log(), "RESET 0-0/0 INSERT 0-17/17");
    EXPECT_EQ(d.doc->LineCount(), 3);

    d.doc->InsertText(0, "!", 1, nullptr);
    EXPECT_TRUE(d.doc->IsModified());
    ASSERT_EQ(d.doc->SaveFile(""), S_OK);  // to its own path
    EXPECT_FALSE(d.doc->IsModified());
    EXPECT_EQ(ReadAll(PathOf("in.htm")), "!" + bytes);
    EXPECT_FALSE(fs::exists(PathOf("in.htm.saving~")));

    char name[260];
    ASSERT_EQ(d.doc->GetPathName(name), S_OK);
    EXPECT_EQ(std::string(name), PathOf("in.htm"));
}

TEST_F(HostFiles, FailuresSayWhyAndLoseNothing) {
    CAttachedDoc d("kept text");
    d.doc->InsertText(0, ">", 1, nullptr);
    std::string error;
    EXPECT_EQ(d.doc->LoadFile(PathOf("missing.htm"), &error), STG_E_FILENOTFOUND);
    EXPECT_NE(error.find("missing.htm"), std::string::npos);
    EXPECT_TRUE(FAILED(d.doc->LoadFile(dir.string(), &error)));  // a directory
    EXPECT_EQ(d.Text(), ">kept text");
    EXPECT_FALSE(d.doc->IsUndoEmpty());
    EXPECT_TRUE(d.sink.Of(CSinkEvent::Change).size() == 1);

    error.clear();
    EXPECT_TRUE(FAILED(d.doc->SaveFile(PathOf("no/such/dir/out.htm"), &error)));
    EXPECT_FALSE(error.empty());
    EXPECT_TRUE(d.doc->IsModified());
    EXPECT_EQ(d.doc->SaveFile("", &error), E_INVALIDARG);  // no path yet
    char name[260];
    EXPECT_EQ(d.doc->GetPathName(name), E_FAIL);
    EXPECT_EQ(name[0], '\0');
}

TEST(HostDispatch, DocumentMembersByNameAndTheirErrors) {
    CAttachedDoc d("one\ntwo");
    IDispatch* disp = d.doc.Get();
    auto id = [&](const char* name) {
        DISPID dispid = DISPID_UNKNOWN;
        EXPECT_EQ(disp->GetIDsOfNames(name, &dispid), S_OK) << name;
        return dispid;
    };
    std::vector<Variant> none;
    Variant result;
    ASSERT_EQ(disp->Invoke(id("linecount"), DISPATCH_PROPERTYGET, none, &result, nullptr), S_OK);
    EXPECT_EQ(result.LongVal(), 2);
    std::vector<Variant> args{Variant::Str("<b>x</b>")};
    ASSERT_EQ(disp->Invoke(id("Text"), DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    disp->Invoke(id("LENGTH"), DISPATCH_PROPERTYGET, none, &result, nullptr);
    EXPECT_EQ(result.LongVal(), 8);

    d.doc->InsertText(0, "a", 1, nullptr);
    ASSERT_EQ(disp->Invoke(id("Undo"), DISPATCH_METHOD, none, &result, nullptr), S_OK);
    EXPECT_EQ(d.Text(), "<b>x</b>");
    disp->Invoke(id("Redo"), DISPATCH_METHOD, none, &result, nullptr);
    EXPECT_EQ(d.Text(), "a<b>x</b>");

    ExcepInfo excep;
    args = {Variant::Str("/no/such/file.htm")};
    EXPECT_EQ(disp->Invoke(id("Load"), DISPATCH_METHOD, args, nullptr, &excep), DISP_E_EXCEPTION);
    EXPECT_EQ(excep.scode, STG_E_FILENOTFOUND);
    EXPECT_NE(excep.description.find("/no/such/file.htm"), std::string::npos);
    EXPECT_EQ(disp->Invoke(id("Load"), DISPATCH_METHOD, none, nullptr, nullptr), DISP_E_BADPARAMCOUNT);
    args = {Variant::Dispatch(nullptr)};
    EXPECT_EQ(disp->Invoke(id("Text"), DISPATCH_PROPERTYPUT, args, nullptr, nullptr), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(disp->Invoke(1234, DISPATCH_METHOD, none, nullptr, nullptr), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(d.Text(), "a<b>x</b>");

    // The selection: positions, and Text put as a replacement of the range.
    auto sel = QueryAs<IDispatch>(d.sel.Get(), IID_IDispatch);
    ASSERT_TRUE(sel);
    DISPID active, anchor, text;
    ASSERT_EQ(sel->GetIDsOfNames("ACTIVE", &active), S_OK);
    sel->GetIDsOfNames("anchor", &anchor);
    sel->GetIDsOfNames("Text", &text);
    args = {Variant::Long(9)};
    ASSERT_EQ(sel->Invoke(active, DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    args = {Variant::Long(5)};
    ASSERT_EQ(sel->Invoke(anchor, DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    ASSERT_EQ(sel->Invoke(text, DISPATCH_PROPERTYGET, none, &result, nullptr), S_OK);
    EXPECT_EQ(result.StrVal(), "</b>");
    args = {Variant::Str("<br>")};
    ASSERT_EQ(sel->Invoke(text, DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    EXPECT_EQ(d.Text(), "a<b>x<br>");
    args = {Variant::Long(400)};
    EXPECT_EQ(sel->Invoke(active, DISPATCH_PROPERTYPUT, args, nullptr, &excep), DISP_E_EXCEPTION);
}

}  // namespace
