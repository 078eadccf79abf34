#pragma once

#include <map>
#include <optional>
#include <string>

#include "core/layout_places.h"
#include "ts/uiwindow.h"

// Pane layouts of an editor window: where the host finds the default and the user's layouts,
// the profile keys of the default layouts, and the splitter positions the saved layout records.
template <class W>
class CTsEditorLayoutSupport {
public:
    // A dialog-like window files its default layouts under "Dialogs", an editor under "Editors".
    explicit CTsEditorLayoutSupport(bool dialogLike = false) : dialogLike_(dialogLike) {}

    std::u16string LayoutFile(TsLayoutFile which) const {
        return which == TsLayoutFile::Default ? ts::DefaultLayoutFilePath()
                                              : ts::UserLayoutFilePath();
    }
    std::u16string DefaultLayoutKey(std::u16string_view layoutName) const {
        return ts::DefaultLayoutProfileKey(dialogLike_, layoutName);
    }

    void SetSplitterPosition(std::u16string_view splitter, int position) {
        splitters_[std::u16string(splitter)] = position;
    }
    std::optional<int> SplitterPosition(std::u16string_view splitter) const {
        auto it = splitters_.find(splitter);
        if (it == splitters_.end()) return std::nullopt;
        return it->second;
    }

private:
    bool dialogLike_;
    std::map<std::u16string, int, std::less<>> splitters_;
};
