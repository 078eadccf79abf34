#include "agents/agentconversation.h"

namespace {

TsAtom NpcLines() {
    static const TsAtom atom = TsAddAtom(u"NPCLineList");
    return atom;
}
TsAtom PlayerLines() {
    static const TsAtom atom = TsAddAtom(u"PlayerLineList");
    return atom;
}
TsAtom Transitions() {
    static const TsAtom atom = TsAddAtom(u"TransitionList");
    return atom;
}

}  // namespace

CAgentConversationLine CAgentConversation::LineAt(TsAtom lineList, std::uint32_t index) const {
    CAgentConversationLine line;
    CTsComPtr<ITsProperty> node;
    if (GetPropertyFromList(lineList, index, node)) line.Bind(node.Get());
    return line;
}

bool CAgentConversation::AddLink(TsAtom lineList, std::uint32_t line,
                                 const CAgentConversationTransition& transition, std::uint32_t index) {
    CAgentConversationLine from = LineAt(lineList, line);
    return from.IsBound() && from.AddItemToPropertyList(transition.GetNode(), Transitions(), index);
}

bool CAgentConversation::LinkCount(TsAtom lineList, std::uint32_t line, std::uint32_t& count) const {
    CAgentConversationLine from = LineAt(lineList, line);
    CTsComPtr<ITsProperty> list;
    return from.IsBound() && from.FindProperty(Transitions(), 0, list) &&
           list->GetType() == kTsTypeList && SUCCEEDED(list->GetChildCount(0, &count));
}

bool CAgentConversation::GetLink(TsAtom lineList, std::uint32_t line, std::uint32_t i,
                                 CAgentConversationTransition& transition) const {
    transition.Unbind();
    CAgentConversationLine from = LineAt(lineList, line);
    CTsComPtr<ITsProperty> node;
    if (!from.IsBound() || !from.GetPropertyFromList(Transitions(), i, node)) return false;
    transition.Bind(node.Get());
    return true;
}

bool CAgentConversation::AddNPCToPlayer(std::uint32_t npc, const CAgentConversationTransition& transition,
                                        std::uint32_t index) {
    if (AddLink(NpcLines(), npc, transition, index)) return true;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::AddNPCToPlayer failed to add the new link.");
    return false;
}

std::uint32_t CAgentConversation::GetNPCToPlayerLineCount(std::uint32_t npc) const {
    std::uint32_t count = 0;
    if (LinkCount(NpcLines(), npc, count)) return count;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::GetNPCToPlayerLineCount failed to get the number of lines.");
    return 0;
}

bool CAgentConversation::GetNPCToPlayer(std::uint32_t npc, std::uint32_t i,
                                        CAgentConversationTransition& transition) const {
    if (GetLink(NpcLines(), npc, i, transition)) return true;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::GetNPCToPlayer failed to get the given NPC-to-player link.");
    return false;
}

bool CAgentConversation::AddPlayerToNPC(std::uint32_t pc, const CAgentConversationTransition& transition,
                                        std::uint32_t index) {
    if (AddLink(PlayerLines(), pc, transition, index)) return true;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::AddPlayerToNPC failed to add the new link.");
    return false;
}

std::uint32_t CAgentConversation::GetPlayerToNPCLineCount(std::uint32_t pc) const {
    std::uint32_t count = 0;
    if (LinkCount(PlayerLines(), pc, count)) return count;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::GetPlayerToNPCLineCount failed to get the number of lines.");
    return 0;
}

bool CAgentConversation::GetPlayerToNPC(std::uint32_t pc, std::uint32_t i,
                                        CAgentConversationTransition& transition) const {
    if (GetLink(PlayerLines(), pc, i, transition)) return true;
    Report(ReportLevel::Error, kSourceHeader, __LINE__,
           u"CAgentConversation::GetPlayerToNPC failed to get the given player to NPC link.");
    return false;
}
