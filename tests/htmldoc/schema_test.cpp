// The schema as the picker walks it: the root through dispatch property 1, tags, attributes
// with their types and descriptions, values, and named colours with their RGB values.
#include <gtest/gtest.h>

#include "htmldoc/htmldocument.h"

namespace {

ComPtr<ISourceSchema> Root() {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    ComPtr<IDispatch> schema;
    EXPECT_EQ(doc->GetSchema(schema.Out()), S_OK);
    std::vector<Variant> args;
    Variant root;
    EXPECT_EQ(schema->Invoke(1, DISPATCH_PROPERTYGET, args, &root, nullptr), S_OK);
    IDispatch* disp = nullptr;
    EXPECT_TRUE(root.ToDispatch(&disp));
    ComPtr<IDispatch> held(disp);  // the variant keeps its own reference
    return held.As<ISourceSchema>(IID_ISourceSchema);
}

ComPtr<ISourceSchema> Child(ISourceSchema* node, const char* name) {
    ComPtr<ISourceSchema> child;
    EXPECT_EQ(node->FindChild(name, child.Out()), 0) << name;
    return child;
}

std::vector<std::string> ChildNames(ISourceSchema* node) {
    std::vector<std::string> names;
    for (long i = 0; i < node->GetChildCount(); ++i) {
        std::string name;
        EXPECT_EQ(node->GetChildName(&name, i), S_OK);
        names.push_back(name);
    }
    return names;
}

TEST(Schema, TagsOfAllErasWithDescriptions) {
    ComPtr<ISourceSchema> root = Root();
    ASSERT_TRUE(root);
    EXPECT_GT(root->GetChildCount(), 140);
    long attributes = 0;
    for (const std::string& tag : ChildNames(root.Get())) {
        EXPECT_EQ(tag, [&] { std::string u = tag; for (char& c : u) c = static_cast<char>(std::toupper(c)); return u; }());
        ComPtr<ISourceSchema> node = Child(root.Get(), tag.c_str());
        std::string description;
        node->GetDescription(&description);
        EXPECT_FALSE(description.empty()) << tag;
        for (const std::string& attr : ChildNames(node.Get())) {
            ComPtr<ISourceSchema> a = Child(node.Get(), attr.c_str());
            a->GetDescription(&description);
            EXPECT_FALSE(description.empty()) << tag << " " << attr;
            EXPECT_GE(a->GetType(), 0);
            EXPECT_LE(a->GetType(), 21);
            ++attributes;
        }
    }
    EXPECT_GT(attributes, 5000);  // every tag lists the attributes of every tag too
    for (const char* tag : {"FONT", "CENTER", "FRAMESET", "FRAME", "APPLET", "BASEFONT", "MARQUEE", "TEMPLATE", "DIALOG", "SVG"})
        EXPECT_TRUE(Child(root.Get(), tag)) << tag;
    ComPtr<ISourceSchema> none;
    EXPECT_NE(root->FindChild("NOSUCHTAG", none.Out()), 0);
    EXPECT_FALSE(none);
    std::string name;
    EXPECT_LT(root->GetChildName(&name, root->GetChildCount()), 0);
}

TEST(Schema, TypesOfWellKnownAttributes) {
    ComPtr<ISourceSchema> root = Root();
    auto type = [&](const char* tag, const char* attr) { return Child(Child(root.Get(), tag).Get(), attr)->GetType(); };
    EXPECT_EQ(type("BODY", "BGCOLOR"), 5);
    EXPECT_EQ(type("TD", "BGCOLOR"), 5);
    EXPECT_EQ(type("LINK", "HREF"), 4);
    EXPECT_EQ(type("A", "HREF"), 11);
    EXPECT_EQ(type("IMG", "WIDTH"), 8);
    EXPECT_EQ(type("TABLE", "CELLPADDING"), 8);
    EXPECT_EQ(type("FONT", "SIZE"), 9);
    EXPECT_EQ(type("FONT", "FACE"), 17);
    EXPECT_EQ(type("INPUT", "SIZE"), 3);
    EXPECT_EQ(type("DIV", "ONCLICK"), 16);
    EXPECT_EQ(type("IMG", "SRC"), 12);
    EXPECT_EQ(type("BGSOUND", "SRC"), 13);
    EXPECT_EQ(type("BODY", "BACKGROUND"), 12);
    EXPECT_EQ(type("APPLET", "CODE"), 15);
    EXPECT_EQ(type("INPUT", "CHECKED"), 0);
    EXPECT_EQ(type("P", "CLASS"), 20);
    EXPECT_EQ(type("P", "TITLE"), 2);
    ComPtr<ISourceSchema> align = Child(Child(root.Get(), "TD").Get(), "ALIGN");
    EXPECT_EQ(align->GetType(), 1);
    std::vector<std::string> values = ChildNames(align.Get());
    for (const char* v : {"LEFT", "CENTER", "RIGHT", "JUSTIFY", "CHAR"})
        EXPECT_NE(std::find(values.begin(), values.end(), v), values.end()) << v;
    // Values that differ only in case keep it.
    std::vector<std::string> olTypes = ChildNames(Child(Child(root.Get(), "OL").Get(), "TYPE").Get());
    EXPECT_NE(std::find(olTypes.begin(), olTypes.end(), "a"), olTypes.end());
    EXPECT_NE(std::find(olTypes.begin(), olTypes.end(), "A"), olTypes.end());
}

TEST(Schema, NamedColoursWithTheirRgbValues) {
    ComPtr<ISourceSchema> root = Root();
    ComPtr<ISourceSchema> bgcolor = Child(Child(root.Get(), "BODY").Get(), "BGCOLOR");
    EXPECT_GE(bgcolor->GetChildCount(), 140);
    auto rgb = [&](const char* name) {
        auto color = Child(bgcolor.Get(), name).As<ISourceSchemaColor>(IID_ISourceSchemaColor);
        EXPECT_TRUE(color) << name;
        return color ? (color->GetRed() << 16) | (color->GetGreen() << 8) | color->GetBlue() : -1;
    };
    EXPECT_EQ(rgb("RED"), 0xFF0000);
    EXPECT_EQ(rgb("navy"), 0x000080);
    EXPECT_EQ(rgb("CORNFLOWERBLUE"), 0x6495ED);
    EXPECT_EQ(rgb("WHITE"), 0xFFFFFF);
    // Only colours answer for colour.
    EXPECT_FALSE(Child(root.Get(), "BODY").As<ISourceSchemaColor>(IID_ISourceSchemaColor));
}

}  // namespace
