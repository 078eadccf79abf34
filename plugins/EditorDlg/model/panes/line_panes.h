#pragma once

#include <memory>

#include "model/panes/line_pane.h"

class CConversationEditorWnd;

namespace dlg {

// The pane of tab `tab` (see PaneTab) for an editor window; null for a tab whose pane is not
// there yet, which the view shows as an empty, disabled page.
std::unique_ptr<LinePane> MakeLinePane(CConversationEditorWnd& window, int tab);
// The comments pane shown beside the tabs.
std::unique_ptr<LinePane> MakeCommentsPane(CConversationEditorWnd& window);

}  // namespace dlg
