#include "model/editing/can_place.h"

namespace dlg {

namespace {

// The nearest line at or above `item` whose own Ambient flag is set; kNoItem when none.
TreeItem AmbientBranchOf(const ConversationTree& tree, TreeItem item) {
    const ItemTree& items = tree.Items();
    for (TreeItem a = item; a != kNoItem && a != tree.RootItem(); a = items.GetParent(a)) {
        const ConversationNode* node = tree.NodeOf(a);
        bool ambient = false;
        if (node && !node->isLink && node->line.GetAmbient(ambient) && ambient) return a;
    }
    return kNoItem;
}

// Whether every link in `source`'s branch stays inside `ambient`'s branch once the branch is
// placed there: a link to a line that comes along goes with it; within one tree a link may also
// point at a line already in the ambient branch.
bool LinksStayInside(const ConversationTree& tree, TreeItem ambient,
                     const ConversationTree& sourceTree, TreeItem source) {
    const ItemTree& from = sourceTree.Items();
    TreeItem end = sourceTree.SubtreeEnd(source);
    for (TreeItem i = source; i != kNoItem && i != end; i = from.NextInPreOrder(i)) {
        const ConversationNode* node = sourceTree.NodeOf(i);
        if (!node || !node->isLink || !node->linkTarget) continue;
        TreeItem target = node->linkTarget->treeItem;
        if (IsInBranch(from, target, source)) continue;
        if (&sourceTree == &tree && IsInBranch(tree.Items(), target, ambient)) continue;
        return false;
    }
    return true;
}

}  // namespace

bool IsInBranch(const ItemTree& items, TreeItem item, TreeItem top) {
    for (TreeItem a = item; a != kNoItem; a = items.GetParent(a))
        if (a == top) return true;
    return false;
}

Placement CanPlace(const ConversationTree& tree, TreeItem target,
                   const ConversationTree& sourceTree, TreeItem source, bool asLink) {
    const ItemTree& items = tree.Items();
    if (!items.IsInTree(target) || !sourceTree.Items().IsValid(source)) return Placement::Refuse;
    bool sourceIsRoot = source == sourceTree.RootItem();
    bool linkMode = asLink;
    bool npc = true;
    if (!sourceIsRoot) {
        const ConversationNode* line = sourceTree.NodeOf(source);
        if (!line) return Placement::Refuse;
        if (line->isLink) {
            // A link is never linked to; copying one makes another link to its line.
            if (asLink || !line->linkTarget) return Placement::Refuse;
            line = line->linkTarget;
            linkMode = true;
        }
        npc = line->isNPC;
    }

    Placement answer;
    if (target == tree.RootItem()) {
        answer = npc ? Placement::AsChild : Placement::Refuse;
    } else {
        const ConversationNode* node = tree.NodeOf(target);
        if (!node) return Placement::Refuse;
        if (node->isNPC == npc)
            answer = Placement::AsSibling;
        else
            answer = node->isLink ? Placement::Refuse : Placement::AsChild;
    }
    if (answer == Placement::Refuse) return answer;

    TreeItem receiving = answer == Placement::AsChild ? target : items.GetParent(target);
    if (!linkMode) {
        TreeItem ambient = AmbientBranchOf(tree, receiving);
        if (ambient != kNoItem && !LinksStayInside(tree, ambient, sourceTree, source))
            return Placement::Refuse;
        return answer;
    }
    // A link can't be a starting line, and its line must be a line. A link back to a line from
    // inside its own branch is allowed: that is how a conversation returns to an earlier question.
    if (sourceIsRoot || receiving == tree.RootItem()) return Placement::Refuse;
    // Links are made only to lines that stand in the tree (not to a branch cut away).
    if (&sourceTree != &tree || !items.IsInTree(source)) return Placement::Refuse;
    if (npc && items.GetParent(receiving) == tree.RootItem() && tree.NodeOf(receiving)->isNPC)
        return Placement::Refuse;
    return answer;
}

}  // namespace dlg
