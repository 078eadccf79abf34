#pragma once

#include <vector>

#include "model/conversation_edits.h"

namespace dlg {

// New items for the destination tree copying branches of a source tree (the same tree or another
// editor's), ready to attach.
struct BranchCopy {
    std::vector<DetachedSubtree> branches;
    // Links left out: their line was not copied and stands in another conversation (or is no
    // longer in the tree).
    int droppedLinks = 0;
};

// Copies each of `sources` with its branch, in order; a source that is already inside an earlier
// one is skipped. Lines get their own copy of the record; a copied link points at the copy of
// its line when that line was copied too, else, within one conversation, at the line it pointed
// at; a link to a line of another conversation that was not copied is left out and counted.
BranchCopy CopyBranches(ConversationEdits& edits, const ConversationTree& sourceTree,
                        const std::vector<TreeItem>& sources);

}  // namespace dlg
