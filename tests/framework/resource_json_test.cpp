// Resources as JSON: the exact form (every node as it is) and the short form (what the records'
// agents would not have made by themselves).
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

ResourceDocument Read(std::string_view text, const ts::ResourceSchemaLookup& schemas = {}) {
    ResourceDocument doc;
    std::u16string error;
    EXPECT_TRUE(ts::ReadResourceJson(text, doc, &error, schemas)) << U8(error) << "\n" << text;
    return doc;
}

// Whether reading `text` (into `doc`) fails with a message that says `words`.
::testing::AssertionResult Refuses(std::string_view text, std::u16string_view words,
                                   const ts::ResourceSchemaLookup& schemas = {},
                                   ResourceDocument doc = {}) {
    std::u16string error;
    if (ts::ReadResourceJson(text, doc, &error, schemas))
        return ::testing::AssertionFailure() << text << "\n  was read";
    if (error.find(words) != std::u16string::npos) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << text << "\n  gave: " << U8(error);
}

void ExpectSameTree(ITsProperty* a, ITsProperty* b) {
    std::u16string difference;
    EXPECT_TRUE(ts::PropertyTreesEqual(a, b, &difference)) << U8(difference);
}

TEST(ResourceJson, ExactFormRoundTripsEveryValueAndDeclaration) {
    Node tree = ts::test::MakeSampleTree();
    auto write = [](ITsProperty* root) {
        std::string text;
        std::u16string error;
        EXPECT_TRUE(ts::WriteResourceJson({u"sample", u"tst", Node(root)}, text, &error))
            << U8(error);
        return text;
    };
    std::string text = write(tree.Get());
    ResourceDocument back = Read(text);
    EXPECT_EQ(back.name, u"sample");
    EXPECT_EQ(back.type, u"tst");
    ExpectSameTree(tree.Get(), back.root.Get());
    EXPECT_EQ(write(back.root.Get()), text);  // stable, so exported files diff cleanly

    // The text is meant to be read: one value node per line, names of types, lone surrogates
    // escaped, other text as it is.
    for (const char* part : {R"({"name": "StringID", "type": "int", "value": 101})",
                             R"("value": "lone \uD800 high, lone \uDC00 low")", "K\xC3\xB6ln",
                             R"("type": "float", "flags": 2, "value": -0})", R"("value": "NaN")",
                             R"("type": "bytes", "flags": 2, "value": "AAEC/wA="})"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
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
    auto root = [](const char* node) {
        return R"({"resource": "a", "type": "t", "root": )" + std::string(node) + "}";
    };
    const std::pair<std::string, const char16_t*> cases[] = {
        {"", u"line 1, column 1: the text ends where a value was expected"},
        {"{\"resource\": \"a\", \"type\": \"t\"\n \"root\": {}}",
         u"line 2, column 2: expected ',' or '}' in an object"},
        {"{\"resource\": \"a\nb\"}", u"line 1, column 16: a string holds a control character"},
        {R"({"resource": "a", "resource": "b"})",
         u"line 1, column 19: the key \"resource\" appears twice"},
        {"{\"resource\": \"\xC3\x28\"}", u"line 1, column 15: the text is not valid UTF-8"},
        {R"({"resource": "a"} x)", u"line 1, column 19: there is more text after the end"},
        {root(R"({"name": "A", "type": "int", "value": 1.5})"), u"expected a whole number"},
        {root(R"({"name": "A", "type": "int", "value": 2147483648})"),
         u"line 1, column 78: expected a whole number from -2147483648 to 2147483647"},
        {root(R"({"name": "A", "type": "integer"})"), u"line 1, column 62: unknown type"},
        {root(R"({"name": "A", "type": "list", "value": 1})"),
         u"a list node has \"children\", not a \"value\""},
        {root(R"({"name": "A", "type": "int", "valeu": 1})"), u"unknown key \"valeu\" in a node"},
        {root(R"({"name": "", "type": "int"})"), u"a node needs a \"name\" of 1 to 255 characters"},
        {R"({"resource": "a", "type": "t"})", u"the document has no tree"},
        {R"({"type": "t", "root": {"name": "A", "type": "int"}})", u"does not name its resource"},
        {R"({"resource": "a", "type": "t", "fields": {}})",
         u"resources of type \"t\" have no short form"},
        {root(R"({"name": "A", "type": "bytes", "value": "abc"})"),
         u"expected bytes as a base64 text"},
        {root(R"({"name": "A", "type": "datetime", "value": "2023-02-29"})"), u"expected a date"},
        {root(R"({"name": "A", "type": "float", "value": 1e39})"),
         u"expected a number (within the range of a float)"},
        // Nesting beyond any real resource is refused, not followed into a stack overflow.
        {std::string(100000, '['), u"nest deeper than 512"},
    };
    for (const auto& [text, words] : cases) EXPECT_TRUE(Refuses(text, words));

    // Keys are compared by content however many an object has: the first key, repeated after
    // 20,000 others, is found; the same object without it reads on to the unknown key.
    std::string many = R"({"resource": "a", "type": "t", "root": {"name": "A", "type": "int")";
    for (int k = 0; k < 20000; ++k) many += ",\"k" + std::to_string(k) + "\": 0";
    EXPECT_TRUE(Refuses(many + ", \"name\": \"B\"}}", u"the key \"name\" appears twice"));
    EXPECT_TRUE(Refuses(many + "}}", u"unknown key \"k0\" in a node"));

    // A name given by the caller (from the file name) must agree with the document's.
    ResourceDocument named{u"tavern", u"dlg", {}};
    EXPECT_TRUE(Refuses(
        R"({"resource": "market", "root": {"name": "A", "type": "int"}})",
        u"the document says its name is \"market\" but its file name says \"tavern\"", {}, named));
    ASSERT_TRUE(ts::ReadResourceJson(R"({"root": {"name": "A", "type": "int"}})", named));
    EXPECT_EQ(named.name, u"tavern");
}

// The short form: the tree a writer means, built by the records' own agents.
class ShortForm : public ::testing::Test {
protected:
    ts::test::TestSchemas schemas;

    ResourceDocument ReadShort(std::string_view text) { return Read(text, schemas.Lookup()); }
    std::string WriteShort(const ResourceDocument& doc) {
        std::string text;
        std::u16string error;
        EXPECT_TRUE(ts::WriteResourceJsonShort(doc, schemas.Lookup(), text, &error)) << U8(error);
        return text;
    }
    // Written short and read back, the tree is the same; returns the text.
    std::string RoundTrip(std::u16string name, Node root) {
        std::string text = WriteShort({name, u"talk", root});
        ExpectSameTree(root.Get(), ReadShort(text).root.Get());
        return text;
    }

    // A talk as the agents make it: two lines, the first with a transition.
    Node MakeTalk() {
        ts::test::CAgentTestTalk talk;
        ts::test::CAgentTestLine first, second;
        ts::test::CAgentTestTransition link;
        for (CAgentBase* agent : std::initializer_list<CAgentBase*>{&talk, &first, &second, &link})
            EXPECT_TRUE(agent->BuildProperties() && agent->SetDefaults());
        talk.SetResRefName(u"market");
        talk.SetPosition({1, 2, 3});
        first.SetStringID(10);
        first.SetText(u"Fresh fish!");
        link.SetIsLink(true);
        link.SetLineIndex(1);
        second.SetStringID(11);
        second.SetSentOn(45000.0);  // 15 March 2023
        EXPECT_TRUE(first.AddItemToPropertyList(link, u"TransitionList") &&
                    talk.AddItemToPropertyList(first, u"LineList") &&
                    talk.AddItemToPropertyList(second, u"LineList"));
        return Node(talk.GetNode());
    }
};

TEST_F(ShortForm, StatesOnlyWhatDiffersFromTheDefaults) {
    auto doc = ReadShort(R"({
        "resource": "market", "type": "talk",
        "fields": {
            "Position": [1, 2, 3],
            "LineList": [
                {"StringID": 10, "Text": "Fresh fish!", "TransitionList": [{"IsLink": true, "LineIndex": 1}]},
                {"StringID": 11, "SentOn": "2023-03-15"}
            ]
        }})");
    ExpectSameTree(MakeTalk().Get(), doc.root.Get());

    // Written back in short, it says the same few things and none of the defaults. (The layout
    // is held to the demo module's own files by the command-line tests.)
    std::string text = RoundTrip(u"market", doc.root);
    for (const char* part : {R"("Position": [1, 2, 3])", R"({"IsLink": true, "LineIndex": 1})",
                             R"({"StringID": 11, "SentOn": "2023-03-15"})"})
        EXPECT_NE(text.find(part), std::string::npos) << text;
    for (const char* absent : {"Delay", "Speaker", "ResRefName", "\"root\""})
        EXPECT_EQ(text.find(absent), std::string::npos) << text;

    // Fields declared without a default are always stated: a transition's target means something
    // even when it is line 0.
    auto zero = ReadShort(
        R"({"resource": "m", "type": "talk", "fields": {"LineList": [{"TransitionList": [{}]}]}})");
    EXPECT_NE(WriteShort({u"m", u"talk", zero.root}).find(R"({"IsLink": false, "LineIndex": 0})"),
              std::string::npos);

    // The resource's own name fills its name field unless the document gives one.
    std::u16string name;
    auto harbour = ReadShort(R"({"resource": "harbour", "type": "talk", "fields": {}})");
    EXPECT_TRUE(ts::test::CAgentTestTalk(harbour.root.Get()).GetResRefName(name));
    EXPECT_EQ(name, u"harbour");
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

    std::string text = RoundTrip(u"market", talk);
    for (const char* part :
         {R"("fields")", R"("ExtraList": [)", R"({"name": "Stray", "type": "int", "value": 0})"})
        EXPECT_NE(text.find(part), std::string::npos) << text;

    // A root that strays is written exactly as a whole.
    EXPECT_NE(RoundTrip(u"odd", ts::test::MakeSampleTree()).find(R"("root")"), std::string::npos);
}

TEST_F(ShortForm, ElementsOfAFamilyStateTheirKindFirst) {
    auto doc = ReadShort(R"({"resource": "m", "type": "talk", "fields": {"MarkList": [
        {"Kind": 2, "Height": 3.5},
        {"Kind": 1},
        {"Label": "north", "Kind": 1, "Colour": [0, 0, 1]}
    ]}})");
    // The element that names only its kind is what that kind's agent makes.
    Node item, flag;
    ASSERT_TRUE(ts::test::CAgentTestTalk(doc.root.Get()).GetMarkListItem(1, item));
    ASSERT_TRUE(TsMakeAgentRecord<ts::test::CAgentTestFlag>(flag));
    ExpectSameTree(flag.Get(), item.Get());

    // Even the element that holds only defaults states its kind.
    std::string text = RoundTrip(u"m", doc.root);
    for (const char* part : {R"({"Kind": 2, "Height": 3.5})", R"({"Kind": 1})",
                             R"({"Kind": 1, "Label": "north", "Colour": [0, 0, 1, 1]})"})
        EXPECT_NE(text.find(part), std::string::npos) << text;
}

TEST_F(ShortForm, RefusesWhatTheRecordsDoNotDeclare) {
    const std::pair<const char*, const char16_t*> cases[] = {
        {R"({"MarkList": [{"Label": "x"}]})",
         u"a test mark needs \"Kind\" (a whole number) to say which kind it is"},
        {R"({"MarkList": [{"Kind": 5}]})",
         u"5 is not a kind of test mark; the kinds are 1 (flag), 2 (pin)"},
        {R"({"LineList": [{"text": "hi"}]})",
         u"a test line has no field \"text\" (did you mean \"Text\"?)"},
        {R"({"Lines": []})", u"a test talk has no field \"Lines\""},
        {R"({"LineList": {}})", u"field \"LineList\" is a list: give an array"},
        {R"({"LineList": [{"StringID": "7"}]})",
         u"line 1, column 72: field \"StringID\": expected a whole number"},
        {R"({"LineList": [{"ExtraList": [{"A": 1}]}]})",
         u"the elements of \"ExtraList\" have no short form"},
    };
    for (const auto& [fields, words] : cases) {
        std::string text =
            R"({"resource": "m", "type": "talk", "fields": )" + std::string(fields) + "}";
        EXPECT_TRUE(Refuses(text, words, schemas.Lookup()));
    }
}

}  // namespace
