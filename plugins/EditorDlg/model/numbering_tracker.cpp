#include "model/numbering_tracker.h"

#include <algorithm>

namespace dlg {

namespace {

// Whether the node was in the tree when it was last numbered, so that its number is the one it
// had before the edit.
bool NumberedBefore(const ConversationTree& tree, const ConversationNode* node) {
    return node && tree.NodeAt(node->TreeIndex) == node;
}

}  // namespace

void NumberingTracker::Leaving(const ConversationTree& tree, TreeItem top) {
    const ItemTree& items = tree.Items();
    for (TreeItem i = top; i != kNoItem; i = items.NextInSubtree(i, top))
        if (ConversationNode* node = tree.NodeOf(i); NumberedBefore(tree, node))
            left_.emplace_back(node->TreeIndex, i);
}

NumberingChange NumberingTracker::Renumber(ConversationTree& tree,
                                           const std::vector<TreeItem>& cameIn) {
    const ItemTree& items = tree.Items();
    std::vector<std::int32_t> removed;
    // What left and did not come back is gone; what came back is found below as moved.
    for (auto [number, item] : left_)
        if (!items.IsInTree(item)) removed.push_back(number);
    left_.clear();

    // Every item of the subtrees that came in or moved, once (one top may lie inside another).
    std::vector<TreeItem> arrived;
    for (TreeItem top : cameIn)
        if (items.IsInTree(top))
            for (TreeItem i = top; i != kNoItem; i = items.NextInSubtree(i, top))
                arrived.push_back(i);
    std::sort(arrived.begin(), arrived.end());
    arrived.erase(std::unique(arrived.begin(), arrived.end()), arrived.end());
    std::vector<ConversationNode*> fresh;
    std::vector<std::pair<ConversationNode*, std::int32_t>> moved;  // node, number before
    for (TreeItem item : arrived) {
        ConversationNode* node = tree.NodeOf(item);
        if (!node) continue;
        if (NumberedBefore(tree, node)) {
            moved.emplace_back(node, node->TreeIndex);
            removed.push_back(node->TreeIndex);
        } else {
            fresh.push_back(node);
        }
    }

    tree.Renumber();

    std::vector<std::int32_t> inserted;
    for (ConversationNode* node : fresh) inserted.push_back(node->TreeIndex);
    std::vector<std::pair<std::int32_t, std::int32_t>> moves;
    for (auto [node, before] : moved) {
        inserted.push_back(node->TreeIndex);
        moves.emplace_back(before, node->TreeIndex);
    }
    std::sort(removed.begin(), removed.end());
    removed.erase(std::unique(removed.begin(), removed.end()), removed.end());
    std::sort(inserted.begin(), inserted.end());
    std::sort(moves.begin(), moves.end());

    NumberingChange change;
    change.removed = NumberingChange::RangesOf(removed);
    change.inserted = NumberingChange::RangesOf(inserted);
    change.moved = NumberingChange::MovesOf(moves);
    return change;
}

}  // namespace dlg
