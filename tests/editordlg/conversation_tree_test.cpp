#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/conversation_tree.h"
#include "model/dlg_editor_settings.h"
#include "model/tree_view_commands.h"
#include "support/conversation_builder.h"
#include "support/report_capture.h"

namespace {

using namespace dlg;
using ts::test::ConversationBuilder;

// The labels of the whole tree in pre-order, one line each, indented by depth, links marked.
std::u16string Outline(const ConversationTree& tree) {
    std::u16string out;
    const ItemTree& items = tree.Items();
    for (TreeItem item = tree.RootItem(); item != kNoItem; item = items.NextInPreOrder(item)) {
        int depth = 0;
        for (TreeItem p = items.GetParent(item); p != kNoItem; p = items.GetParent(p)) ++depth;
        out += std::u16string(std::size_t(depth) * 2, u' ');
        ConversationNode* node = tree.NodeOf(item);
        if (node && node->isLink) out += u"-> ";
        out += items.GetText(item) + u"\n";
    }
    return out;
}

// A guard who asks the player's business; two answers, one of which loops back by a link, and
// a comment line on a branch.
struct GuardConversation : ConversationBuilder {
    GuardConversation() {
        std::uint32_t halt = Npc(u"Halt! State your business.", u"guard");
        std::uint32_t trade = Player(u"I'm here to trade.");
        std::uint32_t leave = Player(u"Nothing. Goodbye.");
        std::uint32_t market = Npc(u"The market is east.");
        std::uint32_t note = Npc(u"", u"", u"Thieves' branch, written later");
        std::uint32_t more = Player(u"");
        Start(halt);
        NpcTo(halt, trade);
        NpcTo(halt, leave);
        PlayerTo(trade, market);
        NpcTo(market, more);
        PlayerTo(more, halt, true);  // back to the start by a link
        Start(note);
    }
};

TEST(ConversationTree, BuildsLabelsAndWritesBackWhatItRead) {
    GuardConversation c;
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(c.Resource(), error)) << std::string(error.begin(), error.end());
    EXPECT_EQ(Outline(tree),
              u"Root\n"
              u"  [guard] Halt! State your business.\n"
              u"    I'm here to trade.\n"
              u"      [[OWNER]] The market is east.\n"
              u"        [CONTINUE]\n"
              u"          -> [guard] Halt! State your business.\n"
              u"    Nothing. Goodbye. [END DIALOGUE]\n"
              u"  [COMMENT] Thieves' branch, written later\n");
    EXPECT_EQ(tree.NodeCount(), 8u);
    ConversationNode* link = tree.NodeAt(5);
    ASSERT_NE(link, nullptr);
    EXPECT_TRUE(link->isLink);
    EXPECT_EQ(link->linkTarget, tree.NodeAt(1));
    EXPECT_TRUE(tree.NodeAt(7)->isComment);

    // Writing back an unchanged tree gives the same lines, starts and transitions.
    CAgentConversation out;
    ASSERT_TRUE(tree.WriteBack(out));
    EXPECT_EQ(out.StartListCount(), 2u);
    EXPECT_EQ(out.NPCLineListCount(), 3u);
    EXPECT_EQ(out.PlayerLineListCount(), 3u);
    ConversationTree again;
    ASSERT_TRUE(again.Build(out.GetNode(), error));
    EXPECT_EQ(Outline(again), Outline(tree));
}

TEST(ConversationTree, MovingASubtreeRenumbersLinesAndLinksOnWriteBack) {
    GuardConversation c;
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(c.Resource(), error));
    ItemTree& items = tree.Items();
    // Move "Nothing. Goodbye." before "I'm here to trade.".
    TreeItem halt = items.GetChild(tree.RootItem());
    TreeItem trade = items.GetChild(halt);
    TreeItem leave = items.GetNextSibling(trade);
    ASSERT_TRUE(items.MoveItem(leave, halt, kInsertFirst));
    // And the comment line to the front of the starts.
    TreeItem note = items.GetLastChild(tree.RootItem());
    ASSERT_TRUE(items.MoveItem(note, tree.RootItem(), kInsertFirst));

    CAgentConversation out;
    ASSERT_TRUE(tree.WriteBack(out));
    auto text = [&](bool npc, std::uint32_t i) {
        CTsComPtr<ITsProperty> node;
        npc ? out.GetNPCLineListItem(i, node) : out.GetPlayerLineListItem(i, node);
        CAgentConversationLine line;
        line.Bind(node.Get());
        std::u16string t;
        line.GetText(t);
        return t;
    };
    // Depth-first order of full items: note, halt, leave, trade, market, more.
    EXPECT_EQ(text(true, 0), u"");
    EXPECT_EQ(text(true, 1), u"Halt! State your business.");
    EXPECT_EQ(text(true, 2), u"The market is east.");
    EXPECT_EQ(text(false, 0), u"Nothing. Goodbye.");
    EXPECT_EQ(text(false, 1), u"I'm here to trade.");
    EXPECT_EQ(text(false, 2), u"");

    CAgentConversationStart start;
    CTsComPtr<ITsProperty> node;
    std::int32_t index = -1;
    ASSERT_TRUE(out.GetStartListItem(1, node));
    start.Bind(node.Get());
    start.GetLineIndex(index);
    EXPECT_EQ(index, 1) << "the halt line is now NPC line 1";

    // The link under "more" (player 2) points at the halt line's new index.
    CAgentConversationTransition transition;
    ASSERT_TRUE(out.GetPlayerToNPC(2, 0, transition));
    bool isLink = false;
    transition.GetIsLink(isLink);
    transition.GetLineIndex(index);
    EXPECT_TRUE(isLink);
    EXPECT_EQ(index, 1);

    ConversationTree again;
    ASSERT_TRUE(again.Build(out.GetNode(), error));
    EXPECT_EQ(Outline(again), Outline(tree));
}

TEST(ConversationTree, DuplicateStartsAndEmptyConversations) {
    ConversationBuilder empty;
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(empty.Resource(), error));
    EXPECT_EQ(Outline(tree), u"Root\n");

    // Two starts name the same NPC line: two full items; a link resolves to the later one.
    ConversationBuilder c;
    std::uint32_t hello = c.Npc(u"Hello.", u"innkeeper");
    std::uint32_t again = c.Player(u"Again?");
    c.Start(hello);
    c.Start(hello);
    c.NpcTo(hello, again);
    c.PlayerTo(again, hello, true);
    ASSERT_TRUE(tree.Build(c.Resource(), error));
    ItemTree& items = tree.Items();
    TreeItem first = items.GetChild(tree.RootItem());
    TreeItem second = items.GetNextSibling(first);
    EXPECT_EQ(tree.NodeOf(first)->lineIndex, tree.NodeOf(second)->lineIndex);
    ConversationNode* link = tree.NodeOf(items.GetChild(items.GetChild(second)));
    ASSERT_TRUE(link && link->isLink);
    EXPECT_EQ(link->linkTarget, tree.NodeOf(second));
    // Each full item writes back a line of its own.
    CAgentConversation out;
    ASSERT_TRUE(tree.WriteBack(out));
    EXPECT_EQ(out.NPCLineListCount(), 2u);
    EXPECT_EQ(out.PlayerLineListCount(), 2u);
}

TEST(ConversationTree, DamagedConversationsFailTheBuildWithAMessage) {
    std::u16string error;
    ConversationTree tree;

    ConversationBuilder dangling;  // a link to a player line that has no full item
    std::uint32_t npc = dangling.Npc(u"Hm?");
    dangling.Player(u"orphan");
    dangling.Start(npc);
    dangling.NpcTo(npc, 0, true);
    EXPECT_FALSE(tree.Build(dangling.Resource(), error));
    EXPECT_EQ(error,
              u"PC link refers to source ID [0] which does not exist.  This is a toolset bug.");
    EXPECT_EQ(tree.Items().Size(), 0u) << "nothing is shown";

    ConversationBuilder outOfRange;
    outOfRange.Start(4);
    EXPECT_FALSE(tree.Build(outOfRange.Resource(), error));
    EXPECT_EQ(error, u"NPC line [4] does not exist: the conversation is damaged.");

    ConversationBuilder cycle;  // owned children that lead back to their own ancestor
    std::uint32_t a = cycle.Npc(u"a");
    std::uint32_t b = cycle.Player(u"b");
    cycle.Start(a);
    cycle.NpcTo(a, b);
    cycle.PlayerTo(b, a);
    EXPECT_FALSE(tree.Build(cycle.Resource(), error));
    EXPECT_EQ(error, u"NPC line [0] contains itself: the conversation is damaged.");
}

TEST(ConversationTree, ExpandCollapseAndJumpToTarget) {
    GuardConversation c;
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(c.Resource(), error));
    ItemTree& items = tree.Items();
    TreeItem root = tree.RootItem();
    TreeItem halt = items.GetChild(root);

    items.Select(root);
    RunExpandCommand(items, ExpandCommand::ExpandAll);
    for (TreeItem i = root; i != kNoItem; i = items.NextInPreOrder(i))
        if (items.HasChildren(i)) {
            EXPECT_TRUE(items.IsExpanded(i));
        }
    EXPECT_TRUE(items.RedrawOn());

    items.Select(halt);
    RunExpandCommand(items, ExpandCommand::Collapse);
    EXPECT_FALSE(items.IsExpanded(halt));
    EXPECT_TRUE(items.IsExpanded(items.GetChild(halt)))
        << "a plain collapse leaves the branch below";
    RunExpandCommand(items, ExpandCommand::CollapseAll);
    EXPECT_EQ(items.GetSelection(), root);
    for (TreeItem i = root; i != kNoItem; i = items.NextInPreOrder(i))
        EXPECT_FALSE(items.IsExpanded(i));

    items.Select(halt);
    EXPECT_FALSE(JumpToTarget(tree)) << "not a link";
    ConversationNode* link = tree.NodeAt(5);
    items.Select(link->treeItem);
    ASSERT_TRUE(JumpToTarget(tree));
    EXPECT_EQ(items.GetSelection(), halt);
}

TEST(ConversationTree, ColoursFollowKindCommentAmbientAndErrors) {
    dlg::TheDlgEditorSettings() = dlg::DlgEditorSettings();  // the built-in colours
    GuardConversation c;
    c.Line(false, 0).SetAmbient(true);  // "I'm here to trade." and everything below it
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(c.Resource(), error));
    const ItemTree& items = tree.Items();
    auto text = [&](int i) { return items.GetTextColour(tree.NodeAt(i)->treeItem); };
    auto back = [&](int i) { return items.GetBackColour(tree.NodeAt(i)->treeItem); };
    EXPECT_EQ(items.GetTextColour(tree.RootItem()), kNoColour);
    EXPECT_EQ(text(1), 0x0000FFu) << "NPC";
    EXPECT_EQ(text(2), 0xFF0000u) << "player";
    EXPECT_EQ(text(5), 0x7F7F7Fu) << "link";
    EXPECT_EQ(text(7), 0x007F00u) << "comment";
    EXPECT_EQ(back(1), kNoColour);
    EXPECT_EQ(back(2), 0xFFE5FFu);
    EXPECT_EQ(back(3), 0xFFE5FFu) << "ambient is inherited";
    EXPECT_EQ(back(5), 0xFFE5FFu) << "a link takes the flag of the line it hangs under";
    EXPECT_EQ(back(6), kNoColour);

    tree.NodeAt(3)->errorText = u"Line exceeds maximum length allowed by game";
    tree.RefreshAll();
    EXPECT_EQ(back(3), 0x000000u) << "the error colour wins over ambient";
}

}  // namespace
