#pragma once

#include <string>
#include <string_view>

// Files the command-line host writes besides modules (exports), written so that neither a module
// nor half a file is ever left where the user asked for a whole one.
namespace cli {

// False, with the reason, when writing `target` would replace the module `module` (the file
// itself or its log files, under any name: links and relative paths are compared by the file's
// identity) or any other toolset module.
bool MayWriteOver(const std::string& target, const std::string& module, std::u16string& why);

// Writes `bytes` to a new file beside `target`, flushes it to disk and renames it over `target`.
// On failure nothing changed and `error` says why, in the system's words.
bool WriteWholeFile(const std::string& target, std::string_view bytes, std::u16string& error);

}  // namespace cli
