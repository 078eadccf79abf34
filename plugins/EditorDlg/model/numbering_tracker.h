#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "model/conversation_tree.h"
#include "model/numbering_change.h"

namespace dlg {

// Works out what an edit did to the numbering, for ConversationEdits. During an edit the nodes
// keep the numbers they had before it (the tree is renumbered once, at the end), and the tree's
// table still names exactly the nodes numbered then: a node is "from before the edit" when the
// table holds it at its number. Subtrees that leave are walked when they leave (their items
// may be gone by the end); subtrees that came in or moved are walked at the end. The work is
// the size of what changed, besides the renumbering itself.
class NumberingTracker {
public:
    // Before `top`'s subtree is taken out of the tree.
    void Leaving(const ConversationTree& tree, TreeItem top);
    // At the end of an edit that changed the structure: renumbers the tree and tells how the
    // numbers changed. `cameIn` holds the tops of the subtrees attached or moved in the edit.
    NumberingChange Renumber(ConversationTree& tree, const std::vector<TreeItem>& cameIn);

private:
    std::vector<std::pair<std::int32_t, TreeItem>> left_;  // number before the edit, item
};

}  // namespace dlg
