// A view's extra info through each store, as a host calls it: what a load restores, and that a
// refused record, a missing document or a bad store leave the view as it was.
#include <gtest/gtest.h>

#include <cstdio>
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

// Until the bookmark list and the collapse tree can take entries, a record that holds some is
// refused rather than loaded without them.
TEST_F(ExtraInfo, ARecordWithAnnotationsTheViewCannotTakeIsRefused) {
    ComPtr<IStream> stream = CreateMemoryStream();
    ASSERT_EQ(WriteExtraInfo(stream.Get(), {1, 1, {{"b", 2, 2}}, {}}), ExtraInfoError::None);
    stream->Seek(0, STREAM_SEEK_SET, nullptr);
    EXPECT_FALSE(ctrl->LoadExtraInfo(stream.Get()));
    EXPECT_EQ(Selection(), std::make_pair(9L, 3L));
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
