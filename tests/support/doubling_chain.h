#pragma once

#include <string>

namespace ts::test {

// A conversation in the short JSON form whose tree grows exponentially with its size: `levels`
// NPC lines, each owning two player lines that both own the next NPC line. Readers must refuse
// or open it in bounded time and memory.
inline std::string DoublingChain(const std::string& name, long long levels) {
    std::string npc, pc;
    for (long long i = 0; i < levels; ++i) {
        std::string next = i + 1 < levels ? "{\"LineIndex\": " + std::to_string(i + 1) + "}" : "";
        npc += std::string(i ? "," : "") +
               "{\"Text\": \"N\", \"TransitionList\": [{\"LineIndex\": " + std::to_string(2 * i) +
               "}, {\"LineIndex\": " + std::to_string(2 * i + 1) + "}]}";
        for (int k = 0; k < 2; ++k)
            pc += std::string(i || k ? "," : "") + "{\"Text\": \"P\", \"TransitionList\": [" +
                  next + "]}";
    }
    return "{\"resource\": \"" + name +
           "\", \"type\": \"dlg\", \"fields\": {\"StartList\": [{\"LineIndex\": 0}], "
           "\"NPCLineList\": [" +
           npc + "], \"PlayerLineList\": [" + pc + "]}}";
}

}  // namespace ts::test
