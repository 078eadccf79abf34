#pragma once

#include <memory>
#include <string>

#include "model/undo/undo_command_add_remove_nodes.h"

namespace dlg {

// The command that inserts a new line as the last child of the selection (or, `after`, of the
// selection's parent; of the root when the root is selected). The line's kind follows its
// parent; it takes speaker and listener from the line two levels up when that is a line of its
// own kind. Null with the message for the user when there is nothing to insert under.
std::unique_ptr<CUndoCommandAddRemoveNodes> MakeInsertLine(ConversationEdits& edits, bool after,
                                                           std::u16string& message);

}  // namespace dlg
