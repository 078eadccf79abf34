#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "model/conversation_tree.h"

namespace dlg {

// The pane host's tabs, by index; the index is the tab's identity.
enum PaneTab : int {
    kTabDialogue = 0,
    kTabGlobalSettings = 1,
    kTabPlotsAndScripting = 2,
    kTabLocalization = 3,
    kTabEditing = 4,
    kTabCinematics = 5,
    kTabAnimation = 6,
    kTabPreview = 7,
    kTabSlideShow = 8,
    kTabCount = 9,
};

// What is selected, as bits: a tab is offered when its mask shares one with the selection's.
enum SelectionBits : std::uint32_t {
    kSelectRoot = 0x01,
    kSelectLine = 0x02,
    kSelectStartLine = 0x04,
    kSelectPlayerLine = 0x08,
    kSelectNpcLine = 0x10,
};

struct PaneTabInfo {
    std::u16string_view text;
    std::uint32_t mask;
};

inline constexpr std::array<PaneTabInfo, kTabCount> kPaneTabs{{
    {u"Dialogue", 0x02},
    {u"Global Settings", 0x01},
    {u"Plots and Scripting", 0x03},
    {u"Localization", 0x02},
    {u"Editing", 0x02},
    {u"Cinematics", 0x11},
    {u"Animation", 0x10},
    {u"Preview", 0x05},
    {u"Slide Show", 0x10},
}};

// The order in which panes are asked whether a find-and-replace field is theirs.
inline constexpr std::array<PaneTab, kTabCount> kFindReplaceOrder{
    kTabDialogue,   kTabPlotsAndScripting, kTabEditing, kTabLocalization, kTabGlobalSettings,
    kTabCinematics, kTabAnimation,         kTabPreview, kTabSlideShow};

// The selection's bits: 0 for nothing, kSelectRoot for the root; for a line kSelectLine, plus
// kSelectStartLine when it (or the line a link shows) starts the conversation, plus the kind.
std::uint32_t SelectionMask(const ConversationTree& tree, bool root, TreeItem item);

inline bool TabApplies(int tab, std::uint32_t selection) {
    return tab >= 0 && tab < kTabCount && (kPaneTabs[tab].mask & selection) != 0;
}

}  // namespace dlg
