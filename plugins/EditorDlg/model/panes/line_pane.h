#pragma once

#include <memory>

#include "model/item_tree.h"

class CConversationEditorWnd;
class CTsUndoCommand;

namespace dlg {

// One property pane of the pane host, in its plain C++ half: which fields it edits, its apply
// rules, messages and undo commands. The Qt half only shows and reads its controls.
class LinePane {
public:
    // Applying every control at once.
    static constexpr int kAllControls = 0;

    virtual ~LinePane() = default;
    // The conversation root (`root`), one line (`item`), or nothing (neither): an empty selection
    // clears and disables the pane's controls.
    virtual void SetSelection(bool root, TreeItem item) = 0;
    // Writes what control `control` shows (kAllControls: every control) to the selected node when
    // it differs from the stored value; `messages` allows message boxes. True when something was
    // written.
    virtual bool Apply(int control, bool messages) = 0;
    // Whether a find-and-replace field (a LineProperty number) is edited in this pane.
    virtual bool OwnsField(int /*field*/) const { return false; }
};

// Runs a pane's own command through the window, with `writing` set meanwhile so that the pane
// does not refill itself from the refresh its own command causes. False for a null or failed
// command.
bool PerformPaneCommand(CConversationEditorWnd& window, std::unique_ptr<CTsUndoCommand> command,
                        bool& writing);

}  // namespace dlg
