#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "core/undo_command_property_modify.h"
#include "model/conversation_edits.h"

// Node numbers that stand for "whatever is selected when the command runs".
inline constexpr std::int32_t kUndoSelectedNode = -1;

// Sets one field of a line (or of the conversation, on the root) and redraws what the field
// shows: the line's label and the links to it, or the whole tree for a conversation default.
class CUndoCommandModifyNode : public CTsUndoCommandPropertyModify {
public:
    CUndoCommandModifyNode(std::u16string label, dlg::ConversationEdits& edits,
                           CTsComPtr<ITsProperty> property, variant before, variant after,
                           std::int32_t node, int changeCode, bool select);

    // A command that sets the field named `field` of the item's line (the conversation's own
    // field on the root) to `after`, from its present value; null when there is no such field.
    static std::unique_ptr<CUndoCommandModifyNode> ForField(
        std::u16string label, dlg::ConversationEdits& edits, dlg::TreeItem item,
        std::u16string_view field, variant after, int changeCode, bool select = true);

    std::int32_t Node() const { return node_; }
    int ChangeCode() const { return changeCode_; }

    bool Do(CTsUndoSupportBase& stack) override;
    bool Undo(CTsUndoSupportBase& stack) override;
    const char* KindName() const override { return "CUndoCommandModifyNode"; }

private:
    dlg::ConversationEdits& edits_;
    std::int32_t node_;
    int changeCode_;
    bool select_;
};

namespace dlg {
// The node of a field of the item's record: its line, or the conversation on the root item.
CTsComPtr<ITsProperty> FieldOf(ConversationEdits& edits, TreeItem item, std::u16string_view field);
}  // namespace dlg
