#pragma once

#include <cstdint>
#include <string>

#include "model/undo/undo_command_modify_property_group.h"

// A change of a line's animation track (an animation, its locks or timing). Besides the line's
// redraw it names the animation that changed, by its number in the track and the track's tag, so
// that the animation list can show that entry again.
class CUndoModifyAnimation : public CUndoCommandModifyPropertyGroup {
public:
    CUndoModifyAnimation(std::u16string label, dlg::ConversationEdits& edits, std::int32_t node,
                         int changeCode, std::uint32_t animation, std::u16string tag);

    std::uint32_t Animation() const { return animation_; }
    const std::u16string& Tag() const { return tag_; }

    bool Refresh(CTsUndoSupportBase& stack) override;
    const char* KindName() const override { return "CUndoModifyAnimation"; }

private:
    std::uint32_t animation_;
    std::u16string tag_;
};
