#include "ts/hoststring.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

// Layout: a 32-bit length, then the units and a terminating zero. The pointer handed out points
// at the units, as the platform's strings do.
char16_t* TsAllocString(std::u16string_view text) {
    auto* block = static_cast<std::uint32_t*>(
        std::malloc(sizeof(std::uint32_t) + (text.size() + 1) * sizeof(char16_t)));
    if (!block) throw std::bad_alloc();
    block[0] = static_cast<std::uint32_t>(text.size());
    auto* units = reinterpret_cast<char16_t*>(block + 1);
    if (!text.empty()) std::memcpy(units, text.data(), text.size() * sizeof(char16_t));
    units[text.size()] = 0;
    return units;
}

void TsFreeString(char16_t* text) {
    if (text) std::free(reinterpret_cast<std::uint32_t*>(text) - 1);
}

std::size_t TsStringLength(const char16_t* text) {
    return text ? reinterpret_cast<const std::uint32_t*>(text)[-1] : 0;
}
