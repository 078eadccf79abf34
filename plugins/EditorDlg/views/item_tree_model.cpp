#include "views/item_tree_model.h"

#include <QColor>
#include <utility>

#include "model/dlg_editor_settings.h"

namespace dlg {

namespace {

// Screen colours are red in bits 0-7, green 8-15, blue 16-23; "no colour" leaves the view's own.
QVariant ColourOf(std::uint32_t colour) {
    if (colour == kNoColour) return {};
    return QColor(int(colour & 0xFF), int((colour >> 8) & 0xFF), int((colour >> 16) & 0xFF));
}

}  // namespace

ItemTreeModel::ItemTreeModel(ItemTree& items, QObject* parent)
    : QAbstractItemModel(parent), items_(items) {
    items_.SetObserver(this);
}

ItemTreeModel::~ItemTreeModel() {
    items_.SetObserver(nullptr);
}

QModelIndex ItemTreeModel::IndexOf(TreeItem item) const {
    if (!items_.IsInTree(item)) return {};
    return createIndex(int(items_.RowOf(item)), 0, quintptr(item));
}

TreeItem ItemTreeModel::ItemOf(const QModelIndex& index) const {
    return index.isValid() ? TreeItem(index.internalId()) : kNoItem;
}

QModelIndex ItemTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0) return {};
    TreeItem item = items_.ChildAt(ItemOf(parent), std::size_t(row));
    return item == kNoItem ? QModelIndex() : createIndex(row, 0, quintptr(item));
}

QModelIndex ItemTreeModel::parent(const QModelIndex& index) const {
    return IndexOf(items_.GetParent(ItemOf(index)));
}

int ItemTreeModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    return int(items_.ChildCount(ItemOf(parent)));
}

int ItemTreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool ItemTreeModel::hasChildren(const QModelIndex& parent) const {
    return items_.ChildCount(ItemOf(parent)) > 0;
}

QVariant ItemTreeModel::data(const QModelIndex& index, int role) const {
    TreeItem item = ItemOf(index);
    if (!items_.IsValid(item)) return {};
    switch (role) {
        case Qt::DisplayRole:
            return QString::fromStdU16String(items_.GetText(item));
        case Qt::ForegroundRole:
            return ColourOf(items_.GetTextColour(item));
        case Qt::BackgroundRole:
            return ColourOf(items_.GetBackColour(item));
        case kItemRole:
            return QVariant::fromValue(item);
        default:
            return {};
    }
}

Qt::ItemFlags ItemTreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    TreeItem item = ItemOf(index);
    // A top-level item is the conversation itself, which is never dragged.
    if (items_.GetParent(item) != kNoItem) flags |= Qt::ItemIsDragEnabled;
    if (!items_.HasChildren(item)) flags |= Qt::ItemNeverHasChildren;
    return flags;
}

void ItemTreeModel::BeforeInsert(TreeItem parent, std::size_t row) {
    FinishLayout();
    beginInsertRows(IndexOf(parent), int(row), int(row));
}

void ItemTreeModel::AfterInsert(TreeItem item) {
    endInsertRows();
    // A subtree that comes back (undo, paste) brings its expanded items along: the view only
    // learns of them from here.
    for (TreeItem i = item; i != kNoItem; i = items_.NextInSubtree(i, item))
        if (items_.IsExpanded(i) && items_.HasChildren(i)) emit expandedChanged(IndexOf(i), true);
    // The parent may have had no children before: its decoration changes.
    if (TreeItem parent = items_.GetParent(item); items_.ChildCount(parent) == 1)
        ItemChanged(parent);
}

// A removal is announced as a change of layout, with the persistent indexes (the view's expanded
// rows, its selection) mapped to where their items now stand: Qt's own removal checks every
// persistent index against the removed rows by walking up to the root from each, which on a
// deep, fully expanded conversation costs far more than a new layout.
// Within an edit, all its removals make one change of layout.
void ItemTreeModel::BeforeRemove(TreeItem) {
    if (layoutPending_) return;
    emit layoutAboutToBeChanged();
    layoutPending_ = true;
}

void ItemTreeModel::AfterRemove(TreeItem, std::size_t) {
    if (!inBatch_) FinishLayout();
}

void ItemTreeModel::FinishLayout() {
    if (!layoutPending_) return;
    layoutPending_ = false;
    const QModelIndexList from = persistentIndexList();
    QModelIndexList to;
    to.reserve(from.size());
    for (const QModelIndex& index : from) to.push_back(IndexOf(ItemOf(index)));
    changePersistentIndexList(from, to);
    emit layoutChanged();
}

void ItemTreeModel::BeforeMove(TreeItem item, TreeItem newParent, std::size_t newRow) {
    FinishLayout();
    TreeItem oldParent = items_.GetParent(item);
    int oldRow = int(items_.RowOf(item));
    // The tree counts the new row without the item; Qt counts it with the item still in place.
    int destination = int(newRow);
    if (newParent == oldParent && destination >= oldRow) ++destination;
    moveAsReset_ =
        !beginMoveRows(IndexOf(oldParent), oldRow, oldRow, IndexOf(newParent), destination);
    if (moveAsReset_) beginResetModel();
}

void ItemTreeModel::AfterMove(TreeItem) {
    if (moveAsReset_)
        endResetModel();
    else
        endMoveRows();
    moveAsReset_ = false;
}

void ItemTreeModel::BeforeReset() {
    FinishLayout();
    beginResetModel();
}
void ItemTreeModel::AfterReset() {
    endResetModel();
}

// Texts and colours never change a row's size (uniform rows, one column), so the view only has to
// repaint. A dataChanged per item would make the view look each row up among all its rows.
void ItemTreeModel::ItemChanged(TreeItem) {
    if (inBatch_)
        changedInBatch_ = true;
    else
        emit itemsChanged();
}

void ItemTreeModel::BatchBegin() {
    inBatch_ = true;
    emit batchBegin();
}

void ItemTreeModel::BatchEnd() {
    inBatch_ = false;
    FinishLayout();
    if (std::exchange(changedInBatch_, false)) emit itemsChanged();
    emit batchEnd();
}

void ItemTreeModel::ExpandedChanged(TreeItem item, bool expanded) {
    FinishLayout();
    emit expandedChanged(IndexOf(item), expanded);
}

void ItemTreeModel::SelectionChanged(TreeItem, TreeItem current) {
    FinishLayout();
    emit currentChanged(IndexOf(current));
}

void ItemTreeModel::EnsureVisible(TreeItem item) {
    FinishLayout();
    emit ensureVisible(IndexOf(item));
}

void ItemTreeModel::RedrawChanged(bool on) {
    emit redrawChanged(on);
}

}  // namespace dlg
