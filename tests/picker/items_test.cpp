// The picker's row objects and the pages' rows over a small schema of our own: texts, help,
// formatting with case and quotes, recent values, and the module's count of live items.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/com/classfactory.h"
#include "src/picker/pickericons.h"
#include "src/picker/valuepages.h"

namespace {

// A schema object with a name, a type, children and, optionally, a colour.
class CFakeSchema final : public ISourceSchema, public ISourceSchemaColor {
public:
    CFakeSchema(std::string name, long type, long rgb = -1) : m_name(std::move(name)), m_type(type), m_rgb(rgb) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_ISourceSchema) return HandOut(static_cast<ISourceSchema*>(this), ppv);
        if (riid == IID_ISourceSchemaColor && m_rgb >= 0) return HandOut(static_cast<ISourceSchemaColor*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++m_refs; }
    ULONG Release() override {
        const ULONG n = --m_refs;
        if (n == 0) delete this;
        return n;
    }
    long GetType() override { return m_type; }
    HRESULT GetName(std::string* out) override { *out = m_name; return S_OK; }
    HRESULT GetDescription(std::string* out) override { *out = "about " + m_name; return S_OK; }
    long GetChildCount() override { return m_claimed >= 0 ? m_claimed : static_cast<long>(m_children.size()); }
    // Claims more children than it has, as a schema that answers errors for some does.
    void Claim(long count) { m_claimed = count; }
    HRESULT GetChildName(std::string* out, long index) override {
        if (index < 0 || index >= static_cast<long>(m_children.size())) return E_INVALIDARG;
        return m_children[static_cast<size_t>(index)]->GetName(out);
    }
    long FindChild(const char* name, ISourceSchema** out) override {
        for (const auto& c : m_children)
            if (c->m_name == name) return HandOut(static_cast<ISourceSchema*>(c.Get()), reinterpret_cast<void**>(out)), 0;
        return 1;
    }
    long GetRed() override { return m_rgb >> 16 & 0xFF; }
    long GetGreen() override { return m_rgb >> 8 & 0xFF; }
    long GetBlue() override { return m_rgb & 0xFF; }
    void Add(CFakeSchema* child) { m_children.emplace_back(child); }

private:
    ~CFakeSchema() = default;
    std::string m_name;
    long m_type;
    long m_rgb;
    std::vector<ComPtr<CFakeSchema>> m_children;
    long m_claimed = -1;
    ULONG m_refs = 0;
};

std::string TextOf(CHTMLSyntaxPickItem& item) {
    std::string s;
    item.GetText(s);
    return s;
}
std::string HelpOf(CHTMLSyntaxPickItem& item) {
    std::string s;
    item.GetDescription(s);
    return s;
}
std::string Rows(const CHTMLSyntaxPickPage& page) {
    std::string s;
    for (int i = 0; i < page.GetCount(); ++i) s += (i ? "|" : "") + page.Row(i).text;
    return s;
}

TEST(PickItems, TextsAndHelpOfEachKind) {
    ComPtr<CFakeSchema> alone(new CFakeSchema("nowrap", 0)), valued(new CFakeSchema("align", 1));
    auto attr = MakePickItem<CHTMLSyntaxAttrItem>();
    attr->SetSchema(alone.Get());
    EXPECT_EQ(TextOf(*attr), "nowrap");
    attr->SetSchema(valued.Get());
    EXPECT_EQ(TextOf(*attr), "align=");
    EXPECT_EQ(HelpOf(*attr), "about align");
    attr->SetSchema(nullptr);  // changes nothing
    EXPECT_EQ(attr->GetSchema(), valued.Get());

    auto empty = MakePickItem<CHTMLSyntaxLookupItem>();
    EXPECT_EQ(TextOf(*empty), "");
    EXPECT_EQ(HelpOf(*empty), "");

    auto red = MakePickItem<CHTMLSyntaxColorItem>();
    red->SetColor(0x0000FF);
    EXPECT_EQ(TextOf(*red), "#FF0000");
    EXPECT_EQ(HelpOf(*red), "Red=FF, Green=00, Blue=00");
    red->SetText("red");
    EXPECT_EQ(TextOf(*red), "red");

    ComPtr<CFakeSchema> noColour(new CFakeSchema("x", 5)), teal(new CFakeSchema("teal", 5, 0x008080));
    red->SetColorFromSchema(teal.Get());
    EXPECT_EQ(red->GetColor(), 0x808000u);
    red->SetColorFromSchema(noColour.Get());
    EXPECT_EQ(red->GetColor(), 0u);

    auto font = MakeFontItem(std::string(40, 'F'));
    EXPECT_EQ(TextOf(*font), std::string(LF_FACESIZE - 1, 'F'));
    EXPECT_EQ(font->GetLogFont().lfHeight, 15);
}

TEST(PickItems, EveryLiveItemHoldsTheModule) {
    const LONG before = ModuleObjectCount();
    {
        auto item = MakePickItem<CHTMLSyntaxTextItem>();
        EXPECT_EQ(ModuleObjectCount(), before + 1);
        EXPECT_EQ(CanUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(ModuleObjectCount(), before);
}

// The colour page in its five forms, over a schema of two named colours.
TEST(PickPages, ColourFormsFormatTheirRows) {
    ComPtr<CFakeSchema> attr(new CFakeSchema("bgcolor", 5));
    attr->Add(new CFakeSchema("Red", 5, 0xFF0000));
    attr->Add(new CFakeSchema("Navy", 5, 0x000080));
    CHTMLSyntaxColorPage page;
    page.SetOption(COLORFORM_HEXUPPER);
    page.SetSource(attr.Get(), "\"%s\"");
    EXPECT_EQ(Rows(page), "More...|\"#000080\"|\"#FF0000\"");
    page.SetOption(COLORFORM_NAMELOWER);
    EXPECT_EQ(Rows(page), "More...|\"navy\"|\"red\"");
    page.SetOption(COLORFORM_HEXLOWER);
    page.SetSource(attr.Get(), "'%s'");
    EXPECT_EQ(Rows(page), "More...|'#000080'|'#ff0000'");
    EXPECT_EQ(page.GetOptionName(COLORFORM_NAMEUPPER), "&Name in Uppercase");
}

// Recent values: newest first behind More..., at most four, and a pick moves one to the front.
TEST(PickPages, RecentValuesKeepTheirOrder) {
    ComPtr<CFakeSchema> attr(new CFakeSchema("src", 12));
    attr->Add(new CFakeSchema("z.gif", 0));
    CHTMLSyntaxFilePage page;
    page.SetSource(attr.Get(), "%s");
    std::vector<ComPtr<CHTMLSyntaxTextItem>> items;
    for (const char* path : {"a", "b", "c", "d", "e"}) {
        items.push_back(MakePickItem<CHTMLSyntaxTextItem>());
        items.back()->SetText(path);
        page.AddRecent(items.back().Get());
    }
    EXPECT_EQ(Rows(page), "More...|e|d|c|b|z.gif");
    page.SetCurSel(3);  // c
    std::string value;
    ASSERT_TRUE(page.GetValue(value));
    EXPECT_EQ(value, "c");
    EXPECT_EQ(Rows(page), "More...|c|e|d|b|z.gif");
    page.SetSource(attr.Get(), "\"%s\"");
    EXPECT_EQ(Rows(page), "More...|\"c\"|\"e\"|\"d\"|\"b\"|\"z.gif\"");
    EXPECT_EQ(page.RecentCount(), 4u);
}

TEST(PickPages, CaseOptionsAndSpecialPages) {
    ComPtr<CFakeSchema> tag(new CFakeSchema("td", 0));
    tag->Add(new CFakeSchema("valign", 1));
    tag->Add(new CFakeSchema("nowrap", 0));
    CHTMLSyntaxAttrPage attrs;
    attrs.SetSource(tag.Get(), {});
    EXPECT_EQ(Rows(attrs), "NOWRAP|VALIGN=");
    EXPECT_TRUE(attrs.NextOption());
    EXPECT_EQ(Rows(attrs), "nowrap|valign=");
    EXPECT_TRUE(attrs.NextOption());
    EXPECT_EQ(attrs.GetOption(), 0);

    CHTMLSyntaxSizePage sizes;
    sizes.SetSource(tag.Get(), "'%s'");
    EXPECT_EQ(sizes.GetCount(), 2 + 15);
    EXPECT_EQ(sizes.Row(16).text, "'-7'");
    EXPECT_FALSE(sizes.NextOption());  // one option only

    CHTMLSyntaxPixelPage pixels;
    pixels.SetRowHeight(10);
    pixels.SetSource(tag.Get(), {});
    EXPECT_EQ(pixels.Row(pixels.GetCount() - 1).text, "7");
}

// Children whose names or objects the schema refuses are left out; the list holds the rest.
TEST(PickPages, ASchemaThatAnswersErrorsGivesTheRowsItCan) {
    ComPtr<CFakeSchema> tag(new CFakeSchema("td", 0));
    tag->Add(new CFakeSchema("valign", 1));
    tag->Claim(5);
    CHTMLSyntaxAttrPage attrs;
    EXPECT_TRUE(attrs.SetSource(tag.Get(), {}));
    EXPECT_EQ(Rows(attrs), "VALIGN=");
    EXPECT_FALSE(attrs.SetSource(tag.Get(), {}));  // the same object and format: no refill
}

TEST(PickIcons, EveryIdDrawsAndValuesFindTheirs) {
    EXPECT_EQ(EnumValueIcon("\"left\""), 246u);
    EXPECT_EQ(EnumValueIcon("'left'"), IDB_PICK_DEFAULT);
    EXPECT_EQ(EnumValueIcon("\"\""), IDB_PICK_DEFAULT);
    EXPECT_EQ(AttrTypeIcon(5), 277u);
    EXPECT_EQ(AttrTypeIcon(22), 0u);
    for (UINT id = 246; id <= 357; ++id) {
        const PixelPicture small = PickerIconPicture(id, 1), fine = PickerIconPicture(id, 2);
        ASSERT_EQ(small.cx, kPickIconSize) << id;
        EXPECT_EQ(fine.cx, 2 * kPickIconSize) << id;
        EXPECT_NE(std::count(small.pixels.begin(), small.pixels.end(), 0xFFFFFFu), kPickIconSize * kPickIconSize) << id;
    }
    EXPECT_EQ(PickerIconPicture(100, 1).cx, 0);
}

}  // namespace
