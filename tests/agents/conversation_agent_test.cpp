#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agents/agentconversation.h"
#include "stored_record.h"
#include "support/report_capture.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

CAgentConversationLine NewLine(const std::u16string& text) {
    CAgentConversationLine line;
    EXPECT_TRUE(line.CreateOn(nullptr) && line.SetText(text));
    return line;
}

CAgentConversationTransition NewTransition(std::int32_t lineIndex, bool isLink) {
    CAgentConversationTransition t;
    EXPECT_TRUE(t.CreateOn(nullptr) && t.SetLineIndex(lineIndex) && t.SetIsLink(isLink));
    return t;
}

// A conversation as the tree editor stores it:
//   N0 "Halt!"
//     -> P0 "Who goes there?" -> N1 "The watch."
//     -> P1 "Let me pass."    -> N1 (a link back to the same answer)
class SmallConversation : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(conversation.CreateOn(nullptr));
        for (auto text : {u"Halt!", u"The watch."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"NPCLineList"));
        for (auto text : {u"Who goes there?", u"Let me pass."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"PlayerLineList"));
        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(0, false), 0)) << "inserted in front";
        ASSERT_TRUE(conversation.AddPlayerToNPC(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddPlayerToNPC(1, NewTransition(1, true)));
    }

    // The transitions of one line in order, each as the text of the line it leads to, links
    // marked "->".
    std::vector<std::u16string> Links(bool fromNpc, std::uint32_t line) {
        std::vector<std::u16string> out;
        const std::uint32_t count =
            fromNpc ? conversation.GetNPCToPlayerLineCount(line) : conversation.GetPlayerToNPCLineCount(line);
        for (std::uint32_t i = 0; i < count; ++i) {
            CAgentConversationTransition t;
            std::int32_t index = -1;
            bool link = false;
            EXPECT_TRUE(fromNpc ? conversation.GetNPCToPlayer(line, i, t) : conversation.GetPlayerToNPC(line, i, t));
            EXPECT_TRUE(t.GetLineIndex(index) && t.GetIsLink(link));
            CTsComPtr<ITsProperty> node;
            std::u16string text = u"?";
            if (conversation.GetPropertyFromList(fromNpc ? u"PlayerLineList" : u"NPCLineList",
                                                 static_cast<std::uint32_t>(index), node))
                CAgentConversationLine(node.Get()).GetText(text);
            out.push_back((link ? u"-> " : u"") + text);
        }
        return out;
    }

    using Texts = std::vector<std::u16string>;
    CAgentConversation conversation;
};

TEST_F(SmallConversation, LinkOperationsBuildAndReadTheDialogue) {
    EXPECT_EQ(Links(true, 0), (Texts{u"Who goes there?", u"Let me pass."}));
    EXPECT_EQ(Links(true, 1), Texts{});
    EXPECT_EQ(Links(false, 0), Texts{u"The watch."});
    EXPECT_EQ(Links(false, 1), Texts{u"-> The watch."});

    // A fetched transition is the stored one: re-pointing it changes the conversation.
    CAgentConversationTransition t;
    ASSERT_TRUE(conversation.GetPlayerToNPC(1, 0, t));
    ASSERT_TRUE(t.SetLineIndex(0));
    EXPECT_EQ(Links(false, 1), Texts{u"-> Halt!"});
}

TEST_F(SmallConversation, LinkFailuresReportErrorsAndChangeNothing) {
    ReportCapture reports;
    CAgentConversationTransition t = NewTransition(0, false);
    CAgentConversationTransition out = NewTransition(5, true);

    EXPECT_FALSE(conversation.AddNPCToPlayer(2, t));
    EXPECT_EQ(conversation.GetNPCToPlayerLineCount(7), 0u);
    EXPECT_FALSE(conversation.GetNPCToPlayer(0, 2, out));
    EXPECT_FALSE(out.IsBound()) << "a failed fetch leaves the transition unbound";
    EXPECT_FALSE(conversation.AddPlayerToNPC(9, t));
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(2), 0u);
    EXPECT_FALSE(conversation.GetPlayerToNPC(5, 0, out));
    CAgentConversationTransition unbound;
    EXPECT_FALSE(conversation.AddNPCToPlayer(0, unbound));

    std::vector<std::u16string> seen;
    for (const auto& e : reports.entries()) {
        if (e.level != static_cast<int>(ReportLevel::Error)) continue;
        seen.push_back(e.message);
        EXPECT_EQ(e.sourceFile, "agentconversation");
    }
    EXPECT_EQ(seen, (Texts{
                        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
                        u"CAgentConversation::GetNPCToPlayerLineCount failed to get the number of lines.",
                        u"CAgentConversation::GetNPCToPlayer failed to get the given NPC-to-player link.",
                        u"CAgentConversation::AddPlayerToNPC failed to add the new link.",
                        u"CAgentConversation::GetPlayerToNPCLineCount failed to get the number of lines.",
                        u"CAgentConversation::GetPlayerToNPC failed to get the given player to NPC link.",
                        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
                    }));
    EXPECT_EQ(Links(true, 0).size(), 2u);
    EXPECT_EQ(Links(false, 0).size(), 1u);
    EXPECT_EQ(Links(false, 1).size(), 1u);
}

TEST(ConversationAgents, ALineStoredWithoutTransitionsIsAnErrorNotAnEmptyList) {
    // A damaged resource: the NPC line has no TransitionList at all.
    CAgentConversation c;
    ASSERT_TRUE(c.CreateOn(nullptr));
    auto line = NewRecordNode();
    AddStoredField(line.Get(), u"Text", variant(kTsTypeString, u"Broken"));
    ASSERT_TRUE(c.AddItemToPropertyList(line.Get(), TsAddAtom(u"NPCLineList")));

    ReportCapture reports;
    EXPECT_EQ(c.GetNPCToPlayerLineCount(0), 0u);
    EXPECT_EQ(reports.Count(u"CAgentConversation::GetNPCToPlayerLineCount failed to get the number of lines."), 1u);
    EXPECT_FALSE(c.AddNPCToPlayer(0, NewTransition(0, false)));
    EXPECT_EQ(reports.Count(u"CAgentConversation::AddNPCToPlayer failed to add the new link."), 1u);
}

}  // namespace
