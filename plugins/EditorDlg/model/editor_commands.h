#pragma once

#include <cstdint>
#include <vector>

#include "model/command_table.h"
#include "model/conversation_tree.h"
#include "ts/uicommandsource.h"

class CConversationEditorWnd;

namespace dlg {

// Ids of the commands whose actions the editor runs now (the full list is in command_table.cpp).
namespace command_id {
inline constexpr std::uint32_t kCollapse = 40022;
inline constexpr std::uint32_t kCollapseBranch = 40044;
inline constexpr std::uint32_t kCollapseAll = 40017;
inline constexpr std::uint32_t kExpand = 40016;
inline constexpr std::uint32_t kExpandBranch = 40043;
inline constexpr std::uint32_t kExpandAll = 40015;
inline constexpr std::uint32_t kSimpleView = 40014;
inline constexpr std::uint32_t kJumpToTarget = 124;
inline constexpr std::uint32_t kCountNPCLinesInBranch = 40080;
inline constexpr std::uint32_t kInsertLine = 40009;
inline constexpr std::uint32_t kInsertLineAfter = 123;
inline constexpr std::uint32_t kCut = 40023;
inline constexpr std::uint32_t kCopy = 40011;
inline constexpr std::uint32_t kPaste = 40012;
inline constexpr std::uint32_t kDelete = 40013;
inline constexpr std::uint32_t kPasteAsLink = 40010;
inline constexpr std::uint32_t kFindLinks = 40048;
}  // namespace command_id

// The state of a command on the tree's current selection (kTsCommandEnabled, kTsCommandChecked).
// A command is enabled only where its action is possible; commands whose actions the editor
// does not have yet are never enabled.
std::uint32_t CommandStateOf(CConversationEditorWnd& window, std::uint32_t id);

// Runs a command by id; false (and nothing happens) when it is not enabled.
bool RunCommand(CConversationEditorWnd& window, std::uint32_t id);

// Insert Line (Insert Line After with `after`) through the window's undo stack: the new line
// is selected and shown. False, after telling the user why, when there was nothing to do.
bool InsertLine(CConversationEditorWnd& window, bool after);

// NPC lines (links excluded) of the branch from `item` down, the item itself included.
std::int32_t CountNPCLines(const ConversationTree& tree, TreeItem item);

// The table's commands (every record that is not a submenu, in registration order) and a menu
// tree, as the host receives them.
std::vector<TsCommandItem> CommandItems(const CommandTable& table);
std::vector<TsCommandItem> MenuItems(const std::vector<CommandRecord*>& menus);

}  // namespace dlg
