#pragma once

#include <string>
#include <string_view>

namespace dlg {

// What a line shows in the tree, before the editor's lookups: its kind, text, speaker tag,
// comment and whether its item has children.
struct LabelInput {
    bool isNPC = false;
    std::u16string_view text;
    std::u16string_view speaker;
    std::u16string_view comment;
    // The conversation's default owner, when it could be found; shown for NPC lines without a
    // speaker.
    std::u16string_view defaultOwner;
    bool hasChildren = false;
};

struct Label {
    std::u16string text;
    bool isComment = false;
};

inline constexpr std::size_t kMaxLabelText = 200;
inline constexpr std::size_t kMaxLabel = 250;

// "[speaker] text", "[COMMENT] comment", "text [END DIALOGUE]", "[CONTINUE]"... with the text cut
// to 200 units and the whole to 250, never inside a surrogate pair.
Label MakeLabel(const LabelInput& input);

}  // namespace dlg
