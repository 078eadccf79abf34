#pragma once

#include <optional>
#include <string_view>

#include "model/text_tags.h"

namespace dlg {

// The module's table of the markup tags line text may use: a "Tag" column with the tag's name
// and a "Paired" column, 1 when the tag needs its closing tag.
inline constexpr std::u16string_view kKnownTagsTable = u"toolset_dlgtags";

// Reads the tag table through the host's resource manager; nothing when the host has none. A
// module without the table gives an empty set (the check is then of structure alone); a table
// without the two columns, or a row that cannot be read, is reported (WARNING) and skipped.
std::optional<TextTagSet> LoadKnownTags();

}  // namespace dlg
