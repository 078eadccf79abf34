#pragma once

#include <cstdint>
#include <string_view>

#include "agents/agentconversation.h"

namespace ts::test {

// Writes small conversations through the agents, the way a resource on disk would hold them:
// lines by index, starts and transitions pointing at them.
class ConversationBuilder {
public:
    ConversationBuilder() { conversation.CreateOn(nullptr); }

    std::uint32_t Npc(std::u16string_view text, std::u16string_view speaker = u"",
                      std::u16string_view comment = u"") {
        return AddLine(u"NPCLineList", text, speaker, comment);
    }
    std::uint32_t Player(std::u16string_view text) { return AddLine(u"PlayerLineList", text, u"", u""); }

    void Start(std::uint32_t npc) {
        CAgentConversationStart start;
        start.CreateOn(nullptr);
        start.SetLineIndex(static_cast<std::int32_t>(npc));
        conversation.AddItemToPropertyList(start, u"StartList");
    }
    void NpcTo(std::uint32_t npc, std::uint32_t player, bool link = false) {
        conversation.AddNPCToPlayer(npc, Transition(player, link));
    }
    void PlayerTo(std::uint32_t player, std::uint32_t npc, bool link = false) {
        conversation.AddPlayerToNPC(player, Transition(npc, link));
    }

    CAgentConversationLine Line(bool npc, std::uint32_t index) {
        CTsComPtr<ITsProperty> node;
        npc ? conversation.GetNPCLineListItem(index, node) : conversation.GetPlayerLineListItem(index, node);
        CAgentConversationLine line;
        line.Bind(node.Get());
        return line;
    }

    ITsProperty* Resource() const { return conversation.GetNode(); }

    CAgentConversation conversation;

private:
    std::uint32_t AddLine(std::u16string_view list, std::u16string_view text, std::u16string_view speaker,
                          std::u16string_view comment) {
        CAgentConversationLine line;
        line.CreateOn(nullptr);
        line.SetText(std::u16string(text));
        line.SetSpeaker(std::u16string(speaker));
        line.SetComment(std::u16string(comment));
        std::uint32_t index = conversation.GetPropertyListEntryCount(list);
        conversation.AddItemToPropertyList(line, list);
        return index;
    }
    static CAgentConversationTransition Transition(std::uint32_t target, bool link) {
        CAgentConversationTransition t;
        t.CreateOn(nullptr);
        t.SetLineIndex(static_cast<std::int32_t>(target));
        t.SetIsLink(link);
        return t;
    }
};

}  // namespace ts::test
