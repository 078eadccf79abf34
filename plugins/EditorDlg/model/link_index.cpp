#include "model/link_index.h"

#include <algorithm>

#include "model/item_tree.h"

namespace dlg {

void LinkIndex::Add(ConversationNode& link) {
    if (link.isLink && link.linkTarget) links_[link.linkTarget].push_back(&link);
}

void LinkIndex::Remove(ConversationNode& link) {
    if (!link.isLink || !link.linkTarget) return;
    auto it = links_.find(link.linkTarget);
    if (it == links_.end()) return;
    auto& list = it->second;
    list.erase(std::remove(list.begin(), list.end(), &link), list.end());
    if (list.empty()) links_.erase(it);
}

void LinkIndex::AddSubtree(const ItemTree& items, TreeItem top) {
    for (TreeItem i = top; i != kNoItem; i = items.NextInSubtree(i, top))
        if (auto* node = static_cast<ConversationNode*>(items.GetData(i))) Add(*node);
}

void LinkIndex::RemoveSubtree(const ItemTree& items, TreeItem top) {
    for (TreeItem i = top; i != kNoItem; i = items.NextInSubtree(i, top))
        if (auto* node = static_cast<ConversationNode*>(items.GetData(i))) Remove(*node);
}

const std::vector<ConversationNode*>& LinkIndex::LinksTo(const ConversationNode& line) const {
    static const std::vector<ConversationNode*> kNone;
    auto it = links_.find(&line);
    return it == links_.end() ? kNone : it->second;
}

std::size_t LinkIndex::LinkCount() const {
    std::size_t count = 0;
    for (const auto& [target, list] : links_) count += list.size();
    return count;
}

}  // namespace dlg
