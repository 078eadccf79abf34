#include "error_list_dock.h"

#include <QAbstractTableModel>
#include <QComboBox>
#include <QHeaderView>
#include <QTreeView>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>

#include "qt_text.h"
#include "ts/text.h"

namespace toolset {

// The rows the filter lets through, as a table for the view.
class ErrorRowsModel : public QAbstractTableModel {
public:
    ErrorRowsModel(const ErrorList& list, QObject* parent)
        : QAbstractTableModel(parent), list_(list) {}

    void Show(std::vector<std::size_t> shown) {
        beginResetModel();
        shown_ = std::move(shown);
        endResetModel();
    }
    const ErrorListRow& At(int row) const { return list_.Rows()[shown_[std::size_t(row)]]; }

    int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : int(shown_.size());
    }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : 3; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole)) return {};
        const ErrorListRow& row = At(index.row());
        switch (index.column()) {
            case 0:
                return ToQt(row.resource);
            case 1:
                return row.line >= 0 ? QVariant(row.line) : QVariant(QString());
            default:
                return ToQt(row.message);
        }
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
        static const char* const kTitles[] = {"Resource", "Line", "Message"};
        return section >= 0 && section < 3 ? QVariant(ErrorListDock::tr(kTitles[section]))
                                           : QVariant();
    }

private:
    const ErrorList& list_;
    std::vector<std::size_t> shown_;
};

ErrorListDock::ErrorListDock(QWidget* parent)
    : QDockWidget(tr("Error List"), parent),
      choices_(new QComboBox),
      view_(new QTreeView),
      rows_(new ErrorRowsModel(list_, this)) {
    setObjectName(QStringLiteral("ErrorListDock"));
    choices_->setObjectName(QStringLiteral("ErrorListFilter"));
    choices_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    view_->setObjectName(QStringLiteral("ErrorListView"));
    view_->setModel(rows_);
    view_->setRootIsDecorated(false);
    view_->setUniformRowHeights(true);
    view_->setAllColumnsShowFocus(true);
    view_->setSelectionBehavior(QAbstractItemView::SelectRows);
    view_->header()->resizeSection(0, 200);
    view_->header()->resizeSection(1, 60);

    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(choices_, 0, Qt::AlignLeft);
    layout->addWidget(view_);
    setWidget(body);
    FillFilterChoices();

    connect(choices_, &QComboBox::activated, this,
            [this](int index) { SetFilter(choices_->itemData(index).toString()); });
    // Double-click and Enter both activate.
    connect(view_, &QAbstractItemView::activated, this, [this](const QModelIndex& index) {
        if (!index.isValid()) return;
        const ErrorListRow& row = rows_->At(index.row());
        emit lineRequested(ToQt(row.resource), row.line);
    });
}

void ErrorListDock::Replace(std::u16string_view resource,
                            const std::vector<ts::ErrorEntry>& errors) {
    // Read before the list changes: until the view is reset its rows point into the old list.
    std::optional<ErrorListRow> current = CurrentRow();
    if (list_.Replace(resource, errors)) Show(current);
}

void ErrorListDock::Clear() {
    std::optional<ErrorListRow> current = CurrentRow();
    list_.Clear();
    Show(current);
}

void ErrorListDock::SetFilter(const QString& resource) {
    if (resource == filter_) return;
    filter_ = resource;
    Show(CurrentRow());
}

std::optional<ErrorListRow> ErrorListDock::CurrentRow() const {
    QModelIndex current = view_->currentIndex();
    if (!current.isValid()) return std::nullopt;
    return rows_->At(current.row());
}

int ErrorListDock::Count() const {
    return rows_->rowCount({});
}

const ErrorListRow& ErrorListDock::ShownRow(int row) const {
    return rows_->At(row);
}

void ErrorListDock::Show(const std::optional<ErrorListRow>& current) {
    // The list is remade after every edit; the row the user stands on stays current when it is
    // still there, so that going through the faults one by one survives fixing them.
    rows_->Show(list_.Filtered(filter_.toStdU16String()));
    if (current)
        for (int row = 0; row < Count(); ++row)
            if (rows_->At(row) == *current) {
                view_->setCurrentIndex(rows_->index(row, 0));
                break;
            }
    FillFilterChoices();
    std::size_t total = list_.Rows().size();
    setWindowTitle(total == 0 ? tr("Error List") : tr("Error List (%1)").arg(total));
}

void ErrorListDock::FillFilterChoices() {
    std::vector<std::u16string> resources = list_.Resources();
    // A resource chosen as the filter stays a choice after its last fault is gone.
    std::u16string chosen = filter_.toStdU16String();
    if (!chosen.empty() &&
        std::none_of(resources.begin(), resources.end(), [&](const std::u16string& name) {
            return ts::EqualsIgnoreAsciiCase(name, chosen);
        })) {
        resources.push_back(chosen);
        std::sort(resources.begin(), resources.end(), ResourceNameLess);
    }
    QSignalBlocker quiet(choices_);
    choices_->clear();
    choices_->addItem(tr("All resources"), QString());
    for (const std::u16string& name : resources) {
        choices_->addItem(ToQt(name), ToQt(name));
        if (ts::EqualsIgnoreAsciiCase(name, chosen))
            choices_->setCurrentIndex(choices_->count() - 1);
    }
}

}  // namespace toolset
