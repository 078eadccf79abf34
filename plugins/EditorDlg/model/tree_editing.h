#pragma once

#include <cstdint>
#include <memory>

#include "model/editing/can_place.h"

class CConversationEditorWnd;

namespace dlg {

// What the tree on screen may ask of its editor window: drag and drop, the commands its keys and
// context menu run, and the window's tree, by which a drag names where it came from. The window
// gives its view one of these and nothing else, so the view stays thin and the window knows
// nothing of the toolkit that shows it.
class TreeEditing {
public:
    virtual ~TreeEditing() = default;

    virtual const ConversationTree& Tree() const = 0;
    // Where a drop of `source` (an item of `sourceTree`, this window's or another editor's) on
    // `drop` would go, or Refuse; changes nothing. `shift` asks for links.
    virtual Placement DropPlacement(const ConversationTree& sourceTree, TreeItem source,
                                    TreeItem drop, bool shift) = 0;
    // Links with `shift`; otherwise a move within the window's tree, a copy from another. False
    // when refused (nothing changed).
    virtual bool Drop(const ConversationTree& sourceTree, TreeItem source, TreeItem drop,
                      bool shift) = 0;
    // kTsCommand* bits of a command on the current selection (0 for an unknown id).
    virtual std::uint32_t CommandState(std::uint32_t id) = 0;
    // Runs a command; false when it is unknown or not enabled now (nothing happens).
    virtual bool RunCommand(std::uint32_t id) = 0;
    // Shows the tree's editing commands as a popup menu and runs the one chosen; false when
    // none was chosen or it did not run.
    virtual bool ShowContextMenu() = 0;
};

// The editing of `window`, for its view.
std::unique_ptr<TreeEditing> MakeTreeEditing(CConversationEditorWnd& window);

}  // namespace dlg
