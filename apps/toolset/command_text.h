#pragma once

#include <string>
#include <string_view>

namespace toolset {

// The text a menu shows for a command name: the menu's own word and the editor's name are
// dropped, the rest is spaced out ("Edit.DialogEditor.Insert.Line.After" gives
// "Insert Line After", "Edit.CollapseBranch" gives "Collapse Branch").
std::u16string CommandText(std::u16string_view name);

}  // namespace toolset
