#pragma once

#include <QTimer>
#include <QTreeView>

#include "model/drag_hover.h"
#include "model/tree_editing.h"
#include "views/item_tree_model.h"

namespace dlg {

// The tree of the conversation editor: shows an ItemTreeModel and keeps the view and the item
// tree in step both ways. The tree's expansion, selection and scrolling move the view; the
// user's clicks, keys and arrows go back to the tree. While the tree's redrawing is off the view
// only records expansions and lays its rows out once when redrawing comes back, so that
// expanding a whole conversation costs one layout.
//
// With its window's editing given, the tree also edits: items are dragged to other lines (a
// move, links with Shift, a copy into another editor), the context menu offers the editing
// commands, and the editing keys run them. What may happen where is the window's to decide.
class ConversationTreeView : public QTreeView {
    Q_OBJECT
public:
    ConversationTreeView(ItemTreeModel& model, QWidget* parent = nullptr);

    ItemTreeModel& Model() const { return model_; }
    // Not owned; null leaves the tree for viewing only.
    void SetEditing(TreeEditing* editing);
    TreeEditing* Editing() const { return editing_; }
    // The item drawn as the drop place while a drag is over the tree; kNoItem otherwise.
    TreeItem DropItem() const { return dropItem_; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const override;

private:
    void FollowExpansion(const QModelIndex& index, bool expanded);
    void FollowCurrent(const QModelIndex& index);
    void FollowRedraw(bool on);
    void TellExpansion(const QModelIndex& index, bool expanded);
    void TellCurrent(const QModelIndex& current);
    // The command an editing key runs, 0 for other keys.
    static std::uint32_t CommandOfKey(const QKeyEvent& event);
    // The placement of a drop at `position`, with the action it would be; Refuse for data that
    // is not an item of this process or a place that takes nothing.
    Placement DropAt(const QDropEvent& event, TreeItem& drop, Qt::DropAction& action) const;
    // The cursor of a drag rests at `position`: drop highlight and the hover's timer.
    void FollowHover(const QPoint& position);
    void HoverTimeout();
    void EndHover();

    ItemTreeModel& model_;
    // Set while the view follows the tree, so that its own signals are not sent back.
    bool following_ = false;
    bool inBatch_ = false;
    // Fits the column to the labels once the current edit is shown.
    QTimer fit_;
    TreeEditing* editing_ = nullptr;
    TreeItem dropItem_ = kNoItem;
    DragHover hover_;
    QPoint hoverPosition_;
    QTimer hoverTimer_;
};

}  // namespace dlg
