#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "ts/property.h"

namespace ts {

// Declaration attributes (display name, category, ...) are the same for every node of one
// declared field, so nodes keep a 32-bit handle into this process-wide table instead of their
// own strings. Handle 0 is "all empty".
using AttributeSet = std::array<std::u16string, kTsPropertyAttributeCount>;

class AttributeTable {
public:
    static std::uint32_t Intern(const std::array<std::u16string_view, kTsPropertyAttributeCount>& values);
    static std::uint32_t WithAttribute(std::uint32_t handle, TsPropertyAttribute which,
                                       std::u16string_view text);
    // Valid for the life of the process.
    static const AttributeSet& Get(std::uint32_t handle);
    static std::size_t Size();
};

}  // namespace ts
