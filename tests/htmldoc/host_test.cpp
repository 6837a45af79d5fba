// The host's side of the document: files, path and modified flag (its automation is in
// cases/dispatch.cases).
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

}  // namespace
