#include "support/test_folders.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace ts::test {

std::string MakeTempFolder(const std::string& prefix) {
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    std::vector<char> buf(pattern.begin(), pattern.end());
    buf.push_back('\0');
    if (!mkdtemp(buf.data())) throw std::runtime_error("cannot make a temporary folder");
    return buf.data();
}

}  // namespace ts::test
