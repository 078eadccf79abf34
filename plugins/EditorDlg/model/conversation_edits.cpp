#include "model/conversation_edits.h"

#include <algorithm>
#include <memory>

namespace dlg {

void ConversationEdits::AddObserver(ConversationEditObserver* observer) {
    if (observer && std::find(observers_.begin(), observers_.end(), observer) == observers_.end())
        observers_.push_back(observer);
}

void ConversationEdits::RemoveObserver(ConversationEditObserver* observer) {
    observers_.erase(std::remove(observers_.begin(), observers_.end(), observer), observers_.end());
}

// A copy, so that an observer may come or go while the others hear.
template <class F>
void ConversationEdits::Notify(F&& tell) {
    std::vector<ConversationEditObserver*> observers = observers_;
    for (ConversationEditObserver* observer : observers)
        if (std::find(observers_.begin(), observers_.end(), observer) != observers_.end())
            tell(*observer);
}

void ConversationEdits::Reindex() {
    links_.Clear();
    if (TreeItem root = tree_.RootItem()) links_.AddSubtree(tree_.Items(), root);
}

TreeItem ConversationEdits::ItemAt(std::int32_t treeIndex) const {
    if (treeIndex == 0) return tree_.RootItem();
    ConversationNode* node = tree_.NodeAt(treeIndex);
    return node ? node->treeItem : kNoItem;
}

std::int32_t ConversationEdits::IndexOf(TreeItem item) const {
    if (!tree_.Items().IsInTree(item)) return -1;
    if (item == tree_.RootItem()) return 0;
    ConversationNode* node = tree_.NodeOf(item);
    return node ? node->TreeIndex : -1;
}

std::int32_t ConversationEdits::IndexAfterSubtree(TreeItem item) const {
    TreeItem end = tree_.SubtreeEnd(item);
    return end != kNoItem ? IndexOf(end) : static_cast<std::int32_t>(tree_.NodeCount());
}

void ConversationEdits::BeginEdit() {
    if (depth_++ == 0) tree_.Items().BeginBatch();
}

void ConversationEdits::EndEdit() {
    if (depth_ == 0 || --depth_ > 0) return;
    ItemTree& items = tree_.Items();
    bool structure = renumber_;
    NumberingChange change;
    if (renumber_) change = numbering_.Renumber(tree_, attached_);
    if (renumber_ && validation_) validation_->NumberingChanged();
    renumber_ = false;
    // Subtrees that came in or moved may sit under other ambient lines now; their labels were
    // made elsewhere (a clipboard, another state of the tree).
    for (TreeItem top : attached_) {
        if (!items.IsInTree(top)) continue;
        tree_.UpdateAmbient(top);
        ValidateSubtree(top);
        tree_.RefreshSubtree(top);
    }
    for (TreeItem item : touched_)
        if (items.IsInTree(item)) RefreshLine(item);
    for (TreeItem item : redraw_)
        if (items.IsInTree(item)) RefreshLine(item);
    attached_.clear();
    touched_.clear();
    redraw_.clear();
    items.EndBatch();
    if (structure) {
        // Every store of numbers is current before anyone hears of the new structure.
        Notify([&](ConversationEditObserver& o) { o.Renumbered(change); });
        Notify([](ConversationEditObserver& o) { o.StructureChanged(); });
    }
}

void ConversationEdits::ValidateSubtree(TreeItem top) {
    if (validation_) validation_->ValidateSubtree(top, redraw_);
}

void ConversationEdits::ValidateAll() {
    if (!validation_ || tree_.RootItem() == kNoItem) return;
    BeginEdit();
    ValidateSubtree(tree_.RootItem());
    EndEdit();
}

bool ConversationEdits::FitsUnder(TreeItem parent, const ConversationNode& child) const {
    const ItemTree& items = tree_.Items();
    if (!items.IsInTree(parent)) return false;
    if (parent == tree_.RootItem()) return child.isNPC;
    const ConversationNode* p = tree_.NodeOf(parent);
    return p && !p->isLink && p->isNPC != child.isNPC;
}

DetachedSubtree ConversationEdits::Detach(TreeItem item) {
    ItemTree& items = tree_.Items();
    if (!items.IsInTree(item) || item == tree_.RootItem()) return {};
    BeginEdit();
    TreeItem parent = items.GetParent(item);
    TreeItem selected = items.GetSelection();
    links_.RemoveSubtree(items, item);
    numbering_.Leaving(tree_, item);
    items.Detach(item);
    // The selection was inside what left: the line it stood under takes it, so that the user
    // goes on from there.
    if (selected != kNoItem && items.GetSelection() == kNoItem) items.Select(parent);
    renumber_ = true;
    Touch(parent);
    EndEdit();
    return DetachedSubtree(items, item);
}

bool ConversationEdits::Attach(DetachedSubtree&& subtree, TreeItem parent, std::size_t row) {
    ItemTree& items = tree_.Items();
    TreeItem top = subtree.Top();
    ConversationNode* node = tree_.NodeOf(top);
    if (!node || items.IsInTree(top) || !FitsUnder(parent, *node)) return false;
    BeginEdit();
    bool attached = items.Attach(top, parent, row);
    if (attached) {
        subtree.Release();
        links_.AddSubtree(items, top);
        renumber_ = true;
        Touch(parent);
        attached_.push_back(top);
    }
    EndEdit();
    return attached;
}

bool ConversationEdits::Move(TreeItem item, TreeItem parent, std::size_t row) {
    ItemTree& items = tree_.Items();
    ConversationNode* node = tree_.NodeOf(item);
    if (!node || !items.IsInTree(item) || !FitsUnder(parent, *node)) return false;
    TreeItem oldParent = items.GetParent(item);
    std::size_t count = items.ChildCount(parent) - (parent == oldParent ? 1 : 0);
    if (row > count) row = count;
    TreeItem after = row == 0 ? kInsertFirst : kNoItem;
    if (row > 0) {
        // The sibling the item goes after, counted without the item itself.
        std::size_t r = row - 1;
        if (parent == oldParent && r >= items.RowOf(item)) ++r;
        after = items.ChildAt(parent, r);
    }
    BeginEdit();
    bool moved = items.MoveItem(item, parent, after);
    if (moved) {
        renumber_ = true;
        Touch(oldParent);
        Touch(parent);
        attached_.push_back(item);
    }
    EndEdit();
    return moved;
}

DetachedSubtree ConversationEdits::NewLine(bool npc, CAgentConversationLine line) {
    auto owned = std::make_unique<ConversationNode>();
    ConversationNode* node = owned.get();
    node->isNPC = npc;
    node->line = std::move(line);
    ItemTree& items = tree_.Items();
    node->treeItem = items.CreateDetached(std::u16string(), std::move(owned));
    return DetachedSubtree(items, node->treeItem);
}

DetachedSubtree ConversationEdits::NewLink(ConversationNode& target) {
    if (target.isLink) return {};
    auto owned = std::make_unique<ConversationNode>();
    ConversationNode* node = owned.get();
    node->isNPC = target.isNPC;
    node->isLink = true;
    node->linkTarget = &target;
    node->line.Bind(target.line.GetNode());
    ItemTree& items = tree_.Items();
    node->treeItem = items.CreateDetached(std::u16string(), std::move(owned));
    return DetachedSubtree(items, node->treeItem);
}

void ConversationEdits::RefreshLine(TreeItem item) {
    tree_.RefreshItem(item);
    if (ConversationNode* node = tree_.NodeOf(item); node && !node->isLink)
        for (ConversationNode* link : links_.LinksTo(*node)) tree_.RefreshItem(link->treeItem);
}

bool ConversationEdits::RefreshNode(std::int32_t treeIndex, int changeCode, bool select) {
    ItemTree& items = tree_.Items();
    TreeItem item = treeIndex == -1 ? items.GetSelection() : ItemAt(treeIndex);
    if (item == kNoItem) return false;
    BeginEdit();
    if (select) items.Select(item);
    if (changeCode == kChangeAll) {
        tree_.UpdateAmbient(tree_.RootItem());
        ValidateSubtree(tree_.RootItem());
        tree_.RefreshAll();
    } else if (changeCode == kChangeAmbient) {
        // The flag reaches every line below; their links follow through redraw_.
        tree_.UpdateAmbient(item);
        ValidateSubtree(item);
        tree_.RefreshSubtree(item);
        RefreshLine(item);
    } else {
        if (validation_) validation_->Validate(item);
        RefreshLine(item);
    }
    EndEdit();
    Notify([&](ConversationEditObserver& o) { o.LineRefreshed(item, changeCode); });
    return true;
}

void ConversationEdits::AnimationChanged(std::uint32_t animation, const std::u16string& tag) {
    TreeItem selected = tree_.Items().GetSelection();
    Notify([&](ConversationEditObserver& o) { o.AnimationChanged(selected, animation, tag); });
}

}  // namespace dlg
