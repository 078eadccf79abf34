#pragma once

#include <QTimer>
#include <QTreeView>

#include "views/item_tree_model.h"

namespace dlg {

// The tree of the conversation editor: shows an ItemTreeModel and keeps the view and the item
// tree in step both ways. The tree's expansion, selection and scrolling move the view; the
// user's clicks, keys and arrows go back to the tree. While the tree's redrawing is off the view
// only records expansions and lays its rows out once when redrawing comes back, so that
// expanding a whole conversation costs one layout.
class ConversationTreeView : public QTreeView {
    Q_OBJECT
public:
    ConversationTreeView(ItemTreeModel& model, QWidget* parent = nullptr);

    ItemTreeModel& Model() const { return model_; }

private:
    void FollowExpansion(const QModelIndex& index, bool expanded);
    void FollowCurrent(const QModelIndex& index);
    void FollowRedraw(bool on);
    void TellExpansion(const QModelIndex& index, bool expanded);
    void TellCurrent(const QModelIndex& current);

    ItemTreeModel& model_;
    // Set while the view follows the tree, so that its own signals are not sent back.
    bool following_ = false;
    bool inBatch_ = false;
    // Fits the column to the labels once the current edit is shown.
    QTimer fit_;
};

}  // namespace dlg
