#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ts/api.h"

// The process-wide atom table: names turned into 16-bit numbers from 0xC000, compared without
// regard to ASCII case. Atoms are never deleted; the table holds 16,384 names.
using TsAtom = std::uint16_t;

inline constexpr TsAtom kTsFirstAtom = 0xC000;
inline constexpr std::size_t kTsMaxAtomName = 255;

// The atom of `name`, added when new; 0 when the name is empty, too long or the table is full.
TS_API TsAtom TsAddAtom(std::u16string_view name);
// The atom of `name` when it is already in the table, else 0.
TS_API TsAtom TsFindAtom(std::u16string_view name);
// The name as first added; empty for an unknown atom. At most `maxLength` units are returned.
TS_API std::u16string TsGetAtomName(TsAtom atom, std::size_t maxLength = 256);
TS_API std::size_t TsAtomCount();
