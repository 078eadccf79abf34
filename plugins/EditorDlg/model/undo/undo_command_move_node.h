#pragma once

#include <cstdint>
#include <string>

#include "core/undo_command.h"
#include "model/conversation_edits.h"

// Where a move takes a node: the node's TreeIndex before the move, its new parent's (in the same
// numbering) and its row there, counted without the node itself. Row 0 or -1 is the first
// child; a row past the last child appends.
struct CUndoMoveTriple {
    std::int32_t node = -1;
    std::int32_t parent = -1;
    std::int32_t position = 0;
};

// Moves a line with its subtree to another place; undo moves it back. The same items move, so
// nothing that refers to them goes stale. The moved line is selected afterwards.
class CUndoCommandMoveNode : public CTsUndoCommand {
public:
    CUndoCommandMoveNode(std::u16string label, dlg::ConversationEdits& edits,
                         CUndoMoveTriple forward);

    const CUndoMoveTriple& Forward() const { return forward_; }
    // Known once the command has been done: the way back, in the numbering after the move.
    const CUndoMoveTriple& Backward() const { return backward_; }

    bool Do(CTsUndoSupportBase&) override { return MoveBy(forward_, backward_); }
    bool Undo(CTsUndoSupportBase&) override { return MoveBy(backward_, forward_); }
    // A move to the place the node already has changes nothing.
    bool IsEmpty() const override;
    const char* KindName() const override { return "CUndoCommandMoveNode"; }

private:
    // Moves by `how` and records in `back` the triple that returns the node.
    bool MoveBy(const CUndoMoveTriple& how, CUndoMoveTriple& back);

    dlg::ConversationEdits& edits_;
    CUndoMoveTriple forward_;
    CUndoMoveTriple backward_;
};
