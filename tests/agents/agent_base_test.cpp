#include <gtest/gtest.h>

#include "agents/agentgameobject.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/test_records.h"
#include "support/variant_print.h"
#include "ts/hoststring.h"

namespace {

using CAgentTestItem = ts::test::CAgentTestTransition;
using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::Read;
using ts::test::ReportCapture;

// A record with a field of every value kind and a list of elements (the support records'
// transitions, for their LineIndex).
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

// Every default of every real record is checked against data/*.tsv; this drives the typed
// accessors of each value kind through a stored node.
TEST(AgentBase, CreateOnClearsTheNodeAndABoundViewReadsWhatSettersWrote) {
    CAgentTestResource made;
    ASSERT_TRUE(made.CreateOn(nullptr));
    ITsProperty* root = made.GetNode();
    ASSERT_NE(root, nullptr) << "unbound, the record makes its own node";
    EXPECT_EQ(NameOf(root), u"Agent");
    EXPECT_EQ(root->GetType(), kTsTypeList);
    EXPECT_EQ(root->GetFlags(), 2u);
    CTsHostString display;
    root->GetAttribute(TsPropertyAttribute::DisplayName, display.Put());
    EXPECT_EQ(display.View(), u"Agent");

    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"Stray", variant(kTsTypeInt, 3));
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(node.Get()));
    EXPECT_EQ(r.GetNode(), node.Get());
    const std::vector<std::u16string> fields{u"ResRefName", u"LocalCopy", u"Speaker", u"Seed", u"Delay", u"Exact",
                                             u"SentOn", u"Position", u"Fog", u"Result", u"ItemList"};
    EXPECT_EQ(ChildNames(node.Get()), fields) << "the stray child is gone, base fields come first";
    EXPECT_EQ(Read(r, &CAgentTestResource::GetSpeaker), u"OWNER");
    EXPECT_EQ(Read(r, &CAgentTestResource::GetFog), (TsColour{0.5f, 0.5f, 0.5f, 1}));

    ASSERT_TRUE(r.SetResRefName(u"gate") && r.SetLocalCopy(true) && r.SetSpeaker(u"merchant") &&
                r.SetSeed(0xFFFFFFFFu) && r.SetDelay(-0.25f) && r.SetExact(1e-300) && r.SetSentOn(46001.123456789) &&
                r.SetPosition(TsVector3{-1, 0.25f, 9}) && r.SetFog(TsColour{0, 1, 0.5f, 0}) && r.SetResult(false));
    CAgentTestResource view;
    view.Bind(node.Get());
    EXPECT_EQ(Read(view, &CAgentTestResource::GetResRefName), u"gate");
    EXPECT_TRUE(Read(view, &CAgentTestResource::GetLocalCopy));
    EXPECT_EQ(Read(view, &CAgentTestResource::GetSpeaker), u"merchant");
    EXPECT_EQ(Read(view, &CAgentTestResource::GetSeed), 0xFFFFFFFFu);
    EXPECT_EQ(Read(view, &CAgentTestResource::GetDelay), -0.25f);
    EXPECT_EQ(Read(view, &CAgentTestResource::GetExact), 1e-300);
    EXPECT_EQ(Read(view, &CAgentTestResource::GetSentOn), 46001.123456789);
    EXPECT_EQ(Read(view, &CAgentTestResource::GetPosition), (TsVector3{-1, 0.25f, 9}));
    EXPECT_EQ(Read(view, &CAgentTestResource::GetFog), (TsColour{0, 1, 0.5f, 0}));
    EXPECT_FALSE(Read(view, &CAgentTestResource::GetResult));
    EXPECT_EQ(ChildNames(node.Get()), fields) << "binding declared nothing again";
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
    EXPECT_EQ(Read(r, &CAgentTestResource::GetDelay), 1.5f) << "the well-typed fields still read";

    CAgentTestResource unbound;
    EXPECT_FALSE(unbound.GetSpeaker(text));
    EXPECT_EQ(text, u"kept");
}

TEST(AgentBase, ListsInsertCopyAndReportTheirFailures) {
    CAgentTestResource source, byRef, deep;
    ASSERT_TRUE(source.CreateOn(nullptr) && byRef.CreateOn(nullptr) && deep.CreateOn(nullptr));
    for (int i = 0; i < 3; ++i) {
        CAgentTestItem item;
        ASSERT_TRUE(item.CreateOn(nullptr) && item.SetLineIndex(10 + i));
        ASSERT_TRUE(source.AddItemToPropertyList(item, u"ItemList", i == 2 ? 0 : kTsAppend));
    }
    using Ints = std::vector<std::int32_t>;
    EXPECT_EQ(LineIndexes(source), (Ints{12, 10, 11})) << "the third went in at the front";
    EXPECT_EQ(source.GetPropertyListEntryCount(u"ItemList"), 3u);
    CTsComPtr<ITsProperty> sourceList, node;
    ASSERT_TRUE(source.FindProperty(TsAddAtom(u"ItemList"), 0, sourceList));
    ASSERT_TRUE(byRef.CopyPropertyList(sourceList.Get(), u"ItemList", false));
    ASSERT_TRUE(deep.CopyPropertyList(sourceList.Get(), u"ItemList", true));

    // A change to a source element shows in the shared copy only.
    ASSERT_TRUE(source.GetItemListItem(2, node));
    ASSERT_TRUE(CAgentTestItem(node.Get()).SetLineIndex(99));
    EXPECT_EQ(LineIndexes(byRef), (Ints{12, 10, 99}));
    EXPECT_EQ(LineIndexes(deep), (Ints{12, 10, 11}));

    ReportCapture reports;
    EXPECT_FALSE(deep.CopyPropertyList(sourceList.Get(), u"NoSuchList", true));
    EXPECT_EQ(deep.GetPropertyListEntryCount(u"NoSuchList"), 0u);
    EXPECT_FALSE(deep.GetPropertyFromList(u"ItemList", 3, node));
    EXPECT_FALSE(node);
    CAgentTestItem unboundItem;
    EXPECT_FALSE(deep.AddItemToPropertyList(unboundItem, u"ItemList"));
    EXPECT_FALSE(deep.AddItemToPropertyList(deep, u"Speaker")) << "not a list";
    std::vector<std::u16string> messages;
    for (const auto& e : reports.entries()) {
        messages.push_back(e.message);
        EXPECT_EQ(e.sourceFile, "AgentBase");
        EXPECT_EQ(e.level, static_cast<int>(ReportLevel::Assert));
    }
    EXPECT_EQ(messages, (std::vector<std::u16string>{
                            u"CAgentBase::AddItemToPropertyList failed to add a property to list NoSuchList",
                            u"CAgentBase::GetPropertyListEntryCount failed to get count for list NoSuchList",
                            u"CAgentBase::GetPropertyFromList failed to get item for list ItemList",
                            u"CAgentBase::AddItemToPropertyList failed to add a property to list ItemList",
                            u"CAgentBase::AddItemToPropertyList failed to add a property to list Speaker"}))
        << "the copy stops at its first failure";
    EXPECT_EQ(LineIndexes(deep), (Ints{12, 10, 11}));
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
