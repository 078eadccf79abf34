#include "views/item_drag_data.h"

#include <QCoreApplication>

#include "views/conversation_tree_view.h"

namespace dlg {

namespace {

QByteArray ProcessTag() {
    return QByteArray::number(QCoreApplication::applicationPid());
}

}  // namespace

ItemDragData::ItemDragData(ConversationTreeView* source, TreeItem item)
    : source_(source), item_(item) {
    setData(QString::fromLatin1(kMimeType), ProcessTag() + ' ' + QByteArray::number(item));
}

const ItemDragData* ItemDragData::From(const QMimeData* data) {
    // Another process's drag arrives as the platform's data, never as this class.
    const auto* own = qobject_cast<const ItemDragData*>(data);
    if (!own || !own->source_) return nullptr;
    QByteArray tag = own->data(QString::fromLatin1(kMimeType));
    return tag.startsWith(ProcessTag() + ' ') ? own : nullptr;
}

}  // namespace dlg
