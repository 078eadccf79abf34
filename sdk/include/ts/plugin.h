#pragma once

#include <cstdint>
#include <string_view>

#include "ts/api.h"
#include "ts/atoms.h"
#include "ts/unknown.h"

// What a plugin library offers the host: exactly two exported functions, and the definition of
// its classes as XML text in a section of the library file, which the host reads without
// loading the library.
using TsDllGetClassObjectFn = HRESULT (*)(REFCLSID clsid, REFIID iid, void** object);
using TsDllSendEventFn = HRESULT (*)(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                                     IUnknown* payload);

inline constexpr const char* kTsDllGetClassObjectName = "DllGetClassObject";
inline constexpr const char* kTsDllSendEventName = "DllSendEvent";
inline constexpr const char* kTsPluginDefinitionSection = ".ts_plugin_def";

// Marks the two entry points of a plugin library.
#define TS_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
// Places a character array holding the definition text in the definition section.
#define TS_PLUGIN_DEFINITION __attribute__((section(".ts_plugin_def"), used))

// An attribute of a plugin class's definition, as the host read it: "description",
// "threadingModel", or a path below the plugin element such as "tsPlugin.flags". S_OK and the
// value (newly allocated); S_FALSE and null when the class has no such attribute;
// CLASS_E_CLASSNOTAVAILABLE when no plugin read by the host defines the class.
TS_API HRESULT TsGetPluginAttribute(REFCLSID clsid, std::u16string_view attribute,
                                    char16_t** value);
