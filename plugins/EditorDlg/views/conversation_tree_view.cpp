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
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(false);

    connect(&model_, &ItemTreeModel::expandedChanged, this, &ConversationTreeView::FollowExpansion);
    connect(&model_, &ItemTreeModel::currentChanged, this, &ConversationTreeView::FollowCurrent);
    connect(&model_, &ItemTreeModel::ensureVisible, this,
            [this](const QModelIndex& index) { scrollTo(index); });
    connect(&model_, &ItemTreeModel::redrawChanged, this, &ConversationTreeView::FollowRedraw);
    connect(this, &QTreeView::expanded, this,
            [this](const QModelIndex& i) { TellExpansion(i, true); });
    connect(this, &QTreeView::collapsed, this,
            [this](const QModelIndex& i) { TellExpansion(i, false); });
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { TellCurrent(current); });
}

void ConversationTreeView::FollowExpansion(const QModelIndex& index, bool expanded) {
    if (!index.isValid()) return;
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
