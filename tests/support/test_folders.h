#pragma once

#include <string>

namespace ts::test {

// A new empty folder under the system's temporary folder.
std::string MakeTempFolder(const std::string& prefix);

}  // namespace ts::test
