#pragma once

#include <cstdint>
#include <string_view>

#include "ts/guid.h"

namespace ts {

// The kTsPlugin* flags named by a "flags" attribute: tokens separated by ",", blanks around
// them ignored. An unknown token adds nothing and is reported ("Unknown flag in plugin
// settings"); an empty attribute gives 0.
std::uint32_t ParsePluginFlags(std::u16string_view attribute);

// The flags of a plugin class, from the "tsPlugin.flags" attribute of the definition the host
// read; 0 when the attribute is absent or the host does not know the class.
std::uint32_t PluginFlagsOf(REFCLSID clsid);

}  // namespace ts
