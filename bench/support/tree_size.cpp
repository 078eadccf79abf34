#include "support/tree_size.h"

#include <filesystem>

namespace ts::bench {

std::size_t CountNodes(ITsProperty* node) {
    std::size_t n = 1;
    ITsProperty* const* children = nullptr;
    std::uint32_t count = 0;
    if (node->GetType() == kTsTypeList && SUCCEEDED(node->GetChildArray(&children, &count)))
        for (std::uint32_t i = 0; i < count; ++i) n += CountNodes(children[i]);
    return n;
}

std::string FreshModulePath(const std::string& name) {
    std::string path = (std::filesystem::temp_directory_path() / (name + ".tsmod")).string();
    for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
    return path;
}

}  // namespace ts::bench
