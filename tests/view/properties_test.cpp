// Properties: the checks of the setters, the errors they raise, and persistence to a bag.
#include "tests/view/viewtest.h"

namespace {

// The values and errors of each property are in the automation walks; here what they leave behind.
TEST(Properties, SettersMarkModifiedAndKeepTheirTables) {
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    EXPECT_FALSE(ctrl->IsModified());
    ctrl->SetScrollByHorizontal(120);
    EXPECT_TRUE(ctrl->IsModified());

    // Exception tags are kept in upper case; only an upper-case name reaches an existing entry.
    ctrl->AddExceptionTag("td", 0x11, 0x22);
    ctrl->AddExceptionTag("TD", 0x33, 0x44);
    ASSERT_EQ(ctrl->m_ExceptionTags.size(), 1u);
    EXPECT_EQ(ctrl->m_ExceptionTags.at("TD").crText, 0x33u);
    ctrl->RemoveAllExceptionTags();
    EXPECT_TRUE(ctrl->m_ExceptionTags.empty());
}

TEST(Persistence, SavedPropertiesLoadIntoAFreshControl) {
    ComPtr<IDispatch> first = MakeControlThroughFactory();
    CZentrelCtrl* a = AsControl(first.Get());
    EXPECT_TRUE(a->GetOption(OPT_CODECOMPLETION));  // on until the first exchange
    a->SetTabSize(8);
    a->SetIndentSize(33);
    a->SetColumnMax(120);
    a->SetHighlightStyle(2);
    a->SetOption(OPT_WORDWRAP | OPT_DISPLAYALL, TRUE);
    a->SetScrollMarginVertical(7);
    a->SetEditFont({"DejaVu Sans Mono", 100000, 700, 1, true});
    CPropertyBag bag;
    ASSERT_EQ(a->SaveProperties(&bag), S_OK);
    EXPECT_FALSE(a->GetOption(OPT_CODECOMPLETION));  // a save is an exchange too

    CPropertyBag reread;
    std::string error;
    ASSERT_TRUE(CPropertyBag::Parse(bag.Serialize(), &reread, &error)) << error;
    ComPtr<IDispatch> second = MakeControlThroughFactory();
    CZentrelCtrl* b = AsControl(second.Get());
    ASSERT_EQ(b->LoadProperties(reread, &error), S_OK) << error;
    EXPECT_EQ(b->GetTabSize(), 8);
    EXPECT_EQ(b->GetIndentSize(), 33);
    EXPECT_EQ(b->GetColumnMax(), 120);
    EXPECT_EQ(b->GetHighlightStyle(), 2);
    EXPECT_EQ(b->GetOptionsWord(), a->GetOptionsWord());
    EXPECT_TRUE(b->GetOption(OPT_WORDWRAP));
    EXPECT_EQ(b->GetEditFont(), a->GetEditFont());
    // The scroll settings never travel: the fields keep their constructor values.
    EXPECT_EQ(b->GetScrollMarginVertical(), 0);
}

TEST(Persistence, LoadForcesTheHighBitsAndClampsSizes) {
    CPropertyBag bag;
    bag.Write("_Options", static_cast<int32_t>(0xFC000000u | OPT_AUTOINDENT));
    bag.Write("TabSize", int16_t{-3});
    bag.Write("IndentSize", int16_t{-9});
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    std::string error;
    ASSERT_EQ(ctrl->LoadProperties(bag, &error), S_OK) << error;
    EXPECT_EQ(ctrl->GetOptionsWord(), OPT_SCREENMETRICS | OPT_AUTOINDENT);
    EXPECT_EQ(ctrl->GetTabSize(), 1);
    EXPECT_EQ(ctrl->GetIndentSize(), 0);
    EXPECT_EQ(ctrl->GetHighlightStyle(), 1);  // missing values load their defaults
}

TEST(Persistence, ABrokenBagIsRefusedAndTheControlKeepsItsValues) {
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    ctrl->SetTabSize(9);
    CPropertyBag bag;
    ctrl->SaveProperties(&bag);
    DWORD options = ctrl->GetOptionsWord();

    CPropertyBag wrongKind = bag;
    wrongKind.Write("TabSize", std::string("nine"));
    wrongKind.Write("_Options", int32_t{0});
    std::string error;
    EXPECT_EQ(ctrl->LoadProperties(wrongKind, &error), E_INVALIDARG);
    EXPECT_NE(error.find("TabSize"), std::string::npos);
    CPropertyBag newer = bag;
    newer.Write("_Version", int32_t{0x00020000});
    EXPECT_EQ(ctrl->LoadProperties(newer, &error), E_INVALIDARG);
    EXPECT_EQ(ctrl->GetTabSize(), 9);
    EXPECT_EQ(ctrl->GetOptionsWord(), options);
}

}  // namespace
