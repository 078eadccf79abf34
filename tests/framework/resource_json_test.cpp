#include <gtest/gtest.h>

#include "support/sample_trees.h"
#include "support/test_records.h"
#include "ts/propertycompare.h"
#include "ts/resourcejson.h"

namespace {

using Node = CTsComPtr<ITsProperty>;
using ts::ResourceDocument;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

std::string WriteExact(ITsProperty* root, std::u16string name = u"sample",
                       std::u16string type = u"tst") {
    std::string text;
    std::u16string error;
    EXPECT_TRUE(ts::WriteResourceJson({name, type, Node(root)}, text, &error)) << U8(error);
    return text;
}

ResourceDocument Read(std::string_view text, const ts::ResourceSchemaLookup& schemas = {}) {
    ResourceDocument doc;
    std::u16string error;
    EXPECT_TRUE(ts::ReadResourceJson(text, doc, &error, schemas)) << U8(error) << "\n" << text;
    return doc;
}

std::u16string ReadError(std::string_view text, const ts::ResourceSchemaLookup& schemas = {},
                         ResourceDocument doc = {}) {
    std::u16string error;
    EXPECT_FALSE(ts::ReadResourceJson(text, doc, &error, schemas)) << text;
    return error;
}

void ExpectSameTree(ITsProperty* a, ITsProperty* b) {
    std::u16string difference;
    EXPECT_TRUE(ts::PropertyTreesEqual(a, b, &difference)) << U8(difference);
}

TEST(ResourceJson, ExactFormRoundTripsEveryValueAndDeclaration) {
    Node tree = ts::test::MakeSampleTree();
    std::string text = WriteExact(tree.Get());
    ResourceDocument back = Read(text);
    EXPECT_EQ(back.name, u"sample");
    EXPECT_EQ(back.type, u"tst");
    ExpectSameTree(tree.Get(), back.root.Get());
    EXPECT_EQ(WriteExact(back.root.Get()), text);  // stable, so exported files diff cleanly

    // The text is meant to be read: one value node per line, names of types, lone surrogates
    // escaped, other text as it is.
    EXPECT_NE(text.find(R"({"name": "StringID", "type": "int", "value": 101})"), std::string::npos)
        << text;
    EXPECT_NE(text.find(R"("value": "lone \uD800 high, lone \uDC00 low")"), std::string::npos);
    EXPECT_NE(text.find("K\xC3\xB6ln"), std::string::npos);
    EXPECT_NE(text.find(R"("type": "float", "flags": 2, "value": -0})"), std::string::npos);
    EXPECT_NE(text.find(R"("value": "NaN")"), std::string::npos);
    EXPECT_NE(text.find(R"("type": "bytes", "flags": 2, "value": "AAEC/wA="})"), std::string::npos);
}

TEST(ResourceJson, HandWrittenExactNodesTakeDefaultsAndTypeCodes) {
    auto doc = Read(R"({"resource": "h", "type": "tst", "root":
        {"name": "Agent", "type": 0, "flags": 2, "children": [
            {"name": "A", "type": 5},
            {"name": "B", "type": "colour", "value": [1, 0.5, 0]},
            {"name": "C", "type": "datetime", "value": "2024-02-29T12:00:00"},
            {"name": "D", "type": "string", "editor": "ScriptSelect", "value": "x\ny"},
            {"name": "E", "type": "vector", "value": [1e3, "-Infinity", 0]}
        ]}})");
    ASSERT_TRUE(doc.root);
    auto value = [&](const char16_t* name) {
        Node n;
        EXPECT_EQ(doc.root->FindChild(TsAddAtom(name), 0, n.Put()), S_OK);
        variant v;
        if (n) n->GetValue(&v);
        return v;
    };
    EXPECT_EQ(doc.root->GetFlags(), 2u);
    EXPECT_EQ(value(u"A"), variant(kTsTypeInt, 0));
    EXPECT_EQ(value(u"B"), variant(kTsTypeColour, TsColour{1, 0.5f, 0, 1}));
    EXPECT_EQ(value(u"C").GetDouble(), 45351.5);  // days since 30 December 1899
    EXPECT_EQ(value(u"D").GetString(), u"x\ny");
    EXPECT_EQ(value(u"E").GetVector().y, -std::numeric_limits<float>::infinity());
}

TEST(ResourceJson, MistakesAreReportedWithTheirPlace) {
    struct Case {
        const char* text;
        const char16_t* expected;
    };
    const Case cases[] = {
        {"", u"line 1, column 1: the text ends where a value was expected"},
        {"{\"resource\": \"a\", \"type\": \"t\"\n \"root\": {}}",
         u"line 2, column 2: expected ',' or '}' in an object"},
        {"{\"resource\": \"a\nb\"}", u"line 1, column 16: a string holds a control character"},
        {"{\"resource\": \"a\", \"resource\": \"b\"}",
         u"line 1, column 19: the key \"resource\" appears twice"},
        {"{\"resource\": \"\xC3\x28\"}", u"line 1, column 15: the text is not valid UTF-8"},
        {"{\"resource\": \"a\"} x", u"line 1, column 19: there is more text after the end"},
        {"[1, 2", u"line 1, column 6: the text ends inside an array"},
        {"{\"resource\": 01}", u"line 1, column 15: expected ',' or '}'"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"int\", "
         "\"value\": 1.5}}",
         u"line 1, column 78: expected a whole number"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"int\", "
         "\"value\": 2147483648}}",
         u"line 1, column 78: expected a whole number from -2147483648 to 2147483647"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": "
         "\"integer\"}}",
         u"line 1, column 62: unknown type"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": 7}}",
         u"unknown type"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"list\", "
         "\"value\": 1}}",
         u"a list node has \"children\", not a \"value\""},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"int\", "
         "\"valeu\": 1}}",
         u"unknown key \"valeu\" in a node"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"\", \"type\": \"int\"}}",
         u"a node needs a \"name\" of 1 to 255 characters"},
        {"{\"resource\": \"a\", \"type\": \"t\"}", u"the document has no tree"},
        {"{\"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"int\"}}",
         u"does not name its resource"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"fields\": {}}",
         u"resources of type \"t\" have no short form"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"bytes\", "
         "\"value\": \"abc\"}}",
         u"expected bytes as a base64 text"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": "
         "\"datetime\", \"value\": \"2023-02-29\"}}",
         u"expected a date"},
        {"{\"resource\": \"a\", \"type\": \"t\", \"root\": {\"name\": \"A\", \"type\": \"float\", "
         "\"value\": 1e39}}",
         u"expected a number (within the range of a float)"},
    };
    for (const auto& c : cases) {
        std::u16string error = ReadError(c.text);
        EXPECT_NE(error.find(c.expected), std::u16string::npos)
            << c.text << "\n  gave: " << U8(error);
    }

    // A name given by the caller (from the file name) must agree with the document's.
    ResourceDocument named{u"tavern", u"dlg", {}};
    EXPECT_NE(
        ReadError(R"({"resource": "market", "root": {"name": "A", "type": "int"}})", {}, named)
            .find(u"the document says its name is \"market\" but its file name says \"tavern\""),
        std::u16string::npos);
    ResourceDocument fromFile{u"tavern", u"dlg", {}};
    ASSERT_TRUE(ts::ReadResourceJson(R"({"root": {"name": "A", "type": "int"}})", fromFile));
    EXPECT_EQ(fromFile.name, u"tavern");

    // Nesting beyond any real resource is refused, not followed into a stack overflow.
    std::string deep(100000, '[');
    EXPECT_NE(ReadError(deep).find(u"nest deeper than 512"), std::u16string::npos);
}

// The short form: the tree a writer means, built by the records' own agents.
class ShortForm : public ::testing::Test {
protected:
    ts::test::TestSchemas schemas;

    // A talk as the agents make it: two lines, the first with a transition.
    Node MakeTalk() {
        ts::test::CAgentTestTalk talk;
        EXPECT_TRUE(talk.BuildProperties() && talk.SetDefaults());
        talk.SetResRefName(u"market");
        talk.SetPosition({1, 2, 3});
        for (int i = 0; i < 2; ++i) {
            ts::test::CAgentTestLine line;
            EXPECT_TRUE(line.BuildProperties() && line.SetDefaults());
            line.SetStringID(10 + i);
            line.SetText(i == 0 ? u"Fresh fish!" : u"");
            if (i == 1) line.SetSentOn(45000.0);
            if (i == 0) {
                ts::test::CAgentTestTransition t;
                EXPECT_TRUE(t.BuildProperties() && t.SetDefaults());
                t.SetIsLink(true);
                t.SetLineIndex(1);
                EXPECT_TRUE(line.AddItemToPropertyList(t, u"TransitionList"));
            }
            EXPECT_TRUE(talk.AddItemToPropertyList(line, u"LineList"));
        }
        return Node(talk.GetNode());
    }
};

TEST_F(ShortForm, StatesOnlyWhatDiffersFromTheDefaults) {
    auto doc = Read(R"({
        "resource": "market", "type": "talk",
        "fields": {
            "Position": [1, 2, 3],
            "LineList": [
                {"StringID": 10, "Text": "Fresh fish!", "TransitionList": [{"IsLink": true, "LineIndex": 1}]},
                {"StringID": 11, "SentOn": "2023-03-15"}
            ]
        }})",
                    schemas.Lookup());
    ExpectSameTree(MakeTalk().Get(), doc.root.Get());

    // Written back in short, it says the same few things, and reads back to the same tree.
    std::string text;
    std::u16string error;
    ASSERT_TRUE(
        ts::WriteResourceJsonShort({u"market", u"talk", doc.root}, schemas.Lookup(), text, &error))
        << U8(error);
    EXPECT_EQ(text, R"({
  "resource": "market",
  "type": "talk",
  "fields": {
    "Position": [1, 2, 3],
    "LineList": [
      {
        "StringID": 10,
        "Text": "Fresh fish!",
        "TransitionList": [
          {"IsLink": true, "LineIndex": 1}
        ]
      },
      {"StringID": 11, "SentOn": "2023-03-15"}
    ]
  }
}
)");
    ExpectSameTree(doc.root.Get(), Read(text, schemas.Lookup()).root.Get());

    // Fields declared without a default are always stated: a transition's target means something
    // even when it is line 0.
    auto zero = Read(
        R"({"resource": "m", "type": "talk", "fields": {"LineList": [{"TransitionList": [{}]}]}})",
        schemas.Lookup());
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"m", u"talk", zero.root}, schemas.Lookup(), text));
    EXPECT_NE(text.find(R"({"IsLink": false, "LineIndex": 0})"), std::string::npos) << text;
}

TEST_F(ShortForm, FallsBackToExactNodesWhereTheTreeStrays) {
    Node talk = MakeTalk();
    // The second line gains a node its record does not declare, and "ExtraList" (which has no
    // element schema) gets an element.
    Node lines, line, extra, stray;
    talk->FindChild(TsAddAtom(u"LineList"), 0, lines.Put());
    lines->GetChildAt(1, line.Put());
    TsCreateProperty(u"Stray", kTsTypeInt, 0, stray.Put());
    line->InsertChild(kTsAppend, stray.Get());
    lines->GetChildAt(0, line.Put());
    line->FindChild(TsAddAtom(u"ExtraList"), 0, extra.Put());
    extra->InsertChild(kTsAppend, stray.Get());

    std::string text;
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"market", u"talk", talk}, schemas.Lookup(), text));
    EXPECT_NE(text.find(R"("fields")"), std::string::npos);
    EXPECT_NE(text.find(R"("ExtraList": [)"), std::string::npos);
    EXPECT_NE(text.find(R"({"name": "Stray", "type": "int", "value": 0})"), std::string::npos)
        << text;
    ExpectSameTree(talk.Get(), Read(text, schemas.Lookup()).root.Get());

    // A root that strays is written exactly as a whole.
    Node other = ts::test::MakeSampleTree();
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"odd", u"talk", other}, schemas.Lookup(), text));
    EXPECT_NE(text.find(R"("root")"), std::string::npos);
    ExpectSameTree(other.Get(), Read(text, schemas.Lookup()).root.Get());
}

TEST_F(ShortForm, ElementsOfAFamilyNameTheirKind) {
    auto doc = Read(R"({"resource": "m", "type": "talk", "fields": {"MarkList": [
        {"Kind": 2, "Height": 3.5},
        {"Kind": 1},
        {"Label": "north", "Kind": 1, "Colour": [0, 0, 1]}
    ]}})",
                    schemas.Lookup());
    ASSERT_TRUE(doc.root);
    ts::test::CAgentTestTalk talk;
    talk.Bind(doc.root.Get());
    ASSERT_EQ(talk.MarkListCount(), 3u);
    Node item;
    ASSERT_TRUE(talk.GetMarkListItem(0, item));
    ts::test::CAgentTestPin pin;
    pin.Bind(item.Get());
    float height = 0;
    ASSERT_TRUE(pin.GetHeight(height));
    EXPECT_EQ(height, 3.5f);
    ASSERT_TRUE(talk.GetMarkListItem(1, item));
    ts::test::CAgentTestFlag flag;
    flag.Bind(item.Get());
    TsColour colour;
    ASSERT_TRUE(flag.GetColour(colour));
    EXPECT_EQ(colour, (TsColour{1, 0, 0, 1}));  // the flag's own default

    // Written back, each element states its kind first, even the one that holds only defaults.
    std::string text;
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"m", u"talk", doc.root}, schemas.Lookup(), text));
    EXPECT_NE(text.find(R"({"Kind": 2, "Height": 3.5})"), std::string::npos) << text;
    EXPECT_NE(text.find(R"({"Kind": 1})"), std::string::npos) << text;
    EXPECT_NE(text.find(R"({"Kind": 1, "Label": "north", "Colour": [0, 0, 1, 1]})"),
              std::string::npos)
        << text;
    ExpectSameTree(doc.root.Get(), Read(text, schemas.Lookup()).root.Get());

    auto error =
        ReadError(R"({"resource": "m", "type": "talk", "fields": {"MarkList": [{"Label": "x"}]}})",
                  schemas.Lookup());
    EXPECT_NE(error.find(u"a test mark needs \"Kind\" (a whole number) to say which kind it is"),
              std::u16string::npos)
        << U8(error);
    error = ReadError(R"({"resource": "m", "type": "talk", "fields": {"MarkList": [{"Kind": 5}]}})",
                      schemas.Lookup());
    EXPECT_NE(error.find(u"5 is not a kind of test mark; the kinds are 1 (flag), 2 (pin)"),
              std::u16string::npos)
        << U8(error);
}

TEST_F(ShortForm, RefusesFieldsTheRecordDoesNotHave) {
    auto error =
        ReadError(R"({"resource": "m", "type": "talk", "fields": {"LineList": [{"text": "hi"}]}})",
                  schemas.Lookup());
    EXPECT_NE(error.find(u"a test line has no field \"text\" (did you mean \"Text\"?)"),
              std::u16string::npos)
        << U8(error);
    error = ReadError(R"({"resource": "m", "type": "talk", "fields": {"Lines": []}})",
                      schemas.Lookup());
    EXPECT_NE(error.find(u"a test talk has no field \"Lines\""), std::u16string::npos) << U8(error);
    error = ReadError(R"({"resource": "m", "type": "talk", "fields": {"LineList": {}}})",
                      schemas.Lookup());
    EXPECT_NE(error.find(u"field \"LineList\" is a list: give an array"), std::u16string::npos)
        << U8(error);
    error = ReadError(
        R"({"resource": "m", "type": "talk", "fields": {"LineList": [{"StringID": "7"}]}})",
        schemas.Lookup());
    EXPECT_NE(error.find(u"line 1, column 72: field \"StringID\": expected a whole number"),
              std::u16string::npos)
        << U8(error);
    error = ReadError(
        R"({"resource": "m", "type": "talk", "fields": {"LineList": [{"ExtraList": [{"A": 1}]}]}})",
        schemas.Lookup());
    EXPECT_NE(error.find(u"the elements of \"ExtraList\" have no short form"), std::u16string::npos)
        << U8(error);

    // The resource's own name fills its name field unless the document gives one.
    auto doc = Read(R"({"resource": "harbour", "type": "talk", "fields": {}})", schemas.Lookup());
    ts::test::CAgentTestTalk talk;
    talk.Bind(doc.root.Get());
    std::u16string name;
    EXPECT_TRUE(talk.GetResRefName(name));
    EXPECT_EQ(name, u"harbour");
}

}  // namespace
