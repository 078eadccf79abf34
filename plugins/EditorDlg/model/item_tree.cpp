#include "model/item_tree.h"

#include <algorithm>

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
    bool expanded = false;
};

ItemTree::ItemTree() = default;
ItemTree::~ItemTree() = default;

ItemTree::Item* ItemTree::Find(TreeItem item) {
    if (item == kNoItem || item > items_.size()) return nullptr;
    Item& i = items_[item - 1];
    return i.alive ? &i : nullptr;
}

const ItemTree::Item* ItemTree::Find(TreeItem item) const {
    return const_cast<ItemTree*>(this)->Find(item);
}

bool ItemTree::IsValid(TreeItem item) const { return Find(item) != nullptr; }

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

TreeItem ItemTree::InsertItem(TreeItem parent, TreeItem after, std::u16string text,
                              std::unique_ptr<TreeItemData> data) {
    if (parent != kNoItem && !Find(parent)) return kNoItem;
    std::size_t row = InsertRow(ChildrenOf(parent), after);
    if (row > ChildrenOf(parent).size()) return kNoItem;

    TreeItem handle;
    if (!free_.empty()) {
        handle = free_.back();
        free_.pop_back();
    } else {
        items_.emplace_back();
        handle = static_cast<TreeItem>(items_.size());
    }
    Item& item = items_[handle - 1];
    item.parent = parent;
    item.text = std::move(text);
    item.data = std::move(data);
    item.alive = true;

    if (observer_) observer_->BeforeInsert(parent, row);
    auto& siblings = ChildrenOf(parent);
    siblings.insert(siblings.begin() + std::ptrdiff_t(row), handle);
    item.rowHint = static_cast<std::uint32_t>(row);
    ++live_;
    if (observer_) observer_->AfterInsert(handle);
    return handle;
}

void ItemTree::Release(TreeItem handle) {
    Item& item = items_[handle - 1];
    for (TreeItem child : item.children) Release(child);
    if (selected_ == handle) selected_ = kNoItem;
    item = Item{};
    free_.push_back(handle);
    --live_;
}

bool ItemTree::DeleteItem(TreeItem handle) {
    Item* item = Find(handle);
    if (!item) return false;
    TreeItem parent = item->parent;
    std::size_t row = RowOf(handle);
    TreeItem previouslySelected = selected_;
    if (observer_) observer_->BeforeRemove(handle);
    auto& siblings = ChildrenOf(parent);
    siblings.erase(siblings.begin() + std::ptrdiff_t(row));
    Release(handle);
    if (observer_) {
        observer_->AfterRemove(parent, row);
        if (selected_ != previouslySelected) observer_->SelectionChanged(previouslySelected, selected_);
    }
    return true;
}

void ItemTree::DeleteAllItems() {
    if (observer_) observer_->BeforeReset();
    TreeItem previouslySelected = selected_;
    items_.clear();
    free_.clear();
    top_.clear();
    live_ = 0;
    selected_ = kNoItem;
    if (observer_) {
        observer_->AfterReset();
        if (previouslySelected != kNoItem) observer_->SelectionChanged(previouslySelected, kNoItem);
    }
}

bool ItemTree::IsInSubtree(TreeItem item, TreeItem ancestor) const {
    for (TreeItem i = item; i != kNoItem; i = GetParent(i))
        if (i == ancestor) return true;
    return false;
}

bool ItemTree::MoveItem(TreeItem handle, TreeItem newParent, TreeItem after) {
    Item* item = Find(handle);
    if (!item || (newParent != kNoItem && !Find(newParent)) || after == handle) return false;
    if (newParent != kNoItem && IsInSubtree(newParent, handle)) return false;
    auto& oldSiblings = ChildrenOf(item->parent);
    std::size_t oldRow = RowOf(handle);
    // The new row is counted as if the item had already left its old place.
    std::vector<TreeItem> target = ChildrenOf(newParent);
    if (newParent == item->parent) target.erase(target.begin() + std::ptrdiff_t(oldRow));
    std::size_t newRow = InsertRow(target, after);
    if (newRow > target.size()) return false;

    if (observer_) observer_->BeforeMove(handle, newParent, newRow);
    oldSiblings.erase(oldSiblings.begin() + std::ptrdiff_t(oldRow));
    auto& newSiblings = ChildrenOf(newParent);
    newSiblings.insert(newSiblings.begin() + std::ptrdiff_t(newRow), handle);
    item->parent = newParent;
    if (observer_) observer_->AfterMove(handle);
    return true;
}

TreeItem ItemTree::GetRootItem() const { return top_.empty() ? kNoItem : top_.front(); }

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
    const auto& siblings = *ChildrenOfConst(i->parent);
    if (i->rowHint < siblings.size() && siblings[i->rowHint] == item) return i->rowHint;
    auto row = std::size_t(std::find(siblings.begin(), siblings.end(), item) - siblings.begin());
    i->rowHint = static_cast<std::uint32_t>(row);
    return row;
}

TreeItem ItemTree::GetNextSibling(TreeItem item) const {
    const Item* i = Find(item);
    if (!i) return kNoItem;
    return ChildAt(i->parent, RowOf(item) + 1);
}

TreeItem ItemTree::GetPrevSibling(TreeItem item) const {
    const Item* i = Find(item);
    if (!i) return kNoItem;
    std::size_t row = RowOf(item);
    return row == 0 ? kNoItem : ChildAt(i->parent, row - 1);
}

TreeItem ItemTree::NextInPreOrder(TreeItem item) const {
    if (TreeItem child = GetChild(item)) return child;
    for (TreeItem i = item; i != kNoItem; i = GetParent(i))
        if (TreeItem next = GetNextSibling(i)) return next;
    return kNoItem;
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
    if (observer_) observer_->ItemChanged(item);
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
    if (observer_) observer_->ItemChanged(item);
}

int ItemTree::GetImage(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->image : 0;
}

void ItemTree::SetImage(TreeItem item, int image) {
    Item* i = Find(item);
    if (!i || i->image == image) return;
    i->image = image;
    if (observer_) observer_->ItemChanged(item);
}

bool ItemTree::IsExpanded(TreeItem item) const {
    const Item* i = Find(item);
    return i && i->expanded;
}

void ItemTree::Expand(TreeItem item, bool expand) {
    Item* i = Find(item);
    if (!i || i->expanded == expand) return;
    i->expanded = expand;
    if (observer_) observer_->ExpandedChanged(item, expand);
}

void ItemTree::Select(TreeItem item) {
    if (item != kNoItem && !Find(item)) return;
    if (item == selected_) return;
    TreeItem previous = selected_;
    selected_ = item;
    if (observer_) observer_->SelectionChanged(previous, item);
}

void ItemTree::EnsureVisible(TreeItem item) {
    if (!Find(item)) return;
    // Like a tree control, make every ancestor expanded so the item can be seen.
    for (TreeItem p = GetParent(item); p != kNoItem; p = GetParent(p)) Expand(p, true);
    if (observer_) observer_->EnsureVisible(item);
}

void ItemTree::SetRedraw(bool on) {
    if (redraw_ == on) return;
    redraw_ = on;
    if (observer_) observer_->RedrawChanged(on);
}

TreeItemData* ItemTree::GetData(TreeItem item) const {
    const Item* i = Find(item);
    return i ? i->data.get() : nullptr;
}

}  // namespace dlg
