#pragma once

#include <optional>
#include <string_view>

#include "ts/editorlayout.h"

namespace dlg {

// The layout of the user's layout file that conversation editors share.
inline constexpr std::u16string_view kEditorLayoutName = u"EditorsConversation";

// The conversation editors' splitter positions ("WindowSplitter", "TextSplitter"): read from the
// user's layout file when first asked, kept for the process so that every editor opens as the
// user last left one, and written back when an editor closes after the user moved a splitter.
class EditorLayout {
public:
    static EditorLayout& Process();

    std::optional<int> Position(std::u16string_view splitter);
    // The user moved a splitter.
    void Remember(std::u16string_view splitter, int position);
    // Writes the positions when they differ from what the file held.
    void Save();

private:
    void Load();

    bool loaded_ = false;
    ts::SplitterPositions positions_;
    ts::SplitterPositions saved_;
};

}  // namespace dlg
