#include "model/editing/branch_copy.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "model/editing/can_place.h"

namespace dlg {

namespace {

std::unique_ptr<ConversationNode> CopyOfLine(const ConversationNode& source) {
    CTsComPtr<ITsProperty> record;
    if (FAILED(source.line.GetNode()->Clone(kTsCloneDeep, record.Put()))) return nullptr;
    auto copy = std::make_unique<ConversationNode>();
    copy->isNPC = source.isNPC;
    copy->line.Bind(record.Get());
    return copy;
}

std::unique_ptr<ConversationNode> LinkTo(ConversationNode& target) {
    auto link = std::make_unique<ConversationNode>();
    link->isNPC = target.isNPC;
    link->isLink = true;
    link->linkTarget = &target;
    link->line.Bind(target.line.GetNode());
    return link;
}

}  // namespace

BranchCopy CopyBranches(ConversationEdits& edits, const ConversationTree& sourceTree,
                        const std::vector<TreeItem>& sources) {
    BranchCopy result;
    const ItemTree& from = sourceTree.Items();
    ItemTree& to = edits.Tree().Items();
    bool sameTree = &sourceTree == &edits.Tree();

    std::vector<TreeItem> tops;
    for (TreeItem source : sources) {
        bool inside = false;
        for (TreeItem top : tops) inside = inside || IsInBranch(from, source, top);
        if (!inside && sourceTree.NodeOf(source)) tops.push_back(source);
    }

    // The lines that come along, so that links to them can be told apart before anything is made.
    std::unordered_map<const ConversationNode*, ConversationNode*> copyOf;
    for (TreeItem top : tops) {
        TreeItem end = sourceTree.SubtreeEnd(top);
        for (TreeItem i = top; i != kNoItem && i != end; i = from.NextInPreOrder(i))
            if (const ConversationNode* node = sourceTree.NodeOf(i); node && !node->isLink)
                copyOf.emplace(node, nullptr);
    }

    std::vector<ConversationNode*> links;
    std::unordered_map<TreeItem, TreeItem> itemOf;  // source item -> its copy
    for (TreeItem top : tops) {
        TreeItem end = sourceTree.SubtreeEnd(top);
        TreeItem first = kNoItem;
        for (TreeItem i = top; i != kNoItem && i != end; i = from.NextInPreOrder(i)) {
            ConversationNode* node = sourceTree.NodeOf(i);
            if (!node) continue;
            std::unique_ptr<ConversationNode> copy;
            if (!node->isLink) {
                copy = CopyOfLine(*node);
            } else if (ConversationNode* target = node->linkTarget) {
                bool kept = copyOf.count(target) || (sameTree && to.IsInTree(target->treeItem));
                if (kept) copy = LinkTo(*target);
            }
            if (!copy) {
                // A link whose line stays behind in another conversation, or a record that could
                // not be copied: the branch goes without it.
                if (node->isLink) ++result.droppedLinks;
                continue;
            }
            ConversationNode* made = copy.get();
            TreeItem parent = i == top ? kNoItem : itemOf[from.GetParent(i)];
            if (i != top && parent == kNoItem) continue;  // under something left out
            made->treeItem =
                i == top ? to.CreateDetached(std::u16string(), std::move(copy))
                         : to.InsertDetachedChild(parent, std::u16string(), std::move(copy));
            itemOf[i] = made->treeItem;
            if (i == top) first = made->treeItem;
            if (made->isLink)
                links.push_back(made);
            else
                copyOf[node] = made;
        }
        if (first != kNoItem) result.branches.emplace_back(to, first);
    }

    // Links to copied lines follow them to their copies.
    for (ConversationNode* link : links) {
        auto found = copyOf.find(link->linkTarget);
        if (found == copyOf.end() || !found->second) continue;
        link->linkTarget = found->second;
        link->line.Bind(found->second->line.GetNode());
    }
    return result;
}

}  // namespace dlg
