#include <array>

#include "ts/resourcecodec.h"

namespace ts {

namespace {

// Slicing by eight: eight tables let the loop take eight bytes per step, which keeps the check
// of a large conversation to a few milliseconds.
using Tables = std::array<std::array<std::uint32_t, 256>, 8>;

constexpr Tables MakeTables() {
    Tables t{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        t[0][i] = c;
    }
    for (std::size_t i = 0; i < 256; ++i)
        for (std::size_t s = 1; s < 8; ++s) t[s][i] = (t[s - 1][i] >> 8) ^ t[0][t[s - 1][i] & 0xFF];
    return t;
}

constexpr Tables kTables = MakeTables();

}  // namespace

std::uint32_t Crc32(std::span<const std::uint8_t> bytes, std::uint32_t crc) {
    crc = ~crc;
    const std::uint8_t* p = bytes.data();
    std::size_t n = bytes.size();
    while (n >= 8) {
        std::uint32_t lo = crc ^ (std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 |
                                  std::uint32_t(p[2]) << 16 | std::uint32_t(p[3]) << 24);
        crc = kTables[7][lo & 0xFF] ^ kTables[6][(lo >> 8) & 0xFF] ^ kTables[5][(lo >> 16) & 0xFF] ^
              kTables[4][lo >> 24] ^ kTables[3][p[4]] ^ kTables[2][p[5]] ^ kTables[1][p[6]] ^
              kTables[0][p[7]];
        p += 8;
        n -= 8;
    }
    while (n--) crc = (crc >> 8) ^ kTables[0][(crc ^ *p++) & 0xFF];
    return ~crc;
}

}  // namespace ts
