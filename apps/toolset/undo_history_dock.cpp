#include "undo_history_dock.h"

#include <QListWidget>
#include <utility>

#include "qt_text.h"

namespace toolset {

namespace {

// Whether both histories list the same commands in the same order, wherever the current
// position lies in them: then only the rows' looks change.
bool SameCommands(const UndoHistory& a, const UndoHistory& b) {
    if (a.done.size() + a.redoable.size() != b.done.size() + b.redoable.size()) return false;
    auto at = [](const UndoHistory& h, std::size_t i) -> const std::u16string& {
        return i < h.done.size() ? h.done[i] : h.redoable[i - h.done.size()];
    };
    for (std::size_t i = 0; i < a.done.size() + a.redoable.size(); ++i)
        if (at(a, i) != at(b, i)) return false;
    return true;
}

}  // namespace

UndoHistoryDock::UndoHistoryDock(QWidget* parent)
    : QDockWidget(tr("Undo History"), parent), list_(new QListWidget(this)) {
    setObjectName(QStringLiteral("UndoHistoryDock"));
    list_->setObjectName(QStringLiteral("UndoHistoryList"));
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setUniformItemSizes(true);
    list_->setEnabled(false);
    setWidget(list_);
    // The selection is the current state: moving it (click or arrow keys) moves the document.
    connect(list_, &QListWidget::currentRowChanged, this, &UndoHistoryDock::RowChosen);
}

void UndoHistoryDock::Show(const std::optional<UndoHistory>& history) {
    if (history == shown_) return;
    // Undo and redo only move the current position; the rows are then restyled in place rather
    // than made again (which would also pull the items from under a click being handled).
    bool sameRows = history && shown_ && SameCommands(*history, *shown_);
    shown_ = history;
    rebuilding_ = true;
    if (!sameRows) list_->clear();
    list_->setEnabled(history.has_value());
    if (history) {
        const std::vector<UndoHistoryRow> rows = UndoHistoryRows(*history);
        const QBrush grey = list_->palette().brush(QPalette::Disabled, QPalette::Text);
        const QBrush normal = list_->palette().brush(QPalette::Active, QPalette::Text);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            QListWidgetItem* item =
                sameRows ? list_->item(int(i)) : new QListWidgetItem(ToQt(rows[i].text), list_);
            QFont font = item->font();
            font.setBold(rows[i].state == UndoHistoryRow::State::Current);
            item->setFont(font);
            item->setForeground(rows[i].state == UndoHistoryRow::State::Redoable ? grey : normal);
        }
        SelectCurrent();
    }
    rebuilding_ = false;
}

void UndoHistoryDock::SelectCurrent() {
    if (!shown_) return;
    bool wasRebuilding = std::exchange(rebuilding_, true);
    int current = static_cast<int>(shown_->done.size());
    list_->setCurrentRow(current);
    list_->scrollToItem(list_->item(current));
    rebuilding_ = wasRebuilding;
}

void UndoHistoryDock::RowChosen(int row) {
    if (rebuilding_ || !shown_ || row < 0) return;
    if (int steps = StepsToRow(*shown_, row); steps != 0) emit stepsRequested(steps);
    // Whatever came of it, the selection shows the state the document is in (the window has
    // shown the new history by now; a failed step leaves the old one).
    SelectCurrent();
}

}  // namespace toolset
