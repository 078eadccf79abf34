#pragma once

#include <string>

namespace toolset {

// The desktop toolset's command line.
struct ToolsetOptions {
    std::string module;      // --module FILE: the module to open
    std::string open;        // --open NAME.TYPE: the resource to open in it (else its first
                             // conversation)
    std::string screenshot;  // --screenshot PNG: save the window as a picture, then exit
    bool expandAll = false;  // --expand-all: expand the opened conversation's whole tree
    bool help = false;
};

// Parses the arguments after the program's name; false with `error` set when they are wrong.
bool ParseToolsetOptions(int argc, char** argv, ToolsetOptions& options, std::string& error);

inline constexpr const char* kToolsetUsage =
    "usage: toolset [--module FILE [--open NAME.TYPE] [--expand-all] [--screenshot PNG]]\n"
    "  --module FILE     open a module file (.tsmod); its first conversation is shown\n"
    "  --open NAME.TYPE  show this resource instead (\"orla_welcome.dlg\")\n"
    "  --expand-all      expand the whole tree of the shown conversation\n"
    "  --screenshot PNG  save a picture of the window and exit (works with\n"
    "                    QT_QPA_PLATFORM=offscreen)\n";

}  // namespace toolset
