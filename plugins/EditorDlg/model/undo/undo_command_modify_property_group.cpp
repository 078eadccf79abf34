#include "model/undo/undo_command_modify_property_group.h"

CUndoCommandModifyPropertyGroup::CUndoCommandModifyPropertyGroup(std::u16string label,
                                                                 dlg::ConversationEdits& edits,
                                                                 std::int32_t node, int changeCode)
    : CTsUndoCommandGroup(std::move(label)), edits_(edits), node_(node), changeCode_(changeCode) {}

bool CUndoCommandModifyPropertyGroup::Do(CTsUndoSupportBase& stack) {
    if (!CTsUndoCommandGroup::Do(stack)) return false;
    if (Refresh(stack)) return true;
    CTsUndoCommandGroup::Undo(stack);
    return false;
}

bool CUndoCommandModifyPropertyGroup::Undo(CTsUndoSupportBase& stack) {
    if (!CTsUndoCommandGroup::Undo(stack)) return false;
    if (Refresh(stack)) return true;
    CTsUndoCommandGroup::Do(stack);
    return false;
}

bool CUndoCommandModifyPropertyGroup::Refresh(CTsUndoSupportBase&) {
    return edits_.RefreshNode(node_, changeCode_, true);
}
