#include "model/undo/undo_command_add_remove_nodes.h"

#include <algorithm>

#include "ts/format.h"
#include "ts/report.h"

using dlg::ConversationNode;
using dlg::DetachedSubtree;
using dlg::ItemTree;
using dlg::kNoItem;
using dlg::TreeItem;

namespace {
constexpr const char* kSource = "UndoCommandAddRemoveNodes";
}

CUndoCommandAddRemoveNodes::CUndoCommandAddRemoveNodes(std::u16string label,
                                                       dlg::ConversationEdits& edits, bool add)
    : CTsUndoCommand(std::move(label)), edits_(edits), add_(add) {}

CUndoNodeRecord CUndoCommandAddRemoveNodes::RecordOf(const dlg::ConversationEdits& edits,
                                                     TreeItem item) {
    const ItemTree& items = edits.Tree().Items();
    CUndoNodeRecord record;
    record.treeIndex = edits.IndexOf(item);
    record.parentIndex = edits.IndexOf(items.GetParent(item));
    record.position = static_cast<std::int32_t>(items.RowOf(item));
    record.size = static_cast<std::int32_t>(items.SubtreeSize(item));
    return record;
}

CUndoNodeRecord CUndoCommandAddRemoveNodes::AppendTo(const dlg::ConversationEdits& edits,
                                                     TreeItem parent, DetachedSubtree subtree) {
    const ItemTree& items = edits.Tree().Items();
    CUndoNodeRecord record;
    record.treeIndex = edits.IndexAfterSubtree(parent);
    record.parentIndex = edits.IndexOf(parent);
    record.position = static_cast<std::int32_t>(items.ChildCount(parent));
    record.size = static_cast<std::int32_t>(items.SubtreeSize(subtree.Top()));
    record.subtree = std::move(subtree);
    return record;
}

std::unique_ptr<CUndoCommandAddRemoveNodes> CUndoCommandAddRemoveNodes::RemovalOf(
    std::u16string label, dlg::ConversationEdits& edits, TreeItem item) {
    const ItemTree& items = edits.Tree().Items();
    auto command = std::make_unique<CUndoCommandAddRemoveNodes>(std::move(label), edits, false);
    CUndoNodeRecord record = RecordOf(edits, item);
    // A link is inside the subtree when its number falls in the subtree's range.
    std::int32_t first = record.treeIndex, end = record.treeIndex + record.size;
    std::vector<std::int32_t> outside;
    for (TreeItem i = item; i != kNoItem; i = items.NextInSubtree(i, item))
        if (ConversationNode* node = edits.Tree().NodeOf(i); node && !node->isLink)
            for (ConversationNode* link : edits.Links().LinksTo(*node))
                if (link->TreeIndex < first || link->TreeIndex >= end)
                    outside.push_back(link->TreeIndex);
    std::sort(outside.begin(), outside.end());
    for (std::int32_t link : outside) command->AddLink(RecordOf(edits, edits.ItemAt(link)));
    command->AddNode(std::move(record));
    return command;
}

std::vector<CUndoNodeRecord*> CUndoCommandAddRemoveNodes::AllRecords() {
    std::vector<CUndoNodeRecord*> all;
    for (auto& r : links_) all.push_back(&r);
    for (auto& r : nodes_) all.push_back(&r);
    // Tree order: a parent comes before anything inserted under it, and siblings go in at
    // rising positions.
    std::stable_sort(all.begin(), all.end(),
                     [](const CUndoNodeRecord* a, const CUndoNodeRecord* b) {
                         return a->treeIndex < b->treeIndex;
                     });
    return all;
}

bool CUndoCommandAddRemoveNodes::Refuse(const char16_t* what, std::int32_t index) {
    Report(ReportLevel::Assert, kSource, __LINE__,
           ts::Format(u"\"%ls\": %ls (TreeIndex %d).", Label(), what, index));
    return false;
}

bool CUndoCommandAddRemoveNodes::Insert() {
    ItemTree& items = edits_.Tree().Items();
    std::vector<CUndoNodeRecord*> all = AllRecords();

    // Resolve every parent first, in today's numbering: without the command's subtrees, a
    // parent's number is lower by the size of each subtree that comes before it.
    std::vector<TreeItem> parents;
    for (CUndoNodeRecord* r : all) {
        if (r->subtree.Empty() || items.IsInTree(r->subtree.Top()))
            return Refuse(u"a subtree to insert is missing", r->treeIndex);
        std::int32_t parent = r->parentIndex;
        for (CUndoNodeRecord* other : all) {
            if (other->treeIndex >= r->parentIndex) break;
            if (r->parentIndex < other->treeIndex + other->size)
                return Refuse(u"a parent lies inside another inserted subtree", r->treeIndex);
            parent -= other->size;
        }
        TreeItem item = edits_.ItemAt(parent);
        if (item == kNoItem) return Refuse(u"the parent does not exist", r->treeIndex);
        parents.push_back(item);
    }

    // Attach in tree order, then check that each subtree got the number it was recorded with.
    std::vector<std::pair<CUndoNodeRecord*, TreeItem>> attached;
    bool ok = true;
    edits_.BeginEdit();
    for (std::size_t i = 0; i < all.size() && ok; ++i) {
        CUndoNodeRecord& r = *all[i];
        TreeItem top = r.subtree.Top();
        ok = r.position >= 0 && std::size_t(r.position) <= items.ChildCount(parents[i]) &&
             edits_.Attach(std::move(r.subtree), parents[i], std::size_t(r.position));
        if (ok)
            attached.emplace_back(&r, top);
        else
            Refuse(u"a subtree does not fit at its place", r.treeIndex);
    }
    edits_.EndEdit();
    for (auto& [r, top] : attached)
        if (ok && edits_.IndexOf(top) != r->treeIndex)
            ok = Refuse(u"an inserted subtree is not at its recorded place", r->treeIndex);
    if (ok) return true;

    edits_.BeginEdit();
    for (auto it = attached.rbegin(); it != attached.rend(); ++it)
        it->first->subtree = edits_.Detach(it->second);
    edits_.EndEdit();
    return false;
}

bool CUndoCommandAddRemoveNodes::Remove() {
    ItemTree& items = edits_.Tree().Items();
    std::vector<CUndoNodeRecord*> all = AllRecords();

    std::vector<TreeItem> tops;
    for (CUndoNodeRecord* r : all) {
        TreeItem item = edits_.ItemAt(r->treeIndex);
        ConversationNode* node = edits_.Tree().NodeOf(item);
        bool isLinkRecord = r >= links_.data() && r < links_.data() + links_.size();
        if (!r->subtree.Empty() || !node)
            return Refuse(u"the line to remove does not exist", r->treeIndex);
        if (edits_.IndexOf(items.GetParent(item)) != r->parentIndex ||
            static_cast<std::int32_t>(items.RowOf(item)) != r->position)
            return Refuse(u"the line to remove is not at its recorded place", r->treeIndex);
        if (isLinkRecord && !node->isLink)
            return Refuse(u"a link record names a line", r->treeIndex);
        tops.push_back(item);
    }
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i]->size = static_cast<std::int32_t>(items.SubtreeSize(tops[i]));
        if (i > 0 && all[i]->treeIndex < all[i - 1]->treeIndex + all[i - 1]->size)
            return Refuse(u"a record lies inside another one", all[i]->treeIndex);
    }

    std::vector<TreeItem> parents;
    for (TreeItem top : tops) parents.push_back(items.GetParent(top));
    edits_.BeginEdit();
    for (std::size_t i = 0; i < all.size(); ++i) all[i]->subtree = edits_.Detach(tops[i]);
    // Nothing left in the tree may link to a line that has just gone.
    bool dangling = false;
    for (TreeItem top : tops)
        for (TreeItem i = top; i != kNoItem && !dangling; i = items.NextInSubtree(i, top))
            if (ConversationNode* node = edits_.Tree().NodeOf(i); node && !node->isLink)
                dangling = !edits_.Links().LinksTo(*node).empty();
    if (dangling) {
        // Back where they were, in tree order so that each position is right again.
        for (std::size_t i = 0; i < all.size(); ++i)
            edits_.Attach(std::move(all[i]->subtree), parents[i], std::size_t(all[i]->position));
    }
    edits_.EndEdit();
    return !dangling || Refuse(u"a link elsewhere still points into what would be removed",
                               all.front()->treeIndex);
}
