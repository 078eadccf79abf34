#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "agents/agentconversation.h"
#include "agents/valuecache.h"
#include "model/conversation_node.h"

namespace dlg {

// The longest normal form a line's text may have in the game: NPC lines have room for more than
// the player's reply list. Exactly the limit passes.
inline constexpr std::size_t kMaxNPCLineLength = 200;
inline constexpr std::size_t kMaxPlayerLineLength = 60;

// The rules a conversation's root and lines must meet. Each check appends the messages of the
// rules that fail, in rule order. Plots and stages are read through the value cache, so one
// validation of thousands of lines opens each plot and stage once.
class LineRules {
public:
    explicit LineRules(CValueCache& cache = CValueCache::Process()) : cache_(cache) {}

    void CheckRoot(const CAgentConversation& root, std::vector<std::u16string>& out);
    // A line (never a link: a link shows its target's state). Uses the node's effective
    // ambient flag, which must be current.
    void CheckLine(const ConversationNode& node, std::vector<std::u16string>& out);

    // A plot reference with its flag: nothing when the reference is empty or the flag is -1;
    // otherwise the plot must exist and hold the flag. `kind` names the reference in the message
    // ("Condition Plot").
    void CheckPlotReference(std::u16string_view kind, const std::u16string& reference,
                            std::int32_t flag, std::vector<std::u16string>& out);

    // The places of a stage, or the flags of a plot, by reference; null when they can't be read.
    const TsNumberedTexts* StagePlaces(std::u16string_view stage);
    const TsNumberedTexts* PlotFlags(std::u16string_view plot);

private:
    CValueCache& cache_;
};

}  // namespace dlg
