#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"
#include "ts/atoms.h"
#include "ts/guid.h"
#include "ts/plugin.h"
#include "ts/unknown.h"

namespace ts {

// One class of a plugin definition.
struct TS_API PluginClassInfo {
    CLSID clsid;
    std::u16string clsidText;  // as written in the definition
    std::u16string description;
    std::u16string threadingModel;
    std::vector<std::u16string> patterns;  // names by which the host finds the class
    // Every attribute of the plugin element and of the elements below it, by path:
    // "clsid", "description", "tsPlugin.flags", "tsPlugin.pattern.text" (first pattern), ...
    std::map<std::u16string, std::u16string, std::less<>> attributes;

    std::optional<std::u16string> Attribute(std::u16string_view path) const;
    // True when one of the patterns matches `name`: letters compared without regard to case,
    // '*' standing for any run of characters and '?' for one.
    bool MatchesPattern(std::u16string_view name) const;
};

struct PluginDefinition {
    std::vector<PluginClassInfo> classes;
};

// Parses a plugin definition (UTF-8 XML). On failure returns false with a message naming the
// problem and, for malformed XML, its line.
TS_API bool ParsePluginDefinition(std::string_view xml, PluginDefinition& definition,
                                  std::u16string& error);

// Reads the bytes of the named section of an ELF file without loading it. Any damage (short
// file, bad offsets, another architecture's byte order) is an error message, never a crash.
TS_API bool ReadElfSection(const std::string& path, std::string_view section, std::string& bytes,
                           std::u16string& error);

// The furthest step a plugin library has reached; a failed step leaves the state where it was
// and records an error.
enum class PluginState {
    Found,   // the file is known
    Read,    // its definition was read and parsed
    Loaded,  // the library is loaded and both entry points resolved
};

TS_API const char* PluginStateName(PluginState state);

class PluginLoader;

// One plugin library as the host knows it.
class TS_API Plugin {
public:
    explicit Plugin(std::string path);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    const std::string& Path() const { return path_; }
    std::string FileName() const;
    PluginState State() const { return state_; }
    bool HasError() const { return !error_.empty(); }
    const std::u16string& Error() const { return error_; }
    // The definition's text as found in the library, and what was read from it.
    const std::string& DefinitionText() const { return definitionText_; }
    const PluginDefinition& Definition() const { return definition_; }
    const PluginClassInfo* FindClass(REFCLSID clsid) const;

    // Entry points; null unless loaded.
    TsDllGetClassObjectFn GetClassObjectEntry() const { return getClassObject_; }
    TsDllSendEventFn SendEventEntry() const { return sendEvent_; }

private:
    friend class PluginLoader;
    bool Read();
    bool Load();
    void Unload();
    bool Fail(std::u16string message);

    std::string path_;
    PluginState state_ = PluginState::Found;
    std::u16string error_;
    std::string definitionText_;
    PluginDefinition definition_;
    void* handle_ = nullptr;
    TsDllGetClassObjectFn getClassObject_ = nullptr;
    TsDllSendEventFn sendEvent_ = nullptr;
};

// The host's plugin loader: finds plugin libraries in a folder, reads their definitions
// without loading them, loads them when a class is wanted, hands out class factories and
// editor objects, and broadcasts host events to every loaded plugin and to the advised sinks.
// A library that can't be read or loaded is reported (WARNING) and skipped.
//
// Unloading (UnloadAll, or the destructor) releases the libraries: every object the plugins
// made must have been released before.
class TS_API PluginLoader {
public:
    PluginLoader();
    ~PluginLoader();
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    // Reads the definition of every "*.so" file of `folder`, in file-name order. Returns how
    // many were read; a missing folder is reported and gives 0.
    std::size_t Scan(const std::string& folder);
    // Reads one library file; the plugin is kept whether or not it could be read.
    Plugin& Add(const std::string& path);
    // Loads every plugin that was read; returns how many are loaded afterwards.
    std::size_t LoadAll();
    bool Load(Plugin& plugin);
    void UnloadAll();

    const std::vector<std::unique_ptr<Plugin>>& Plugins() const { return plugins_; }

    // The first plugin (in scan order) whose definition offers the class, and that class.
    Plugin* FindPlugin(REFCLSID clsid) const;
    const PluginClassInfo* FindClass(REFCLSID clsid) const;
    const PluginClassInfo* FindClassByPattern(std::u16string_view name) const;

    // A class factory (or another interface of it) from the plugin that offers the class,
    // loading the plugin first when needed. CLASS_E_CLASSNOTAVAILABLE when no plugin offers
    // it, E_FAIL when its library can't be loaded, else the plugin's own result.
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object);
    HRESULT GetClassObject(std::u16string_view pattern, REFIID iid, void** object);
    // A new object of the class: its factory's CreateInstance without an outer object.
    HRESULT CreateInstance(REFCLSID clsid, REFIID iid, void** object);
    HRESULT CreateInstance(std::u16string_view pattern, REFIID iid, void** object);

    // Sends a host event to every loaded plugin's DllSendEvent, then to every advised sink.
    void Broadcast(TsAtom event, std::uint32_t param1, std::uint32_t param2, IUnknown* payload);

private:
    std::vector<std::unique_ptr<Plugin>> plugins_;
};

// The plugins folder beside the running host: "<folder of the executable>/../lib/plugins".
TS_API std::string DefaultPluginFolder();

}  // namespace ts
