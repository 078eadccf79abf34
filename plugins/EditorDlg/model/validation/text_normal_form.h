#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace dlg {

// Line text as the game measures it: markup tags ("<" to the next ">") taken out, a tag glued to
// the next character replaced by one space, "--" read as two spaces, and both ends trimmed.
std::u16string TextNormalForm(std::u16string_view text);

// Characters of the normal form (a surrogate pair counts as one).
std::size_t NormalFormLength(std::u16string_view text);

}  // namespace dlg
