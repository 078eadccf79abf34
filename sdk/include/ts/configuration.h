#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"
#include "ts/unknown.h"
#include "ts/variant.h"

// The toolset's configuration store: values by group and key, and menu descriptions by section.
// The defaults come from "DefaultSettings.xml" in the toolset's application-data folder; the
// user's own values, in a file of the same form under the user's config folder, override them
// key by key (and menu sections whole). The form:
//
//   <Settings Version="1">
//     <Group Name="Common\DlgEditor">
//       <Value Key="LinkColor">0.5 0.5 0.5</Value>
//       <Value Key="MaxHenchmen">4</Value>
//     </Group>
//     <Menus Name="DialogEditorMenus">
//       <Popup Caption="Edit">
//         <Command Name="Edit.DialogEditor.Insert.Line"/>
//         <Separator/>
//       </Popup>
//     </Menus>
//   </Settings>
//
// Values are text, read as the caller asks: bool (true/false, yes/no, 1/0), integer, float,
// string (as written) or colour (three or four numbers from 0 to 1 separated by blanks or
// commas, or "#RRGGBB"). Group, key and section names ignore ASCII case.
namespace ts {

struct MenuEntry {
    enum class Kind { Popup, Separator, Command };
    Kind kind = Kind::Command;
    std::u16string text;             // a popup's caption or a command's name
    std::vector<MenuEntry> entries;  // a popup's own entries
};

class TS_API Configuration {
public:
    // Reads a settings file over what is already loaded. On failure (a missing file, malformed
    // XML, an unknown element) nothing of the file is kept and `error` names the file and line.
    bool LoadFile(const std::string& path, std::u16string* error = nullptr);
    bool LoadText(std::string_view xml, std::u16string_view origin,
                  std::u16string* error = nullptr);

    bool Has(std::u16string_view group, std::u16string_view key) const;
    // Each read fails, leaving `out` as it was, when the value is missing or is not of the kind
    // asked for; `error` then says which.
    bool GetBool(std::u16string_view group, std::u16string_view key, bool& out,
                 std::u16string* error = nullptr) const;
    bool GetInt(std::u16string_view group, std::u16string_view key, std::int32_t& out,
                std::u16string* error = nullptr) const;
    bool GetFloat(std::u16string_view group, std::u16string_view key, float& out,
                  std::u16string* error = nullptr) const;
    bool GetString(std::u16string_view group, std::u16string_view key, std::u16string& out,
                   std::u16string* error = nullptr) const;
    bool GetColour(std::u16string_view group, std::u16string_view key, TsColour& out,
                   std::u16string* error = nullptr) const;

    // The entries of a menu section ("DialogEditorMenus"), or null when there is none.
    const std::vector<MenuEntry>* Menus(std::u16string_view section) const;

    struct Stored {
        std::u16string text;
        std::u16string origin;  // file and line, for messages
    };

private:
    const Stored* Find(std::u16string_view group, std::u16string_view key,
                       std::u16string* error) const;

    std::map<std::u16string, Stored> values_;  // key: lower-case "group\nkey"
    std::map<std::u16string, std::vector<MenuEntry>> menus_;
};

// The keys of the group "Environment" that the toolset and its plugins read, with their defaults.
struct EnvironmentSettings {
#define TS_ENVIRONMENT_KEYS(K)                        \
    K(Role, String, u"")                              \
    K(ConfigVersion, Int, 0)                          \
    K(Win32GameBuildPath, String, u"")                \
    K(AlternateWin32GameBuildPath, String, u"")       \
    K(AlternateGameBuildEnable, Bool, false)          \
    K(PerforceGameEnable, Bool, false)                \
    K(PerforceGameUserEnable, Bool, false)            \
    K(PerforceGameUseDefault, Bool, false)            \
    K(PerforceGameClientSpec, String, u"")            \
    K(XBox360GameBuildPath, String, u"")              \
    K(XBox360IHaveOne, Bool, false)                   \
    K(XBox360AutoCopy, Int, 0)                        \
    K(PS3GameBuildPath, String, u"")                  \
    K(PS3IHaveOne, Bool, false)                       \
    K(ArtSourcePath, String, u"")                     \
    K(PerforceArtSourceEnable, Bool, false)           \
    K(PerforceArtSourceUseArtDefault, Bool, false)    \
    K(PerforceArtSourceUseDefault, Bool, false)       \
    K(PerforceArtSourceClientSpec, String, u"")       \
    K(MaxPath, String, u"")                           \
    K(PhotoshopPath, String, u"")                     \
    K(ZBrushPath, String, u"")                        \
    K(FaceFXStudioPath, String, u"")                  \
    K(FMODPath, String, u"")                          \
    K(UseDefaultDatabase, Bool, true)                 \
    K(DatabaseConnection, String, u"")                \
    K(UseDefaultResourceDatabase, Bool, true)         \
    K(ResourceDatabaseConnection, String, u"")        \
    K(PrototypePath, String, u"")                     \
    K(ViewerMachine, String, u"")                     \
    K(ArtDevEnable, Bool, false)                      \
    K(ArtDevOverrideDirectory, Bool, false)           \
    K(ArtDevDirectory, String, u"")                   \
    K(DefaultDatabaseConnection, String, u"")         \
    K(DefaultResourceDatabaseConnection, String, u"") \
    K(DefaultP4Port, String, u"")                     \
    K(DefaultP4UpdateClient, String, u"")             \
    K(ResourcePostIntermediate, Bool, false)          \
    K(UpdateIntermediate, Bool, false)                \
    K(ResourceBuildPerforceEnable, Bool, true)        \
    K(ResourceBuildPath, String, u"")

#define TS_ENVIRONMENT_TYPE_String std::u16string
#define TS_ENVIRONMENT_TYPE_Int std::int32_t
#define TS_ENVIRONMENT_TYPE_Bool bool
#define TS_ENVIRONMENT_MEMBER(Name, Kind, Default) TS_ENVIRONMENT_TYPE_##Kind Name = Default;
    TS_ENVIRONMENT_KEYS(TS_ENVIRONMENT_MEMBER)
#undef TS_ENVIRONMENT_MEMBER
};

// Reads the "Environment" group; keys that are missing or unreadable keep their defaults (an
// unreadable one is reported).
TS_API EnvironmentSettings ReadEnvironment(const Configuration& configuration);

// The toolset's application-data folder, which holds DefaultSettings.xml: $TS_APPDATAPATH, else
// the data folder of the source tree the toolset was built from.
TS_API std::string ApplicationDataFolder();
// The user's settings file: "<config folder>/Settings.xml".
TS_API std::string UserSettingsPath();

// The process's configuration, loaded on first use from the defaults and the user's file.
// Problems are reported (WARNING) and leave the defaults, or nothing, in place.
TS_API const Configuration& ToolsetConfiguration();
// Loads both files again, after the user changed options.
TS_API void ReloadToolsetConfiguration();

}  // namespace ts

// The configuration store as host calls reach it.
struct ITsConfiguration : IUnknown {
    TS_INTERFACE_ID("{5B0C2E9D-7A41-4F63-8E1B-3C9D4A6F2B17}");

    // S_OK and the value as `wantedType` (kTsTypeBool, kTsTypeInt, kTsTypeFloat, kTsTypeString or
    // kTsTypeColour); TS_E_NOT_FOUND when the store has no such value; E_INVALIDARG when the
    // stored text is not of that kind (reported) or the type is not one of these. `flags` is
    // reserved (0).
    virtual HRESULT ReadValue(std::u16string_view group, std::u16string_view key, variant* value,
                              std::uint32_t wantedType, std::uint32_t flags) = 0;
    // S_OK and the entries of the section; TS_E_NOT_FOUND when there is none.
    virtual HRESULT GetMenus(std::u16string_view section, std::vector<ts::MenuEntry>* entries) = 0;

protected:
    ~ITsConfiguration() = default;
};

// The process's configuration store.
TS_API HRESULT TsGetConfiguration(ITsConfiguration** configuration);
