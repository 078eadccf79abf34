#include "model/editor_commands.h"

#include <utility>

#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "model/editing/node_clipboard.h"
#include "model/editing/tree_edits.h"
#include "model/insert_line.h"
#include "model/tree_view_commands.h"
#include "ts/format.h"
#include "ts/hostui.h"

namespace dlg {

namespace {

using namespace command_id;

// The expand and collapse commands by id.
constexpr std::pair<std::uint32_t, ExpandCommand> kExpandCommands[] = {
    {kExpand, ExpandCommand::Expand},
    {kExpandBranch, ExpandCommand::ExpandBranch},
    {kExpandAll, ExpandCommand::ExpandAll},
    {kCollapse, ExpandCommand::Collapse},
    {kCollapseBranch, ExpandCommand::CollapseBranch},
    {kCollapseAll, ExpandCommand::CollapseAll},
};

// False for an id that is not one of them.
bool ExpandCommandOf(std::uint32_t id, ExpandCommand& command) {
    for (const auto& [commandId, expand] : kExpandCommands) {
        if (commandId != id) continue;
        command = expand;
        return true;
    }
    return false;
}

bool IsEnabled(CConversationEditorWnd& window, std::uint32_t id) {
    ConversationTree& tree = window.Document().Tree();
    const ItemTree& items = tree.Items();
    TreeItem selected = items.GetSelection();
    bool loaded = window.Document().IsLoaded();
    switch (id) {
        case kExpand:
            return items.HasChildren(selected) && !items.IsExpanded(selected);
        case kCollapse:
            return items.HasChildren(selected) && items.IsExpanded(selected);
        case kExpandBranch:
        case kCollapseBranch:
            return items.HasChildren(selected);
        case kExpandAll:
        case kCollapseAll:
            return loaded && items.HasChildren(tree.RootItem());
        case kSimpleView:
            return true;
        case kJumpToTarget: {
            const ConversationNode* node = tree.NodeOf(selected);
            return node && node->isLink && node->linkTarget;
        }
        case kCountNPCLinesInBranch:
            return items.IsValid(selected);
        case kInsertLine:
        case kInsertLineAfter: {
            // Under a link nothing can go; Insert Line After on a link goes to its parent.
            const ConversationNode* node = tree.NodeOf(selected);
            return loaded && !window.IsReadOnly() && items.IsValid(selected) &&
                   (id == kInsertLineAfter || !node || !node->isLink);
        }
        case kCopy:
            return loaded && items.IsInTree(selected);
        case kCut:
        case kDelete: {
            // Delete belongs to the tree only while it has the keyboard focus; elsewhere the key
            // edits the focused control.
            EditorView* view = window.View();
            return loaded && !window.IsReadOnly() && tree.NodeOf(selected) &&
                   (id == kCut || !view || view->TreeHasFocus());
        }
        case kPaste:
        case kPasteAsLink: {
            ConversationTree* sourceTree = nullptr;
            TreeItem source = kNoItem;
            if (!loaded || window.IsReadOnly() || !NodeClipboard::Process().Get(sourceTree, source))
                return false;
            if (id == kPaste)
                return CanPlace(tree, selected, *sourceTree, source, false) != Placement::Refuse;
            if (sourceTree != &tree) return false;
            bool forward = TheDlgEditorSettings().PasteLinkSourceToDestination;
            return (forward ? CanPlace(tree, selected, tree, source, true)
                            : CanPlace(tree, source, tree, selected, true)) != Placement::Refuse;
        }
        case kFindLinks: {
            const ConversationNode* node = tree.NodeOf(selected);
            return node != nullptr;
        }
        default:
            return false;
    }
}

}  // namespace

std::uint32_t CommandStateOf(CConversationEditorWnd& window, std::uint32_t id) {
    std::uint32_t state = IsEnabled(window, id) ? kTsCommandEnabled : 0;
    if (id == kSimpleView && window.SimpleView()) state |= kTsCommandChecked;
    return state;
}

bool RunCommand(CConversationEditorWnd& window, std::uint32_t id) {
    if (!IsEnabled(window, id)) return false;
    ConversationTree& tree = window.Document().Tree();
    ExpandCommand expand;
    if (ExpandCommandOf(id, expand)) {
        RunExpandCommand(tree.Items(), expand);
        return true;
    }
    switch (id) {
        case kSimpleView:
            window.ToggleSimpleView();
            return true;
        case kJumpToTarget:
            return JumpToTarget(tree);
        case kCountNPCLinesInBranch: {
            std::int32_t count = CountNPCLines(tree, tree.Items().GetSelection());
            TsMessageBox(count == 1 ? std::u16string(u"This branch holds 1 NPC line.")
                                    : ts::Format(u"This branch holds %d NPC lines.", count),
                         window.DisplayName(), MB_OK | MB_ICONINFORMATION);
            return true;
        }
        case kInsertLine:
        case kInsertLineAfter:
            return InsertLine(window, id == kInsertLineAfter);
        case kCopy:
            return CopySelection(window);
        case kCut:
            return CutSelection(window);
        case kDelete:
            return DeleteSelection(window);
        case kPaste:
            return PasteClipboard(window);
        case kPasteAsLink:
            return PasteClipboardAsLink(window);
        case kFindLinks:
            FindLinks(window);
            return true;
        default:
            return false;
    }
}

bool InsertLine(CConversationEditorWnd& window, bool after) {
    std::u16string message;
    auto command = MakeInsertLine(window.Document().Edits(), after, message);
    if (!command) {
        if (!message.empty()) TsMessageBox(message, u"", MB_OK | MB_ICONERROR);
        return false;
    }
    ItemTree& items = window.Document().Tree().Items();
    TreeItem line = command->Nodes().front().subtree.Top();
    if (!window.Perform(std::move(command))) return false;
    items.Expand(items.GetParent(line), true);
    items.Select(line);
    items.EnsureVisible(line);
    return true;
}

std::int32_t CountNPCLines(const ConversationTree& tree, TreeItem item) {
    const ItemTree& items = tree.Items();
    if (!items.IsValid(item)) return 0;
    std::int32_t count = 0;
    TreeItem end = tree.SubtreeEnd(item);
    for (TreeItem i = item; i != kNoItem && i != end; i = items.NextInPreOrder(i)) {
        const ConversationNode* node = tree.NodeOf(i);
        if (node && node->isNPC && !node->isLink) ++count;
    }
    return count;
}

std::vector<TsCommandItem> CommandItems(const CommandTable& table) {
    std::vector<TsCommandItem> items;
    for (const auto& record : table.Records())
        if (!record->isSubmenu) items.push_back({record->name, record->id, false, {}});
    return items;
}

std::vector<TsCommandItem> MenuItems(const std::vector<CommandRecord*>& menus) {
    std::vector<TsCommandItem> items;
    for (const CommandRecord* record : menus) {
        if (!record) {
            items.emplace_back();  // separator
            continue;
        }
        items.push_back({record->name, record->id, record->isSubmenu, MenuItems(record->children)});
    }
    return items;
}

}  // namespace dlg
