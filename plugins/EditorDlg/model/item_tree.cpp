#include "model/item_tree.h"

#include <algorithm>
#include <utility>

namespace dlg {

struct ItemTree::Item {
    TreeItem parent = kNoItem;
    std::vector<TreeItem> children;
    std::u16string text;
    std::unique_ptr<TreeItemData> data;
    std::uint32_t textColour = 0;
    std::uint32_t backColour = 0xFFFFFF;
    int image = 0;
    // Where the item last stood among its siblings; checked before use, since inserting or
    // removing a sibling shifts it.
    mutable std::uint32_t rowHint = 0;
    bool alive = false;
    // False for the items of a detached subtree.
    bool inTree = false;
    bool expanded = false;
};

ItemTree::ItemTree() = default;
ItemTree::~ItemTree() = default;

ItemTree::Item& ItemTree::At(TreeItem item) {
    return items_[item - base_ - 1];
}

ItemTree::Item* ItemTree::Find(TreeItem item) {
    if (item <= base_ || item - base_ > items_.size()) return nullptr;
    Item& i = At(item);
    return i.alive ? &i : nullptr;
}

const ItemTree::Item* ItemTree::Find(TreeItem item) const {
    return const_cast<ItemTree*>(this)->Find(item);
}

bool ItemTree::IsValid(TreeItem item) const {
    return Find(item) != nullptr;
}

bool ItemTree::IsInTree(TreeItem item) const {
    const Item* i = Find(item);
    return i && i->inTree;
}

bool ItemTree::Announce(TreeItem item) const {
    return observer_ && IsInTree(item);
}

std::vector<TreeItem>& ItemTree::ChildrenOf(TreeItem parent) {
    return parent == kNoItem ? top_ : Find(parent)->children;
}

const std::vector<TreeItem>* ItemTree::ChildrenOfConst(TreeItem parent) const {
    if (parent == kNoItem) return &top_;
    const Item* p = Find(parent);
    return p ? &p->children : nullptr;
}

std::size_t ItemTree::InsertRow(const std::vector<TreeItem>& siblings, TreeItem after) const {
    if (after == kInsertFirst) return 0;
    if (after == kInsertLast) return siblings.size();
    auto it = std::find(siblings.begin(), siblings.end(), after);
    return it == siblings.end() ? siblings.size() + 1 : std::size_t(it - siblings.begin()) + 1;
}

TreeItem ItemTree::NewItem(TreeItem parent, std::u16string text,
                           std::unique_ptr<TreeItemData> data) {
    // Handles are never reused: a freed slot stays dead (it keeps no text or data).
    items_.emplace_back();
    auto handle = static_cast<TreeItem>(base_ + items_.size());
    Item& item = items_.back();
    item.parent = parent;
    item.text = std::move(text);
    item.data = std::move(data);
    item.alive = true;
    return handle;
}

TreeItem ItemTree::InsertItem(TreeItem parent, TreeItem after, std::u16string text,
                              std::unique_ptr<TreeItemData> data) {
    if (parent != kNoItem && !IsInTree(parent)) return kNoItem;
    std::size_t row = InsertRow(ChildrenOf(parent), after);
    if (row > ChildrenOf(parent).size()) return kNoItem;

    TreeItem handle = NewItem(parent, std::move(text), std::move(data));
    At(handle).inTree = true;
    ++inTree_;
    PlaceAt(handle, parent, row);
    return handle;
}

void ItemTree::PlaceAt(TreeItem handle, TreeItem parent, std::size_t row) {
    At(handle).parent = parent;
    if (observer_) observer_->BeforeInsert(parent, row);
    auto& siblings = ChildrenOf(parent);
    siblings.insert(siblings.begin() + std::ptrdiff_t(row), handle);
    At(handle).rowHint = static_cast<std::uint32_t>(row);
    if (observer_) observer_->AfterInsert(handle);
}

TreeItem ItemTree::CreateDetached(std::u16string text, std::unique_ptr<TreeItemData> data) {
    return NewItem(kNoItem, std::move(text), std::move(data));
}

TreeItem ItemTree::InsertDetachedChild(TreeItem parent, std::u16string text,
                                       std::unique_ptr<TreeItemData> data) {
    const Item* p = Find(parent);
    if (!p || p->inTree) return kNoItem;
    TreeItem handle = NewItem(parent, std::move(text), std::move(data));
    auto& siblings = At(parent).children;
    At(handle).rowHint = static_cast<std::uint32_t>(siblings.size());
    siblings.push_back(handle);
    return handle;
}

void ItemTree::Release(TreeItem top) {
    // Iterative, so that a chain of any depth is freed without exhausting the stack.
    std::vector<TreeItem> pending{top};
    while (!pending.empty()) {
        TreeItem handle = pending.back();
        pending.pop_back();
        Item& item = At(handle);
        pending.insert(pending.end(), item.children.begin(), item.children.end());
        if (selected_ == handle) selected_ = kNoItem;
        if (item.inTree) --inTree_;
        item = Item{};
    }
}

void ItemTree::SetInTree(TreeItem top, bool inTree) {
    for (TreeItem i = top; i != kNoItem; i = NextInSubtree(i, top)) {
        At(i).inTree = inTree;
        inTree ? ++inTree_ : --inTree_;
    }
}

bool ItemTree::DeleteItem(TreeItem handle) {
    Item* item = Find(handle);
    if (!item || !item->inTree) return false;
    TreeItem parent = item->parent;
    std::size_t row = RowOf(handle);
    TreeItem previouslySelected = selected_;
    if (observer_) observer_->BeforeRemove(handle);
    auto& siblings = ChildrenOf(parent);
    siblings.erase(siblings.begin() + std::ptrdiff_t(row));
    Release(handle);
    if (observer_) {
        observer_->AfterRemove(parent, row);
        if (selected_ != previouslySelected)
            observer_->SelectionChanged(previouslySelected, selected_);
    }
    if (selectionFollower_ && selected_ != previouslySelected) selectionFollower_(selected_);
    return true;
}

bool ItemTree::Detach(TreeItem handle) {
    Item* item = Find(handle);
    if (!item || !item->inTree) return false;
    TreeItem parent = item->parent;
    std::size_t row = RowOf(handle);
    TreeItem previouslySelected = selected_;
    if (selected_ != kNoItem && IsInSubtree(selected_, handle)) selected_ = kNoItem;
    if (observer_) observer_->BeforeRemove(handle);
    auto& siblings = ChildrenOf(parent);
    siblings.erase(siblings.begin() + std::ptrdiff_t(row));
    At(handle).parent = kNoItem;
    SetInTree(handle, false);
    if (observer_) {
        observer_->AfterRemove(parent, row);
        if (selected_ != previouslySelected)
            observer_->SelectionChanged(previouslySelected, selected_);
    }
    if (selectionFollower_ && selected_ != previouslySelected) selectionFollower_(selected_);
    return true;
}

bool ItemTree::Attach(TreeItem handle, TreeItem parent, std::size_t row) {
    Item* item = Find(handle);
    if (!item || item->inTree || item->parent != kNoItem) return false;
    if (parent != kNoItem && !IsInTree(parent)) return false;
    row = std::min(row, ChildrenOf(parent).size());
    SetInTree(handle, true);
    PlaceAt(handle, parent, row);
    return true;
}

void ItemTree::DiscardDetached(TreeItem handle) {
    const Item* item = Find(handle);
    if (!item || item->inTree || item->parent != kNoItem) return;
    Release(handle);
}

void ItemTree::DeleteAllItems() {
    if (observer_) observer_->BeforeReset();
    TreeItem previouslySelected = selected_;
    // Handles of the old items stay refused, even those that detached subtrees still hold.
    base_ += static_cast<TreeItem>(items_.size());
    items_.clear();
    top_.clear();
    inTree_ = 0;
    selected_ = kNoItem;
    if (observer_) {
        observer_->AfterReset();
        if (previouslySelected != kNoItem) observer_->SelectionChanged(previouslySelected, kNoItem);
    }
    if (selectionFollower_ && previouslySelected != kNoItem) selectionFollower_(kNoItem);
}

bool ItemTree::IsInSubtree(TreeItem item, TreeItem ancestor) const {
    for (TreeItem i = item; i != kNoItem; i = GetParent(i))
        if (i == ancestor) return true;
    return false;
}

bool ItemTree::MoveItem(TreeItem handle, TreeItem newParent, TreeItem after) {
    Item* item = Find(handle);
    if (!item || !item->inTree || after == handle) return false;
    if (newParent != kNoItem && (!IsInTree(newParent) || IsInSubtree(newParent, handle)))
        return false;
    auto& oldSiblings = ChildrenOf(item->parent);
    std::size_t oldRow = RowOf(handle);
    // The new row is counted as if the item had already left its old place.
    std::size_t newRow;
    if (after == kInsertFirst) {
        newRow = 0;
    } else if (after == kInsertLast) {
        newRow = ChildrenOf(newParent).size() - (newParent == item->parent ? 1 : 0);
    } else {
        if (GetParent(after) != newParent || !IsInTree(after)) return false;
        newRow = RowOf(after) + 1;
        if (newParent == item->parent && oldRow < newRow) --newRow;
    }

    if (observer_) observer_->BeforeMove(handle, newParent, newRow);
    oldSiblings.erase(oldSiblings.begin() + std::ptrdiff_t(oldRow));
    auto& newSiblings = ChildrenOf(newParent);
    newSiblings.insert(newSiblings.begin() + std::ptrdiff_t(newRow), handle);
    item->parent = newParent;
    item->rowHint = static_cast<std::uint32_t>(newRow);
    if (observer_) observer_->AfterMove(handle);
    return true;
}

TreeItem ItemTree::GetRootItem() const {
    return top_.empty() ? kNoItem : top_.front();
}

TreeItem ItemTree::GetParent(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->parent : kNoItem;
}

TreeItem ItemTree::GetChild(TreeItem item) const {
    const Item* i = Find(item);
    return i && !i->children.empty() ? i->children.front() : kNoItem;
}

TreeItem ItemTree::GetLastChild(TreeItem item) const {
    const Item* i = Find(item);
    return i && !i->children.empty() ? i->children.back() : kNoItem;
}

std::size_t ItemTree::ChildCount(TreeItem item) const {
    const auto* children = ChildrenOfConst(item);
    return children ? children->size() : 0;
}

TreeItem ItemTree::ChildAt(TreeItem parent, std::size_t row) const {
    const auto* children = ChildrenOfConst(parent);
    return children && row < children->size() ? (*children)[row] : kNoItem;
}

std::size_t ItemTree::RowOf(TreeItem item) const {
    const Item* i = Find(item);
    if (!i) return 0;
    // The top of a detached subtree has no siblings.
    if (!i->inTree && i->parent == kNoItem) return 0;
    const auto& siblings = *ChildrenOfConst(i->parent);
    if (i->rowHint < siblings.size() && siblings[i->rowHint] == item) return i->rowHint;
    auto row = std::size_t(std::find(siblings.begin(), siblings.end(), item) - siblings.begin());
    i->rowHint = static_cast<std::uint32_t>(row);
    // The search also refreshes the hints of the siblings, so that walking them all stays linear.
    for (std::size_t r = 0; r < siblings.size(); ++r)
        Find(siblings[r])->rowHint = static_cast<std::uint32_t>(r);
    return row;
}

TreeItem ItemTree::GetNextSibling(TreeItem item) const {
    const Item* i = Find(item);
    if (!i || (!i->inTree && i->parent == kNoItem)) return kNoItem;
    return ChildAt(i->parent, RowOf(item) + 1);
}

TreeItem ItemTree::GetPrevSibling(TreeItem item) const {
    const Item* i = Find(item);
    if (!i || (!i->inTree && i->parent == kNoItem)) return kNoItem;
    std::size_t row = RowOf(item);
    return row == 0 ? kNoItem : ChildAt(i->parent, row - 1);
}

TreeItem ItemTree::NextInPreOrder(TreeItem item) const {
    if (TreeItem child = GetChild(item)) return child;
    for (TreeItem i = item; i != kNoItem; i = GetParent(i))
        if (TreeItem next = GetNextSibling(i)) return next;
    return kNoItem;
}

TreeItem ItemTree::NextInSubtree(TreeItem item, TreeItem top) const {
    if (TreeItem child = GetChild(item)) return child;
    for (TreeItem i = item; i != kNoItem && i != top; i = GetParent(i))
        if (TreeItem next = GetNextSibling(i)) return next;
    return kNoItem;
}

std::size_t ItemTree::SubtreeSize(TreeItem top) const {
    if (!Find(top)) return 0;
    std::size_t count = 0;
    for (TreeItem i = top; i != kNoItem; i = NextInSubtree(i, top)) ++count;
    return count;
}

const std::u16string& ItemTree::GetText(TreeItem item) const {
    static const std::u16string kEmpty;
    const Item* i = Find(item);
    return i ? i->text : kEmpty;
}

void ItemTree::SetText(TreeItem item, std::u16string text) {
    Item* i = Find(item);
    if (!i || i->text == text) return;
    i->text = std::move(text);
    if (Announce(item)) observer_->ItemChanged(item);
}

std::uint32_t ItemTree::GetTextColour(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->textColour : 0;
}

std::uint32_t ItemTree::GetBackColour(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->backColour : 0xFFFFFF;
}

void ItemTree::SetColours(TreeItem item, std::uint32_t text, std::uint32_t back) {
    Item* i = Find(item);
    if (!i || (i->textColour == text && i->backColour == back)) return;
    i->textColour = text;
    i->backColour = back;
    if (Announce(item)) observer_->ItemChanged(item);
}

int ItemTree::GetImage(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->image : 0;
}

void ItemTree::SetImage(TreeItem item, int image) {
    Item* i = Find(item);
    if (!i || i->image == image) return;
    i->image = image;
    if (Announce(item)) observer_->ItemChanged(item);
}

bool ItemTree::IsExpanded(TreeItem item) const {
    const Item* i = Find(item);
    return i && i->expanded;
}

void ItemTree::Expand(TreeItem item, bool expand) {
    Item* i = Find(item);
    if (!i || i->expanded == expand) return;
    i->expanded = expand;
    if (Announce(item)) observer_->ExpandedChanged(item, expand);
}

void ItemTree::Select(TreeItem item) {
    if (item != kNoItem && !IsInTree(item)) return;
    if (item == selected_) return;
    TreeItem previous = selected_;
    selected_ = item;
    if (observer_) observer_->SelectionChanged(previous, item);
    if (selectionFollower_) selectionFollower_(item);
}

void ItemTree::EnsureVisible(TreeItem item) {
    if (!IsInTree(item)) return;
    // Like a tree control, make every ancestor expanded so the item can be seen.
    for (TreeItem p = GetParent(item); p != kNoItem; p = GetParent(p)) Expand(p, true);
    if (observer_) observer_->EnsureVisible(item);
}

void ItemTree::SetRedraw(bool on) {
    if (redraw_ == on) return;
    redraw_ = on;
    if (observer_) observer_->RedrawChanged(on);
}

void ItemTree::BeginBatch() {
    if (batch_++ == 0 && observer_) observer_->BatchBegin();
}

void ItemTree::EndBatch() {
    if (batch_ > 0 && --batch_ == 0 && observer_) observer_->BatchEnd();
}

TreeItemData* ItemTree::GetData(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->data.get() : nullptr;
}

DetachedSubtree& DetachedSubtree::operator=(DetachedSubtree&& other) noexcept {
    if (this != &other) {
        if (tree_) tree_->DiscardDetached(top_);
        tree_ = std::exchange(other.tree_, nullptr);
        top_ = std::exchange(other.top_, kNoItem);
    }
    return *this;
}

DetachedSubtree::~DetachedSubtree() {
    if (tree_) tree_->DiscardDetached(top_);
}

}  // namespace dlg
