// Properties: the checks of the setters, the errors they raise, and persistence to a bag.
#include "tests/view/viewtest.h"

namespace {

TEST(Properties, InvalidValuesRaiseTheDocumentedErrorsAndChangeNothing) {
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    IDispatch* d = control.Get();
    struct Case {
        const char* name;
        Variant bad;
        SCODE scode;
        const char* text;
    };
    const Case cases[] = {
        {"TabSize", Variant::Short(0), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"ScrollMarginVertical", Variant::Short(-1), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"ScrollByHorizontal", Variant::Short(-1), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"RightMargin", Variant::Long(-1), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"GutterSize", Variant::Long(-1), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"HighlightStyle", Variant::Short(4), CTL_E_INVALIDPROPERTYVALUE, ""},
        {"ColumnMax", Variant::Long(0x7FFFFFFF), CTL_E_INVALIDPROPERTYVALUE,
         "Maximum column must be greater than or equal to 5 and small than or equal to 2048"},
        {"CodeCompletionMode", Variant::Short(3), 0, "Code Completion Mode is out of Range (0 - 2)"},
        {"CodeCompletionTimeDelay", Variant::Long(499), 0, "Code Completion Delay Time is out of Range (500 - Anything)"},
        {"LineCount", Variant::Long(3), CTL_E_SETNOTSUPPORTED, ""},
    };
    for (const Case& c : cases) {
        Variant before = GetProperty(d, c.name);
        ExcepInfo ex;
        EXPECT_EQ(PutProperty(d, c.name, c.bad, &ex), DISP_E_EXCEPTION) << c.name;
        EXPECT_EQ(ex.scode, c.scode) << c.name;
        EXPECT_EQ(ex.description, c.text) << c.name;
        int32_t was = 0, is = 0;
        before.ToLong(&was);
        GetProperty(d, c.name).ToLong(&is);
        EXPECT_EQ(was, is) << c.name;
    }
    CZentrelCtrl* ctrl = AsControl(d);
    EXPECT_THROW(ctrl->GetFormatStyleName(16), AutomationError);
    try {
        ctrl->GetSyntaxPickerColor(16);
        ADD_FAILURE();
    } catch (const AutomationError& e) {
        EXPECT_EQ(e.Text(), "Color index is out of range. (0 - 16)");
    }
    EXPECT_EQ(ctrl->GetFormatStyleName(15), "Collapsed text block");
}

TEST(Properties, SettersStoreWhatTheyPromise) {
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    EXPECT_FALSE(ctrl->IsModified());
    ctrl->SetScrollByHorizontal(120);
    EXPECT_EQ(ctrl->GetScrollByHorizontal(), 10);
    EXPECT_TRUE(ctrl->IsModified());
    ctrl->SetHighlightStyle(3);
    EXPECT_EQ(ctrl->GetHighlightStyle(), 3);
    ctrl->SetHighlightStyle(3);  // unchanged: compared before checked
    EXPECT_EQ(PutProperty(control.Get(), "TagAttrCase", Variant::Short(2)), S_OK);
    EXPECT_EQ(GetProperty(control.Get(), "TagAttrCase").ShortVal(), 0);
    EXPECT_EQ(GetProperty(control.Get(), "FormatCount").ShortVal(), 16);
    EXPECT_EQ(GetProperty(control.Get(), "ColumnMax").LongVal(), 0x7FFFFFFF);
    EXPECT_EQ(GetProperty(control.Get(), "GutterFont").DispatchVal(), nullptr);

    // The options are bits of one word; AutoConvert is a toggle with an event.
    CEventLog log;
    DWORD cookie = ctrl->AdviseEvents(&log);
    EXPECT_EQ(PutProperty(control.Get(), "WordWrap", Variant::Bool(true)), S_OK);
    EXPECT_TRUE(ctrl->GetOptionsWord() & OPT_WORDWRAP);
    ctrl->SetOption(OPT_AUTOCONVERT, TRUE);
    ctrl->SetOption(OPT_AUTOCONVERT, TRUE);
    EXPECT_EQ(log.Of(EVENT_AUTOCONVERTTOGGLED).size(), 1u);
    ctrl->UnadviseEvents(cookie);

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

    std::string bytes = bag.Serialize();
    CPropertyBag parsed;
    EXPECT_FALSE(CPropertyBag::Parse(bytes.substr(0, bytes.size() / 2), &parsed, &error));
}

}  // namespace
