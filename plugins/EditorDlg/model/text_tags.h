#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

namespace dlg {

// The markup tags line text may carry (emphasis, italics and the like), from the game data. A
// paired tag needs its closing "</tag>"; an unpaired one stands alone.
class TextTagSet {
public:
    void Add(std::u16string_view name, bool paired);
    // Null when the tag is unknown; names compare without regard to ASCII case.
    const bool* Find(std::u16string_view name) const;
    bool Empty() const { return tags_.empty(); }

private:
    std::unordered_map<std::u16string, bool> tags_;  // lower-case name -> paired
};

enum class TagCheck {
    Ok,
    Malformed,  // a ">" outside a tag, a "<" at the end, or a "<" that is never closed
    Unknown,    // a tag that is not in the set
    Unmatched,  // a paired tag without its partner, or closed out of order
};

// Scans the text left to right for malformed markup, then checks each tag against the known set
// with open and close tags paired. "<b/>" is an unpaired use of a tag. With an empty set (the
// module has no tag table) only the scan is made.
TagCheck CheckTextTags(std::u16string_view text, const TextTagSet& known);

inline bool TextTagsAreValid(std::u16string_view text, const TextTagSet& known) {
    return CheckTextTags(text, known) == TagCheck::Ok;
}

}  // namespace dlg
