#include "plugins/plugin_catalog.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "ts/hoststring.h"

namespace ts::detail {

namespace {

struct Catalog {
    std::mutex mutex;
    std::vector<const PluginLoader*> loaders;
};

Catalog& TheCatalog() {
    static auto* catalog = new Catalog;
    return *catalog;
}

}  // namespace

void RegisterLoader(const PluginLoader* loader) {
    auto& c = TheCatalog();
    std::lock_guard lock(c.mutex);
    c.loaders.push_back(loader);
}

void UnregisterLoader(const PluginLoader* loader) {
    auto& c = TheCatalog();
    std::lock_guard lock(c.mutex);
    std::erase(c.loaders, loader);
}

const PluginClassInfo* FindClassInLoaders(REFCLSID clsid) {
    auto& c = TheCatalog();
    std::lock_guard lock(c.mutex);
    for (const PluginLoader* loader : c.loaders)
        if (const PluginClassInfo* info = loader->FindClass(clsid)) return info;
    return nullptr;
}

}  // namespace ts::detail

HRESULT TsGetPluginAttribute(REFCLSID clsid, std::u16string_view attribute, char16_t** value) {
    if (!value) return E_POINTER;
    *value = nullptr;
    const ts::PluginClassInfo* info = ts::detail::FindClassInLoaders(clsid);
    if (!info) return CLASS_E_CLASSNOTAVAILABLE;
    auto found = info->Attribute(attribute);
    if (!found) return S_FALSE;
    *value = TsAllocString(*found);
    return *value ? S_OK : E_OUTOFMEMORY;
}
