#pragma once

#include <QAbstractItemModel>

#include "model/item_tree.h"

namespace dlg {

// The item tree as a Qt item model: one column, an index's internal id is the item's handle.
// Rows are found on demand (the view asks only for what it shows), and the tree's changes come
// in through its observer and go out as the model's signals. Changes of expansion, selection,
// scrolling and redrawing, which a Qt model does not carry, go out as the signals below for the
// view to follow.
class ItemTreeModel : public QAbstractItemModel, private ItemTreeObserver {
    Q_OBJECT
public:
    // The item's handle, as a number.
    static constexpr int kItemRole = Qt::UserRole;

    explicit ItemTreeModel(ItemTree& items, QObject* parent = nullptr);
    ~ItemTreeModel() override;

    ItemTree& Items() const { return items_; }
    QModelIndex IndexOf(TreeItem item) const;
    TreeItem ItemOf(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

signals:
    void expandedChanged(const QModelIndex& index, bool expanded);
    // Texts or colours changed (once per edit): the view repaints what it shows.
    void itemsChanged();
    // Around one edit, so that the view lays out once for all of it.
    void batchBegin();
    void batchEnd();
    void currentChanged(const QModelIndex& index);
    void ensureVisible(const QModelIndex& index);
    void redrawChanged(bool on);

private:
    void BeforeInsert(TreeItem parent, std::size_t row) override;
    void AfterInsert(TreeItem item) override;
    void BeforeRemove(TreeItem item) override;
    void AfterRemove(TreeItem parent, std::size_t row) override;
    void BeforeMove(TreeItem item, TreeItem newParent, std::size_t newRow) override;
    void AfterMove(TreeItem item) override;
    void BeforeReset() override;
    void AfterReset() override;
    void ItemChanged(TreeItem item) override;
    void ExpandedChanged(TreeItem item, bool expanded) override;
    void SelectionChanged(TreeItem previous, TreeItem current) override;
    void EnsureVisible(TreeItem item) override;
    void RedrawChanged(bool on) override;
    void BatchBegin() override;
    void BatchEnd() override;

    ItemTree& items_;
    // A move Qt refuses to describe is announced as a reset instead.
    bool moveAsReset_ = false;
    // Removals wait for the end of the edit (or the next other change) to be shown in one go.
    void FinishLayout();
    bool layoutPending_ = false;
    bool inBatch_ = false;
    bool changedInBatch_ = false;
};

}  // namespace dlg
