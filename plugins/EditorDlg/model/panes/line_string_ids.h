#pragma once

#include <cstdint>
#include <unordered_map>

#include "model/conversation_tree.h"

namespace dlg {

// How many lines of an open conversation carry each string id, so that a text change can tell a
// copied line (whose id another line also has) without walking the tree. Built on first use;
// a line's refresh updates its entry, and a change of the tree's structure (or a new load)
// drops everything until the next use.
class LineStringIds {
public:
    // Lines of `tree` (links left out) with string id `id`.
    std::size_t Count(const ConversationTree& tree, std::int32_t id);
    // The line of `node` was refreshed: its id may have changed.
    void LineChanged(const ConversationTree& tree, const ConversationNode& node);
    void Forget();

private:
    void Build(const ConversationTree& tree);

    bool built_ = false;
    // Item handles are never reused, so a tree loaded again has another root.
    TreeItem root_ = kNoItem;
    std::unordered_map<const ConversationNode*, std::int32_t> idOf_;
    std::unordered_map<std::int32_t, std::size_t> count_;
};

}  // namespace dlg
