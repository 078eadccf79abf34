#pragma once

#include <string>

#include "agents/agentconversation.h"

namespace dlg {

// A line owned by several lines (or starts) without links appears as a full item under each
// owner, its whole subtree with it, so such lines multiply: a chain of lines each owned twice
// doubles the tree at every step. The tree's size is counted here from the line lists alone, in
// time linear in the lines and transitions, before anything is built.
//
// False, with the message for the user naming the lines owned more than once, when the tree
// would hold more full items than the conversation's lines plus kTreeGrowthAllowance (or plus
// as many again as there are lines, when that is more). Indices out of range and lines that
// contain themselves are left for the build to report.
inline constexpr std::uint64_t kTreeGrowthAllowance = 10000;
bool CheckTreeGrowth(const CAgentConversation& conversation, std::u16string& error);

}  // namespace dlg
