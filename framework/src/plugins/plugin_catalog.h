#pragma once

#include "ts/pluginloader.h"

// The plugin loaders alive in the process, so that the host functions that answer questions
// about plugin classes (TsGetPluginAttribute) can consult what the loaders read.
namespace ts::detail {

void RegisterLoader(const PluginLoader* loader);
void UnregisterLoader(const PluginLoader* loader);
// The class as read by the first loader (in creation order) that knows it; null when none does.
// The pointer is valid while that loader keeps the plugin.
const PluginClassInfo* FindClassInLoaders(REFCLSID clsid);

}  // namespace ts::detail
