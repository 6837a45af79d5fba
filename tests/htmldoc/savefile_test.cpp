// Saving over a file as an editor must: its permissions stay, a symbolic link stays a link to a
// target that gets the new text, and a save that fails part way leaves the old file as it was.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "htmldoc/htmldocument.h"
#include "tests/htmldoc/tempfolder.h"

namespace {

namespace fs = std::filesystem;

class SaveFile : public ::testing::Test, protected CTempFolder {
protected:
    SaveFile() : CTempFolder("savefile_test") {}
    size_t FilesInDir() const { return static_cast<size_t>(std::distance(fs::directory_iterator(dir), fs::directory_iterator())); }
};

TEST_F(SaveFile, PermissionsStay) {
    for (mode_t mode : {0640, 0755, 0600}) {
        const std::string path = Write("page.htm", "<p>old</p>");
        ASSERT_EQ(::chmod(path.c_str(), mode), 0);
        auto doc = CreateHtmlDocument();
        ASSERT_EQ(doc->LoadFile(path), S_OK);
        doc->InsertText(0, "x", 1, nullptr);
        std::string error;
        ASSERT_EQ(doc->SaveFile("", &error), S_OK) << error;
        struct stat st;
        ASSERT_EQ(::stat(path.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 07777, mode);
        EXPECT_EQ(ReadAll(path), "x<p>old</p>");
        EXPECT_EQ(FilesInDir(), 1u);
    }
}

TEST_F(SaveFile, ALinkStaysALinkToItsNewTarget) {
    const std::string target = Write("target.htm", "<p>old</p>");
    fs::create_directories(dir / "elsewhere");
    const fs::path link = dir / "elsewhere" / "link.htm";
    fs::create_symlink("../target.htm", link);
    auto doc = CreateHtmlDocument();
    ASSERT_EQ(doc->LoadFile(link.string()), S_OK);
    doc->InsertText(0, "x", 1, nullptr);
    std::string error;
    ASSERT_EQ(doc->SaveFile("", &error), S_OK) << error;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(fs::read_symlink(link), "../target.htm");
    EXPECT_EQ(ReadAll(target), "x<p>old</p>");
    EXPECT_EQ(doc->PathName(), link.string());
}

// The file size limit makes the write fail part way, as a full disk does.
TEST_F(SaveFile, AFailedWriteLeavesTheOldFile) {
    const std::string old(4096, 'o');
    const std::string path = Write("page.htm", old);
    auto doc = CreateHtmlDocument();
    ASSERT_EQ(doc->LoadFile(path), S_OK);
    doc->SetText(std::string(64 << 10, 'n'));
    struct rlimit saved;
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previous = ::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = saved;
    small.rlim_cur = 8192;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    std::string error;
    const HRESULT hr = doc->SaveFile("", &error);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    ::signal(SIGXFSZ, previous);
    EXPECT_TRUE(FAILED(hr));
    EXPECT_NE(error.find("Cannot write"), std::string::npos) << error;
    EXPECT_EQ(ReadAll(path), old);
    EXPECT_EQ(FilesInDir(), 1u);
    EXPECT_TRUE(doc->IsModified());
}

}  // namespace
