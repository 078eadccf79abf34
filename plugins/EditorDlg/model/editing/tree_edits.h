#pragma once

#include <cstdint>
#include <string>

#include "model/editing/can_place.h"

class CConversationEditorWnd;

namespace dlg {

// The editing operations of the conversation tree as the window's commands and the view's drag
// and drop run them. Each asks what it must ask (voice-over already sent, links that would be
// lost), changes the tree through one undo command, and leaves everything as it was when it is
// refused or the user says No. A read-only editor refuses them all without a word.

// "Delete Line": the selected line with its branch and every link from elsewhere to a line in it.
bool DeleteSelection(CConversationEditorWnd& window);
// Puts the selection (the root: all its starting lines) into the process's node clipboard, and
// its branch as text into the system's clipboard.
bool CopySelection(CConversationEditorWnd& window);
bool CutSelection(CConversationEditorWnd& window);
// "Paste": copies of the clipboard's branch at the selection.
bool PasteClipboard(CConversationEditorWnd& window);
// "Paste" (as link): links between the clipboard's line and the selection, in the direction the
// settings give.
bool PasteClipboardAsLink(CConversationEditorWnd& window);

// Copies `source` of `sourceTree` (the root: all its starting lines) with its branch to
// `target`, as Paste does.
bool PasteBranch(CConversationEditorWnd& window, TreeItem target,
                 const ConversationTree& sourceTree, TreeItem source);
// Links between `source` and `destination` of the window's tree; `sourceToDestination` puts
// links to the source at the destination, otherwise a link to the destination at the source.
bool PasteLinks(CConversationEditorWnd& window, TreeItem destination, TreeItem source,
                bool sourceToDestination);
// "Drag Node": moves `dragged` with its branch to `drop` (as its child or after it).
bool MoveBranch(CConversationEditorWnd& window, TreeItem dragged, TreeItem drop);

// A drop of `source` (of `sourceTree`, this window's or another editor's) on `drop`: links with
// Shift, a move within the window's tree, a copy from another. `DropPlacement` answers the same
// question without changing anything, for the drag feedback.
bool Drop(CConversationEditorWnd& window, const ConversationTree& sourceTree, TreeItem source,
          TreeItem drop, bool shift);
Placement DropPlacement(CConversationEditorWnd& window, const ConversationTree& sourceTree,
                        TreeItem source, TreeItem drop, bool shift);

// Lists every link to the selected line (to a link's line when a link is selected) in the host's
// search results; the number found.
std::int32_t FindLinks(CConversationEditorWnd& window);

// The branch as a writer would paste it into a document: one line per item, indented by two
// spaces per level, "Speaker: text", links marked.
std::u16string BranchAsText(const ConversationTree& tree, TreeItem top);

}  // namespace dlg
