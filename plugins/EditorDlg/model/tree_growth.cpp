#include "model/tree_growth.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "ts/format.h"

namespace dlg {

namespace {

// The lines of both lists in one numbering: NPC lines first, then player lines.
struct LineGraph {
    std::uint32_t npcCount = 0;
    std::vector<std::vector<std::uint32_t>> owned;  // full (not link) transitions of each line
    std::vector<std::uint32_t> owners;              // starts and full transitions naming a line
    std::vector<std::uint32_t> starts;
};

void ReadLine(const CAgentConversation& conversation, bool npc, std::uint32_t index,
              LineGraph& graph) {
    CTsComPtr<ITsProperty> node;
    bool read = npc ? conversation.GetNPCLineListItem(index, node)
                    : conversation.GetPlayerLineListItem(index, node);
    if (!read) return;  // the build says which line cannot be read
    CAgentConversationLine line(node.Get());
    std::uint32_t self = npc ? index : graph.npcCount + index;
    // Transitions go from NPC lines to player lines and back.
    std::uint32_t otherBase = npc ? graph.npcCount : 0;
    std::uint32_t otherCount =
        npc ? std::uint32_t(graph.owners.size()) - graph.npcCount : graph.npcCount;
    for (std::uint32_t t = 0; t < line.TransitionListCount(); ++t) {
        CTsComPtr<ITsProperty> entry;
        if (!line.GetTransitionListItem(t, entry)) continue;
        CAgentConversationTransition transition(entry.Get());
        bool link = false;
        std::int32_t target = -1;
        transition.GetIsLink(link);
        transition.GetLineIndex(target);
        if (link || target < 0 || std::uint32_t(target) >= otherCount) continue;
        graph.owned[self].push_back(otherBase + std::uint32_t(target));
        ++graph.owners[otherBase + std::uint32_t(target)];
    }
}

LineGraph ReadGraph(const CAgentConversation& conversation) {
    LineGraph graph;
    graph.npcCount = conversation.NPCLineListCount();
    std::uint32_t total = graph.npcCount + conversation.PlayerLineListCount();
    graph.owned.resize(total);
    graph.owners.resize(total);
    for (std::uint32_t i = 0; i < graph.npcCount; ++i) ReadLine(conversation, true, i, graph);
    for (std::uint32_t i = graph.npcCount; i < total; ++i)
        ReadLine(conversation, false, i - graph.npcCount, graph);
    for (std::uint32_t i = 0; i < conversation.StartListCount(); ++i) {
        CTsComPtr<ITsProperty> entry;
        if (!conversation.GetStartListItem(i, entry)) continue;
        std::int32_t index = -1;
        CAgentConversationStart(entry.Get()).GetLineIndex(index);
        if (index < 0 || std::uint32_t(index) >= graph.npcCount) continue;
        graph.starts.push_back(std::uint32_t(index));
        ++graph.owners[std::uint32_t(index)];
    }
    return graph;
}

// Full items of each line's subtree, itself included, saturating at `cap`. A line met again on
// the current path (a line that contains itself) adds nothing here; the build refuses it.
std::uint64_t TreeItems(const LineGraph& graph, std::uint64_t cap) {
    enum : std::uint8_t { kNew, kOnPath, kDone };
    std::vector<std::uint8_t> state(graph.owned.size(), kNew);
    std::vector<std::uint64_t> size(graph.owned.size(), 0);
    struct Frame {
        std::uint32_t line, next;
    };
    std::vector<Frame> stack;
    auto add = [cap](std::uint64_t a, std::uint64_t b) { return std::min(cap, a + b); };
    std::uint64_t total = 0;
    for (std::uint32_t start : graph.starts) {
        if (state[start] == kNew) {
            state[start] = kOnPath;
            size[start] = 1;
            stack.push_back({start, 0});
        }
        while (!stack.empty()) {
            Frame& top = stack.back();
            const auto& children = graph.owned[top.line];
            if (top.next < children.size()) {
                std::uint32_t child = children[top.next++];
                if (state[child] == kNew) {
                    state[child] = kOnPath;
                    size[child] = 1;
                    stack.push_back({child, 0});
                } else if (state[child] == kDone) {
                    size[top.line] = add(size[top.line], size[child]);
                }
                continue;
            }
            std::uint32_t done = top.line;
            state[done] = kDone;
            stack.pop_back();
            if (!stack.empty()) size[stack.back().line] = add(size[stack.back().line], size[done]);
        }
        total = add(total, size[start]);
    }
    return total;
}

std::u16string LineName(const LineGraph& graph, std::uint32_t line) {
    return line < graph.npcCount ? ts::Format(u"NPC line [%u]", line)
                                 : ts::Format(u"PC line [%u]", line - graph.npcCount);
}

}  // namespace

bool CheckTreeGrowth(const CAgentConversation& conversation, std::u16string& error) {
    LineGraph graph = ReadGraph(conversation);
    std::uint64_t lines = graph.owned.size();
    std::uint64_t limit = lines + std::max<std::uint64_t>(lines, kTreeGrowthAllowance);
    std::uint64_t items = TreeItems(graph, limit + 1);
    if (items <= limit) return true;

    constexpr std::size_t kNamed = 10;
    std::u16string named;
    std::size_t shared = 0;
    for (std::uint32_t line = 0; line < graph.owners.size(); ++line) {
        if (graph.owners[line] < 2) continue;
        if (++shared <= kNamed)
            named += ts::Format(u"%ls%ls (%u owners)", named.empty() ? u"" : u", ",
                                LineName(graph, line), graph.owners[line]);
    }
    if (shared > kNamed) named += ts::Format(u" and %lu more", shared - kNamed);
    error = ts::Format(
        u"The conversation cannot be opened: its %lu lines would make a tree of more than %lu "
        u"items, because these lines are owned by more than one line: %ls. Each copy of such a "
        u"line brings its whole branch; keep one owner for each and make the others link to it.",
        static_cast<unsigned long>(lines), static_cast<unsigned long>(limit), named);
    return false;
}

}  // namespace dlg
