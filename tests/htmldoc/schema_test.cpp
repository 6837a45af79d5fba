// The schema as the picker walks it: the root through dispatch property 1, tags, attributes
// with their descriptions; and the types, values and colours of cases/schema.cases.
#include <gtest/gtest.h>

#include <sstream>

#include "htmldoc/htmldocument.h"
#include "tests/platform/casefile.h"

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
    ComPtr<ISourceSchema> none;
    EXPECT_NE(root->FindChild("NOSUCHTAG", none.Out()), 0);
    EXPECT_FALSE(none);
    std::string name;
    EXPECT_LT(root->GetChildName(&name, root->GetChildCount()), 0);
}

// Tags, attribute types, values and colours from cases/schema.cases.
TEST(Schema, TagsTypesValuesAndColoursOfTheCases) {
    ComPtr<ISourceSchema> root = Root();
    ComPtr<ISourceSchema> bgcolor = Child(Child(root.Get(), "BODY").Get(), "BGCOLOR");
    EXPECT_GE(bgcolor->GetChildCount(), 140);
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/schema.cases")) {
        SCOPED_TRACE(row.where);
        if (row[0] == "tag") {
            EXPECT_TRUE(Child(root.Get(), row[1].c_str()));
            continue;
        }
        if (row[0] == "rgb") {
            auto color = Child(bgcolor.Get(), row[1].c_str()).As<ISourceSchemaColor>(IID_ISourceSchemaColor);
            ASSERT_TRUE(color);
            EXPECT_EQ((color->GetRed() << 16) | (color->GetGreen() << 8) | color->GetBlue(), std::stol(row[2], nullptr, 16));
            continue;
        }
        ComPtr<ISourceSchema> attr = Child(Child(root.Get(), row[1].c_str()).Get(), row[2].c_str());
        ASSERT_TRUE(attr);
        if (row[0] == "type") {
            EXPECT_EQ(attr->GetType(), row.Long(3));
        }
        std::vector<std::string> values = ChildNames(attr.Get());
        std::istringstream wanted(row[0] == "values" ? row[3] : "");
        for (std::string v; wanted >> v;) EXPECT_NE(std::find(values.begin(), values.end(), v), values.end()) << v;
    }
    // Only colours answer for colour.
    EXPECT_FALSE(Child(root.Get(), "BODY").As<ISourceSchemaColor>(IID_ISourceSchemaColor));
}

}  // namespace
