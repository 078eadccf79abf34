#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ts/api.h"
#include "ts/result.h"

// A four-character code such as "EUTS", first character in the high byte.
constexpr std::uint32_t TsFourCC(const char (&code)[5]) {
    return (std::uint32_t(std::uint8_t(code[0])) << 24) |
           (std::uint32_t(std::uint8_t(code[1])) << 16) |
           (std::uint32_t(std::uint8_t(code[2])) << 8) | std::uint32_t(std::uint8_t(code[3]));
}

// Records one usage figure (category and item are four-character codes). Telemetry stays on
// this machine: each record is appended to a file in the toolset's data folder. E_FAIL when the
// file can't be written.
TS_API HRESULT TsSendTelemetry(std::uint32_t category, std::uint32_t item,
                               std::u16string_view value);

namespace ts {

// "<data folder>/telemetry.log": one line per record, "time<TAB>category<TAB>item<TAB>value".
TS_API std::string TelemetryLogPath();
// The four characters of a code ("EUTS"); other bytes become '?'.
TS_API std::string FourCCText(std::uint32_t code);

}  // namespace ts
