#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dlg {

// A handle of an item; 0 is "no item". Handles stay valid until their item is deleted.
using TreeItem = std::uint32_t;
inline constexpr TreeItem kNoItem = 0;
// Insertion places besides "after this sibling".
inline constexpr TreeItem kInsertFirst = 0xFFFF0001u;
inline constexpr TreeItem kInsertLast = 0xFFFF0002u;

// The payload an item owns (for the conversation editor, its node record).
struct TreeItemData {
    virtual ~TreeItemData() = default;
};

// What a view must hear to follow the tree. Insert and remove come in before/after pairs so that
// a view can announce the change around it.
class ItemTreeObserver {
public:
    virtual ~ItemTreeObserver() = default;
    virtual void BeforeInsert(TreeItem /*parent*/, std::size_t /*row*/) {}
    virtual void AfterInsert(TreeItem /*item*/) {}
    virtual void BeforeRemove(TreeItem /*item*/) {}
    virtual void AfterRemove(TreeItem /*parent*/, std::size_t /*row*/) {}
    virtual void BeforeMove(TreeItem /*item*/, TreeItem /*newParent*/, std::size_t /*newRow*/) {}
    virtual void AfterMove(TreeItem /*item*/) {}
    virtual void BeforeReset() {}
    virtual void AfterReset() {}
    virtual void ItemChanged(TreeItem /*item*/) {}  // text, colours or image
    virtual void ExpandedChanged(TreeItem /*item*/, bool /*expanded*/) {}
    virtual void SelectionChanged(TreeItem /*previous*/, TreeItem /*current*/) {}
    virtual void EnsureVisible(TreeItem /*item*/) {}
    virtual void RedrawChanged(bool /*on*/) {}
};

// The items of a tree control, in plain C++: a forest of items with text, colours, an image,
// expanded and selected states, and owned data. Views show it; the editor's model drives it.
class ItemTree {
public:
    ItemTree();
    ~ItemTree();
    ItemTree(const ItemTree&) = delete;
    ItemTree& operator=(const ItemTree&) = delete;

    void SetObserver(ItemTreeObserver* observer) { observer_ = observer; }

    // Inserts under `parent` (kNoItem: top level) after `after` (a child of parent, or
    // kInsertFirst / kInsertLast). Returns kNoItem when parent or after is not valid.
    TreeItem InsertItem(TreeItem parent, TreeItem after, std::u16string text,
                        std::unique_ptr<TreeItemData> data = nullptr);
    // Deletes the item and its whole subtree (and their data).
    bool DeleteItem(TreeItem item);
    void DeleteAllItems();
    // Moves the item with its subtree to a new place; refused into its own subtree.
    bool MoveItem(TreeItem item, TreeItem newParent, TreeItem after);

    bool IsValid(TreeItem item) const;
    TreeItem GetRootItem() const;  // the first top-level item
    TreeItem GetParent(TreeItem item) const;
    TreeItem GetChild(TreeItem item) const;  // first child
    TreeItem GetLastChild(TreeItem item) const;
    TreeItem GetNextSibling(TreeItem item) const;
    TreeItem GetPrevSibling(TreeItem item) const;
    bool HasChildren(TreeItem item) const { return ChildCount(item) > 0; }
    std::size_t ChildCount(TreeItem item) const;
    TreeItem ChildAt(TreeItem parent, std::size_t row) const;
    std::size_t RowOf(TreeItem item) const;
    // Next item in pre-order (children first, then siblings, then ancestors' siblings).
    TreeItem NextInPreOrder(TreeItem item) const;
    std::size_t Size() const { return live_; }

    const std::u16string& GetText(TreeItem item) const;
    void SetText(TreeItem item, std::u16string text);
    std::uint32_t GetTextColour(TreeItem item) const;
    std::uint32_t GetBackColour(TreeItem item) const;
    void SetColours(TreeItem item, std::uint32_t text, std::uint32_t back);
    int GetImage(TreeItem item) const;
    void SetImage(TreeItem item, int image);

    bool IsExpanded(TreeItem item) const;
    void Expand(TreeItem item, bool expand);
    TreeItem GetSelection() const { return selected_; }
    void Select(TreeItem item);
    void EnsureVisible(TreeItem item);
    // Redraw off while many items change; views may then refresh once.
    void SetRedraw(bool on);
    bool RedrawOn() const { return redraw_; }

    TreeItemData* GetData(TreeItem item) const;

private:
    struct Item;
    Item* Find(TreeItem item);
    const Item* Find(TreeItem item) const;
    std::vector<TreeItem>& ChildrenOf(TreeItem parent);
    const std::vector<TreeItem>* ChildrenOfConst(TreeItem parent) const;
    std::size_t InsertRow(const std::vector<TreeItem>& siblings, TreeItem after) const;
    void Release(TreeItem item);
    bool IsInSubtree(TreeItem item, TreeItem ancestor) const;

    std::vector<Item> items_;  // slot = handle - 1
    std::vector<TreeItem> free_;
    std::vector<TreeItem> top_;
    std::size_t live_ = 0;
    TreeItem selected_ = kNoItem;
    bool redraw_ = true;
    ItemTreeObserver* observer_ = nullptr;
};

}  // namespace dlg
