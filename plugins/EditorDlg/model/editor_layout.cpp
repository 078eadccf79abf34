#include "model/editor_layout.h"

#include "core/layout_places.h"

namespace dlg {

EditorLayout& EditorLayout::Process() {
    static EditorLayout layout;
    return layout;
}

void EditorLayout::Load() {
    if (loaded_) return;
    loaded_ = true;
    saved_ = ts::ReadEditorLayout(ts::UserLayoutFilePath(), kEditorLayoutName);
    positions_ = saved_;
}

std::optional<int> EditorLayout::Position(std::u16string_view splitter) {
    Load();
    auto it = positions_.find(splitter);
    if (it == positions_.end()) return std::nullopt;
    return it->second;
}

void EditorLayout::Remember(std::u16string_view splitter, int position) {
    Load();
    positions_[std::u16string(splitter)] = position;
}

void EditorLayout::Save() {
    if (!loaded_ || positions_ == saved_) return;
    if (ts::WriteEditorLayout(ts::UserLayoutFilePath(), kEditorLayoutName, positions_))
        saved_ = positions_;
}

}  // namespace dlg
