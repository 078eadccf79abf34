#pragma once

#include <cstdint>
#include <string>

#include "core/undo_command_group.h"
#include "model/conversation_edits.h"

// Several field changes of one line (or of the conversation) that make one undo step, such as
// a text change with its string id and its translation and recording flags. After the fields
// are set (or set back), the line is selected and redrawn.
class CUndoCommandModifyPropertyGroup : public CTsUndoCommandGroup {
public:
    CUndoCommandModifyPropertyGroup(std::u16string label, dlg::ConversationEdits& edits,
                                    std::int32_t node, int changeCode);

    std::int32_t Node() const { return node_; }
    int ChangeCode() const { return changeCode_; }

    bool Do(CTsUndoSupportBase& stack) override;
    bool Undo(CTsUndoSupportBase& stack) override;
    // Shows the result of the children's changes; false when the line is gone.
    virtual bool Refresh(CTsUndoSupportBase& stack);
    const char* KindName() const override { return "CUndoCommandModifyPropertyGroup"; }

protected:
    dlg::ConversationEdits& Edits() { return edits_; }

private:
    dlg::ConversationEdits& edits_;
    std::int32_t node_;
    int changeCode_;
};
