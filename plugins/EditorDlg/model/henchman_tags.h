#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "agents/valuecache.h"

namespace dlg {

// The module's henchmen: one row each, the "Tag" column naming the creature's tag.
inline constexpr std::u16string_view kHenchmenTable = u"toolset_henchmen";
inline constexpr std::u16string_view kHenchmenTagColumn = u"Tag";

// The cache key of the henchmen's tags.
std::unique_ptr<CValueCacheKey> HenchmenKey();

// How a henchman's tag is offered as a speaker or listener: "HENCH:wren".
std::u16string HenchmanTagText(std::u16string_view tag);
// The placeholder for whichever henchman is the party's `number`th, from 1: "HENCHMAN 2".
std::u16string HenchmanPlaceholder(std::int32_t number);

// The henchman tags a conversation may name: each tag of the table in table order as
// "HENCH:tag", then "HENCHMAN 1" to "HENCHMAN maxHenchmen". False, with the placeholders alone
// in `out`, when the table can't be read.
bool HenchmanTags(CValueCacheAccessor& henchmen, std::int32_t maxHenchmen,
                  std::vector<std::u16string>& out);

// What a speaker or listener may name besides the reserved keywords: the tags of the module's
// creatures in resource order, then the henchman tags.
std::vector<std::u16string> CreatureAndHenchmanTags(CValueCache& cache, std::int32_t maxHenchmen);

}  // namespace dlg
