#pragma once

#include <cstdint>

#include "ts/unknown.h"

// The host's parent for a plugin window; null for a free-standing one.
using TsWindowHandle = void*;

// Flags of a plugin class, read from the "flags" attribute of its definition's tsPlugin element.
inline constexpr std::uint32_t kTsPluginSingleInstance = 0x10000;  // "SingleInstance"
inline constexpr std::uint32_t kTsPluginToolWindow = 0x20000;      // "ToolWindow"

enum class TsLayoutFile : std::uint32_t {
    Default = 0,  // the shipped layouts
    User = 1,     // the user's saved layouts
};

// The window side of an editor object: the host has the window made and closed, and asks how
// the class wants to be shown and where its pane layouts are kept.
struct ITsUIWindow : IUnknown {
    TS_INTERFACE_ID("{74F1A3AE-C7ED-42CB-B249-7AE98A2D24F4}");

    // Makes the editor's window; S_FALSE when it already exists.
    virtual HRESULT CreateUIWindow(TsWindowHandle parent) = 0;
    // Destroys the window; every later call on the editor's interfaces fails with E_FAIL.
    virtual HRESULT CloseUIWindow() = 0;
    // kTsPlugin* flags from the class's definition; needs no window.
    virtual HRESULT GetPluginFlags(std::uint32_t* flags) = 0;
    // The path of a layout file, newly allocated.
    virtual HRESULT GetLayoutFile(TsLayoutFile which, char16_t** path) = 0;
    // The profile key of the named default layout, newly allocated.
    virtual HRESULT GetDefaultLayoutKey(const char16_t* layoutName, char16_t** key) = 0;

protected:
    ~ITsUIWindow() = default;
};
