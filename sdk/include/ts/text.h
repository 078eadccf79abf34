#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ts/api.h"

// Text is UTF-16 in memory; these convert at the edges (files, databases, terminals). Malformed
// input is replaced by U+FFFD, never dropped silently and never a crash.
namespace ts {

TS_API std::u16string Utf8ToUtf16(std::string_view utf8);
TS_API std::string Utf16ToUtf8(std::u16string_view utf16);

// The first `maxUnits` UTF-16 units of `text`, one fewer when the cut would split a surrogate
// pair.
TS_API std::u16string_view CutUtf16(std::u16string_view text, std::size_t maxUnits);

// ASCII-only case folding, as used for atom names and reserved tags.
TS_API std::u16string AsciiLower(std::u16string_view text);
TS_API std::u16string AsciiUpper(std::u16string_view text);
TS_API bool EqualsIgnoreAsciiCase(std::u16string_view a, std::u16string_view b);

// Text from outside (a name, a key, a word of the command line) made fit to quote in a one-line
// message: control characters and invisible marks written as escapes ("\n", "\u0007",
// "\uFEFF"), and a text longer than `limit` units cut, with "..." and its full length.
TS_API std::u16string MessageText(std::u16string_view text, std::size_t limit = 80);
TS_API std::u16string MessageText(std::string_view utf8, std::size_t limit = 80);

}  // namespace ts
