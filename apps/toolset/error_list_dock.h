#pragma once

#include <QDockWidget>
#include <optional>
#include <string_view>
#include <vector>

#include "error_list.h"

class QComboBox;
class QTreeView;

namespace toolset {

class ErrorRowsModel;

// The error list: the faults editors find in their resources, one row each (resource, line,
// message), sorted by resource and line, all of them or one resource's (the filter above the
// list). Activating a row (double-click or Enter) asks for its line to be shown. What the list
// holds is decided by ErrorList; this only shows it.
class ErrorListDock : public QDockWidget {
    Q_OBJECT
public:
    explicit ErrorListDock(QWidget* parent = nullptr);

    // `resource`'s faults, replacing what it had; an empty list removes it.
    void Replace(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors);
    void Clear();
    const ErrorList& List() const { return list_; }

    // Shows only `resource`'s rows; an empty name shows every row.
    void SetFilter(const QString& resource);
    const QString& Filter() const { return filter_; }
    // The rows shown, in order.
    int Count() const;
    const ErrorListRow& ShownRow(int row) const;
    QTreeView& View() const { return *view_; }

signals:
    // A row was activated: show `line` of `resource` (-1: the resource as a whole).
    void lineRequested(const QString& resource, int line);

private:
    std::optional<ErrorListRow> CurrentRow() const;
    // Shows the rows the filter lets through, with `current` current again if it is among them.
    void Show(const std::optional<ErrorListRow>& current);
    void FillFilterChoices();

    ErrorList list_;
    QString filter_;
    QComboBox* choices_;
    QTreeView* view_;
    ErrorRowsModel* rows_;
};

}  // namespace toolset
