#pragma once

#include <QDockWidget>
#include <optional>

#include "undo_history.h"

class QListWidget;

namespace toolset {

// The undo history of the active editor: the state before its oldest command, then one row per
// command, done ones first (the current state in bold and selected), redoable ones greyed.
// Choosing a row asks for the undo or redo steps that lead there.
class UndoHistoryDock : public QDockWidget {
    Q_OBJECT
public:
    explicit UndoHistoryDock(QWidget* parent = nullptr);

    // Shows `history`, or nothing for an editor without an undo stack (nullopt). The list is
    // rebuilt only when the history differs from the one shown, so that this is cheap enough for
    // the periodic state refresh.
    void Show(const std::optional<UndoHistory>& history);

    QListWidget& List() const { return *list_; }

signals:
    // Negative: undo that many commands; positive: redo them.
    void stepsRequested(int steps);

private:
    void RowChosen(int row);
    void SelectCurrent();

    QListWidget* list_;
    std::optional<UndoHistory> shown_;
    bool rebuilding_ = false;
};

}  // namespace toolset
