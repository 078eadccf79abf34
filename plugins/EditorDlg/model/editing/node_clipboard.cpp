#include "model/editing/node_clipboard.h"

#include "model/editing/can_place.h"

namespace dlg {

NodeClipboard& NodeClipboard::Process() {
    static NodeClipboard clipboard;
    return clipboard;
}

void NodeClipboard::Copy(std::u16string resourceName, ConversationTree& tree, TreeItem item) {
    resourceName_ = std::move(resourceName);
    tree_ = &tree;
    item_ = item;
}

void NodeClipboard::Clear() {
    resourceName_.clear();
    tree_ = nullptr;
    item_ = kNoItem;
}

bool NodeClipboard::Get(ConversationTree*& tree, TreeItem& item) const {
    if (!tree_ || !tree_->Items().IsValid(item_)) return false;
    tree = tree_;
    item = item_;
    return true;
}

void NodeClipboard::ForgetTree(const ConversationTree& tree) {
    if (tree_ == &tree) Clear();
}

void NodeClipboard::ForgetBranch(const ConversationTree& tree, TreeItem top) {
    if (tree_ == &tree && IsInBranch(tree.Items(), item_, top)) Clear();
}

}  // namespace dlg
