#include "model/dlg_editor_settings.h"

#include <algorithm>

namespace dlg {

std::uint32_t ToScreenColour(const SettingsColour& c) {
    if (c.r == -1.0f && c.g == -1.0f && c.b == -1.0f) return kNoColour;
    auto byte = [](float v) { return static_cast<std::uint32_t>(std::clamp(v, 0.0f, 1.0f) * 255.0f); };
    return byte(c.r) | (byte(c.g) << 8) | (byte(c.b) << 16);
}

DlgEditorSettings& TheDlgEditorSettings() {
    static DlgEditorSettings settings;
    return settings;
}

}  // namespace dlg
