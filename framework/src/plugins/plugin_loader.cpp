#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "plugins/plugin_catalog.h"
#include "ts/comptr.h"
#include "ts/environment.h"
#include "ts/format.h"
#include "ts/pluginloader.h"
#include "ts/report.h"
#include "ts/text.h"

namespace ts {

namespace {

constexpr const char* kSource = "pluginloader";

}  // namespace

const char* PluginStateName(PluginState state) {
    switch (state) {
        case PluginState::Found:
            return "found";
        case PluginState::Read:
            return "read";
        case PluginState::Loaded:
            return "loaded";
    }
    return "unknown";
}

Plugin::Plugin(std::string path) : path_(std::move(path)) {}

Plugin::~Plugin() {
    Unload();
}

std::string Plugin::FileName() const {
    return std::filesystem::path(path_).filename().string();
}

const PluginClassInfo* Plugin::FindClass(REFCLSID clsid) const {
    for (const auto& c : definition_.classes)
        if (c.clsid == clsid) return &c;
    return nullptr;
}

bool Plugin::Fail(std::u16string message) {
    error_ = std::move(message);
    Report(ReportLevel::Warning, kSource, __LINE__,
           Format(u"Plugin \"%s\" skipped: %ls", FileName(), error_));
    return false;
}

bool Plugin::Read() {
    if (state_ != PluginState::Found) return !HasError();
    std::u16string error;
    if (!ReadElfSection(path_, kTsPluginDefinitionSection, definitionText_, error))
        return Fail(error);
    if (!ParsePluginDefinition(definitionText_, definition_, error)) return Fail(error);
    error_.clear();
    state_ = PluginState::Read;
    return true;
}

bool Plugin::Load() {
    if (state_ == PluginState::Loaded) return true;
    // A library that failed to load once is not tried again (and not reported again).
    if (state_ != PluginState::Read || HasError()) return false;
    dlerror();
    handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle_) {
        const char* why = dlerror();
        return Fail(Format(u"the library cannot be loaded: %s", why ? why : "unknown error"));
    }
    auto getClassObject =
        reinterpret_cast<TsDllGetClassObjectFn>(dlsym(handle_, kTsDllGetClassObjectName));
    auto sendEvent = reinterpret_cast<TsDllSendEventFn>(dlsym(handle_, kTsDllSendEventName));
    if (!getClassObject || !sendEvent) {
        dlclose(handle_);
        handle_ = nullptr;
        return Fail(Format(u"the library does not export %s",
                           !getClassObject ? kTsDllGetClassObjectName : kTsDllSendEventName));
    }
    getClassObject_ = getClassObject;
    sendEvent_ = sendEvent;
    error_.clear();
    state_ = PluginState::Loaded;
    return true;
}

void Plugin::Unload() {
    if (!handle_) return;
    getClassObject_ = nullptr;
    sendEvent_ = nullptr;
    dlclose(handle_);
    handle_ = nullptr;
    state_ = PluginState::Read;
}

PluginLoader::PluginLoader() {
    detail::RegisterLoader(this);
}

PluginLoader::~PluginLoader() {
    detail::UnregisterLoader(this);
    UnloadAll();
}

std::size_t PluginLoader::Scan(const std::string& folder) {
    std::error_code ec;
    std::vector<std::string> files;
    for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end;
         it.increment(ec)) {
        std::error_code typeError;
        if (it->path().extension() == ".so" && it->is_regular_file(typeError))
            files.push_back(it->path().string());
    }
    if (ec) {
        Report(ReportLevel::Warning, kSource, __LINE__,
               Format(u"The plugins folder \"%s\" cannot be read: %s", folder, ec.message()));
        return 0;
    }
    std::sort(files.begin(), files.end());
    std::size_t read = 0;
    for (const auto& file : files) read += Add(file).State() != PluginState::Found;
    return read;
}

Plugin& PluginLoader::Add(const std::string& path) {
    auto& plugin = *plugins_.emplace_back(std::make_unique<Plugin>(path));
    if (!plugin.Read()) return plugin;
    // A class offered twice is served by the first library; the later one is named in the log.
    for (const auto& c : plugin.Definition().classes) {
        Plugin* owner = FindPlugin(c.clsid);
        if (owner != &plugin)
            Report(ReportLevel::Warning, kSource, __LINE__,
                   Format(u"Plugin \"%s\" defines the class %ls, which \"%s\" already offers; the "
                          u"first is used",
                          plugin.FileName(), c.clsidText, owner->FileName()));
    }
    return plugin;
}

std::size_t PluginLoader::LoadAll() {
    std::size_t loaded = 0;
    for (auto& plugin : plugins_)
        loaded += plugin->State() == PluginState::Read ? Load(*plugin)
                                                       : plugin->State() == PluginState::Loaded;
    return loaded;
}

bool PluginLoader::Load(Plugin& plugin) {
    return plugin.Load();
}

void PluginLoader::UnloadAll() {
    for (auto it = plugins_.rbegin(); it != plugins_.rend(); ++it) (*it)->Unload();
}

Plugin* PluginLoader::FindPlugin(REFCLSID clsid) const {
    for (const auto& plugin : plugins_)
        if (plugin->State() != PluginState::Found && plugin->FindClass(clsid)) return plugin.get();
    return nullptr;
}

const PluginClassInfo* PluginLoader::FindClass(REFCLSID clsid) const {
    Plugin* plugin = FindPlugin(clsid);
    return plugin ? plugin->FindClass(clsid) : nullptr;
}

const PluginClassInfo* PluginLoader::FindClassByPattern(std::u16string_view name) const {
    for (const auto& plugin : plugins_) {
        if (plugin->State() == PluginState::Found) continue;
        for (const auto& c : plugin->Definition().classes)
            if (c.MatchesPattern(name) && FindPlugin(c.clsid) == plugin.get()) return &c;
    }
    return nullptr;
}

HRESULT PluginLoader::GetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    Plugin* plugin = FindPlugin(clsid);
    if (!plugin) return CLASS_E_CLASSNOTAVAILABLE;
    if (!Load(*plugin)) return E_FAIL;
    return plugin->GetClassObjectEntry()(clsid, iid, object);
}

HRESULT PluginLoader::GetClassObject(std::u16string_view pattern, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const PluginClassInfo* info = FindClassByPattern(pattern);
    return info ? GetClassObject(info->clsid, iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT PluginLoader::CreateInstance(REFCLSID clsid, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    CTsComPtr<IClassFactory> factory;
    if (HRESULT hr = GetClassObject(clsid, IClassFactory::kIID, factory.PutVoid()); FAILED(hr))
        return hr;
    if (!factory) return CLASS_E_CLASSNOTAVAILABLE;
    return factory->CreateInstance(nullptr, iid, object);
}

HRESULT PluginLoader::CreateInstance(std::u16string_view pattern, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    const PluginClassInfo* info = FindClassByPattern(pattern);
    return info ? CreateInstance(info->clsid, iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

void PluginLoader::Broadcast(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                             IUnknown* payload) {
    for (const auto& plugin : plugins_)
        if (plugin->State() == PluginState::Loaded)
            plugin->SendEventEntry()(event, param1, param2, payload);
    BroadcastToEventSinks(event, param1, param2, payload);
}

std::string DefaultPluginFolder() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec) return "plugins";
    return (exe.parent_path().parent_path() / "lib" / "plugins").lexically_normal().string();
}

}  // namespace ts
