#pragma once

#include <QMimeData>
#include <QPointer>

#include "model/item_tree.h"

namespace dlg {

class ConversationTreeView;

// What a drag from a conversation tree carries: the tree view it left and the dragged item.
// Items are handles into this process's trees, so the data means nothing elsewhere: its format
// names the process, and a drop accepts only the object this process made.
class ItemDragData : public QMimeData {
    Q_OBJECT
public:
    static constexpr const char* kMimeType = "application/x-mistreach-conversation-item";

    ItemDragData(ConversationTreeView* source, TreeItem item);

    // The data of a drag from a conversation tree of this process whose view still exists, or
    // null.
    static const ItemDragData* From(const QMimeData* data);

    ConversationTreeView* Source() const { return source_; }
    TreeItem Item() const { return item_; }

private:
    QPointer<ConversationTreeView> source_;
    TreeItem item_;
};

}  // namespace dlg
