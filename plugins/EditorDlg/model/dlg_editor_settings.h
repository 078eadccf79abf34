#pragma once

#include <cstdint>
#include <string>

namespace dlg {

// A colour of the settings: red, green, blue, each nominally 0 to 1; all -1 means no colour.
struct SettingsColour {
    float r = 0, g = 0, b = 0;
    friend bool operator==(const SettingsColour&, const SettingsColour&) = default;
};

// Screen colour: red in bits 0-7, green 8-15, blue 16-23; 0xFF000000 is "no colour" (the view
// uses the system colour there).
inline constexpr std::uint32_t kNoColour = 0xFF000000u;
// Clamps each component to 0..1 and truncates (0.5 gives 127, not 128).
std::uint32_t ToScreenColour(const SettingsColour& colour);

// The editor's preferences, one record for the process. The constructor gives the built-in
// defaults; the error, voice-over and safe-frame colours, the henchman count and the safe-frame
// ratio stay zero unless the configuration supplies them.
struct DlgEditorSettings {
    bool PasteLinkSourceToDestination = true;
    bool DragLinkSourceToDestination = false;
    SettingsColour LinkColor{0.5f, 0.5f, 0.5f};
    SettingsColour PCColor{0, 0, 1};
    SettingsColour NPCColor{1, 0, 0};
    SettingsColour NPCCommentColor{0, 0.5f, 0};
    SettingsColour ErrorColor{};
    SettingsColour AmbientColor{1.0f, 0.9f, 1.0f};
    std::int32_t MaxHenchmen = 0;
    std::u16string FXAPerforcePath;
    std::u16string FXAName;
    float SafeFrameAspectRatio = 0;
    SettingsColour SafeFrameOuterColor{};
    SettingsColour SafeFrameActionColor{};
    SettingsColour SafeFrameTitleColor{};
    bool SkipHighlightedLinks = false;
    SettingsColour VORecordedColor{};
};

// The process-wide record that every editor window reads.
DlgEditorSettings& TheDlgEditorSettings();

// Fills the record from the configuration store's group "Common\DlgEditor", key by key in the
// record's order; a key the store lacks keeps the field's current value. The editor only reads
// the store: the toolset's options edit it.
void LoadDlgEditorSettings();

// The revision-control folder of the FaceFX actor files, read once when first needed (while it is
// still empty) and kept for the life of the plugin, whatever the options say later.
const std::u16string& FaceFXActorFolder();

}  // namespace dlg
