// zentrel-edit --printer end to end on a real print server: a cupsd of the test's own (its own
// configuration, spool and socket, so that nothing of the machine's printing is touched) with a
// PDF printer queue that writes each job to a file; a known document printed to that queue, and
// the file's text read back. Skipped, with the reason, where cupsd cannot be started: not root,
// or cups, its PDF printer description or poppler's tools not installed.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/print/shell.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using printtest::Outcome;
using printtest::Quote;
using printtest::Shell;

// The printer description of cups-filters for a printer that takes PDF as it is.
constexpr const char* kPdfPrinterPpd = "/usr/share/ppd/cupsfilters/Generic-PDF_Printer-PDF.ppd";
constexpr const char* kQueue = "ZentrelTestPDF";
// How long the server may take to answer, and a job to reach its file.
constexpr auto kServerWait = std::chrono::seconds(15);
constexpr auto kJobWait = std::chrono::seconds(60);
// cupsd ends by itself after this many seconds should the test die before stopping it.
constexpr const char* kServerLifetime = "300";

// Asks `ready` every tenth of a second until it says yes or `limit` has passed.
template <class Ready>
bool WaitFor(std::chrono::seconds limit, Ready ready) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        if (ready()) return true;
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
}

class CupsPrint : public ::testing::Test {
protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "printing to a CUPS queue: cupsd and lpadmin need root here, and this runs as a user";
        if (Shell("command -v cupsd && command -v lpadmin && command -v lpstat").code != 0)
            GTEST_SKIP() << "printing to a CUPS queue: cups is not installed (cupsd, lpadmin, lpstat)";
        if (!fs::exists(kPdfPrinterPpd)) GTEST_SKIP() << "printing to a CUPS queue: cups-filters' PDF printer is missing: " << kPdfPrinterPpd;
        if (Shell("command -v pdftotext").code != 0) GTEST_SKIP() << "printing to a CUPS queue: pdftotext (poppler-utils) is not installed";
        folder = fs::temp_directory_path() / ("zentrel-cups-" + std::to_string(::getpid()));
        fs::create_directories(folder / "out");
        for (const char* sub : {"spool", "tmp", "cache", "state"}) fs::create_directories(folder / sub);
        // The server writes the queue's file as its own user.
        fs::permissions(folder, fs::perms::all);
        fs::permissions(folder / "out", fs::perms::all);
        WriteConfiguration();
        StartServer();
        // lpstat ends with 0 either way; its words tell.
        if (!WaitFor(kServerWait, [&] { return Cups("lpstat -r").output.rfind("scheduler is running", 0) == 0; }))
            GTEST_SKIP() << "printing to a CUPS queue: cupsd did not start:\n" << Log();
        const Outcome added = Cups("lpadmin -p " + std::string(kQueue) + " -E -v " + Quote("file://" + Output()) + " -P " + kPdfPrinterPpd);
        ASSERT_EQ(added.code, 0) << added.output << Log();
    }
    void TearDown() override {
        if (server > 0) {
            ::kill(server, SIGTERM);
            ::waitpid(server, nullptr, 0);
        }
        if (!folder.empty()) fs::remove_all(folder);
    }

    void WriteConfiguration() {
        const std::string root = folder.string();
        std::ofstream(folder / "cups-files.conf") << "ServerRoot " << root << "\nRequestRoot " << root << "/spool\nTempDir " << root
                                                  << "/tmp\nCacheDir " << root << "/cache\nStateDir " << root << "/state\nErrorLog "
                                                  << root << "/error_log\nAccessLog " << root << "/access_log\nPageLog " << root
                                                  << "/page_log\nPrintcap " << root << "/printcap\nFileDevice Yes\n";
        std::ofstream(folder / "cupsd.conf") << "Listen " << Socket() << "\nBrowsing No\nWebInterface No\nLogLevel info\n"
                                             << "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                                             << "<Location /admin>\n  Order allow,deny\n  Allow all\n</Location>\n";
    }
    void StartServer() {
        const std::string conf = (folder / "cupsd.conf").string(), files = (folder / "cups-files.conf").string();
        std::vector<std::string> args = {"timeout", kServerLifetime, "cupsd", "-f", "-c", conf, "-s", files};
        std::vector<char*> argv;
        for (std::string& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        if (::posix_spawnp(&server, "timeout", nullptr, nullptr, argv.data(), environ) != 0) server = 0;
    }
    // A command of the cups client tools, or one that prints, talking to the test's server.
    Outcome Cups(const std::string& command) { return Shell("CUPS_SERVER=" + Quote(Socket()) + " timeout 60 " + command); }
    std::string Socket() const { return (folder / "cups.sock").string(); }
    std::string Output() const { return (folder / "out" / "job.pdf").string(); }
    std::string Log() const {
        std::ifstream in(folder / "error_log");
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    std::string Write(const std::string& name, const std::string& text) {
        const fs::path path = folder / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }
    Outcome PrintTo(const std::string& queue, const std::string& options, const std::string& file) {
        return Cups("env QT_QPA_PLATFORM=offscreen " + std::string(ZENTREL_EDIT) + " --printer " + Quote(queue) + " " + options + " " +
                    Quote(file));
    }

    fs::path folder;
    pid_t server = 0;
};

TEST_F(CupsPrint, ADocumentPrintedToAQueueComesOutOfItsPrinter) {
    std::string text;
    for (int i = 1; i <= 120; ++i) text += "queue line " + std::to_string(i) + "\n";
    const std::string file = Write("queued.html", text);
    // The footer's box starts one footer distance below the text: a quarter inch keeps it inside
    // the half inch at the paper's foot that this printer cannot reach.
    const Outcome run = PrintTo(kQueue, "--columns 2 --header 'Queued <PAGE>' --footer 'of <DOCPATHNAME>' --footer-distance 0.25", file);
    ASSERT_EQ(run.code, 0) << run.output;
    EXPECT_NE(run.output.find(std::string("printer ") + kQueue), std::string::npos) << run.output;

    // The job is done when the queue is empty and its file is there.
    const bool done = WaitFor(kJobWait, [&] {
        return Cups(std::string("lpstat -o ") + kQueue).output.empty() && fs::exists(Output()) && fs::file_size(Output()) > 0;
    });
    ASSERT_TRUE(done) << "no job came out of the queue within " << kJobWait.count() << " s\n" << Log();
    const std::string printed = Shell("pdftotext " + Quote(Output()) + " -").output;
    for (const std::string& expected : {std::string("queue line 1\n"), std::string("queue line 120"), std::string("Queued 1"),
                                        std::string("Queued 2"), "of " + file})
        EXPECT_NE(printed.find(expected), std::string::npos) << expected << " in:\n" << printed;
}

TEST_F(CupsPrint, AQueueThatDoesNotExistIsNamedInTheError) {
    const Outcome run = PrintTo("NoSuchQueue", "", Write("doc.html", "<p>x</p>\n"));
    EXPECT_EQ(run.code, 1);
    EXPECT_NE(run.output.find("there is no printer queue NoSuchQueue"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find(kQueue), std::string::npos) << "the queues there are: " << run.output;
}

}  // namespace
