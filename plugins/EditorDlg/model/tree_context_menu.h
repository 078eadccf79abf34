#pragma once

#include <cstdint>
#include <vector>

#include "ts/hostui.h"

class CConversationEditorWnd;

namespace dlg {

// The tree's context menu: the editing commands in groups (inserting, the clipboard, deleting,
// following links), each enabled as the command is on the current selection.
std::vector<TsPopupMenuItem> TreeContextMenu(CConversationEditorWnd& window);

// Shows the menu through the host and runs the chosen command; false when nothing was chosen or
// the command did not run.
bool ShowTreeContextMenu(CConversationEditorWnd& window);

}  // namespace dlg
