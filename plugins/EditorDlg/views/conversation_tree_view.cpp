#include "views/conversation_tree_view.h"

#include <QHeaderView>

namespace dlg {

ConversationTreeView::ConversationTreeView(ItemTreeModel& model, QWidget* parent)
    : QTreeView(parent), model_(model) {
    setObjectName(QStringLiteral("ConversationTree"));
    setModel(&model_);
    // Every row has the height of the first, so a tall tree scrolls without measuring rows.
    setUniformRowHeights(true);
    setHeaderHidden(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setExpandsOnDoubleClick(true);
    setAnimated(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    // The column is fitted to its labels once after each edit, not on every change: fitting on
    // every change measures many rows again each time.
    header()->setSectionResizeMode(QHeaderView::Interactive);
    header()->setStretchLastSection(false);
    // Measured on the rows in sight only: measuring a thousand rows costs a frame.
    header()->setResizeContentsPrecision(0);
    fit_.setSingleShot(true);
    fit_.setInterval(0);
    connect(&fit_, &QTimer::timeout, this, [this] { resizeColumnToContents(0); });

    connect(&model_, &ItemTreeModel::expandedChanged, this, &ConversationTreeView::FollowExpansion);
    connect(&model_, &ItemTreeModel::currentChanged, this, &ConversationTreeView::FollowCurrent);
    connect(&model_, &ItemTreeModel::ensureVisible, this,
            [this](const QModelIndex& index) { scrollTo(index); });
    connect(&model_, &ItemTreeModel::redrawChanged, this, &ConversationTreeView::FollowRedraw);
    connect(&model_, &ItemTreeModel::itemsChanged, this, [this] {
        viewport()->update();
        fit_.start();
    });
    connect(&model_, &ItemTreeModel::batchBegin, this, [this] { inBatch_ = true; });
    connect(&model_, &ItemTreeModel::batchEnd, this, [this] { inBatch_ = false; });
    connect(&model_, &QAbstractItemModel::rowsInserted, this, [this] { fit_.start(); });
    connect(&model_, &QAbstractItemModel::rowsRemoved, this, [this] { fit_.start(); });
    connect(&model_, &QAbstractItemModel::rowsMoved, this, [this] { fit_.start(); });
    connect(&model_, &QAbstractItemModel::modelReset, this, [this] { fit_.start(); });
    connect(this, &QTreeView::expanded, this,
            [this](const QModelIndex& i) { TellExpansion(i, true); });
    connect(this, &QTreeView::collapsed, this,
            [this](const QModelIndex& i) { TellExpansion(i, false); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { TellCurrent(current); });
}

void ConversationTreeView::FollowExpansion(const QModelIndex& index, bool expanded) {
    if (!index.isValid()) return;
    // Within an edit (a subtree coming back with its open branches) the expansions are only
    // recorded, and the rows laid out once afterwards; one by one, each would search all rows.
    if (inBatch_) scheduleDelayedItemsLayout();
    following_ = true;
    setExpanded(index, expanded);
    following_ = false;
}

void ConversationTreeView::FollowCurrent(const QModelIndex& index) {
    following_ = true;
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clear();
    following_ = false;
}

void ConversationTreeView::FollowRedraw(bool on) {
    if (!on) {
        // Expansions are only recorded until the next layout, which is the one below.
        scheduleDelayedItemsLayout();
        setUpdatesEnabled(false);
        return;
    }
    executeDelayedItemsLayout();
    setUpdatesEnabled(true);
}

void ConversationTreeView::TellExpansion(const QModelIndex& index, bool expanded) {
    if (!following_) model_.Items().Expand(model_.ItemOf(index), expanded);
}

void ConversationTreeView::TellCurrent(const QModelIndex& current) {
    if (!following_) model_.Items().Select(model_.ItemOf(current));
}

}  // namespace dlg
