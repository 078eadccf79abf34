// Lines owned by several lines are copied under each owner. A little sharing opens as before;
// sharing that would multiply the tree is refused before anything is built, naming the lines.
#include <gtest/gtest.h>

#include <string>

#include "model/conversation_tree.h"
#include "support/conversation_builder.h"

namespace {

using namespace dlg;
using ts::test::ConversationBuilder;

// Each NPC line owns two player lines and both own the next NPC line: the tree doubles with
// every level: `levels` levels make 2^(levels + 1) - 3 items from 3 * levels - 2 lines.
struct DoublingChain : ConversationBuilder {
    explicit DoublingChain(int levels) {
        std::uint32_t npc = Npc(u"N0");
        Start(npc);
        for (int level = 1; level < levels; ++level) {
            std::uint32_t a = Player(u"a"), b = Player(u"b");
            NpcTo(npc, a);
            NpcTo(npc, b);
            npc = Npc(u"N");
            PlayerTo(a, npc);
            PlayerTo(b, npc);
        }
    }
};

std::size_t FullItems(const ConversationTree& tree) {
    std::size_t n = 0;
    const ItemTree& items = tree.Items();
    for (TreeItem i = items.GetChild(tree.RootItem()); i != kNoItem; i = items.NextInPreOrder(i))
        n += tree.NodeOf(i) && !tree.NodeOf(i)->isLink;
    return n;
}

TEST(TreeGrowth, SharingThatMultipliesTheTreeIsRefusedByName) {
    struct Case {
        int levels;
        bool opens;
        std::size_t items;  // full items of a tree that opens
    };
    // 8 levels stay well within the allowance; 20 and 1,000 levels would not.
    for (Case c :
         {Case{2, true, 5}, Case{8, true, 509}, Case{20, false, 0}, Case{1000, false, 0}}) {
        SCOPED_TRACE(c.levels);
        DoublingChain chain(c.levels);
        ConversationTree tree;
        std::u16string error;
        EXPECT_EQ(tree.Build(chain.Resource(), error), c.opens);
        if (c.opens) {
            EXPECT_EQ(FullItems(tree), c.items);
            continue;
        }
        std::string message(error.begin(), error.end());
        EXPECT_NE(message.find("The conversation cannot be opened"), std::string::npos) << message;
        EXPECT_NE(message.find("owned by more than one line: NPC line [1] (2 owners)"),
                  std::string::npos)
            << message;
        EXPECT_EQ(tree.Items().GetRootItem(), kNoItem) << "nothing half built is left";
    }
}

// Damage is still told as damage, not as growth: a line that contains itself through a shared
// line. (A start beyond the lines is met by the editor's load.)
TEST(TreeGrowth, DamagedConversationsKeepTheirOwnMessages) {
    DoublingChain loop(3);
    loop.PlayerTo(0, 0);  // a player line of the first level back to the first NPC line
    ConversationTree tree;
    std::u16string error;
    EXPECT_FALSE(tree.Build(loop.Resource(), error));
    EXPECT_EQ(error, u"NPC line [0] contains itself: the conversation is damaged.");
}

}  // namespace
