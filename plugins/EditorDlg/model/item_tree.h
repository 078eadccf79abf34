#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dlg {

// A handle of an item; 0 is "no item". Handles are never given to another item, not even after
// DeleteAllItems, so a handle that an undo command or a clipboard keeps either still names its
// own item or names nothing.
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
// a view can announce the change around it; an inserted item may bring a whole subtree along.
// Nothing is announced about items outside the tree (detached subtrees).
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
    // Around a group of changes that make one edit, so that a view can show them at once.
    virtual void BatchBegin() {}
    virtual void BatchEnd() {}
};

// The items of a tree control, in plain C++: a forest of items with text, colours, an image,
// expanded and selected states, and owned data. Views show it; the editor's model drives it.
//
// A subtree can also be taken out of the tree without being destroyed (detached) and put back
// later, which is how undo keeps what it removed. No operation recurses, so trees of any depth
// are fine.
class ItemTree {
public:
    ItemTree();
    ~ItemTree();
    ItemTree(const ItemTree&) = delete;
    ItemTree& operator=(const ItemTree&) = delete;

    void SetObserver(ItemTreeObserver* observer) { observer_ = observer; }
    // Told of every selection change after the observer (the pane host follows the selection
    // whether or not a view observes the tree).
    void SetSelectionFollower(std::function<void(TreeItem current)> follower) {
        selectionFollower_ = std::move(follower);
    }

    // Inserts under `parent` (kNoItem: top level) after `after` (a child of parent, or
    // kInsertFirst / kInsertLast). Returns kNoItem when parent or after is not valid.
    TreeItem InsertItem(TreeItem parent, TreeItem after, std::u16string text,
                        std::unique_ptr<TreeItemData> data = nullptr);
    // Deletes the item and its whole subtree (and their data).
    bool DeleteItem(TreeItem item);
    void DeleteAllItems();
    // Moves the item with its subtree to a new place; refused into its own subtree.
    bool MoveItem(TreeItem item, TreeItem newParent, TreeItem after);

    // An item outside the tree, to be filled and then attached.
    TreeItem CreateDetached(std::u16string text, std::unique_ptr<TreeItemData> data = nullptr);
    // Adds a child to a detached item (building a detached subtree).
    TreeItem InsertDetachedChild(TreeItem parent, std::u16string text,
                                 std::unique_ptr<TreeItemData> data = nullptr);
    // Takes an item and its subtree out of the tree, keeping them (handles, data, states). The
    // selection inside it is cleared. False when the item is not in the tree.
    bool Detach(TreeItem item);
    // Puts a detached subtree back as the child at `row` of `parent` (rows past the end append).
    bool Attach(TreeItem item, TreeItem parent, std::size_t row);
    // Destroys a detached subtree; nothing happens for an item in the tree or a stale handle.
    void DiscardDetached(TreeItem item);
    // True for an item that is part of the tree (not detached, not deleted).
    bool IsInTree(TreeItem item) const;

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
    // Next item in pre-order that is still inside `top`'s subtree; kNoItem after its last.
    TreeItem NextInSubtree(TreeItem item, TreeItem top) const;
    // Items in the tree (detached ones not counted).
    std::size_t Size() const { return inTree_; }
    // Items of a subtree, the top included.
    std::size_t SubtreeSize(TreeItem top) const;

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
    // Marks a group of changes as one edit; nests. Views hear the outermost pair only.
    void BeginBatch();
    void EndBatch();

    TreeItemData* GetData(TreeItem item) const;

private:
    struct Item;
    Item* Find(TreeItem item);
    const Item* Find(TreeItem item) const;
    Item& At(TreeItem item);
    std::vector<TreeItem>& ChildrenOf(TreeItem parent);
    const std::vector<TreeItem>* ChildrenOfConst(TreeItem parent) const;
    std::size_t InsertRow(const std::vector<TreeItem>& siblings, TreeItem after) const;
    TreeItem NewItem(TreeItem parent, std::u16string text, std::unique_ptr<TreeItemData> data);
    // Puts an item into its parent's children at `row`, announced as an insertion.
    void PlaceAt(TreeItem handle, TreeItem parent, std::size_t row);
    void Release(TreeItem item);
    void SetInTree(TreeItem top, bool inTree);
    bool IsInSubtree(TreeItem item, TreeItem ancestor) const;
    bool Announce(TreeItem item) const;

    std::vector<Item> items_;  // slot = handle - base_ - 1; dead slots keep no text or data
    TreeItem base_ = 0;        // handles below this belong to trees cleared by DeleteAllItems
    std::vector<TreeItem> top_;
    std::size_t inTree_ = 0;
    TreeItem selected_ = kNoItem;
    bool redraw_ = true;
    int batch_ = 0;
    ItemTreeObserver* observer_ = nullptr;
    std::function<void(TreeItem)> selectionFollower_;
};

// Owns a detached subtree of an item tree: destroys it when dropped, unless it has been attached
// in the meantime (then it belongs to the tree again).
class DetachedSubtree {
public:
    DetachedSubtree() = default;
    DetachedSubtree(ItemTree& tree, TreeItem top) : tree_(&tree), top_(top) {}
    DetachedSubtree(DetachedSubtree&& other) noexcept { *this = std::move(other); }
    DetachedSubtree& operator=(DetachedSubtree&& other) noexcept;
    ~DetachedSubtree();

    TreeItem Top() const { return top_; }
    bool Empty() const { return top_ == kNoItem; }
    // Gives the subtree up (it has been attached): it is no longer destroyed from here.
    TreeItem Release() {
        tree_ = nullptr;
        return std::exchange(top_, kNoItem);
    }

private:
    ItemTree* tree_ = nullptr;
    TreeItem top_ = kNoItem;
};

}  // namespace dlg
