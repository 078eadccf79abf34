#include "model/undo/undo_modify_animation.h"

CUndoModifyAnimation::CUndoModifyAnimation(std::u16string label, dlg::ConversationEdits& edits,
                                           std::int32_t node, int changeCode,
                                           std::uint32_t animation, std::u16string tag)
    : CUndoCommandModifyPropertyGroup(std::move(label), edits, node, changeCode),
      animation_(animation),
      tag_(std::move(tag)) {}

bool CUndoModifyAnimation::Refresh(CTsUndoSupportBase& stack) {
    if (!CUndoCommandModifyPropertyGroup::Refresh(stack)) return false;
    Edits().AnimationChanged(animation_, tag_);
    return true;
}
