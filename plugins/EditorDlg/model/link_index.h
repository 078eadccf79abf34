#pragma once

#include <unordered_map>
#include <vector>

#include "model/conversation_node.h"

namespace dlg {

class ItemTree;

// Which links of the tree point at each line, so that refreshing a line's links, finding them and
// checking a deletion cost the number of links instead of a walk of the tree. Holds the links
// that are in the tree; edits keep it current as subtrees leave and come back.
class LinkIndex {
public:
    void Clear() { links_.clear(); }
    void Add(ConversationNode& link);
    void Remove(ConversationNode& link);
    // Every link in the subtree of `top` (walked without recursion).
    void AddSubtree(const ItemTree& items, TreeItem top);
    void RemoveSubtree(const ItemTree& items, TreeItem top);

    // The links to a line, in the order they were added; empty for a line nothing links to.
    const std::vector<ConversationNode*>& LinksTo(const ConversationNode& line) const;
    std::size_t LinkCount() const;

private:
    std::unordered_map<const ConversationNode*, std::vector<ConversationNode*>> links_;
};

}  // namespace dlg
