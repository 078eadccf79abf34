#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ts/stringenum.h"
#include "ts/unknown.h"

// The id of a command that has none (a submenu, or a name known only from a menu description).
inline constexpr std::uint32_t kTsNoCommandId = 0xFFFFFFFFu;

// States of a command, as GetCommandState answers them.
inline constexpr std::uint32_t kTsCommandEnabled = 1;
inline constexpr std::uint32_t kTsCommandChecked = 2;

// A command or a menu entry of a command source: a command (its name and id), a submenu (its
// caption as name, `isSubmenu`, its entries in `children`), or a separator (empty name).
struct TsCommandItem {
    std::u16string name;
    std::uint32_t id = kTsNoCommandId;
    bool isSubmenu = false;
    std::vector<TsCommandItem> children;

    bool IsSeparator() const { return name.empty() && !isSubmenu; }
};

// An editor's commands as the host sees them: the source's name, under which the host files
// its commands, the command bars (tool bars) it shows, its commands and menus, and what the
// host needs to draw them and send the chosen one back by id.
struct ITsUICommandSource : IUnknown {
    TS_INTERFACE_ID("{7ACEF16F-FE68-49E0-87C3-020C3B4B2245}");

    // The name, newly allocated. Without a window: S_FALSE and an empty name.
    virtual HRESULT GetCommandSourceName(char16_t** name) = 0;
    // The names of the command bars, in order.
    virtual HRESULT GetCommandBars(ITsStringEnum** bars) = 0;
    // Every command the source registered, in registration order (no children).
    virtual HRESULT GetCommands(std::vector<TsCommandItem>* commands) = 0;
    // The source's menus, from its menu description: top-level entries in order.
    virtual HRESULT GetMenus(std::vector<TsCommandItem>* menus) = 0;
    // kTsCommand* bits of the command on the current selection; E_INVALIDARG for an unknown id.
    virtual HRESULT GetCommandState(std::uint32_t id, std::uint32_t* state) = 0;
    // Runs the command: S_OK when it ran, S_FALSE when it is disabled (nothing happens),
    // E_INVALIDARG for an unknown id.
    virtual HRESULT ExecuteCommand(std::uint32_t id) = 0;

protected:
    ~ITsUICommandSource() = default;
};
