#include "model/undo/undo_command_move_node.h"

#include "ts/format.h"
#include "ts/report.h"

using dlg::kNoItem;
using dlg::TreeItem;

CUndoCommandMoveNode::CUndoCommandMoveNode(std::u16string label, dlg::ConversationEdits& edits,
                                           CUndoMoveTriple forward)
    : CTsUndoCommand(std::move(label)), edits_(edits), forward_(forward) {}

bool CUndoCommandMoveNode::IsEmpty() const {
    const dlg::ItemTree& items = edits_.Tree().Items();
    TreeItem item = edits_.ItemAt(forward_.node);
    if (item == kNoItem || item == items.GetRootItem()) return false;
    std::int32_t row = forward_.position < 0 ? 0 : forward_.position;
    return edits_.IndexOf(items.GetParent(item)) == forward_.parent &&
           static_cast<std::int32_t>(items.RowOf(item)) == row;
}

bool CUndoCommandMoveNode::MoveBy(const CUndoMoveTriple& how, CUndoMoveTriple& back) {
    dlg::ItemTree& items = edits_.Tree().Items();
    TreeItem item = edits_.ItemAt(how.node);
    TreeItem parent = edits_.ItemAt(how.parent);
    if (item == kNoItem || parent == kNoItem || item == items.GetRootItem()) {
        Report(ReportLevel::Assert, "UndoCommandMoveNode", __LINE__,
               ts::Format(u"\"%ls\": the line %d or its new parent %d does not exist.", Label(),
                          how.node, how.parent));
        return false;
    }
    TreeItem oldParent = items.GetParent(item);
    auto oldRow = static_cast<std::int32_t>(items.RowOf(item));
    std::size_t row = how.position < 0 ? 0 : std::size_t(how.position);
    if (!edits_.Move(item, parent, row)) {
        Report(ReportLevel::Assert, "UndoCommandMoveNode", __LINE__,
               ts::Format(u"\"%ls\": line %d cannot stand under line %d.", Label(), how.node,
                          how.parent));
        return false;
    }
    back = {edits_.IndexOf(item), edits_.IndexOf(oldParent), oldRow};
    items.Select(item);
    return true;
}
