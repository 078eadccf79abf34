#pragma once

#include "model/conversation_tree.h"

namespace dlg {

// Expands or collapses an item, and with `wholeBranch` every item below it, with redrawing off
// meanwhile; then scrolls the item into view. Collapsing closes the item before its children,
// expanding opens it after them, so a view never lays out rows that are about to move.
void ExpandOrCollapse(ItemTree& items, TreeItem item, bool expand, bool wholeBranch);

// The view commands of the tree, on the selected item.
enum class ExpandCommand { Expand, ExpandBranch, ExpandAll, Collapse, CollapseBranch, CollapseAll };
void RunExpandCommand(ItemTree& items, ExpandCommand command);

// Selects the target of the selected link; false (nothing happens) when the selection is not a
// link with a target.
bool JumpToTarget(ConversationTree& tree);

}  // namespace dlg
