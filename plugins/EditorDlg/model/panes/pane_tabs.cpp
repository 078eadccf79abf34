#include "model/panes/pane_tabs.h"

namespace dlg {

std::uint32_t SelectionMask(const ConversationTree& tree, bool root, TreeItem item) {
    if (root) return kSelectRoot;
    const ConversationNode* node = tree.NodeOf(item);
    if (!node) return 0;
    std::uint32_t mask = kSelectLine;
    // A start line hangs directly under the root; a link to one previews like the line itself.
    const ConversationNode& shown = node->Shown();
    const ItemTree& items = tree.Items();
    if (items.GetParent(item) == tree.RootItem() ||
        (node->isLink && items.GetParent(shown.treeItem) == tree.RootItem()))
        mask |= kSelectStartLine;
    mask |= node->isNPC ? kSelectNpcLine : kSelectPlayerLine;
    return mask;
}

}  // namespace dlg
