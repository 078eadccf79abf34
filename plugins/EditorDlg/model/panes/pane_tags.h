#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agents/valuecache.h"

class CConversationEditorWnd;

namespace dlg {

// A speaker or listener box with nothing in it: the conversation's default applies.
inline constexpr std::u16string_view kDefaultTag = u"(default)";
inline constexpr std::u16string_view kInvalidTag = u"'%ls' is not a valid tag.";

// How a tag is stored: the keywords that stand for a role ("OWNER", "PLAYER", and for a
// listener "PREVSPEAKER") in capitals, any other tag in lower case.
std::u16string NormalTag(std::u16string_view tag, bool listener);

// What a speaker or listener box holding `typed` writes over `stored`: "(default)" is empty, a
// tag must be a keyword, a creature of the module or a henchman and is stored normalised.
// Nothing when there is nothing to write, or when the tag is refused (then, with `messages`,
// after the message "'%ls' is not a valid tag.").
std::optional<std::u16string> TagToWrite(CConversationEditorWnd& window, CValueCache& cache,
                                         std::u16string_view typed, std::u16string_view stored,
                                         bool listener, bool messages);

// The choices of a speaker box ("(default)", "OWNER") or a listener box (also "PLAYER" and
// "PREVSPEAKER"), followed by the module's creatures and henchmen.
std::vector<std::u16string> TagChoices(CValueCache& cache, bool listener);

}  // namespace dlg
