#include "model/dlg_editor_settings.h"

#include <algorithm>

#include "ts/comptr.h"
#include "ts/configuration.h"

namespace dlg {
namespace {

constexpr std::u16string_view kGroup = u"Common\\DlgEditor";

// Typed reads of one group; a value the store lacks (or cannot read as asked) leaves the field
// as it was, so defaults and earlier values survive.
class GroupReader {
public:
    explicit GroupReader(ITsConfiguration* store) : store_(store) {}

    void Read(std::u16string_view key, bool& field) {
        if (variant v; Get(key, kTsTypeBool, v)) field = v.GetBool();
    }
    void Read(std::u16string_view key, std::int32_t& field) {
        if (variant v; Get(key, kTsTypeInt, v)) field = v.GetInt();
    }
    void Read(std::u16string_view key, float& field) {
        if (variant v; Get(key, kTsTypeFloat, v)) field = v.GetFloat();
    }
    void Read(std::u16string_view key, std::u16string& field) {
        if (variant v; Get(key, kTsTypeString, v)) field = v.GetString();
    }
    void Read(std::u16string_view key, SettingsColour& field) {
        if (variant v; Get(key, kTsTypeColour, v)) {
            TsColour c = v.GetColour();
            field = {c.r, c.g, c.b};
        }
    }

private:
    bool Get(std::u16string_view key, std::uint32_t type, variant& value) {
        return store_ && SUCCEEDED(store_->ReadValue(kGroup, key, &value, type, 0));
    }

    ITsConfiguration* store_;
};

CTsComPtr<ITsConfiguration> Store() {
    CTsComPtr<ITsConfiguration> store;
    TsGetConfiguration(store.Put());
    return store;
}

}  // namespace

std::uint32_t ToScreenColour(const SettingsColour& c) {
    if (c.r == -1.0f && c.g == -1.0f && c.b == -1.0f) return kNoColour;
    auto byte = [](float v) {
        return static_cast<std::uint32_t>(std::clamp(v, 0.0f, 1.0f) * 255.0f);
    };
    return byte(c.r) | (byte(c.g) << 8) | (byte(c.b) << 16);
}

DlgEditorSettings& TheDlgEditorSettings() {
    static DlgEditorSettings settings;
    return settings;
}

void LoadDlgEditorSettings() {
    CTsComPtr<ITsConfiguration> store = Store();
    GroupReader group(store.Get());
    DlgEditorSettings& s = TheDlgEditorSettings();
    group.Read(u"PasteLinkSourceToDestination", s.PasteLinkSourceToDestination);
    group.Read(u"DragLinkSourceToDestination", s.DragLinkSourceToDestination);
    group.Read(u"LinkColor", s.LinkColor);
    group.Read(u"PCColor", s.PCColor);
    group.Read(u"NPCColor", s.NPCColor);
    group.Read(u"NPCCommentColor", s.NPCCommentColor);
    group.Read(u"ErrorColor", s.ErrorColor);
    group.Read(u"AmbientColor", s.AmbientColor);
    group.Read(u"MaxHenchmen", s.MaxHenchmen);
    group.Read(u"FXAPerforcePath", s.FXAPerforcePath);
    group.Read(u"FXAName", s.FXAName);
    group.Read(u"SafeFrameAspectRatio", s.SafeFrameAspectRatio);
    group.Read(u"SafeFrameOuterColor", s.SafeFrameOuterColor);
    group.Read(u"SafeFrameActionColor", s.SafeFrameActionColor);
    group.Read(u"SafeFrameTitleColor", s.SafeFrameTitleColor);
    group.Read(u"SkipHighlightedLinks", s.SkipHighlightedLinks);
    group.Read(u"VORecordedColor", s.VORecordedColor);
}

const std::u16string& FaceFXActorFolder() {
    static std::u16string folder;
    if (folder.empty()) {
        CTsComPtr<ITsConfiguration> store = Store();
        GroupReader(store.Get()).Read(u"FXAPerforcePath", folder);
    }
    return folder;
}

}  // namespace dlg
