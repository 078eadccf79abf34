#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/undo_command.h"
#include "model/conversation_edits.h"

// One subtree that a command inserts or removes. Its numbers are those of the tree with every
// subtree of the command in place (as it stands right after the insertion, or right before the
// removal), so that one numbering resolves all records of a command at once.
struct CUndoNodeRecord {
    std::int32_t treeIndex = -1;    // of the subtree's top
    std::int32_t parentIndex = -1;  // 0 is the root
    std::int32_t position = 0;      // among the parent's children
    std::int32_t size = 0;          // items in the subtree
    // The subtree while it is out of the tree; the same items come back on insertion, so that
    // links and handles held elsewhere stay good.
    dlg::DetachedSubtree subtree;
};

// Inserts subtrees (lines with their descendants) and links, or removes them; undo does the
// opposite. Every record is checked against the tree before anything changes, and a record that
// does not match (a stale index, a wrong position, a removal that would leave a link to a line
// that is gone) makes the command fail with the conversation as it was.
class CUndoCommandAddRemoveNodes : public CTsUndoCommand {
public:
    CUndoCommandAddRemoveNodes(std::u16string label, dlg::ConversationEdits& edits, bool add);

    // The record of an item's subtree where it stands now, for a removal.
    static CUndoNodeRecord RecordOf(const dlg::ConversationEdits& edits, dlg::TreeItem item);
    // The record that appends a new subtree as the last child of `parent`, for an insertion.
    static CUndoNodeRecord AppendTo(const dlg::ConversationEdits& edits, dlg::TreeItem parent,
                                    dlg::DetachedSubtree subtree);

    // A removal of the item's subtree together with every link from elsewhere that points at a
    // line in it (a link to a line that is gone could not be written).
    static std::unique_ptr<CUndoCommandAddRemoveNodes> RemovalOf(std::u16string label,
                                                                 dlg::ConversationEdits& edits,
                                                                 dlg::TreeItem item);

    void AddNode(CUndoNodeRecord record) { nodes_.push_back(std::move(record)); }
    void AddLink(CUndoNodeRecord record) { links_.push_back(std::move(record)); }
    const std::vector<CUndoNodeRecord>& Nodes() const { return nodes_; }
    const std::vector<CUndoNodeRecord>& Links() const { return links_; }
    bool IsAdd() const { return add_; }

    bool Do(CTsUndoSupportBase&) override { return add_ ? Insert() : Remove(); }
    bool Undo(CTsUndoSupportBase&) override { return add_ ? Remove() : Insert(); }
    bool IsEmpty() const override { return nodes_.empty() && links_.empty(); }
    const char* KindName() const override { return "CUndoCommandAddRemoveNodes"; }

private:
    bool Insert();
    bool Remove();
    std::vector<CUndoNodeRecord*> AllRecords();
    bool Refuse(const char16_t* what, std::int32_t index);

    dlg::ConversationEdits& edits_;
    bool add_;
    std::vector<CUndoNodeRecord> nodes_;
    std::vector<CUndoNodeRecord> links_;
};
