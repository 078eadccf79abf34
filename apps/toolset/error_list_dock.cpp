#include "error_list_dock.h"

#include <QTreeWidget>

namespace toolset {

ErrorListDock::ErrorListDock(QWidget* parent)
    : QDockWidget(tr("Error List"), parent), list_(new QTreeWidget(this)) {
    setObjectName(QStringLiteral("ErrorListDock"));
    list_->setHeaderLabels({tr("Resource"), tr("Line"), tr("Message")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    setWidget(list_);
}

int ErrorListDock::Count() const {
    return list_->topLevelItemCount();
}

}  // namespace toolset
