// The conversation as a tree of labelled items: built from the resource, coloured, and written
// back with lines renumbered depth-first. The demo's conversations check labels and unchanged
// write-back on real data (demo_conversations_test.cpp).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/conversation_tree.h"
#include "model/dlg_editor_settings.h"
#include "support/conversation_builder.h"

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

// The texts of one kind of line in list order, joined by "|".
std::u16string LineTexts(const CAgentConversation& c, bool npc) {
    std::u16string out;
    for (std::uint32_t i = 0; i < (npc ? c.NPCLineListCount() : c.PlayerLineListCount()); ++i) {
        CTsComPtr<ITsProperty> node;
        npc ? c.GetNPCLineListItem(i, node) : c.GetPlayerLineListItem(i, node);
        CAgentConversationLine line;
        line.Bind(node.Get());
        std::u16string text;
        line.GetText(text);
        out += (i ? u"|" : u"") + text;
    }
    return out;
}

TEST(ConversationTree, MovingASubtreeRenumbersLinesAndLinksOnWriteBack) {
    GuardConversation c;
    ConversationTree tree;
    std::u16string error;
    ASSERT_TRUE(tree.Build(c.Resource(), error));
    ItemTree& items = tree.Items();
    // "Nothing. Goodbye." before "I'm here to trade.", and the comment line first of the starts.
    TreeItem halt = items.GetChild(tree.RootItem());
    ASSERT_TRUE(items.MoveItem(items.GetNextSibling(items.GetChild(halt)), halt, kInsertFirst));
    ASSERT_TRUE(items.MoveItem(items.GetLastChild(tree.RootItem()), tree.RootItem(), kInsertFirst));

    CAgentConversation out;
    ASSERT_TRUE(tree.WriteBack(out));
    // Depth-first order of full items: note, halt, leave, trade, market, more.
    EXPECT_EQ(LineTexts(out, true), u"|Halt! State your business.|The market is east.");
    EXPECT_EQ(LineTexts(out, false), u"Nothing. Goodbye.|I'm here to trade.|");

    // Read again, starts and links still reach the same lines: their indices were rewritten.
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
    EXPECT_EQ(LineTexts(out, true), u"Hello.|Hello.");
    EXPECT_EQ(LineTexts(out, false), u"Again?|Again?");
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
