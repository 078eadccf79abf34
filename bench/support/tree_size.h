#pragma once

#include <cstddef>
#include <string>

#include "ts/property.h"

namespace ts::bench {

// Nodes of a tree, the root included. Nodes are 40-byte blocks from the node pool's slabs,
// which the heap's statistics do not see once the slabs are on the free list.
std::size_t CountNodes(ITsProperty* root);
inline constexpr std::size_t kNodeBytes = 40;

// A module file path in the system's temporary folder, with any earlier module of that name and
// its log files removed.
std::string FreshModulePath(const std::string& name);

}  // namespace ts::bench
