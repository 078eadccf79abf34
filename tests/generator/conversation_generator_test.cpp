#include <gtest/gtest.h>

#include <functional>

#include "agents/agentconversation.h"
#include "support/conversation_generator.h"
#include "ts/propertycompare.h"

namespace {

using Node = CTsComPtr<ITsProperty>;

// The generated conversations are what benchmarks load as if a writer had made them: they must
// be well formed in every way the editor relies on.
TEST(ConversationGenerator, MakesWellFormedConversationsOfTheSizeAsked) {
    for (int lines : {1, 2, 37, 2000}) {
        SCOPED_TRACE(lines);
        Node root = ts::bench::GenerateConversation(lines);
        CAgentConversation c(root.Get());
        std::uint32_t npcCount = c.NPCLineListCount(), playerCount = c.PlayerLineListCount();
        EXPECT_EQ(npcCount + playerCount, static_cast<std::uint32_t>(lines));

        auto line = [&](bool npc, std::uint32_t index) {
            Node node;
            EXPECT_TRUE(npc ? c.GetNPCLineListItem(index, node)
                            : c.GetPlayerLineListItem(index, node));
            return CAgentConversationLine(node.Get());
        };
        // Walk the owned lines depth first, as the editor writes them back: they must come in
        // the order of their lists, each exactly once.
        std::uint32_t nextNpc = 0, nextPlayer = 0, links = 0, comments = 0;
        std::function<void(bool, std::int32_t)> visit = [&](bool npc, std::int32_t index) {
            ASSERT_EQ(static_cast<std::uint32_t>(index), npc ? nextNpc++ : nextPlayer++);
            CAgentConversationLine l = line(npc, static_cast<std::uint32_t>(index));
            std::u16string text, comment;
            l.GetText(text);
            l.GetComment(comment);
            if (npc && text.empty() && !comment.empty()) ++comments;
            for (std::uint32_t t = 0; t < l.TransitionListCount(); ++t) {
                Node node;
                l.GetTransitionListItem(t, node);
                CAgentConversationTransition transition(node.Get());
                bool link = false;
                std::int32_t target = -1;
                transition.GetIsLink(link);
                transition.GetLineIndex(target);
                ASSERT_GE(target, 0);
                ASSERT_LT(static_cast<std::uint32_t>(target), npc ? playerCount : npcCount);
                if (link)
                    ++links;
                else
                    visit(!npc, target);
            }
        };
        for (std::uint32_t s = 0; s < c.StartListCount(); ++s) {
            Node node;
            c.GetStartListItem(s, node);
            std::int32_t index = -1;
            CAgentConversationStart(node.Get()).GetLineIndex(index);
            visit(true, index);
        }
        EXPECT_EQ(nextNpc, npcCount);
        EXPECT_EQ(nextPlayer, playerCount);
        if (lines == 2000) {
            EXPECT_GT(c.StartListCount(), 1u);
            EXPECT_GT(links, 40u) << "branches re-join";
            EXPECT_GT(comments, 10u);
        }
    }
}

TEST(ConversationGenerator, TheSameSeedGivesTheSameConversation) {
    Node a = ts::bench::GenerateConversation(300, 11);
    Node b = ts::bench::GenerateConversation(300, 11);
    Node c = ts::bench::GenerateConversation(300, 12);
    std::u16string difference;
    EXPECT_TRUE(ts::PropertyTreesEqual(a.Get(), b.Get(), &difference));
    EXPECT_FALSE(ts::PropertyTreesEqual(a.Get(), c.Get()));
}

}  // namespace
