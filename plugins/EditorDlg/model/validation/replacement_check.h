#pragma once

#include <string>
#include <string_view>

#include "agents/agentconversation.h"
#include "agents/valuecache.h"
#include "model/text_tags.h"

namespace dlg {

// Text refused by the tag check: in the text pane, where the writer can fix it at once, and as a
// find-and-replace result.
inline constexpr std::u16string_view kMalformedTagsPaneMessage =
    u"Line contains unmatched or malformed tags, please edit";
inline constexpr std::u16string_view kMalformedTagsMessage =
    u"Line contains unmatched or malformed tags";

// Whether find and replace may write a value into a line field, by the field's number (see
// LineProperty): tags must name a creature, henchman or reserved tag, plots a plot of the module,
// plot flags a flag (by name or number) of the plot the line names beside it, text well-formed
// markup, and icons, languages and emotions a row of their tables. Fields without a rule take
// anything. Lists come from the value cache.
class ReplacementCheck {
public:
    ReplacementCheck(const TextTagSet& knownTags, std::int32_t maxHenchmen,
                     CValueCache& cache = CValueCache::Process())
        : knownTags_(knownTags), maxHenchmen_(maxHenchmen), cache_(cache) {}

    // Empty when `value` may go into field `property` of `line` (the conversation's own record
    // `root` for the conversation end plot); otherwise the message for the user.
    std::u16string Check(int property, std::u16string_view value,
                         const CAgentConversationLine& line, const CAgentConversation& root);
    // A reserved keyword (any case), or a creature or henchman tag of the module.
    bool IsKnownTag(std::u16string_view tag);

private:
    bool IsKnownPlot(std::u16string_view plot);
    bool IsKnownFlag(std::u16string_view plot, std::u16string_view flag);
    bool IsInTable(std::u16string_view table, std::u16string_view column,
                   std::u16string_view value);

    const TextTagSet& knownTags_;
    std::int32_t maxHenchmen_;
    CValueCache& cache_;
};

}  // namespace dlg
