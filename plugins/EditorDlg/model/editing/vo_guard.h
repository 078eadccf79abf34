#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "model/conversation_tree.h"

namespace dlg {

// Asks before a change would spoil voice-over already recorded: a line counts as sent when its
// string's recording status carries a send date. Lines found not to be sent, and lines whose
// change the user has confirmed, are remembered for the life of the editor and not asked about
// (or looked up) again.
class VoGuard {
public:
    static constexpr std::u16string_view kLineQuestion =
        u"This line has already been sent for VO Recording.  Changing the text will cause it to "
        u"require re-recording.\n\nAre you sure you would like to modify this line?";
    static constexpr std::u16string_view kBranchQuestion =
        u"At least one line has already been sent for VO Recording.\r\nAre you sure you would "
        u"like to continue this action?";

    // Before the text of one line changes; false when the user said No.
    bool MayChangeText(const ConversationNode& line);
    // Before a delete or a paste of `top`'s branch (links are not looked at); false on No.
    bool MayChangeBranch(const ConversationTree& tree, TreeItem top);

    // Whether the string was sent for recording (looked up in the module's status records).
    bool IsSent(std::int32_t stringId);

private:
    std::unordered_set<std::int32_t> noQuestion_;
};

}  // namespace dlg
