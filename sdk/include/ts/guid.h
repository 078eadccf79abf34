#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ts/api.h"

// A 128-bit class or interface id, laid out as the platform's GUID.
struct GUID {
    std::uint32_t Data1 = 0;
    std::uint16_t Data2 = 0;
    std::uint16_t Data3 = 0;
    std::uint8_t Data4[8] = {};

    friend constexpr bool operator==(const GUID& a, const GUID& b) {
        if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
        for (int i = 0; i < 8; ++i)
            if (a.Data4[i] != b.Data4[i]) return false;
        return true;
    }
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const GUID&;
using REFCLSID = const GUID&;

inline constexpr GUID GUID_NULL{};

namespace ts {

namespace detail {
constexpr int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
}  // namespace detail

// Parses "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" (either case). Usable at compile time, so
// interface ids are written in their familiar text form.
constexpr std::optional<GUID> ParseGuid(std::string_view text) {
    if (text.size() != 38 || text.front() != '{' || text.back() != '}') return std::nullopt;
    std::uint8_t bytes[16] = {};
    int n = 0;
    for (std::size_t i = 1; i < 37;) {
        if (i == 9 || i == 14 || i == 19 || i == 24) {
            if (text[i] != '-') return std::nullopt;
            ++i;
            continue;
        }
        int hi = detail::HexDigit(text[i]), lo = detail::HexDigit(text[i + 1]);
        if (hi < 0 || lo < 0) return std::nullopt;
        bytes[n++] = static_cast<std::uint8_t>(hi * 16 + lo);
        i += 2;
    }
    GUID g;
    g.Data1 = (std::uint32_t(bytes[0]) << 24) | (std::uint32_t(bytes[1]) << 16) |
              (std::uint32_t(bytes[2]) << 8) | bytes[3];
    g.Data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
    g.Data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
    for (int i = 0; i < 8; ++i) g.Data4[i] = bytes[8 + i];
    return g;
}

// For literals known to be well formed; a malformed literal fails to compile when constexpr.
consteval GUID Guid(const char* text) {
    auto g = ParseGuid(std::string_view(text));
    if (!g) throw "malformed GUID literal";
    return *g;
}

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in upper case.
TS_API std::string FormatGuid(const GUID& guid);

}  // namespace ts

template <>
struct std::hash<GUID> {
    std::size_t operator()(const GUID& g) const noexcept {
        std::uint64_t a = (std::uint64_t(g.Data1) << 32) | (std::uint64_t(g.Data2) << 16) | g.Data3;
        std::uint64_t b = 0;
        for (int i = 0; i < 8; ++i) b = (b << 8) | g.Data4[i];
        return std::hash<std::uint64_t>()(a * 0x9E3779B97F4A7C15ull ^ b);
    }
};
