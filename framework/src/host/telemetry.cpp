// Usage telemetry, kept on this machine: one line per record in a file of the data folder.
#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>

#include "ts/paths.h"
#include "ts/telemetry.h"
#include "ts/text.h"

namespace {

std::string TimeStamp() {
    auto now = std::chrono::system_clock::now();
    std::time_t t = std::chrono::system_clock::to_time_t(now);
    std::tm tm{};
    localtime_r(&t, &tm);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", tm.tm_year + 1900,
                  tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
    return buf;
}

}  // namespace

HRESULT TsSendTelemetry(std::uint32_t category, std::uint32_t item, std::u16string_view value) {
    std::string text = ts::Utf16ToUtf8(value);
    // One record per line: tabs and line breaks in the value would split it.
    for (char& c : text)
        if (c == '\t' || c == '\n' || c == '\r') c = ' ';
    std::string line = TimeStamp() + '\t' + ts::FourCCText(category) + '\t' + ts::FourCCText(item) +
                       '\t' + text + '\n';

    static std::mutex mutex;
    std::lock_guard lock(mutex);
    if (!ts::EnsureFolder(ts::ToolsetDataFolder())) return E_FAIL;
    std::FILE* file = std::fopen(ts::TelemetryLogPath().c_str(), "a");
    if (!file) return E_FAIL;
    bool written = std::fwrite(line.data(), 1, line.size(), file) == line.size();
    written = std::fclose(file) == 0 && written;
    return written ? S_OK : E_FAIL;
}

namespace ts {

std::string TelemetryLogPath() {
    return ToolsetDataFolder() + "/telemetry.log";
}

std::string FourCCText(std::uint32_t code) {
    std::string text(4, '?');
    for (int i = 0; i < 4; ++i) {
        char c = static_cast<char>((code >> (24 - 8 * i)) & 0xFF);
        if (c >= 0x20 && c < 0x7F) text[i] = c;
    }
    return text;
}

}  // namespace ts
