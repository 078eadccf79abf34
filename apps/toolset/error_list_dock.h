#pragma once

#include <QDockWidget>

class QTreeWidget;

namespace toolset {

// The error list: the problems editors find in their resources, one row each (resource, line,
// message). Editors publish them once they validate; until then it stays empty.
class ErrorListDock : public QDockWidget {
    Q_OBJECT
public:
    explicit ErrorListDock(QWidget* parent = nullptr);

    int Count() const;

private:
    QTreeWidget* list_;
};

}  // namespace toolset
