#include "support/conversation_generator.h"

#include <random>
#include <string>
#include <vector>

#include "agents/agentconversation.h"
#include "ts/text.h"

namespace ts::bench {

namespace {

constexpr const char* kWords[] = {
    "the",     "tide", "lantern", "caravan", "north", "road",    "keeper", "fog", "never",
    "again",   "coin", "blade",   "harbour", "storm", "brother", "wagon",  "map", "light",
    "tonight", "ale",  "reeve",   "guard",   "why",   "would",   "you",    "ask", "me",
    "about",   "that", "old",     "house",   "cliff", "and",
};
constexpr const char16_t* kSpeakers[] = {u"orla", u"brannoc", u"harbour_guard", u"teodor", u""};

struct Line {
    bool npc;
    std::vector<std::pair<bool, int>> transitions;  // (is a link, line index)
};

class Generator {
public:
    explicit Generator(std::uint32_t seed) : rng_(seed) {}

    CTsComPtr<ITsProperty> Make(int lines) {
        int starts = std::max(1, std::min(20, lines / 400 + 1));
        std::vector<int> startLines;
        int remaining = lines;
        for (int s = 0; s < starts && remaining > 0; ++s) {
            int budget = s + 1 == starts ? remaining : std::max(1, remaining / (starts - s));
            startLines.push_back(Add(true, budget));
            remaining -= budget;
        }
        return Emit(startLines);
    }

private:
    int Pick(int n) { return static_cast<int>(rng_() % static_cast<std::uint32_t>(n)); }

    // Adds a line and the subtree under it, `budget` lines in all; returns its index in its list.
    int Add(bool npc, int budget) {
        std::vector<Line>& list = npc ? npc_ : player_;
        int index = static_cast<int>(list.size());
        list.push_back({npc, {}});
        int left = budget - 1;
        if (left > 0) {
            // NPC lines offer one to three replies; a player line leads on to one NPC line, now
            // and then to two (the first whose condition holds plays).
            int children = npc ? 1 + Pick(3) : (Pick(10) == 0 ? 2 : 1);
            children = std::min(children, left);
            for (int c = 0; c < children; ++c) {
                int share =
                    c + 1 == children ? left : std::max(1, left / (children - c) + Pick(3) - 1);
                share = std::min(share, left - (children - c - 1));
                int child = Add(!npc, share);
                (npc ? npc_ : player_)[static_cast<std::size_t>(index)].transitions.push_back(
                    {false, child});
                left -= share;
            }
        }
        // A branch that ends often re-joins another one through a link.
        std::vector<Line>& other = npc ? player_ : npc_;
        if (budget == 1 && !other.empty() && Pick(3) == 0)
            (npc ? npc_ : player_)[static_cast<std::size_t>(index)].transitions.push_back(
                {true, Pick(static_cast<int>(other.size()))});
        return index;
    }

    std::u16string Text(int minWords, int maxWords) {
        int words = minWords + Pick(maxWords - minWords + 1);
        std::string text;
        for (int w = 0; w < words; ++w) {
            if (w) text += ' ';
            text += kWords[Pick(static_cast<int>(std::size(kWords)))];
        }
        if (!text.empty()) text[0] = static_cast<char>(text[0] - 32);
        text += Pick(4) == 0 ? "?" : ".";
        return Utf8ToUtf16(text);
    }

    void Fill(CAgentConversationLine& agent, const Line& line, int stringId) {
        agent.SetStringID(stringId);
        if (line.npc && Pick(30) == 0) {
            agent.SetComment(Text(6, 14));  // a comment line: no text of its own
        } else {
            agent.SetText(line.npc ? Text(8, 30) : Text(2, 9));
        }
        agent.SetSpeaker(line.npc ? kSpeakers[Pick(static_cast<int>(std::size(kSpeakers)))]
                                  : u"PLAYER");
        if (Pick(12) == 0) {
            agent.SetConditionPlotURI(u"plt_missing_caravan");
            agent.SetConditionPlotFlag(Pick(4));
        }
        if (Pick(15) == 0) {
            agent.SetActionScriptURI(u"scr_update_journal");
            agent.SetActionParameter(Pick(100));
        }
        if (line.npc && Pick(8) == 0) agent.SetVoiceOverComment(Text(3, 8));
        if (line.npc && Pick(10) == 0) agent.SetCameraTag(u"cam_bar_wide");
        if (Pick(50) == 0) agent.SetAmbient(true);
    }

    CTsComPtr<ITsProperty> Emit(const std::vector<int>& startLines) {
        CAgentConversation conversation;
        conversation.BuildProperties();
        conversation.SetDefaults();
        conversation.SetResRefName(u"generated");

        // New records are copies of one made by the agents, which is much faster than declaring
        // 59 fields for each of 200,000 lines.
        CAgentConversationLine lineTemplate;
        lineTemplate.BuildProperties();
        lineTemplate.SetDefaults();
        CAgentConversationTransition transitionTemplate;
        transitionTemplate.BuildProperties();
        transitionTemplate.SetDefaults();
        CAgentConversationStart startTemplate;
        startTemplate.BuildProperties();
        startTemplate.SetDefaults();
        auto copy = [](const CTsProperty& of) {
            CTsComPtr<ITsProperty> node;
            of.GetNode()->Clone(kTsCloneDeep, node.Put());
            return node;
        };

        for (int index : startLines) {
            CAgentConversationStart start(copy(startTemplate).Get());
            start.SetLineIndex(index);
            conversation.AddItemToPropertyList(start, u"StartList");
        }
        int stringId = 100000;
        for (const auto* list : {&npc_, &player_}) {
            for (const Line& line : *list) {
                CAgentConversationLine agent(copy(lineTemplate).Get());
                Fill(agent, line, stringId++);
                for (auto [link, target] : line.transitions) {
                    CAgentConversationTransition transition(copy(transitionTemplate).Get());
                    transition.SetIsLink(link);
                    transition.SetLineIndex(target);
                    agent.AddItemToPropertyList(transition, u"TransitionList");
                }
                conversation.AddItemToPropertyList(agent,
                                                   line.npc ? u"NPCLineList" : u"PlayerLineList");
            }
        }
        return CTsComPtr<ITsProperty>(conversation.GetNode());
    }

    std::mt19937 rng_;
    std::vector<Line> npc_, player_;
};

}  // namespace

CTsComPtr<ITsProperty> GenerateConversation(int lines, std::uint32_t seed) {
    return Generator(seed).Make(lines);
}

}  // namespace ts::bench
