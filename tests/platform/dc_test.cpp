// The test fonts' formulas, from cases/fonts.cases; the rest of the device context base is played
// from cases/drawing.script.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <sstream>

#include "platform/testing/testplatform.h"
#include "tests/platform/casefile.h"
#include "tests/platform/fontrequest.h"

namespace {

// What a font says of itself, as the facts of cases/fonts.cases.
std::set<std::string> FactsOf(CDC& dc, const LOGFONTA& request) {
    CFont font;
    if (!font.CreateFontIndirect(&request)) return {font.IsValid() ? "valid" : "missing"};
    CFont* before = dc.SelectObject(&font);
    const TEXTMETRICA& tm = font.Impl()->Metrics();
    std::set<std::string> facts{"height=" + std::to_string(tm.tmHeight), "ascent=" + std::to_string(tm.tmAscent),
                                "descent=" + std::to_string(tm.tmDescent), "ave=" + std::to_string(tm.tmAveCharWidth),
                                "overhang=" + std::to_string(tm.tmOverhang), "pitch=" + std::to_string(tm.tmPitchAndFamily),
                                "truetype=" + std::to_string((tm.tmPitchAndFamily & TMPF_TRUETYPE) != 0),
                                "fixedbit=" + std::to_string(tm.tmPitchAndFamily & TMPF_FIXED_PITCH)};
    for (const char c : std::string("aimW ")) {
        const std::string name = c == ' ' ? "space" : std::string(1, c);
        facts.insert("adv(" + name + ")=" + std::to_string(font.Impl()->Advance(static_cast<BYTE>(c))));
        int width = 0;
        facts.insert(dc.GetCharWidth(c, c, &width) ? "w(" + name + ")=" + std::to_string(width) : "w=none");
    }
    std::vector<ABC> abc(256);
    const ABC& m = abc['m'];
    facts.insert(dc.GetCharABCWidths(0, 255, abc.data())
                     ? "abc(m)=" + std::to_string(m.abcA) + "/" + std::to_string(m.abcB) + "/" + std::to_string(m.abcC)
                     : "abc=none");
    if (before) dc.SelectObject(before);
    return facts;
}

TEST(TestFonts, TheyFollowTheirFormulas) {
    CTestPlatformScope scope;
    CTestDC dc(std::make_shared<CTestSurface>(20, 20), nullptr);
    for (const CaseRow& row : ReadCaseRows("platform/cases/fonts.cases")) {
        const std::set<std::string> facts = FactsOf(dc, FontRequest(row[1].c_str(), row.Long(2), row.Long(3)));
        std::istringstream wanted(row[4]);
        for (std::string fact; wanted >> fact;) EXPECT_EQ(facts.count(fact), 1u) << row.where << ": " << fact;
    }
}

}  // namespace
