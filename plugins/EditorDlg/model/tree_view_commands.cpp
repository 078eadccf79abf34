#include "model/tree_view_commands.h"

namespace dlg {

namespace {
// One item, or its whole subtree walked in pre-order (no recursion: chains can be very deep).
void Apply(ItemTree& items, TreeItem item, bool expand, bool wholeBranch) {
    if (!wholeBranch) return items.Expand(item, expand);
    for (TreeItem i = item; i != kNoItem; i = items.NextInSubtree(i, item)) items.Expand(i, expand);
}
}  // namespace

void ExpandOrCollapse(ItemTree& items, TreeItem item, bool expand, bool wholeBranch) {
    if (!items.IsValid(item)) return;
    items.SetRedraw(false);
    Apply(items, item, expand, wholeBranch);
    items.EnsureVisible(item);
    items.SetRedraw(true);
}

void RunExpandCommand(ItemTree& items, ExpandCommand command) {
    TreeItem selected = items.GetSelection();
    TreeItem root = items.GetRootItem();
    switch (command) {
        case ExpandCommand::Expand:
            return ExpandOrCollapse(items, selected, true, false);
        case ExpandCommand::ExpandBranch:
            return ExpandOrCollapse(items, selected, true, true);
        case ExpandCommand::ExpandAll:
            return ExpandOrCollapse(items, root, true, true);
        case ExpandCommand::Collapse:
            return ExpandOrCollapse(items, selected, false, false);
        case ExpandCommand::CollapseBranch:
            return ExpandOrCollapse(items, selected, false, true);
        case ExpandCommand::CollapseAll:
            items.Select(root);
            return ExpandOrCollapse(items, root, false, true);
    }
}

bool JumpToTarget(ConversationTree& tree) {
    ConversationNode* node = tree.NodeOf(tree.Items().GetSelection());
    if (!node || !node->isLink || !node->linkTarget) return false;
    tree.Items().Select(node->linkTarget->treeItem);
    tree.Items().EnsureVisible(node->linkTarget->treeItem);
    return true;
}

}  // namespace dlg
