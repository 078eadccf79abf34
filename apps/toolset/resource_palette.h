#pragma once

#include <QDockWidget>
#include <vector>

#include "ts/resourcestore.h"

class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace toolset {

// The resource palette: the module's resources grouped by type ("Conversations (dlg)"), with a
// filter box that keeps the resources whose name contains its text. Activating a resource asks
// for it to be opened.
class ResourcePalette : public QDockWidget {
    Q_OBJECT
public:
    explicit ResourcePalette(QWidget* parent = nullptr);

    void SetResources(std::vector<ts::ResourceInfo> resources);
    void SetFilter(const QString& text);
    // Names ("NAME.TYPE") of the resources the filter lets through, in palette order.
    QStringList VisibleResources() const;

signals:
    void openRequested(const QString& name, const QString& type);

private:
    void Fill();
    void Activate(QTreeWidgetItem* item);

    QLineEdit* filter_;
    QTreeWidget* tree_;
    std::vector<ts::ResourceInfo> resources_;
};

}  // namespace toolset
