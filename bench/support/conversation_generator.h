#pragma once

#include <cstdint>

#include "ts/comptr.h"
#include "ts/property.h"

namespace ts::bench {

// A conversation resource of exactly `lines` lines (NPC and player together), shaped like the
// ones writers make: a few starts, NPC lines with one to three player replies, player lines that
// lead on to the next NPC line, links that re-join branches, comment lines, conditions and
// actions on plots and scripts, voice-over notes and texts of real lengths. Lines are numbered
// in the depth-first order the editor writes them in. The same seed gives the same conversation.
CTsComPtr<ITsProperty> GenerateConversation(int lines, std::uint32_t seed = 7);

}  // namespace ts::bench
