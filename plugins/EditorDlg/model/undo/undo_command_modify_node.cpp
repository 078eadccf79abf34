#include "model/undo/undo_command_modify_node.h"

#include "ts/atoms.h"

CUndoCommandModifyNode::CUndoCommandModifyNode(std::u16string label, dlg::ConversationEdits& edits,
                                               CTsComPtr<ITsProperty> property, variant before,
                                               variant after, std::int32_t node, int changeCode,
                                               bool select)
    : CTsUndoCommandPropertyModify(std::move(label), std::move(property), std::move(before),
                                   std::move(after), static_cast<std::uint32_t>(changeCode)),
      edits_(edits),
      node_(node),
      changeCode_(changeCode),
      select_(select) {}

std::unique_ptr<CUndoCommandModifyNode> CUndoCommandModifyNode::ForField(
    std::u16string label, dlg::ConversationEdits& edits, dlg::TreeItem item,
    std::u16string_view field, variant after, int changeCode, bool select) {
    CTsComPtr<ITsProperty> property = dlg::FieldOf(edits, item, field);
    variant before;
    if (!property || FAILED(property->GetValue(&before))) return nullptr;
    return std::make_unique<CUndoCommandModifyNode>(std::move(label), edits, std::move(property),
                                                    std::move(before), std::move(after),
                                                    edits.IndexOf(item), changeCode, select);
}

bool CUndoCommandModifyNode::Do(CTsUndoSupportBase& stack) {
    if (!CTsUndoCommandPropertyModify::Do(stack)) return false;
    if (edits_.RefreshNode(node_, changeCode_, select_)) return true;
    CTsUndoCommandPropertyModify::Undo(stack);
    return false;
}

bool CUndoCommandModifyNode::Undo(CTsUndoSupportBase& stack) {
    if (!CTsUndoCommandPropertyModify::Undo(stack)) return false;
    if (edits_.RefreshNode(node_, changeCode_, select_)) return true;
    CTsUndoCommandPropertyModify::Do(stack);
    return false;
}

namespace dlg {

CTsComPtr<ITsProperty> FieldOf(ConversationEdits& edits, TreeItem item, std::u16string_view field) {
    ConversationTree& tree = edits.Tree();
    const CAgentBase* record = nullptr;
    if (item == tree.RootItem() && item != kNoItem)
        record = &tree.Root();
    else if (ConversationNode* node = tree.NodeOf(item))
        record = &node->line;
    CTsComPtr<ITsProperty> property;
    if (!record || !record->FindProperty(TsAddAtom(field), 0, property)) return {};
    return property;
}

}  // namespace dlg
