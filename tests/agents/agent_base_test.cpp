#include <gtest/gtest.h>

#include "agents/agentgameobject.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/variant_print.h"
#include "ts/hoststring.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

// A small record in the shape of the real schemas: every value kind, a list of elements.
#define TEST_ITEM_FIELDS(F)                                                   \
    F(LineIndex, Int, 0, u"", u"", u"", u"", u"", -1)                        \
    F(IsLink, Bool, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentTestItem : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentTestItem, CAgentBase, "agenttest", TEST_ITEM_FIELDS)
    TS_AGENT_DEFAULTS()
};

#define TEST_RESOURCE_FIELDS(F)                                                                         \
    F(Speaker, String, 2, u"Speaker", u"Text", u"Who", u"The speaking creature's tag", u"TagName", u"OWNER") \
    F(Seed, UInt, 2, u"", u"", u"", u"", u"", 7u)                                                       \
    F(Delay, Float, 2, u"", u"", u"", u"", u"", 0.5)                                                    \
    F(Exact, Double, 2, u"", u"", u"", u"", u"", 2.5)                                                   \
    F(SentOn, DateTime, 0, u"", u"", u"", u"", u"", 46000.0)                                            \
    F(Position, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{1, 2, 3}))                            \
    F(Fog, Colour, 8, u"", u"", u"", u"", u"", (TsColour{0.5f, 0.5f, 0.5f, 1}))                         \
    F(Result, Bool, 2, u"", u"", u"", u"", u"", true)                                                   \
    F(ItemList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentTestResource : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentTestResource, CAgentGameObject, "agenttest", TEST_RESOURCE_FIELDS)
    TS_AGENT_DEFAULTS()
};

std::u16string NameOf(ITsProperty* node) {
    CTsHostString s;
    node->GetName(s.Put());
    return std::u16string(s.View());
}

std::u16string Attribute(ITsProperty* node, TsPropertyAttribute which) {
    CTsHostString s;
    node->GetAttribute(which, s.Put());
    return std::u16string(s.View());
}

std::vector<std::u16string> ChildNames(ITsProperty* node) {
    std::vector<std::u16string> names;
    ITsProperty* const* items;
    std::uint32_t count;
    if (SUCCEEDED(node->GetChildArray(&items, &count)))
        for (std::uint32_t i = 0; i < count; ++i) names.push_back(NameOf(items[i]));
    return names;
}

// The LineIndex of every element of the resource's ItemList, in order.
std::vector<std::int32_t> LineIndexes(const CAgentTestResource& r) {
    std::vector<std::int32_t> indexes;
    for (std::uint32_t i = 0; i < r.ItemListCount(); ++i) {
        CTsComPtr<ITsProperty> node;
        std::int32_t index = -5;
        EXPECT_TRUE(r.GetItemListItem(i, node) && CAgentTestItem(node.Get()).GetLineIndex(index));
        indexes.push_back(index);
    }
    return indexes;
}

TEST(AgentBase, BuildsTheAgentNodeWithBaseFieldsFirst) {
    CAgentTestResource r;
    ASSERT_TRUE(r.BuildProperties());
    ITsProperty* root = r.GetNode();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(NameOf(root), u"Agent");
    EXPECT_EQ(root->GetType(), kTsTypeList);
    EXPECT_EQ(root->GetFlags(), 2u);
    EXPECT_EQ(Attribute(root, TsPropertyAttribute::DisplayName), u"Agent");
    EXPECT_EQ(ChildNames(root), (std::vector<std::u16string>{u"ResRefName", u"LocalCopy", u"Speaker", u"Seed",
                                                             u"Delay", u"Exact", u"SentOn", u"Position", u"Fog",
                                                             u"Result", u"ItemList"}));
    // Each node carries its declaration (every attribute of every real record is checked
    // against data/*.tsv).
    CTsComPtr<ITsProperty> node;
    ASSERT_TRUE(r.FindProperty(TsAddAtom(u"Speaker"), 0, node));
    EXPECT_EQ(node->GetFlags(), 2u);
    EXPECT_EQ(Attribute(node.Get(), TsPropertyAttribute::SubCategory), u"Who");
    EXPECT_EQ(Attribute(node.Get(), TsPropertyAttribute::EditorKind), u"TagName");
}

TEST(AgentBase, CreateOnClearsTheNodeAndWritesEveryDefault) {
    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"Stray", variant(kTsTypeInt, 3));

    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(node.Get()));
    EXPECT_EQ(r.GetNode(), node.Get());
    EXPECT_EQ(ChildNames(node.Get()).size(), 11u) << "the stray child is gone";

    std::u16string speaker, resref = u"unchanged";
    std::uint32_t seed = 0;
    float delay = 0;
    double exact = 0, sentOn = 0;
    TsVector3 position;
    TsColour fog;
    bool result = false, local = true;
    ASSERT_TRUE(r.GetSpeaker(speaker) && r.GetSeed(seed) && r.GetDelay(delay) && r.GetExact(exact) &&
                r.GetSentOn(sentOn) && r.GetPosition(position) && r.GetFog(fog) && r.GetResult(result) &&
                r.GetResRefName(resref) && r.GetLocalCopy(local));
    EXPECT_EQ(speaker, u"OWNER");
    EXPECT_EQ(seed, 7u);
    EXPECT_EQ(delay, 0.5f);
    EXPECT_EQ(exact, 2.5);
    EXPECT_EQ(sentOn, 46000.0);
    EXPECT_EQ(position, (TsVector3{1, 2, 3}));
    EXPECT_EQ(fog, (TsColour{0.5f, 0.5f, 0.5f, 1}));
    EXPECT_TRUE(result);
    EXPECT_EQ(resref, u"");
    EXPECT_FALSE(local);
    EXPECT_EQ(r.ItemListCount(), 0u);

    // A field declared without a default holds its type's zero value.
    CAgentTestItem item;
    ASSERT_TRUE(item.CreateOn(nullptr));
    bool isLink = true;
    ASSERT_TRUE(item.GetIsLink(isLink));
    EXPECT_FALSE(isLink);
}

TEST(AgentBase, SettersWriteTheStoredNodeThatABoundViewReads) {
    CAgentTestResource original;
    ASSERT_TRUE(original.CreateOn(nullptr));
    ASSERT_TRUE(original.SetSpeaker(u"merchant") && original.SetSeed(0xFFFFFFFFu) &&
                original.SetPosition(TsVector3{-1, 0.25f, 9}) && original.SetResult(false));

    CAgentTestResource view;
    view.Bind(original.GetNode());
    std::u16string speaker;
    std::uint32_t seed = 0;
    TsVector3 position;
    bool result = true;
    ASSERT_TRUE(view.GetSpeaker(speaker) && view.GetSeed(seed) && view.GetPosition(position) &&
                view.GetResult(result));
    EXPECT_EQ(speaker, u"merchant") << "binding wrote no defaults";
    EXPECT_EQ(seed, 0xFFFFFFFFu);
    EXPECT_EQ(position, (TsVector3{-1, 0.25f, 9}));
    EXPECT_FALSE(result);
    EXPECT_EQ(ChildNames(view.GetNode()).size(), 11u) << "binding declared nothing again";
}

TEST(AgentBase, MissingOrMistypedFieldReportsAndLeavesTheOutput) {
    // A stored resource whose "Speaker" is an int, which lacks "Seed" and has a good "Delay".
    auto root = NewRecordNode();
    auto speaker = AddStoredField(root.Get(), u"Speaker", variant(kTsTypeInt, 12));
    AddStoredField(root.Get(), u"Delay", variant(kTsTypeFloat, 1.5f));
    CAgentTestResource r;
    r.Bind(root.Get());

    ReportCapture reports;
    std::u16string text = u"kept";
    std::uint32_t seed = 42;
    EXPECT_FALSE(r.GetSpeaker(text));
    EXPECT_FALSE(r.GetSeed(seed));
    EXPECT_FALSE(r.SetSeed(1));
    EXPECT_FALSE(r.SetSpeaker(u"owner"));
    EXPECT_EQ(text, u"kept");
    EXPECT_EQ(seed, 42u);
    ASSERT_EQ(reports.Count(u"Request for invalid property"), 4u);
    EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Assert));
    EXPECT_EQ(reports.entries()[0].sourceFile, "agenttest") << "the declaring record's source";
    variant stored;
    ASSERT_EQ(speaker->GetValue(&stored), S_OK);
    EXPECT_EQ(stored, variant(kTsTypeInt, 12)) << "the failed setter wrote nothing";
    EXPECT_EQ(ChildNames(root.Get()).size(), 2u) << "setters never create fields";
    float delay = 0;
    ASSERT_TRUE(r.GetDelay(delay)) << "the well-typed fields still read";
    EXPECT_EQ(delay, 1.5f);

    CAgentTestResource unbound;
    EXPECT_FALSE(unbound.GetSpeaker(text));
    EXPECT_EQ(text, u"kept");
}

TEST(AgentBase, ListOperationsOnElements) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    for (int i = 0; i < 3; ++i) {
        CAgentTestItem item;
        ASSERT_TRUE(item.CreateOn(nullptr) && item.SetLineIndex(i));
        ASSERT_TRUE(r.AddItemToPropertyList(item, u"ItemList", i == 2 ? 0 : kTsAppend));
    }
    EXPECT_EQ(LineIndexes(r), (std::vector<std::int32_t>{2, 0, 1})) << "the third went in at the front";
    EXPECT_EQ(r.GetPropertyListEntryCount(u"ItemList"), 3u);
}

TEST(AgentBase, ListFailuresReportAndGiveNothing) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    ReportCapture reports;
    EXPECT_EQ(r.GetPropertyListEntryCount(u"NoSuchList"), 0u);
    CTsComPtr<ITsProperty> node;
    EXPECT_FALSE(r.GetPropertyFromList(u"ItemList", 0, node));
    EXPECT_FALSE(node);
    CAgentTestItem unboundItem;
    EXPECT_FALSE(r.AddItemToPropertyList(unboundItem, u"ItemList"));
    EXPECT_FALSE(r.AddItemToPropertyList(r, u"Speaker")) << "not a list";

    std::vector<std::u16string> messages;
    for (const auto& e : reports.entries()) {
        messages.push_back(e.message);
        EXPECT_EQ(e.sourceFile, "AgentBase");
        EXPECT_EQ(e.level, static_cast<int>(ReportLevel::Assert));
    }
    EXPECT_EQ(messages, (std::vector<std::u16string>{
                            u"CAgentBase::GetPropertyListEntryCount failed to get count for list NoSuchList",
                            u"CAgentBase::GetPropertyFromList failed to get item for list ItemList",
                            u"CAgentBase::AddItemToPropertyList failed to add a property to list ItemList",
                            u"CAgentBase::AddItemToPropertyList failed to add a property to list Speaker"}));
}

TEST(AgentBase, CopiesListsByReferenceOrDeep) {
    CAgentTestResource source, byRef, deep;
    ASSERT_TRUE(source.CreateOn(nullptr) && byRef.CreateOn(nullptr) && deep.CreateOn(nullptr));
    for (int i = 0; i < 2; ++i) {
        CAgentTestItem item;
        ASSERT_TRUE(item.CreateOn(nullptr) && item.SetLineIndex(10 + i));
        ASSERT_TRUE(source.AddItemToPropertyList(item, u"ItemList"));
    }
    CTsComPtr<ITsProperty> sourceList, original;
    ASSERT_TRUE(source.FindProperty(TsAddAtom(u"ItemList"), 0, sourceList));
    ASSERT_TRUE(byRef.CopyPropertyList(sourceList.Get(), u"ItemList", false));
    ASSERT_TRUE(deep.CopyPropertyList(sourceList.Get(), u"ItemList", true));

    // A change to a source element shows in the shared copy only.
    ASSERT_TRUE(source.GetItemListItem(1, original));
    ASSERT_TRUE(CAgentTestItem(original.Get()).SetLineIndex(99));
    EXPECT_EQ(LineIndexes(byRef), (std::vector<std::int32_t>{10, 99}));
    EXPECT_EQ(LineIndexes(deep), (std::vector<std::int32_t>{10, 11}));

    ReportCapture reports;
    EXPECT_FALSE(deep.CopyPropertyList(sourceList.Get(), u"NoSuchList", true));
    EXPECT_EQ(reports.size(), 1u) << "stops at the first failure";
}

TEST(AgentBase, FindOrCreateAddsAPlainNodeWhenAllowed) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    CTsComPtr<ITsProperty> node;
    EXPECT_FALSE(r.FindOrCreateProperty(u"Extra", node, false));
    ASSERT_TRUE(r.FindOrCreateProperty(u"Extra", node));
    EXPECT_EQ(node->GetType(), kTsTypeList);
    EXPECT_EQ(node->GetFlags(), 0u);
    CTsComPtr<ITsProperty> again;
    ASSERT_TRUE(r.FindOrCreateProperty(TsAddAtom(u"extra"), again));
    EXPECT_EQ(again.Get(), node.Get()) << "found by atom, ignoring case";
    ASSERT_TRUE(r.FindOrCreateProperty(TsAddAtom(u"Speaker"), again));
    EXPECT_EQ(again->GetType(), kTsTypeString);
}

}  // namespace
