#include <gtest/gtest.h>

#include "agents/agentgameobject.h"
#include "support/report_capture.h"
#include "support/variant_print.h"
#include "ts/hoststring.h"

namespace {

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

std::vector<std::u16string> ChildNames(ITsProperty* node) {
    std::vector<std::u16string> names;
    ITsProperty* const* items;
    std::uint32_t count;
    if (SUCCEEDED(node->GetChildArray(&items, &count)))
        for (std::uint32_t i = 0; i < count; ++i) names.push_back(NameOf(items[i]));
    return names;
}

TEST(AgentBase, BuildsTheAgentNodeWithBaseFieldsFirst) {
    CAgentTestResource r;
    ASSERT_TRUE(r.BuildProperties());
    ITsProperty* root = r.GetNode();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(NameOf(root), u"Agent");
    EXPECT_EQ(root->GetType(), kTsTypeList);
    EXPECT_EQ(root->GetFlags(), 2u);
    CTsHostString display;
    root->GetAttribute(TsPropertyAttribute::DisplayName, display.Put());
    EXPECT_EQ(display.View(), u"Agent");

    EXPECT_EQ(ChildNames(root), (std::vector<std::u16string>{u"ResRefName", u"LocalCopy", u"Speaker", u"Seed",
                                                             u"Delay", u"Exact", u"SentOn", u"Position", u"Fog",
                                                             u"Result", u"ItemList"}));
    // Each node carries its declaration.
    CTsComPtr<ITsProperty> node;
    ASSERT_TRUE(r.FindProperty(TsAddAtom(u"ResRefName"), 0, node));
    EXPECT_EQ(node->GetFlags(), 2060u);
    CTsHostString description;
    node->GetAttribute(TsPropertyAttribute::Description, description.Put());
    EXPECT_EQ(description.View(), u"A unique string identifier the toolset and the game both use to refer to this resource");
    ASSERT_TRUE(r.FindProperty(TsAddAtom(u"Speaker"), 0, node));
    CTsHostString editor;
    node->GetAttribute(TsPropertyAttribute::EditorKind, editor.Put());
    EXPECT_EQ(editor.View(), u"TagName");
}

TEST(AgentBase, CreateOnClearsTheNodeAndWritesEveryDefault) {
    CTsComPtr<ITsProperty> node;
    ASSERT_EQ(TsCreateProperty(u"Agent", kTsTypeList, 2, node.Put()), S_OK);
    CTsComPtr<ITsProperty> stray;
    ASSERT_EQ(TsCreateProperty(u"Stray", kTsTypeInt, 0, stray.Put()), S_OK);
    ASSERT_EQ(node->InsertChild(kTsAppend, stray.Get()), S_OK);

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
}

TEST(AgentBase, SettersAndGettersRoundTrip) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    ASSERT_TRUE(r.SetSpeaker(u"guard_captain"));
    ASSERT_TRUE(r.SetSeed(0xFFFFFFFFu));
    ASSERT_TRUE(r.SetPosition(TsVector3{-1, 0.25f, 9}));
    ASSERT_TRUE(r.SetResult(false));
    std::u16string speaker;
    std::uint32_t seed = 0;
    TsVector3 position;
    bool result = true;
    ASSERT_TRUE(r.GetSpeaker(speaker) && r.GetSeed(seed) && r.GetPosition(position) && r.GetResult(result));
    EXPECT_EQ(speaker, u"guard_captain");
    EXPECT_EQ(seed, 0xFFFFFFFFu);
    EXPECT_EQ(position, (TsVector3{-1, 0.25f, 9}));
    EXPECT_FALSE(result);
}

TEST(AgentBase, BindChangesNothing) {
    CAgentTestResource original;
    ASSERT_TRUE(original.CreateOn(nullptr));
    ASSERT_TRUE(original.SetSpeaker(u"merchant"));

    CAgentTestResource view;
    view.Bind(original.GetNode());
    std::u16string speaker;
    ASSERT_TRUE(view.GetSpeaker(speaker));
    EXPECT_EQ(speaker, u"merchant") << "no defaults were written";
    EXPECT_EQ(ChildNames(view.GetNode()).size(), 11u) << "no fields were declared again";
}

TEST(AgentBase, MissingOrMistypedFieldReportsAndLeavesTheOutput) {
    // A stored resource whose "Speaker" is an int and which lacks "Seed" entirely.
    CTsComPtr<ITsProperty> root, speaker;
    ASSERT_EQ(TsCreateProperty(u"Agent", kTsTypeList, 2, root.Put()), S_OK);
    ASSERT_EQ(TsCreateProperty(u"Speaker", kTsTypeInt, 2, speaker.Put()), S_OK);
    ASSERT_EQ(root->InsertChild(kTsAppend, speaker.Get()), S_OK);
    CAgentTestResource r;
    r.Bind(root.Get());

    ReportCapture reports;
    std::u16string text = u"kept";
    std::uint32_t seed = 42;
    EXPECT_FALSE(r.GetSpeaker(text));
    EXPECT_FALSE(r.GetSeed(seed));
    EXPECT_FALSE(r.SetSeed(1));
    EXPECT_EQ(text, u"kept");
    EXPECT_EQ(seed, 42u);
    ASSERT_EQ(reports.Count(u"Request for invalid property"), 3u);
    EXPECT_EQ(reports.entries()[0].level, 0);
    EXPECT_EQ(reports.entries()[0].sourceFile, "agenttest");

    CAgentTestResource unbound;
    EXPECT_FALSE(unbound.GetSpeaker(text));
    EXPECT_EQ(text, u"kept");
}

TEST(AgentBase, ListOperationsOnElements) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    for (int i = 0; i < 3; ++i) {
        CAgentTestItem item;
        CTsComPtr<ITsProperty> node;
        ASSERT_EQ(TsCreateProperty(u"Agent", kTsTypeList, 2, node.Put()), S_OK);
        ASSERT_TRUE(item.CreateOn(node.Get()));
        ASSERT_TRUE(item.SetLineIndex(i));
        ASSERT_TRUE(r.AddItemToPropertyList(item, u"ItemList", i == 2 ? 0 : kTsAppend));
    }
    ASSERT_EQ(r.GetPropertyListEntryCount(u"ItemList"), 3u);
    std::vector<std::int32_t> order;
    for (std::uint32_t i = 0; i < r.ItemListCount(); ++i) {
        CTsComPtr<ITsProperty> node;
        ASSERT_TRUE(r.GetItemListItem(i, node));
        CAgentTestItem item;
        item.Bind(node.Get());
        std::int32_t index = -5;
        ASSERT_TRUE(item.GetLineIndex(index));
        order.push_back(index);
    }
    EXPECT_EQ(order, (std::vector<std::int32_t>{2, 0, 1})) << "the third went in at the front";

    // A new item has a default LineIndex and no IsLink written (that field has no default).
    CAgentTestItem fresh;
    ASSERT_TRUE(fresh.CreateOn(nullptr));
    std::int32_t index = 0;
    bool isLink = true;
    ASSERT_TRUE(fresh.GetLineIndex(index));
    EXPECT_EQ(index, -1);
    ASSERT_TRUE(fresh.GetIsLink(isLink));
    EXPECT_FALSE(isLink) << "a field without default holds its zero value";
}

TEST(AgentBase, ListFailuresReportAndGiveNothing) {
    CAgentTestResource r;
    ASSERT_TRUE(r.CreateOn(nullptr));
    ReportCapture reports;
    EXPECT_EQ(r.GetPropertyListEntryCount(u"NoSuchList"), 0u);
    int visited = 0;
    for (std::uint32_t i = 0; i < r.GetPropertyListEntryCount(u"NoSuchList"); ++i) ++visited;
    EXPECT_EQ(visited, 0);
    CTsComPtr<ITsProperty> node;
    EXPECT_FALSE(r.GetPropertyFromList(u"ItemList", 0, node));
    EXPECT_FALSE(node);
    CAgentTestItem unboundItem;
    EXPECT_FALSE(r.AddItemToPropertyList(unboundItem, u"ItemList"));
    EXPECT_FALSE(r.AddItemToPropertyList(r, u"Speaker")) << "not a list";

    ASSERT_EQ(reports.size(), 5u);
    EXPECT_EQ(reports.entries()[0].message, u"CAgentBase::GetPropertyListEntryCount failed to get count for list NoSuchList");
    EXPECT_EQ(reports.entries()[2].message, u"CAgentBase::GetPropertyFromList failed to get item for list ItemList");
    EXPECT_EQ(reports.entries()[3].message, u"CAgentBase::AddItemToPropertyList failed to add a property to list ItemList");
    EXPECT_EQ(reports.entries()[4].message, u"CAgentBase::AddItemToPropertyList failed to add a property to list Speaker");
    EXPECT_EQ(reports.entries()[0].sourceFile, "AgentBase");
}

TEST(AgentBase, CopiesListsByReferenceOrDeep) {
    CAgentTestResource source, byRef, deep;
    ASSERT_TRUE(source.CreateOn(nullptr) && byRef.CreateOn(nullptr) && deep.CreateOn(nullptr));
    for (int i = 0; i < 2; ++i) {
        CAgentTestItem item;
        ASSERT_TRUE(item.CreateOn(nullptr));
        ASSERT_TRUE(item.SetLineIndex(10 + i));
        ASSERT_TRUE(source.AddItemToPropertyList(item, u"ItemList"));
    }
    CTsComPtr<ITsProperty> sourceList;
    ASSERT_TRUE(source.FindProperty(TsAddAtom(u"ItemList"), 0, sourceList));
    ASSERT_TRUE(byRef.CopyPropertyList(sourceList.Get(), u"ItemList", false));
    ASSERT_TRUE(deep.CopyPropertyList(sourceList.Get(), u"ItemList", true));
    ASSERT_EQ(byRef.ItemListCount(), 2u);
    ASSERT_EQ(deep.ItemListCount(), 2u);

    CTsComPtr<ITsProperty> original, shared, copied;
    ASSERT_TRUE(source.GetItemListItem(1, original) && byRef.GetItemListItem(1, shared) &&
                deep.GetItemListItem(1, copied));
    EXPECT_EQ(shared.Get(), original.Get());
    EXPECT_NE(copied.Get(), original.Get());

    CAgentTestItem edit;
    edit.Bind(original.Get());
    ASSERT_TRUE(edit.SetLineIndex(99));
    CAgentTestItem viaRef, viaCopy;
    viaRef.Bind(shared.Get());
    viaCopy.Bind(copied.Get());
    std::int32_t a = 0, b = 0;
    ASSERT_TRUE(viaRef.GetLineIndex(a) && viaCopy.GetLineIndex(b));
    EXPECT_EQ(a, 99);
    EXPECT_EQ(b, 11);

    ReportCapture reports;
    EXPECT_FALSE(deep.CopyPropertyList(sourceList.Get(), u"NoSuchList", true)) << "stops at the first failure";
    EXPECT_EQ(reports.size(), 1u);
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

TEST(AgentBase, FieldTableIsTheDeclaration) {
    auto fields = CAgentTestResource::Fields();
    ASSERT_EQ(fields.size(), 9u);
    EXPECT_EQ(std::u16string(fields[0].name), u"Speaker");
    EXPECT_EQ(fields[0].type, kTsTypeString);
    EXPECT_EQ(TsDefaultVariant(fields[0]), variant(kTsTypeString, u"OWNER"));
    EXPECT_EQ(TsDefaultVariant(fields[4]), variant(kTsTypeDateTime, 46000.0));
    EXPECT_TRUE(TsDefaultVariant(fields[8]).empty());
    EXPECT_EQ(CAgentGameObject::Fields().size(), 2u);
}

}  // namespace
