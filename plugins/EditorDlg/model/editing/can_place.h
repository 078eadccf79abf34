#pragma once

#include "model/conversation_tree.h"

namespace dlg {

enum class Placement {
    Refuse,
    AsChild,    // the source goes in as the target's last child
    AsSibling,  // the source goes in directly after the target, under the target's parent
};

// Where `source` (an item of `sourceTree`; its root stands for all its starting lines) could go
// at `target` of `tree`, as a copy or a move, or (`asLink`) as links to it. One answer for the
// command states, the drag feedback and the operations.
//
// Kinds decide the place: NPC lines under the root and under player lines, player lines under
// NPC lines; on a line of the source's own kind, or on a link, the source goes after it. A link
// as the source stands for its target line and makes links. A copy or move into an ambient
// branch may not bring links that lead out of it; a link may not be a starting line, nor link a
// link or a root.
Placement CanPlace(const ConversationTree& tree, TreeItem target,
                   const ConversationTree& sourceTree, TreeItem source, bool asLink);

// Whether `item` is `top` or lies below it.
bool IsInBranch(const ItemTree& items, TreeItem item, TreeItem top);

}  // namespace dlg
