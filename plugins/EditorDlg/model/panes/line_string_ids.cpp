#include "model/panes/line_string_ids.h"

namespace dlg {

namespace {

std::int32_t IdOf(const ConversationNode& node) {
    std::int32_t id = -1;
    node.line.GetStringID(id);
    return id;
}

}  // namespace

void LineStringIds::Build(const ConversationTree& tree) {
    idOf_.clear();
    count_.clear();
    const ItemTree& items = tree.Items();
    for (TreeItem i = tree.RootItem(); i != kNoItem; i = items.NextInPreOrder(i)) {
        const ConversationNode* node = tree.NodeOf(i);
        if (!node || node->isLink) continue;
        std::int32_t id = IdOf(*node);
        idOf_[node] = id;
        ++count_[id];
    }
    built_ = true;
    root_ = tree.RootItem();
}

std::size_t LineStringIds::Count(const ConversationTree& tree, std::int32_t id) {
    if (!built_ || root_ != tree.RootItem()) Build(tree);
    auto it = count_.find(id);
    return it == count_.end() ? 0 : it->second;
}

void LineStringIds::LineChanged(const ConversationTree& tree, const ConversationNode& node) {
    if (built_ && root_ != tree.RootItem()) Forget();
    if (!built_ || node.isLink) return;
    auto it = idOf_.find(&node);
    if (it == idOf_.end()) return;
    std::int32_t id = IdOf(node);
    if (id == it->second) return;
    if (--count_[it->second] == 0) count_.erase(it->second);
    ++count_[id];
    it->second = id;
}

void LineStringIds::Forget() {
    built_ = false;
    idOf_.clear();
    count_.clear();
}

}  // namespace dlg
