#pragma once

#include <string>

#include "model/conversation_tree.h"

namespace dlg {

// What the user copied last, shared by every conversation editor of the process: the item and
// the tree it stands in, with the conversation's resource name. It is not a copy: a paste copies
// the item as it is then. The record empties itself when its item leaves the tree for good (a
// move that takes it, its editor closing).
class NodeClipboard {
public:
    static NodeClipboard& Process();

    void Copy(std::u16string resourceName, ConversationTree& tree, TreeItem item);
    void Clear();
    // The copied item and its tree; false when nothing is copied or the item is gone. An item cut
    // (deleted) since is still there while the undo history holds it, so Cut then Paste works.
    bool Get(ConversationTree*& tree, TreeItem& item) const;
    const std::u16string& ResourceName() const { return resourceName_; }

    // A tree is going away, or a branch moves: forget a record that points into it.
    void ForgetTree(const ConversationTree& tree);
    void ForgetBranch(const ConversationTree& tree, TreeItem top);

private:
    std::u16string resourceName_;
    ConversationTree* tree_ = nullptr;
    TreeItem item_ = kNoItem;
};

}  // namespace dlg
