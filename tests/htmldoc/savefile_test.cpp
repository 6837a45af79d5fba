// A save that fails part way leaves the old file as it was. (Permissions and symbolic links that
// a save keeps are in cases/files.cases.)
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
