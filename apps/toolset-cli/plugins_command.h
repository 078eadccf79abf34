#pragma once

#include <string>

// `toolset-cli plugins [folder]`: reads and loads every plugin library of the folder (the host's
// plugins folder by default) and prints what each offers, or why it was skipped. Returns 0 when
// every library loaded, 1 when one was skipped or the folder can't be read.
int RunPluginsCommand(const std::string& folder);
