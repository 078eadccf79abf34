#pragma once

#include <string>

#include "ts/api.h"

// Where the toolset keeps its files, following the XDG folders with the usual fallbacks.
namespace ts {

// "$XDG_DATA_HOME/Halvorn/Mistreach/Toolset" (~/.local/share when unset).
TS_API std::string ToolsetDataFolder();
// "$XDG_CONFIG_HOME/Halvorn/Mistreach/Toolset" (~/.config when unset).
TS_API std::string ToolsetConfigFolder();
// The running program's file name without folder or extension.
TS_API std::string HostExecutableName();
// Creates the folder and its parents; true when it exists afterwards.
TS_API bool EnsureFolder(const std::string& path);
// The user's documents folder: XDG_DOCUMENTS_DIR of "$XDG_CONFIG_HOME/user-dirs.dirs", else
// "$HOME/Documents".
TS_API std::string DocumentsFolder();

}  // namespace ts
