#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agents/agentconversation.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/variant_print.h"
#include "ts/text.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

CAgentConversationLine NewLine(const std::u16string& text) {
    CAgentConversationLine line;
    EXPECT_TRUE(line.CreateOn(nullptr));
    EXPECT_TRUE(line.SetText(text));
    return line;
}

CAgentConversationTransition NewTransition(std::int32_t lineIndex, bool isLink) {
    CAgentConversationTransition t;
    EXPECT_TRUE(t.CreateOn(nullptr));
    EXPECT_TRUE(t.SetLineIndex(lineIndex));
    EXPECT_TRUE(t.SetIsLink(isLink));
    return t;
}

std::u16string TextOf(const CAgentConversation& c, const char16_t* list, std::uint32_t index) {
    CTsComPtr<ITsProperty> node;
    if (!c.GetPropertyFromList(list, index, node)) return u"?";
    CAgentConversationLine line;
    line.Bind(node.Get());
    std::u16string text;
    line.GetText(text);
    return text;
}

// A conversation as the tree editor stores it:
//   start -> N0 "Halt!"
//     N0 -> P0 "Who goes there?" -> N1 "The watch."
//     N0 -> P1 "Let me pass."    -> N1 (a link back to the same answer)
class SmallConversation : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(conversation.CreateOn(nullptr));
        for (auto text : {u"Halt!", u"The watch."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"NPCLineList"));
        for (auto text : {u"Who goes there?", u"Let me pass."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"PlayerLineList"));
        CAgentConversationStart start;
        ASSERT_TRUE(start.CreateOn(nullptr));
        ASSERT_TRUE(start.SetLineIndex(0));
        ASSERT_TRUE(conversation.AddItemToPropertyList(start, u"StartList"));

        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(0, false), 0)) << "inserted in front";
        ASSERT_TRUE(conversation.AddPlayerToNPC(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddPlayerToNPC(1, NewTransition(1, true)));
    }

    // The dialogue in depth-first order, as a tree loader walks it: starts, then each line's
    // transitions; a link is shown and not followed.
    std::vector<std::u16string> Walk() {
        std::vector<std::u16string> out;
        for (std::uint32_t s = 0; s < conversation.StartListCount(); ++s) {
            CTsComPtr<ITsProperty> node;
            EXPECT_TRUE(conversation.GetStartListItem(s, node));
            CAgentConversationStart start;
            start.Bind(node.Get());
            std::int32_t npc = -1;
            EXPECT_TRUE(start.GetLineIndex(npc));
            WalkNpc(static_cast<std::uint32_t>(npc), 0, out);
        }
        return out;
    }

    void WalkNpc(std::uint32_t npc, int depth, std::vector<std::u16string>& out) {
        out.push_back(std::u16string(depth, u' ') + TextOf(conversation, u"NPCLineList", npc));
        for (std::uint32_t i = 0; i < conversation.GetNPCToPlayerLineCount(npc); ++i) {
            CAgentConversationTransition t;
            ASSERT_TRUE(conversation.GetNPCToPlayer(npc, i, t));
            std::int32_t pc = -1;
            bool link = true;
            ASSERT_TRUE(t.GetLineIndex(pc) && t.GetIsLink(link));
            ASSERT_FALSE(link);
            out.push_back(std::u16string(depth + 1, u' ') + TextOf(conversation, u"PlayerLineList", pc));
            for (std::uint32_t j = 0; j < conversation.GetPlayerToNPCLineCount(pc); ++j) {
                CAgentConversationTransition back;
                ASSERT_TRUE(conversation.GetPlayerToNPC(pc, j, back));
                std::int32_t next = -1;
                ASSERT_TRUE(back.GetLineIndex(next) && back.GetIsLink(link));
                if (link)
                    out.push_back(std::u16string(depth + 2, u' ') + u"-> " +
                                  TextOf(conversation, u"NPCLineList", next));
                else
                    WalkNpc(static_cast<std::uint32_t>(next), depth + 2, out);
            }
        }
    }

    CAgentConversation conversation;
};

TEST(ConversationAgents, NewConversationAndLineReadTheirDefaults) {
    CAgentConversation c;
    ASSERT_TRUE(c.CreateOn(nullptr));
    std::u16string speaker, npcListener, pcListener;
    ASSERT_TRUE(c.GetDefaultNPCSpeaker(speaker) && c.GetDefaultNPCListener(npcListener) &&
                c.GetDefaultPCListener(pcListener));
    EXPECT_EQ(speaker, u"OWNER");
    EXPECT_EQ(npcListener, u"PLAYER");
    EXPECT_EQ(pcListener, u"OWNER");
    std::int32_t endFlag = 0;
    bool endResult = false, ambientSoundSet = true;
    ASSERT_TRUE(c.GetEndConversationPlotFlag(endFlag) && c.GetEndConversationResult(endResult) &&
                c.GetAmbientSoundSetType(ambientSoundSet));
    EXPECT_EQ(endFlag, -1);
    EXPECT_TRUE(endResult);
    EXPECT_FALSE(ambientSoundSet) << "a switch, not a number";
    EXPECT_EQ(c.StartListCount(), 0u);
    EXPECT_EQ(c.NPCLineListCount(), 0u);
    EXPECT_EQ(c.PlayerLineListCount(), 0u);

    CAgentConversationLine line;
    ASSERT_TRUE(line.CreateOn(nullptr));
    std::int32_t stringId = 0;
    ASSERT_TRUE(line.GetStringID(stringId));
    EXPECT_EQ(stringId, -1) << "no string yet";
}

TEST_F(SmallConversation, LinkOperationsBuildAndReadTheDialogue) {
    EXPECT_EQ(conversation.GetNPCToPlayerLineCount(0), 2u);
    EXPECT_EQ(conversation.GetNPCToPlayerLineCount(1), 0u);
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(0), 1u);
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(1), 1u);

    const std::vector<std::u16string> expected = {
        u"Halt!",
        u" Who goes there?",
        u"  The watch.",
        u" Let me pass.",
        u"  -> The watch.",
    };
    EXPECT_EQ(Walk(), expected);
}

TEST_F(SmallConversation, FetchedTransitionsAreTheStoredOnes) {
    CAgentConversationTransition t;
    ASSERT_TRUE(conversation.GetPlayerToNPC(1, 0, t));
    ASSERT_TRUE(t.SetLineIndex(0));  // re-point the link at "Halt!"
    CAgentConversationTransition again;
    ASSERT_TRUE(conversation.GetPlayerToNPC(1, 0, again));
    EXPECT_EQ(again.GetNode(), t.GetNode());
    std::int32_t index = -1;
    ASSERT_TRUE(again.GetLineIndex(index));
    EXPECT_EQ(index, 0);
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

    const std::vector<std::u16string> errors = {
        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
        u"CAgentConversation::GetNPCToPlayerLineCount failed to get the number of lines.",
        u"CAgentConversation::GetNPCToPlayer failed to get the given NPC-to-player link.",
        u"CAgentConversation::AddPlayerToNPC failed to add the new link.",
        u"CAgentConversation::GetPlayerToNPCLineCount failed to get the number of lines.",
        u"CAgentConversation::GetPlayerToNPC failed to get the given player to NPC link.",
        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
    };
    std::vector<std::u16string> seen;
    for (const auto& e : reports.entries()) {
        if (e.level != static_cast<int>(ReportLevel::Error)) continue;
        seen.push_back(e.message);
        EXPECT_EQ(e.sourceFile, "agentconversation");
    }
    EXPECT_EQ(seen, errors);

    EXPECT_EQ(conversation.GetNPCToPlayerLineCount(0), 2u);
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(0), 1u);
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(1), 1u);
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

TEST(ConversationAgents, AMistypedStoredFieldFailsAndLeavesTheOutput) {
    // A stored line whose Speaker was written as a number and whose StringID as text.
    auto node = NewRecordNode();
    auto speaker = AddStoredField(node.Get(), u"Speaker", variant(kTsTypeInt, 12));
    AddStoredField(node.Get(), u"StringID", variant(kTsTypeString, u"12"));
    AddStoredField(node.Get(), u"Listener", variant(kTsTypeString, u"PLAYER"));
    CAgentConversationLine line;
    line.Bind(node.Get());

    ReportCapture reports;
    std::u16string text = u"unchanged";
    std::int32_t stringId = 99;
    EXPECT_FALSE(line.GetSpeaker(text));
    EXPECT_FALSE(line.GetStringID(stringId));
    EXPECT_FALSE(line.SetSpeaker(u"owner"));
    EXPECT_EQ(text, u"unchanged");
    EXPECT_EQ(stringId, 99);
    ASSERT_EQ(reports.size(), 3u);
    for (const auto& e : reports.entries()) {
        EXPECT_EQ(e.message, u"Request for invalid property");
        EXPECT_EQ(e.level, static_cast<int>(ReportLevel::Assert));
        EXPECT_EQ(e.sourceFile, "agentconversation");
    }
    variant stored;
    ASSERT_EQ(speaker->GetValue(&stored), S_OK);
    EXPECT_EQ(stored, variant(kTsTypeInt, 12)) << "the failed setter wrote nothing";

    ASSERT_TRUE(line.GetListener(text)) << "the well-typed fields still read";
    EXPECT_EQ(text, u"PLAYER");
}

}  // namespace
