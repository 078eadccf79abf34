// The item tree the view mirrors: structure, handles, owned data, and the announcements a view
// needs around every change.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/item_tree.h"

namespace {

using namespace dlg;
using Log = std::vector<std::string>;

// Records what a view would hear, to check that every change is announced around itself.
class Recorder : public ItemTreeObserver {
public:
    explicit Recorder(ItemTree& tree) : tree_(tree) { tree.SetObserver(this); }
    void BeforeInsert(TreeItem parent, std::size_t row) override {
        log.push_back("+" + Name(parent) + "@" + std::to_string(row));
    }
    void BeforeRemove(TreeItem item) override { log.push_back("-" + Name(item)); }
    void BeforeMove(TreeItem item, TreeItem parent, std::size_t row) override {
        log.push_back(">" + Name(item) + "->" + Name(parent) + "@" + std::to_string(row));
    }
    void ItemChanged(TreeItem item) override { log.push_back("~" + Name(item)); }
    void ExpandedChanged(TreeItem item, bool on) override {
        log.push_back((on ? "open " : "close ") + Name(item));
    }
    void SelectionChanged(TreeItem, TreeItem now) override { log.push_back("select " + Name(now)); }
    void RedrawChanged(bool on) override { log.push_back(on ? "redraw on" : "redraw off"); }
    void BeforeReset() override { log.push_back("reset"); }
    Log log;

private:
    std::string Name(TreeItem item) {
        std::string s;
        for (char16_t c : tree_.GetText(item)) s += static_cast<char>(c);
        return item == kNoItem ? "top" : s;
    }
    ItemTree& tree_;
};

struct Payload : TreeItemData {
    explicit Payload(int& living) : living_(living) { ++living_; }
    ~Payload() override { --living_; }
    int& living_;
};

std::u16string PreOrder(const ItemTree& tree) {
    std::u16string out;
    for (TreeItem i = tree.GetRootItem(); i != kNoItem; i = tree.NextInPreOrder(i))
        out += tree.GetText(i) + u" ";
    return out;
}

TEST(ItemTree, InsertsNavigatesMovesAndDeletesLikeATreeControl) {
    ItemTree tree;
    Recorder rec(tree);
    int living = 0;
    TreeItem root = tree.InsertItem(kNoItem, kInsertLast, u"R");
    TreeItem a = tree.InsertItem(root, kInsertLast, u"a", std::make_unique<Payload>(living));
    TreeItem c = tree.InsertItem(root, kInsertLast, u"c");
    TreeItem b = tree.InsertItem(root, a, u"b", std::make_unique<Payload>(living));  // after a
    TreeItem first = tree.InsertItem(root, kInsertFirst, u"0");
    TreeItem a1 = tree.InsertItem(a, kInsertLast, u"a1", std::make_unique<Payload>(living));
    EXPECT_EQ(PreOrder(tree), u"R 0 a a1 b c ");
    EXPECT_EQ(tree.GetParent(a1), a);
    EXPECT_EQ(tree.GetChild(root), first);
    EXPECT_EQ(tree.GetLastChild(root), c);
    EXPECT_EQ(tree.GetNextSibling(a), b);
    EXPECT_EQ(tree.GetPrevSibling(a), first);
    EXPECT_EQ(tree.GetPrevSibling(first), kNoItem);
    EXPECT_EQ(tree.RowOf(c), 3u);
    EXPECT_EQ(tree.ChildAt(root, 2), b);
    EXPECT_EQ(rec.log, (Log{"+top@0", "+R@0", "+R@1", "+R@1", "+R@0", "+a@0"}));
    EXPECT_EQ(tree.InsertItem(root, a1, u"x"), kNoItem) << "after must be a child of the parent";
    EXPECT_EQ(tree.InsertItem(999, kInsertLast, u"x"), kNoItem);

    // Moves carry the subtree, never into itself; "after" is counted without the moved item.
    rec.log.clear();
    ASSERT_TRUE(tree.MoveItem(a, b, kInsertLast));
    EXPECT_EQ(PreOrder(tree), u"R 0 b a a1 c ");
    ASSERT_TRUE(tree.MoveItem(c, root, kInsertFirst));
    ASSERT_TRUE(tree.MoveItem(c, root, b));
    EXPECT_EQ(PreOrder(tree), u"R 0 b a a1 c ");
    EXPECT_FALSE(tree.MoveItem(b, a1, kInsertLast));
    EXPECT_FALSE(tree.MoveItem(b, b, kInsertLast));
    EXPECT_EQ(PreOrder(tree), u"R 0 b a a1 c ");
    EXPECT_EQ(rec.log, (Log{">a->b@0", ">c->R@0", ">c->R@2"}));

    // Deleting a subtree frees its data and the selection inside it; stale handles are refused.
    tree.Select(a1);
    rec.log.clear();
    ASSERT_TRUE(tree.DeleteItem(a));
    EXPECT_EQ(living, 1);
    EXPECT_FALSE(tree.IsValid(a1));
    EXPECT_EQ(tree.GetSelection(), kNoItem);
    EXPECT_EQ(rec.log, (Log{"-a", "select top"}));
    EXPECT_FALSE(tree.DeleteItem(a));
    // A handle is never given to another item, not even after the tree was emptied.
    TreeItem d = tree.InsertItem(root, kInsertFirst, u"d");
    EXPECT_EQ(PreOrder(tree), u"R d 0 b c ");
    EXPECT_EQ(tree.GetNextSibling(d), first);
    EXPECT_NE(d, a);
    EXPECT_NE(d, a1);
    tree.DeleteAllItems();
    EXPECT_EQ(living, 0);
    EXPECT_EQ(tree.Size(), 0u);
    EXPECT_EQ(tree.GetRootItem(), kNoItem);
    TreeItem again = tree.InsertItem(kNoItem, kInsertLast, u"again");
    EXPECT_FALSE(tree.IsValid(root) || tree.IsValid(d));
    EXPECT_GT(again, d);
}

TEST(ItemTree, ADetachedSubtreeKeepsItsItemsUntilAttachedOrDropped) {
    ItemTree tree;
    int living = 0;
    TreeItem root = tree.InsertItem(kNoItem, kInsertLast, u"R");
    TreeItem a = tree.InsertItem(root, kInsertLast, u"a", std::make_unique<Payload>(living));
    TreeItem a1 = tree.InsertItem(a, kInsertLast, u"a1", std::make_unique<Payload>(living));
    tree.InsertItem(root, kInsertLast, u"b");
    tree.Expand(a, true);
    tree.Select(a1);
    Recorder rec(tree);

    // Out of the tree: announced as a removal, the selection inside it cleared, nothing about it
    // announced afterwards, its items and states kept.
    ASSERT_TRUE(tree.Detach(a));
    EXPECT_EQ(PreOrder(tree), u"R b ");
    EXPECT_FALSE(tree.IsInTree(a1));
    EXPECT_TRUE(tree.IsValid(a1));
    EXPECT_EQ(tree.GetSelection(), kNoItem);
    tree.SetText(a1, u"A1");
    tree.Select(a1);  // refused: not in the tree
    EXPECT_EQ(rec.log, (Log{"-a", "select top"}));
    EXPECT_FALSE(tree.Detach(a)) << "already out";

    // Back at row 1 (rows past the end append), the same items with their states.
    rec.log.clear();
    ASSERT_TRUE(tree.Attach(a, root, 1));
    EXPECT_EQ(PreOrder(tree), u"R b a A1 ");
    EXPECT_TRUE(tree.IsExpanded(a));
    EXPECT_EQ(rec.log, (Log{"+R@1"}));
    EXPECT_FALSE(tree.Attach(a, root, 0)) << "already in";

    // A subtree held and dropped is freed; dropped after it was attached again, it stays.
    {
        ASSERT_TRUE(tree.Detach(a));
        DetachedSubtree held(tree, a);
    }
    EXPECT_EQ(living, 0);
    EXPECT_FALSE(tree.IsValid(a1));
    TreeItem c = tree.CreateDetached(u"c", std::make_unique<Payload>(living));
    tree.InsertDetachedChild(c, u"c1");
    {
        DetachedSubtree held(tree, c);
        ASSERT_TRUE(tree.Attach(c, root, 0));
        held.Release();
    }
    EXPECT_EQ(PreOrder(tree), u"R c c1 b ");
    EXPECT_EQ(living, 1);
}

// A chain deeper than any stack: inserting, walking, detaching and freeing are loops.
TEST(ItemTree, AChainOfAMillionItemsIsWalkedAndFreedWithoutRecursion) {
    ItemTree tree;
    TreeItem item = tree.InsertItem(kNoItem, kInsertLast, u"R");
    TreeItem head = kNoItem;
    for (int i = 0; i < 1000000; ++i) {
        item = tree.InsertItem(item, kInsertLast, u"");
        if (!head) head = item;
    }
    EXPECT_EQ(tree.SubtreeSize(head), 1000000u);
    ASSERT_TRUE(tree.Detach(head));
    tree.DiscardDetached(head);
    EXPECT_EQ(tree.Size(), 1u);
}

TEST(ItemTree, StatesChangeOnlyWhenTheyDiffer) {
    ItemTree tree;
    TreeItem root = tree.InsertItem(kNoItem, kInsertLast, u"R");
    TreeItem a = tree.InsertItem(root, kInsertLast, u"a");
    TreeItem a1 = tree.InsertItem(a, kInsertLast, u"a1");
    Recorder rec(tree);
    tree.SetText(a, u"a");  // same text: no announcement
    tree.SetText(a, u"A");
    tree.SetColours(a, 0xFF, 0xFFFFFF);
    tree.SetColours(a, 0xFF, 0xFFFFFF);
    tree.Select(a1);
    tree.Select(a1);
    tree.EnsureVisible(a1);  // opens the ancestors
    EXPECT_TRUE(tree.IsExpanded(root));
    EXPECT_TRUE(tree.IsExpanded(a));
    EXPECT_EQ(tree.GetTextColour(a), 0xFFu);
    EXPECT_EQ(rec.log, (Log{"~A", "~A", "select a1", "open A", "open R"}));
}

}  // namespace
