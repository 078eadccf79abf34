#include "model/editing/tree_edits.h"

#include <algorithm>
#include <memory>

#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "model/editing/branch_copy.h"
#include "model/editing/node_clipboard.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_move_node.h"
#include "ts/comptr.h"
#include "ts/format.h"
#include "ts/hostcomponents.h"
#include "ts/hostui.h"
#include "ts/report.h"
#include "ts/searchresults.h"

namespace dlg {

namespace {

constexpr std::u16string_view kLinkedDeleteQuestion =
    u"One or more of the line(s) you are attempting to delete are linked.  Do you still wish to "
    u"delete them?";

bool CanEdit(CConversationEditorWnd& window) {
    return !window.IsReadOnly() && window.Document().IsLoaded();
}

// The items a paste or a link takes from `source`: the root stands for its starting lines.
std::vector<TreeItem> ItemsOf(const ConversationTree& tree, TreeItem source) {
    std::vector<TreeItem> items;
    if (source != tree.RootItem()) {
        items.push_back(source);
        return items;
    }
    for (TreeItem c = tree.Items().GetChild(source); c != kNoItem;
         c = tree.Items().GetNextSibling(c))
        items.push_back(c);
    return items;
}

// Attaches the new subtrees at `target` as `placement` says, in order, and registers them as one
// command already done; the last is selected. False when none could go in.
bool PlaceAndRegister(CConversationEditorWnd& window, std::vector<DetachedSubtree> subtrees,
                      TreeItem target, Placement placement) {
    ConversationEdits& edits = window.Document().Edits();
    ItemTree& items = edits.Tree().Items();
    TreeItem parent = placement == Placement::AsChild ? target : items.GetParent(target);
    std::size_t row =
        placement == Placement::AsChild ? items.ChildCount(target) : items.RowOf(target) + 1;
    std::vector<TreeItem> placed;
    edits.BeginEdit();
    for (DetachedSubtree& subtree : subtrees) {
        TreeItem top = subtree.Top();
        if (edits.Attach(std::move(subtree), parent, row)) {
            placed.push_back(top);
            ++row;
        }
    }
    edits.EndEdit();
    if (placed.empty()) return false;

    auto command = std::make_unique<CUndoCommandAddRemoveNodes>(u"Paste", edits, true);
    for (TreeItem top : placed) command->AddNode(CUndoCommandAddRemoveNodes::RecordOf(edits, top));
    window.PerformDone(std::move(command));
    items.Expand(parent, true);
    items.Select(placed.back());
    items.EnsureVisible(placed.back());
    return true;
}

}  // namespace

bool DeleteSelection(CConversationEditorWnd& window) {
    if (!CanEdit(window)) return false;
    ConversationEdits& edits = window.Document().Edits();
    ConversationTree& tree = edits.Tree();
    TreeItem selected = tree.Items().GetSelection();
    if (!tree.NodeOf(selected)) return false;
    if (!window.Vo().MayChangeBranch(tree, selected)) return false;
    auto command = CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", edits, selected);
    if (!command) return false;
    if (!command->Links().empty() &&
        TsMessageBox(kLinkedDeleteQuestion, u"", MB_YESNO | MB_ICONWARNING) != IDYES)
        return false;
    return window.Perform(std::move(command));
}

bool CopySelection(CConversationEditorWnd& window) {
    ConversationTree& tree = window.Document().Tree();
    TreeItem selected = tree.Items().GetSelection();
    if (!window.Document().IsLoaded() || !tree.Items().IsInTree(selected)) {
        TsMessageBox(u"Please select a conversation line.", u"", MB_OK | MB_ICONERROR);
        return false;
    }
    NodeClipboard::Process().Copy(window.ResourceName(), tree, selected);
    if (EditorView* view = window.View()) view->SetClipboardText(BranchAsText(tree, selected));
    return true;
}

bool CutSelection(CConversationEditorWnd& window) {
    if (!CanEdit(window)) return false;
    return CopySelection(window) && DeleteSelection(window);
}

bool PasteClipboard(CConversationEditorWnd& window) {
    ConversationTree* sourceTree = nullptr;
    TreeItem source = kNoItem;
    if (!CanEdit(window) || !NodeClipboard::Process().Get(sourceTree, source)) return false;
    return PasteBranch(window, window.Document().Tree().Items().GetSelection(), *sourceTree,
                       source);
}

bool PasteClipboardAsLink(CConversationEditorWnd& window) {
    ConversationTree* sourceTree = nullptr;
    TreeItem source = kNoItem;
    if (!CanEdit(window) || !NodeClipboard::Process().Get(sourceTree, source) ||
        sourceTree != &window.Document().Tree())
        return false;
    return PasteLinks(window, sourceTree->Items().GetSelection(), source,
                      TheDlgEditorSettings().PasteLinkSourceToDestination);
}

bool PasteBranch(CConversationEditorWnd& window, TreeItem target,
                 const ConversationTree& sourceTree, TreeItem source) {
    if (!CanEdit(window)) return false;
    ConversationEdits& edits = window.Document().Edits();
    Placement placement = CanPlace(edits.Tree(), target, sourceTree, source, false);
    if (placement == Placement::Refuse) return false;
    if (!window.Vo().MayChangeBranch(sourceTree, source)) return false;

    BranchCopy copy = CopyBranches(edits, sourceTree, ItemsOf(sourceTree, source));
    bool placed = PlaceAndRegister(window, std::move(copy.branches), target, placement);
    if (copy.droppedLinks > 0)
        TsMessageBox(ts::Format(u"%d link(s) were removed because they referenced nodes from the "
                                u"source conversation that were not copied.",
                                copy.droppedLinks),
                     u"", MB_OK | MB_ICONERROR);
    return placed;
}

bool PasteLinks(CConversationEditorWnd& window, TreeItem destination, TreeItem source,
                bool sourceToDestination) {
    if (!CanEdit(window)) return false;
    ConversationEdits& edits = window.Document().Edits();
    ConversationTree& tree = edits.Tree();
    if (!sourceToDestination) std::swap(source, destination);
    Placement placement = CanPlace(tree, destination, tree, source, true);
    if (placement == Placement::Refuse) return false;

    std::vector<DetachedSubtree> links;
    for (TreeItem item : ItemsOf(tree, source)) {
        ConversationNode* line = tree.NodeOf(item);
        if (line && line->isLink) line = line->linkTarget;
        if (!line) continue;
        if (line->isLink) {
            Report(ReportLevel::Assert, __FILE__, __LINE__, u"Nested links");
            return false;
        }
        links.push_back(edits.NewLink(*line));
    }
    return PlaceAndRegister(window, std::move(links), destination, placement);
}

bool MoveBranch(CConversationEditorWnd& window, TreeItem dragged, TreeItem drop) {
    if (!CanEdit(window)) return false;
    ConversationEdits& edits = window.Document().Edits();
    ConversationTree& tree = edits.Tree();
    const ItemTree& items = tree.Items();
    Placement placement = CanPlace(tree, drop, tree, dragged, false);
    if (placement == Placement::Refuse || IsInBranch(items, drop, dragged)) return false;
    NodeClipboard::Process().ForgetBranch(tree, dragged);

    TreeItem parent = placement == Placement::AsChild ? drop : items.GetParent(drop);
    std::int32_t row;
    if (placement == Placement::AsChild) {
        // Appended, counted without the dragged line when it is a child of the drop item already.
        std::size_t count = items.ChildCount(drop) - (items.GetParent(dragged) == drop ? 1 : 0);
        row = static_cast<std::int32_t>(count);
    } else {
        // After the drop item, counted without the dragged line itself.
        std::size_t dropRow = items.RowOf(drop);
        bool before = items.GetParent(dragged) == parent && items.RowOf(dragged) < dropRow;
        row = static_cast<std::int32_t>(dropRow + (before ? 0 : 1));
    }
    auto command = std::make_unique<CUndoCommandMoveNode>(
        u"Drag Node", edits, CUndoMoveTriple{edits.IndexOf(dragged), edits.IndexOf(parent), row});
    if (command->IsEmpty()) return false;  // dropped on its own place
    return window.Perform(std::move(command));
}

Placement DropPlacement(CConversationEditorWnd& window, const ConversationTree& sourceTree,
                        TreeItem source, TreeItem drop, bool shift) {
    if (!CanEdit(window)) return Placement::Refuse;
    ConversationTree& tree = window.Document().Tree();
    bool own = &sourceTree == &tree;
    if (shift) {
        if (!own) return Placement::Refuse;
        bool forward = TheDlgEditorSettings().DragLinkSourceToDestination;
        return forward ? CanPlace(tree, drop, tree, source, true)
                       : CanPlace(tree, source, tree, drop, true);
    }
    if (own && IsInBranch(tree.Items(), drop, source)) return Placement::Refuse;
    return CanPlace(tree, drop, sourceTree, source, false);
}

bool Drop(CConversationEditorWnd& window, const ConversationTree& sourceTree, TreeItem source,
          TreeItem drop, bool shift) {
    ConversationTree& tree = window.Document().Tree();
    if (shift)
        return &sourceTree == &tree &&
               PasteLinks(window, drop, source, TheDlgEditorSettings().DragLinkSourceToDestination);
    if (&sourceTree == &tree) return MoveBranch(window, source, drop);
    return PasteBranch(window, drop, sourceTree, source);
}

std::int32_t FindLinks(CConversationEditorWnd& window) {
    ConversationEdits& edits = window.Document().Edits();
    ConversationTree& tree = edits.Tree();
    ConversationNode* line = tree.NodeOf(tree.Items().GetSelection());
    if (line && line->isLink) line = line->linkTarget;
    std::vector<ConversationNode*> links;
    if (line) links = edits.Links().LinksTo(*line);
    std::sort(links.begin(), links.end(), [](const ConversationNode* a, const ConversationNode* b) {
        return a->TreeIndex < b->TreeIndex;
    });

    CTsComPtr<ITsSearchResults> results;
    if (FAILED(TsGetHostComponent(kTsSearchResultsName, ITsSearchResults::kIID, results.PutVoid())))
        results.Reset();
    if (results) results->Clear();
    for (const ConversationNode* link : links) {
        std::u16string text =
            ts::Format(u"(%d) : %ls", link->TreeIndex, tree.Items().GetText(link->treeItem));
        if (results)
            results->AddResult(window.ResourceName(), ts::Format(u"StartLine=%d", link->TreeIndex),
                               text);
        else
            TsLogWindowOutput(text);
    }
    std::int32_t count = static_cast<std::int32_t>(links.size());
    std::u16string status = ts::Format(u"Search complete, %d links found.", count);
    if (results)
        results->SetStatus(status);
    else
        TsLogWindowOutput(status);
    return count;
}

std::u16string BranchAsText(const ConversationTree& tree, TreeItem top) {
    const ItemTree& items = tree.Items();
    std::u16string defaultSpeaker;
    tree.Root().GetDefaultNPCSpeaker(defaultSpeaker);
    std::u16string out;
    TreeItem end = tree.SubtreeEnd(top);
    for (TreeItem i = top; i != kNoItem && i != end; i = items.NextInPreOrder(i)) {
        const ConversationNode* node = tree.NodeOf(i);
        if (!node) continue;
        std::size_t depth = 0;
        for (TreeItem p = i; p != top; p = items.GetParent(p)) ++depth;
        if (top == tree.RootItem()) --depth;  // the starting lines are the first level
        const ConversationNode& shown = node->Shown();
        std::u16string speaker, text;
        shown.line.GetSpeaker(speaker);
        shown.line.GetText(text);
        if (speaker.empty()) speaker = shown.isNPC ? defaultSpeaker : u"PLAYER";
        out.append(2 * depth, u' ');
        out += speaker + u": " + text;
        if (node->isLink) out += u" (link)";
        out += u'\n';
    }
    return out;
}

}  // namespace dlg
