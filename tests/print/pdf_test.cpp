// zentrel-edit --print-pdf end to end: the PDF that the print engine writes, read back as text
// (pdftotext) and pictures (pdftoppm): pages, columns, header and footer, colours; and the
// command line's answers to bad input. Skipped where poppler's tools are missing.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include "tests/platform/casefile.h"
#include "tests/print/shell.h"

namespace {

namespace fs = std::filesystem;

using printtest::Outcome;
using printtest::Quote;
using printtest::Shell;

class PdfPrint : public ::testing::Test {
protected:
    void SetUp() override {
        if (Shell("command -v pdftotext && command -v pdftoppm && command -v pdfinfo").code != 0)
            GTEST_SKIP() << "poppler-utils (pdftotext, pdftoppm, pdfinfo) are not installed";
        folder = fs::temp_directory_path() / ("zentrel-pdf-" + std::to_string(::getpid()));
        fs::create_directories(folder);
    }
    void TearDown() override {
        if (!folder.empty()) fs::remove_all(folder);
    }
    std::string Write(const std::string& name, const std::string& text) {
        const fs::path path = folder / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    }
    Outcome Print(const std::string& options, const std::string& file) {
        return Shell("QT_QPA_PLATFORM=offscreen " + std::string(ZENTREL_EDIT) + " --print-pdf " + Quote(Pdf()) + " " + options + " " +
                     Quote(file));
    }
    std::string Pdf() const { return (folder / "out.pdf").string(); }
    int Pages() {
        std::smatch m;
        const std::string info = Shell("pdfinfo " + Quote(Pdf())).output;
        return std::regex_search(info, m, std::regex("Pages:\\s+(\\d+)")) ? std::stoi(m[1]) : -1;
    }
    // The text of one page, as laid out on it.
    std::string PageText(int page) {
        const std::string p = std::to_string(page);
        return Shell("pdftotext -layout -f " + p + " -l " + p + " " + Quote(Pdf()) + " -").output;
    }
    // Whether a page has pixels of some colour (not black, white or grey).
    bool HasColour(int page) {
        const std::string stem = (folder / "page").string(), p = std::to_string(page);
        Shell("pdftoppm -r 40 -f " + p + " -l " + p + " -singlefile " + Quote(Pdf()) + " " + Quote(stem));
        std::ifstream in(stem + ".ppm", std::ios::binary);
        std::string magic;
        int w = 0, h = 0, max = 0;
        in >> magic >> w >> h >> max;
        in.get();
        std::vector<unsigned char> pixels(static_cast<size_t>(w) * h * 3);
        in.read(reinterpret_cast<char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
        for (size_t i = 0; i + 2 < pixels.size(); i += 3)
            if (std::max({pixels[i], pixels[i + 1], pixels[i + 2]}) - std::min({pixels[i], pixels[i + 1], pixels[i + 2]}) > 60) return true;
        return false;
    }

    fs::path folder;
};

// The body lines "line NNN" of a page's text, in reading order of the layout's rows.
std::vector<int> NumbersOnRow(const std::string& row) {
    std::vector<int> numbers;
    static const std::regex line("line (\\d{3})");
    for (auto it = std::sregex_iterator(row.begin(), row.end(), line); it != std::sregex_iterator(); ++it)
        numbers.push_back(std::stoi((*it)[1]));
    return numbers;
}

TEST_F(PdfPrint, LinesFillTwoColumnsPageByPageWithHeaderAndFooterTokens) {
    std::string text;
    const int total = 250;
    for (int i = 1; i <= total; ++i) {
        char line[16];
        std::snprintf(line, sizeof line, "line %03d\n", i);
        text += line;
    }
    const std::string file = Write("lines.html", text);
    const Outcome run = Print("--columns 2 --header 'Head <page> <DocPathName>\\n<DATETIME>' --footer 'Foot <PAGE> <unknown>end'", file);
    ASSERT_EQ(run.code, 0) << run.output;
    const int pages = Pages();
    ASSERT_GT(pages, 1);

    std::vector<int> seen;
    std::string dateTime;
    int perColumn = 0;
    for (int page = 1; page <= pages; ++page) {
        const std::string body = PageText(page);
        EXPECT_NE(body.find("Head " + std::to_string(page) + " " + file), std::string::npos) << page;
        EXPECT_NE(body.find("Foot " + std::to_string(page) + " end"), std::string::npos) << page;
        std::smatch m;
        ASSERT_TRUE(std::regex_search(body, m, std::regex("\\d+/\\d+/\\d+ \\d+:\\d+:\\d+"))) << body;
        if (page == 1) dateTime = m[0];
        EXPECT_EQ(m[0], dateTime) << "one time on every page";
        // Row by row: the left column's line and, beside it, the right column's.
        std::vector<int> left, right;
        std::istringstream rows(body);
        for (std::string row; std::getline(rows, row);) {
            const std::vector<int> numbers = NumbersOnRow(row);
            if (!numbers.empty()) left.push_back(numbers[0]);
            if (numbers.size() > 1) right.push_back(numbers[1]);
        }
        if (page == 1) perColumn = static_cast<int>(left.size());
        if (page < pages) {
            EXPECT_EQ(static_cast<int>(left.size()), perColumn) << page;
            EXPECT_EQ(static_cast<int>(right.size()), perColumn) << page;
        }
        seen.insert(seen.end(), left.begin(), left.end());
        seen.insert(seen.end(), right.begin(), right.end());
    }
    std::vector<int> all(total);
    for (int i = 0; i < total; ++i) all[static_cast<size_t>(i)] = i + 1;
    EXPECT_EQ(seen, all) << "each line once, in order, down each column and then across";
    EXPECT_EQ(pages, (total + 2 * perColumn - 1) / (2 * perColumn));
}

TEST_F(PdfPrint, ColoursOnlyWhenAskedAndAnEmptyDocumentIsOnePage) {
    const std::string file = Write("colour.html", "<p class=\"x\">Red <b>bold</b></p>\n<!-- comment -->\n");
    ASSERT_EQ(Print("--no-colour", file).code, 0);
    EXPECT_FALSE(HasColour(1));
    ASSERT_EQ(Print("--colour", file).code, 0);
    EXPECT_TRUE(HasColour(1));
    ASSERT_EQ(Print("--header '' --footer 'Page <PAGE>'", Write("empty.html", "")).code, 0);
    EXPECT_EQ(Pages(), 1);
    EXPECT_NE(PageText(1).find("Page 1"), std::string::npos);
}

TEST_F(PdfPrint, BadInputIsRefusedWithAReason) {
    const std::string file = Write("doc.html", "<p>x</p>\n");
    for (const CaseRow& row : ReadCaseRows("print/cases/texts.cases")) {
        if (row[0] != "badoption") continue;
        const Outcome run = Print(row[1], file);
        EXPECT_EQ(run.code, row.Long(2)) << row.where << ": " << run.output;
        EXPECT_NE(run.output.find(row[3]), std::string::npos) << row.where << ": " << run.output;
    }
    const Outcome unwritable =
        Shell("QT_QPA_PLATFORM=offscreen " + std::string(ZENTREL_EDIT) + " --print-pdf /nonexistent/folder/out.pdf " + Quote(file));
    EXPECT_EQ(unwritable.code, 1);
    EXPECT_NE(unwritable.output.find("cannot write /nonexistent/folder/out.pdf"), std::string::npos) << unwritable.output;
    // An unclosed token drops the rest of its template, and prints.
    ASSERT_EQ(Print("--header 'Kept <PAGE dropped'", file).code, 0);
    const std::string page = PageText(1);
    EXPECT_NE(page.find("Kept"), std::string::npos);
    EXPECT_EQ(page.find("dropped"), std::string::npos);
    // Zero margins print.
    EXPECT_EQ(Print("--margins 0", file).code, 0);
}

}  // namespace
