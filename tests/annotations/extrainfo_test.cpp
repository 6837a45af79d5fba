// A view's extra info through each store, as a host calls it: what a load restores, and that a
// refused record, a missing document or a bad store leave the view as it was.
#include <gtest/gtest.h>

#include <cstdio>
#include <algorithm>
#include <filesystem>

#include "platform/com/globalmemory.h"
#include "src/annotations/extrainforecord.h"
#include "tests/view/viewfixture.h"

namespace {

class ExtraInfo : public ViewFixture {
protected:
    void SetUp() override {
        Open("<p>some text</p>\r\n<p>more text</p>\r\n");
        ctrl->SetSelection(9, 3);
    }

    Variant Call(const char* name, std::vector<Variant> args) {
        DISPID id = 0;
        EXPECT_EQ(control->GetIDsOfNames(name, &id), S_OK) << name;
        Variant result;
        ExcepInfo ex;
        EXPECT_EQ(control->Invoke(id, DISPATCH_METHOD, args, &result, &ex), S_OK) << name << ": " << ex.description;
        return result;
    }
    bool CallBool(const char* name, std::vector<Variant> args) {
        int32_t v = 0;
        EXPECT_TRUE(Call(name, std::move(args)).ToLong(&v));
        return v != 0;
    }
    std::pair<long, long> Selection() const { return {ctrl->GetSelectionStart(), ctrl->GetSelectionEnd()}; }

    std::string TempPath(const char* name) const {
        return (std::filesystem::temp_directory_path() / (std::string("zentrel-") + name + "-" +
                                                          std::to_string(::testing::UnitTest::GetInstance()->random_seed())))
            .string();
    }
};

TEST_F(ExtraInfo, TheSelectionComesBackThroughEveryStore) {
    // A stream, handed as an unknown.
    ComPtr<IStream> stream = CreateMemoryStream();
    ASSERT_TRUE(CallBool("SaveExtraInfo", {Variant::Unknown(stream.Get())}));
    EXPECT_EQ(MemoryStreamContents(stream.Get()).size(), 28u);
    // A file.
    const std::string path = TempPath("file");
    ASSERT_TRUE(CallBool("SaveExtraInfoToFile", {Variant::Str(path)}));
    // A global memory block, whose handle comes back by reference.
    int32_t handle = 0;
    ASSERT_TRUE(CallBool("SaveExtraInfoToMemory", {Variant::RefLong(&handle)}));
    ASSERT_NE(handle, 0);
    EXPECT_EQ(GlobalSize(static_cast<HGLOBAL>(handle)), 28u);

    ctrl->SetSelection(0, 0);
    stream->Seek(0, STREAM_SEEK_SET, nullptr);
    ASSERT_TRUE(CallBool("LoadExtraInfo", {Variant::Unknown(stream.Get())}));
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));

    ctrl->SetSelection(0, 0);
    ASSERT_TRUE(CallBool("LoadExtraInfoFromFile", {Variant::Str(path)}));
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
    std::remove(path.c_str());

    ctrl->SetSelection(0, 0);
    ASSERT_TRUE(CallBool("LoadExtraInfoFromMemory", {Variant::Long(handle), Variant::Long(28)}));
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
    GlobalFree(static_cast<HGLOBAL>(handle));
}

TEST_F(ExtraInfo, ASaveLeavesSelectionAndEnabledAsTheyWere) {
    ComPtr<IStream> stream = CreateMemoryStream();
    ctrl->SetEnabled(FALSE);
    ASSERT_TRUE(ctrl->SaveExtraInfo(stream.Get()));
    EXPECT_FALSE(ctrl->GetEnabled());
    ctrl->SetEnabled(TRUE);
    ASSERT_TRUE(ctrl->SaveExtraInfo(stream.Get()));
    EXPECT_TRUE(ctrl->GetEnabled());
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
}

TEST_F(ExtraInfo, ALoadClampsTheSelectionIntoTheText) {
    const long length = doc->GetLength();
    ComPtr<IStream> stream = CreateMemoryStream();
    ASSERT_EQ(WriteExtraInfo(stream.Get(), {length + 40, -3, {}, {}}), ExtraInfoError::None);
    stream->Seek(0, STREAM_SEEK_SET, nullptr);
    ASSERT_TRUE(ctrl->LoadExtraInfo(stream.Get()));
    EXPECT_EQ(Selection(), std::make_pair(length, 0L));
    EXPECT_TRUE(ctrl->GetEnabled());
}

// Every record that is cut short or lies is refused, and the view keeps its state.
TEST_F(ExtraInfo, ARefusedRecordChangesNothing) {
    ComPtr<IStream> good = CreateMemoryStream();
    ASSERT_EQ(WriteExtraInfo(good.Get(), {1, 2, {}, {}}), ExtraInfoError::None);
    const std::string bytes = MemoryStreamContents(good.Get());
    std::string wrongVersion = bytes;
    wrongVersion[0] = 2;
    std::vector<std::string> records = {wrongVersion};
    for (size_t cut = 1; cut < bytes.size(); ++cut) records.push_back(bytes.substr(0, cut));
    for (const std::string& record : records) {
        ComPtr<IStream> stream = CreateMemoryStream(record);
        EXPECT_FALSE(ctrl->LoadExtraInfo(stream.Get())) << record.size();
        const HGLOBAL block = GlobalAlloc(0, record.size());
        std::copy(record.begin(), record.end(), static_cast<char*>(GlobalLock(block)));
        GlobalUnlock(block);
        EXPECT_FALSE(ctrl->LoadExtraInfoFromMemory(block, static_cast<long>(record.size())));
        GlobalFree(block);
        EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
        EXPECT_TRUE(ctrl->GetEnabled());
    }
}

// The bookmarks from the front of the list, as name@active,anchor.
std::vector<std::string> Marks(const CBookmarkManager& marks) {
    std::vector<std::string> out;
    for (long i = 0; i < marks.GetCount(); ++i) {
        const CBookmark* b = marks.GetAt(i);
        out.push_back(b->GetName() + "@" + std::to_string(b->GetRange()->GetActive()) + "," +
                      std::to_string(b->GetRange()->GetAnchor()));
    }
    return out;
}

// Thousands of bookmarks with names of every length class, and blocks nested ten deep around
// hundreds of siblings, come back from a record: the bookmarks in the reverse of their order.
TEST_F(ExtraInfo, BookmarksAndNestedBlocksComeBack) {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += "<p>line " + std::to_string(i) + "</p>\r\n";
    Open(text);
    const long length = static_cast<long>(text.size());
    const size_t nameLengths[] = {0, 1, 254, 255, 256, 65534, 65535, 65536};
    for (int i = 0; i < 2000; ++i) {
        const long pos = i * 37 % length;
        const std::string name = i < 8 ? std::string(nameLengths[i], 'n') + std::to_string(i) : "mark " + std::to_string(i);
        ASSERT_NE(ctrl->m_Bookmarks.Add(pos, pos / 2, name), nullptr);
    }
    for (long i = 0; i < 500; ++i) ASSERT_TRUE(ctrl->m_CollapseRoot.Collapse(100 + i * 60, 100 + i * 60 + 40));
    for (long depth = 9; depth >= 0; --depth) ASSERT_TRUE(ctrl->m_CollapseRoot.Collapse(depth * 5, length - depth * 5));
    ctrl->SetSelection(77, 12);
    const std::string tree = CollapseTreeText(ctrl->m_CollapseRoot);
    std::vector<std::string> marks = Marks(ctrl->m_Bookmarks);

    ComPtr<IStream> stream = CreateMemoryStream();
    ASSERT_TRUE(ctrl->SaveExtraInfoTo(stream.Get()));
    ctrl->m_Bookmarks.RemoveAll();
    ctrl->m_CollapseRoot.RemoveAllChildren();
    ctrl->SetSelection(0, 0);
    stream->Seek(0, STREAM_SEEK_SET, nullptr);
    ASSERT_TRUE(ctrl->LoadExtraInfoFrom(stream.Get()));

    EXPECT_EQ(Selection(), std::make_pair(77L, 12L));
    EXPECT_EQ(CollapseTreeText(ctrl->m_CollapseRoot), tree);
    std::reverse(marks.begin(), marks.end());
    EXPECT_EQ(Marks(ctrl->m_Bookmarks), marks);
    // The layout is that of the text with those blocks folded.
    CLineIndex fresh;
    ctrl->WrapAll(ctrl->GetOptionsWord(), ctrl->BreakWidth(), &fresh);
    EXPECT_EQ(fresh.m_nCount, ctrl->GetLineCount());
}

TEST_F(ExtraInfo, BadStoresGiveFalse) {
    int32_t handle = 0;
    EXPECT_FALSE(CallBool("SaveExtraInfo", {Variant::Unknown(nullptr)}));
    EXPECT_FALSE(CallBool("LoadExtraInfo", {Variant::Unknown(static_cast<IDispatch*>(doc.Get()))}));  // not a stream
    EXPECT_FALSE(CallBool("LoadExtraInfoFromFile", {Variant::Str(TempPath("missing"))}));
    EXPECT_FALSE(CallBool("SaveExtraInfoToFile", {Variant::Str("/nonexistent-folder/x")}));
    EXPECT_FALSE(CallBool("LoadExtraInfoFromMemory", {Variant::Long(0), Variant::Long(28)}));
    EXPECT_FALSE(CallBool("LoadExtraInfoFromRegKey", {Variant::Long(1)}));
    EXPECT_FALSE(CallBool("SaveExtraInfoToRegKey", {Variant::Long(1)}));
    ASSERT_TRUE(CallBool("SaveExtraInfoToMemory", {Variant::RefLong(&handle)}));
    // A size of nothing, and one past the block's end.
    EXPECT_FALSE(CallBool("LoadExtraInfoFromMemory", {Variant::Long(handle), Variant::Long(0)}));
    EXPECT_FALSE(CallBool("LoadExtraInfoFromMemory", {Variant::Long(handle), Variant::Long(29)}));
    GlobalFree(static_cast<HGLOBAL>(handle));
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
}

TEST_F(ExtraInfo, WithoutADocumentEveryStoreGivesFalseAndWritesNothing) {
    ctrl->SetDocument(nullptr);
    ComPtr<IStream> stream = CreateMemoryStream();
    const std::string path = TempPath("nodoc");
    int32_t handle = 0;
    EXPECT_FALSE(CallBool("SaveExtraInfo", {Variant::Unknown(stream.Get())}));
    EXPECT_FALSE(CallBool("SaveExtraInfoToFile", {Variant::Str(path)}));
    EXPECT_FALSE(CallBool("SaveExtraInfoToMemory", {Variant::RefLong(&handle)}));
    EXPECT_TRUE(MemoryStreamContents(stream.Get()).empty());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(handle, 0);
}

}  // namespace
