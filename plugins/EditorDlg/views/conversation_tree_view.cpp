#include "views/conversation_tree_view.h"

#include <QDrag>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>

#include "model/editor_commands.h"
#include "views/item_drag_data.h"

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
    hoverTimer_.setObjectName(QStringLiteral("DragHoverTimer"));
    connect(&hoverTimer_, &QTimer::timeout, this, &ConversationTreeView::HoverTimeout);
}

void ConversationTreeView::SetEditing(TreeEditing* editing) {
    editing_ = editing;
    setDragEnabled(editing != nullptr);
    setAcceptDrops(editing != nullptr);
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

namespace {

using namespace command_id;

struct KeyCommand {
    QKeyCombination key;
    std::uint32_t id;
};
const KeyCommand kKeyCommands[] = {
    {QKeyCombination(Qt::Key_Insert), kInsertLine},
    {QKeyCombination(Qt::Key_Delete), kDelete},
    {Qt::CTRL | Qt::Key_X, kCut},
    {Qt::CTRL | Qt::Key_C, kCopy},
    {Qt::CTRL | Qt::Key_V, kPaste},
    {Qt::CTRL | Qt::SHIFT | Qt::Key_V, kPasteAsLink},
};

}  // namespace

std::uint32_t ConversationTreeView::CommandOfKey(const QKeyEvent& event) {
    // The keypad's modifier says nothing about the command.
    QKeyCombination key(event.modifiers() & ~Qt::KeypadModifier, Qt::Key(event.key()));
    for (const KeyCommand& command : kKeyCommands)
        if (command.key == key) return command.id;
    return 0;
}

bool ConversationTreeView::event(QEvent* event) {
    // An editing key that can run here is the tree's, not a shortcut of the window around it.
    if (event->type() == QEvent::ShortcutOverride && editing_) {
        std::uint32_t id = CommandOfKey(*static_cast<QKeyEvent*>(event));
        if (id && (editing_->CommandState(id) & kTsCommandEnabled)) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

void ConversationTreeView::keyPressEvent(QKeyEvent* event) {
    std::uint32_t id = editing_ ? CommandOfKey(*event) : 0;
    if (!id) return QTreeView::keyPressEvent(event);
    // A key whose command cannot run here goes to the widgets around the tree.
    event->setAccepted(editing_->RunCommand(id));
}

void ConversationTreeView::contextMenuEvent(QContextMenuEvent* event) {
    if (!editing_) return QTreeView::contextMenuEvent(event);
    // The menu is about the line clicked, which becomes the selection, as a left click makes it.
    if (event->reason() != QContextMenuEvent::Keyboard) {
        QModelIndex index = indexAt(event->pos());
        if (index.isValid()) setCurrentIndex(index);
    }
    editing_->ShowContextMenu();
    event->accept();
}

void ConversationTreeView::startDrag(Qt::DropActions) {
    if (!editing_) return;
    QModelIndex index = currentIndex();
    TreeItem item = model_.ItemOf(index);
    const ConversationTree& tree = editing_->Tree();
    // The root stands for the whole conversation; it is copied and pasted, never dragged.
    if (!tree.Items().IsInTree(item) || item == tree.RootItem()) return;
    auto* drag = new QDrag(this);
    drag->setMimeData(new ItemDragData(this, item));
    drag->setPixmap(viewport()->grab(visualRect(index)));
    drag->exec(Qt::MoveAction | Qt::CopyAction | Qt::LinkAction, Qt::MoveAction);
}

Placement ConversationTreeView::DropAt(const QDropEvent& event, TreeItem& drop,
                                       Qt::DropAction& action) const {
    drop = model_.ItemOf(indexAt(event.position().toPoint()));
    const ItemDragData* data = ItemDragData::From(event.mimeData());
    TreeEditing* from = data ? data->Source()->Editing() : nullptr;
    if (!editing_ || !from || drop == kNoItem) return Placement::Refuse;
    bool shift = event.modifiers() & Qt::ShiftModifier;
    action = shift                                ? Qt::LinkAction
             : &from->Tree() == &editing_->Tree() ? Qt::MoveAction
                                                  : Qt::CopyAction;
    return editing_->DropPlacement(from->Tree(), data->Item(), drop, shift);
}

void ConversationTreeView::dragEnterEvent(QDragEnterEvent* event) {
    // Every drag of an item is followed while it is over the tree; whether a place takes it is
    // answered by the moves (one follows the enter at once).
    if (!editing_ || !ItemDragData::From(event->mimeData())) return event->ignore();
    event->accept();
}

void ConversationTreeView::dragMoveEvent(QDragMoveEvent* event) {
    FollowHover(event->position().toPoint());
    TreeItem drop;
    Qt::DropAction action = Qt::IgnoreAction;
    if (DropAt(*event, drop, action) == Placement::Refuse) return event->ignore();
    event->setDropAction(action);
    event->accept();
}

void ConversationTreeView::dragLeaveEvent(QDragLeaveEvent* event) {
    EndHover();
    event->accept();
}

void ConversationTreeView::dropEvent(QDropEvent* event) {
    EndHover();
    TreeItem drop;
    Qt::DropAction action = Qt::IgnoreAction;
    if (DropAt(*event, drop, action) == Placement::Refuse) return event->ignore();
    const ItemDragData* data = ItemDragData::From(event->mimeData());
    bool shift = event->modifiers() & Qt::ShiftModifier;
    if (!editing_->Drop(data->Source()->Editing()->Tree(), data->Item(), drop, shift))
        return event->ignore();
    event->setDropAction(action);
    event->accept();
}

void ConversationTreeView::FollowHover(const QPoint& position) {
    hoverPosition_ = position;
    TreeItem over = model_.ItemOf(indexAt(position));
    if (over != dropItem_) {
        dropItem_ = over;
        viewport()->update();
    }
    if (!hover_.Update(model_.Items(), over, DragBandAt(position.y(), viewport()->height())))
        return;
    if (hover_.Interval() > 0)
        hoverTimer_.start(hover_.Interval());
    else
        hoverTimer_.stop();
}

void ConversationTreeView::HoverTimeout() {
    switch (hover_.Action()) {
        case DragHoverAction::ScrollUp:
            verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub);
            break;
        case DragHoverAction::ScrollDown:
            verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd);
            break;
        case DragHoverAction::Expand:
            hoverTimer_.stop();
            expand(model_.IndexOf(hover_.Item()));
            break;
        case DragHoverAction::None:
            hoverTimer_.stop();
            break;
    }
    // The rows moved under a cursor that did not: what it rests on now decides what comes next.
    FollowHover(hoverPosition_);
}

void ConversationTreeView::EndHover() {
    hoverTimer_.stop();
    hover_.Reset();
    if (dropItem_ != kNoItem) viewport()->update();
    dropItem_ = kNoItem;
}

void ConversationTreeView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                                   const QModelIndex& index) const {
    if (dropItem_ == kNoItem || model_.ItemOf(index) != dropItem_)
        return QTreeView::drawRow(painter, option, index);
    // The drop place is drawn as the selection is.
    QStyleOptionViewItem highlighted(option);
    highlighted.state |= QStyle::State_Selected;
    QTreeView::drawRow(painter, highlighted, index);
}

}  // namespace dlg
