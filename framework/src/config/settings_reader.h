#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ts/configuration.h"

namespace ts {

// One settings file as written, before it is layered over others.
struct SettingsFile {
    struct Value {
        std::u16string group;
        std::u16string key;
        std::u16string text;
        std::size_t line;
    };
    std::vector<Value> values;
    std::vector<std::pair<std::u16string, std::vector<MenuEntry>>> menus;
};

// Parses the XML of a settings file; on failure `error` says what and where ("line 4: ...").
bool ParseSettings(std::string_view xml, SettingsFile& out, std::u16string& error);

}  // namespace ts
