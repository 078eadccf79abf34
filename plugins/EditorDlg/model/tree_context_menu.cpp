#include "model/tree_context_menu.h"

#include "model/conversation_editor_wnd.h"
#include "model/editor_commands.h"

namespace dlg {

namespace {

using namespace command_id;

// 0 separates.
constexpr std::uint32_t kMenu[] = {
    kInsertLine, kInsertLineAfter, 0, kCut,       kCopy,         kPaste, kPasteAsLink,
    0,           kDelete,          0, kFindLinks, kJumpToTarget,
};

}  // namespace

std::vector<TsPopupMenuItem> TreeContextMenu(CConversationEditorWnd& window) {
    std::vector<TsPopupMenuItem> items;
    for (std::uint32_t id : kMenu) {
        if (id == 0) {
            items.emplace_back();
        } else if (const CommandRecord* record = window.Commands().FindById(id)) {
            items.push_back({record->name, id, CommandStateOf(window, id)});
        }
    }
    return items;
}

bool ShowTreeContextMenu(CConversationEditorWnd& window) {
    std::uint32_t chosen = TsPopupMenu(TreeContextMenu(window));
    return chosen != 0 && RunCommand(window, chosen);
}

}  // namespace dlg
