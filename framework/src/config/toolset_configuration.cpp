#include <cstdlib>
#include <filesystem>

#include "ts/comobject.h"
#include "ts/configuration.h"
#include "ts/paths.h"
#include "ts/report.h"

namespace ts {

namespace {

void LoadInto(Configuration& c) {
    c = Configuration();
    std::u16string error;
    if (!c.LoadFile(ApplicationDataFolder() + "/DefaultSettings.xml", &error))
        Report(ReportLevel::Warning, "configuration", __LINE__,
               u"The default settings could not be read: " + error);
    std::error_code ec;
    std::string user = UserSettingsPath();
    if (std::filesystem::exists(user, ec) && !c.LoadFile(user, &error))
        Report(ReportLevel::Warning, "configuration", __LINE__,
               u"Your settings file could not be read, so the default settings apply: " + error);
}

Configuration& Instance() {
    static auto* configuration = [] {
        auto* c = new Configuration;
        LoadInto(*c);
        return c;
    }();
    return *configuration;
}

class ConfigurationObject : public CTsComObjectRoot<ITsConfiguration> {
public:
    HRESULT ReadValue(std::u16string_view group, std::u16string_view key, variant* value,
                      std::uint32_t wantedType, std::uint32_t) override {
        if (!value) return E_POINTER;
        const Configuration& c = Instance();
        if (!c.Has(group, key)) return TS_E_NOT_FOUND;
        std::u16string error;
        bool ok = false;
        switch (wantedType) {
            case kTsTypeBool: {
                bool v;
                if ((ok = c.GetBool(group, key, v, &error))) *value = variant(kTsTypeBool, v);
                break;
            }
            case kTsTypeInt: {
                std::int32_t v;
                if ((ok = c.GetInt(group, key, v, &error))) *value = variant(kTsTypeInt, v);
                break;
            }
            case kTsTypeFloat: {
                float v;
                if ((ok = c.GetFloat(group, key, v, &error))) *value = variant(kTsTypeFloat, v);
                break;
            }
            case kTsTypeString: {
                std::u16string v;
                if ((ok = c.GetString(group, key, v, &error)))
                    *value = variant(kTsTypeString, std::u16string_view(v));
                break;
            }
            case kTsTypeColour: {
                TsColour v;
                if ((ok = c.GetColour(group, key, v, &error))) *value = variant(kTsTypeColour, v);
                break;
            }
            default:
                return E_INVALIDARG;
        }
        if (ok) return S_OK;
        Report(ReportLevel::Warning, "configuration", __LINE__, error);
        return E_INVALIDARG;
    }

    HRESULT GetMenus(std::u16string_view section, std::vector<MenuEntry>* entries) override {
        if (!entries) return E_POINTER;
        const std::vector<MenuEntry>* menus = Instance().Menus(section);
        if (!menus) return TS_E_NOT_FOUND;
        *entries = *menus;
        return S_OK;
    }
};

}  // namespace

std::string ApplicationDataFolder() {
    if (const char* folder = std::getenv("TS_APPDATAPATH"); folder && *folder) return folder;
    return TS_SOURCE_DATA_FOLDER;
}

std::string UserSettingsPath() {
    return ToolsetConfigFolder() + "/Settings.xml";
}

const Configuration& ToolsetConfiguration() {
    return Instance();
}

void ReloadToolsetConfiguration() {
    LoadInto(Instance());
}

}  // namespace ts

HRESULT TsGetConfiguration(ITsConfiguration** configuration) {
    if (!configuration) return E_POINTER;
    static auto* object = [] {
        auto created = CTsComObjectNoLock<ts::ConfigurationObject>::Create();
        return created.Detach();  // lives as long as the process
    }();
    object->AddRef();
    *configuration = object;
    return S_OK;
}
