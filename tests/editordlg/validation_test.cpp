// Validation as a writer meets it: a conversation opened in the editor against the demo module
// (its plots and its stage), every rule with its message in rule order, the error list the host
// is given, and the faults following edits, undo and a plot saved elsewhere.
#include <gtest/gtest.h>

#include "agents/agentplot.h"
#include "edit_harness.h"
#include "model/dlg_editor_settings.h"
#include "model/known_tags.h"
#include "model/plugin_events.h"
#include "model/validation/replacement_check.h"
#include "model/validation/text_normal_form.h"
#include "support/conversation_builder.h"
#include "support/conversation_editor_object.h"
#include "support/demo_module_fixture.h"
#include "support/scripted_ui.h"
#include "ts/environment.h"
#include "ts/events.h"

namespace {

using Entries = std::vector<ts::ErrorEntry>;

std::u16string Repeat(char16_t c, std::size_t n) {
    return std::u16string(n, c);
}

class Validation : public ts::test::DemoModuleTest {
protected:
    void TearDown() override {
        if (editor_) editor_->CloseUIWindow();
        DemoModuleTest::TearDown();
    }

    // A conversation with one line per rule, stored in the module as "rules.dlg". TreeIndex:
    // 1 NPC (condition flag missing from its plot), 2..7 its player replies (60 characters,
    // 61, 60 with a glued tag, ambient and empty, ambient with text, a long slide-show line),
    // 8 NPC (plot without flag, missing action plot), 9 NPC (invalid plot URI, 201 characters,
    // speaker without a stage place), 10 NPC (exactly 200, "OWNER" on a missing stage),
    // 11 ambient NPC, 12 its player reply with text, 13 a player reply linking to 6.
    void StoreRulesConversation() {
        ts::test::ConversationBuilder b;
        b.conversation.SetEndConversationPlotURI(u"plt_lantern_rumours");
        std::uint32_t n0 = b.Npc(u"Back again?", u"orla");
        b.Line(true, n0).SetStageURI(u"stg_lantern_bar");
        SetPlot(b.Line(true, n0), true, u"plt_lantern_rumours", 7);
        std::uint32_t p[6] = {
            b.Player(Repeat(u'a', 60)),
            b.Player(Repeat(u'a', 61)),
            b.Player(u"<i>" + Repeat(u'a', 30) + u"<i>" + Repeat(u'b', 29) + u"</i>"),
            b.Player(u""),
            b.Player(u"Hm."),
            b.Player(Repeat(u'z', 300))};
        b.Line(false, p[3]).SetAmbient(true);
        b.Line(false, p[4]).SetAmbient(true);
        b.Line(false, p[5]).SetSlideShowTexture(u"tex_harbour_map");
        for (std::uint32_t player : p) b.NpcTo(n0, player);

        std::uint32_t n1 = b.Npc(u"Plots.");
        SetPlot(b.Line(true, n1), true, u"plt_lantern_rumours", -1);
        SetPlot(b.Line(true, n1), false, u"plt_nowhere", 1);
        std::uint32_t n2 = b.Npc(Repeat(u'x', 150) + u"--" + Repeat(u'y', 49), u"harbour_guard");
        b.Line(true, n2).SetStageURI(u"stg_lantern_bar");
        SetPlot(b.Line(true, n2), true, u"bad|uri", 1);
        std::uint32_t n3 = b.Npc(u"  " + Repeat(u'w', 200) + u"<b>", u"OWNER");
        b.Line(true, n3).SetStageURI(u"stg_nowhere");
        std::uint32_t n4 = b.Npc(u"Psst.");
        b.Line(true, n4).SetAmbient(true);
        std::uint32_t p6 = b.Player(u"What?");
        b.NpcTo(n4, p6);
        b.NpcTo(n4, p[4], true);
        for (std::uint32_t start : {n0, n1, n2, n3, n4}) b.Start(start);
        CTsComPtr<ITsResource> created;
        ASSERT_EQ(manager_->CreateResource(u"rules", u"dlg", b.Resource(), created.Put()), S_OK);
    }
    static void SetPlot(CAgentConversationLine line, bool condition, std::u16string plot,
                        std::int32_t flag) {
        condition ? line.SetConditionPlotURI(plot) : line.SetActionPlotURI(plot);
        condition ? line.SetConditionPlotFlag(flag) : line.SetActionPlotFlag(flag);
    }

    CConversationEditorWnd& Open(std::u16string_view name) {
        editor_ = ts::test::OpenConversationEditor(*manager_, name);
        return *editor_->GetWindow();
    }
    dlg::ConversationNode& Node(std::int32_t index) {
        return *editor_->GetWindow()->Document().Tree().NodeAt(index);
    }
    bool Run(std::unique_ptr<CTsUndoCommand> command) {
        return editor_->GetWindow()->Perform(std::move(command));
    }

    ts::test::ScriptedUi ui_;
    CTsComPtr<ts::test::ConversationEditorObject> editor_;
};

const Entries kRulesFaults = {
    {0, u"The root has an end plot with no plot flags selected"},
    {1,
     u"The flag specified for the Condition Plot no longer exists in plot \"plt_lantern_rumours\""},
    {3, u"Line exceeds maximum length allowed by game"},
    {6, u"Player lines cannot be flagged as ambient if they have text"},
    {8, u"The line has plots with no plot flags selected"},
    {8, u"Invalid Action Plot \"plt_nowhere\""},
    {9, u"Plot has an invalid URI \"bad|uri\""},
    {9, u"Line exceeds maximum length allowed by game"},
    {9, u"The speaker \"harbour_guard\" is not mapped to a stage place"},
    {12, u"Player lines cannot be flagged as ambient if they have text"},
};

TEST_F(Validation, EveryRuleReportsInOrderAndTheHostGetsTheList) {
    StoreRulesConversation();
    CConversationEditorWnd& wnd = Open(u"rules");
    EXPECT_EQ(wnd.Document().Validation().Errors(), kRulesFaults);
    EXPECT_EQ(ui_.errors[u"rules.dlg"], kRulesFaults);
    EXPECT_EQ(
        Node(9).errorText,
        u"Plot has an invalid URI \"bad|uri\" | Line exceeds maximum length allowed by game | "
        u"The speaker \"harbour_guard\" is not mapped to a stage place");

    // A link shows its target's state; the root its own.
    dlg::ItemTree& items = wnd.Document().Tree().Items();
    EXPECT_EQ(items.GetBackColour(Node(13).treeItem), items.GetBackColour(Node(6).treeItem));
    EXPECT_NE(items.GetBackColour(Node(6).treeItem), items.GetBackColour(Node(5).treeItem));
    EXPECT_NE(items.GetBackColour(items.GetRootItem()), dlg::kNoColour);

    // The normal form the length is measured on.
    EXPECT_EQ(dlg::TextNormalForm(u" <b>Go</b>-- now<i>"), u"Go    now");
    EXPECT_EQ(dlg::TextNormalForm(u"a<i>b"), u"a b");
    EXPECT_EQ(dlg::NormalFormLength(u"a<unclosed"), 10u);

    // Closing the editor takes its faults off the host's list.
    editor_->CloseUIWindow();
    editor_.Reset();
    EXPECT_EQ(ui_.errors.count(u"rules.dlg"), 0u);
}

TEST_F(Validation, FaultsFollowEditsUndoAndPlotsSavedElsewhere) {
    StoreRulesConversation();
    CConversationEditorWnd& wnd = Open(u"rules");
    dlg::ConversationEdits& edits = wnd.Document().Edits();
    auto faultsAt = [&](std::int32_t line) {
        Entries at;
        for (const ts::ErrorEntry& e : ui_.errors[u"rules.dlg"])
            if (e.line == line) at.push_back(e);
        return at.size();
    };

    // A text edit revalidates the line at once; undo brings the fault back.
    ASSERT_TRUE(Run(CUndoCommandModifyNode::ForField(
        u"Text Change", edits, Node(3).treeItem, u"Text",
        variant(11, std::u16string_view(u"Short.")), dlg::kChangeText)));
    EXPECT_EQ(faultsAt(3), 0u);
    ASSERT_TRUE(wnd.Undo());
    EXPECT_EQ(faultsAt(3), 1u);

    // Clearing the ambient flag of an NPC line clears its reply's fault; so would moving the
    // reply out from under it, and moving a reply with text under it adds one.
    ASSERT_TRUE(
        Run(CUndoCommandModifyNode::ForField(u"Ambient Change", edits, Node(11).treeItem,
                                             u"Ambient", variant(15, false), dlg::kChangeAmbient)));
    EXPECT_EQ(faultsAt(12), 0u);
    ASSERT_TRUE(wnd.Undo());
    EXPECT_EQ(faultsAt(12), 1u);
    ASSERT_TRUE(Run(
        std::make_unique<CUndoCommandMoveNode>(u"Drag Node", edits, CUndoMoveTriple{2, 11, 0})));
    // Line 2 (60 characters) is now the first reply of the ambient line (10), and faults.
    EXPECT_EQ(Node(11).faults, std::vector<std::u16string>{
                                   u"Player lines cannot be flagged as ambient if they have text"});
    ASSERT_TRUE(wnd.Undo());
    EXPECT_EQ(ui_.errors[u"rules.dlg"], kRulesFaults);

    // Deleting a faulty branch takes its faults off the list, and undo brings them back.
    ASSERT_TRUE(
        Run(CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", edits, Node(9).treeItem)));
    EXPECT_EQ(ui_.errors[u"rules.dlg"].size(), kRulesFaults.size() - 3);
    ASSERT_TRUE(wnd.Undo());
    EXPECT_EQ(ui_.errors[u"rules.dlg"], kRulesFaults);

    // Someone adds flag 7 to the plot and saves it: the host's event empties the value cache and
    // the open conversation is validated again.
    CTsComPtr<ITsResource> plot;
    CTsComPtr<ITsProperty> root;
    ASSERT_EQ(manager_->OpenResource(u"plt_lantern_rumours", u"plo", plot.Put()), S_OK);
    ASSERT_EQ(plot->GetRootProperty(root.Put()), S_OK);
    CAgentPlot agent;
    agent.Bind(root.Get());
    CAgentPlotStatus status;
    status.CreateOn(nullptr);
    status.SetFlag(7);
    ASSERT_TRUE(agent.AddItemToPropertyList(status, u"StatusList"));
    ASSERT_EQ(manager_->SaveResource(plot.Get()), S_OK);
    int published = ui_.published;
    editordlg::HandlePluginEvent(ts::events::SaveResource(), 0, 0, plot.Get());
    ts::BroadcastToEventSinks(ts::events::SaveResource(), 0, 0, plot.Get());
    EXPECT_EQ(faultsAt(1), 0u);
    EXPECT_EQ(ui_.published, published + 1);
}

// What find and replace may write into each checked field, against the demo module's creatures,
// henchmen, plots and tables.
TEST_F(Validation, ReplacementValuesAreCheckedByFieldNumber) {
    ts::test::ConversationBuilder b;
    b.conversation.SetEndConversationPlotURI(u"plt_lantern_rumours");
    CAgentConversationLine line = b.Line(true, b.Npc(u"Hello."));
    line.SetConditionPlotURI(u"plt_lantern_rumours.plo");
    std::optional<dlg::TextTagSet> tags = dlg::LoadKnownTags();
    ASSERT_TRUE(tags);
    dlg::ReplacementCheck check(*tags, 2);
    const struct {
        int property;
        std::u16string value, message;
    } cases[] = {
        {16, u"", u""},
        {16, u"owner", u""},
        {1, u"Orla", u""},
        {14, u"HENCHMAN 2", u""},
        {14, u"hench:WREN", u""},
        {14, u"HENCHMAN 3", u"\"HENCHMAN 3\" isn't a known tag."},
        {14, u"", u"\"\" isn't a known tag."},
        {3, u"plt_missing_caravan", u""},
        {18, u"plt_nowhere", u"\"plt_nowhere\" isn't a known plot."},
        {5, u"heard_lighthouse_rumour", u""},
        {5, u"1", u""},
        {5, u"9", u"\"9\" isn't a known plot flag."},
        {20, u"1", u"\"1\" isn't a known plot flag."},  // the line has no action plot
        {27, u"BOUGHT_DRINK", u""},
        {11, u"a > b", u"Line contains unmatched or malformed tags"},
        {12, u"Persuade", u""},
        {12, u"Juggle", u"\"Juggle\" isn't a known skill/icon."},
        {13, u"Deutsch", u""},
        {13, u"Klingon", u"\"Klingon\" isn't a known language."},
        {51, u"happy", u""},
        {51, u"Bored", u"\"Bored\" isn't a known emotion."},
        {52, u"anything", u""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(check.Check(c.property, c.value, line, b.conversation), c.message)
            << c.property << " " << ts::Utf16ToUtf8(c.value);
}

}  // namespace
