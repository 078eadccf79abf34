#include "model/panes/line_pane.h"

#include "model/conversation_editor_wnd.h"

namespace dlg {

bool PerformPaneCommand(CConversationEditorWnd& window, std::unique_ptr<CTsUndoCommand> command,
                        bool& writing) {
    if (!command) return false;
    writing = true;
    bool done = window.Perform(std::move(command));
    writing = false;
    return done;
}

}  // namespace dlg
