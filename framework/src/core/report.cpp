#include "ts/report.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <utility>
#include <vector>

#include "ts/paths.h"
#include "ts/text.h"

namespace {

struct Listeners {
    std::mutex mutex;
    int nextHandle = 1;
    std::vector<std::pair<int, ts::ReportListener>> items;
};

Listeners& TheListeners() {
    static auto* listeners = new Listeners;
    return *listeners;
}

std::mutex& LogMutex() {
    static auto* m = new std::mutex;
    return *m;
}

std::string TimeStamp() {
    auto now = std::chrono::system_clock::now();
    std::time_t t = std::chrono::system_clock::to_time_t(now);
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm tm{};
    localtime_r(&t, &tm);
    char buf[64];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03d", tm.tm_year + 1900,
                  tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec, static_cast<int>(ms));
    return buf;
}

void Notify(const ts::ReportEntry& entry) {
    std::vector<ts::ReportListener> copy;
    {
        auto& l = TheListeners();
        std::lock_guard lock(l.mutex);
        for (auto& [handle, fn] : l.items) copy.push_back(fn);
    }
    for (auto& fn : copy) fn(entry);
}

}  // namespace

const char* ReportLevelName(int level) {
    static constexpr const char* kNames[] = {"ASSERT", "TRACE", "USER", "INFO", "WARNING", "ERROR"};
    return level >= 0 && level <= 5 ? kNames[level] : "UNKNOWN";
}

HRESULT Report(int level, const char* sourceFile, int line, std::u16string_view message) {
    const char* file = sourceFile ? sourceFile : "";
    Notify(ts::ReportEntry{level, file, line, std::u16string(message)});

    std::string text = ts::FormatReportLine(TimeStamp(), level, file, line, message);
    std::lock_guard lock(LogMutex());
    std::string folder = ts::ToolsetDataFolder() + "/logs";
    if (!ts::EnsureFolder(folder)) return E_FAIL;
    // Opened per report: reports are rare, and a log that was moved or deleted is recreated.
    std::FILE* log = std::fopen(ts::DiagnosticLogPath().c_str(), "a");
    if (!log) return E_FAIL;
    bool written = std::fwrite(text.data(), 1, text.size(), log) == text.size();
    written = std::fclose(log) == 0 && written;
    return written ? S_OK : E_FAIL;
}

namespace ts {

std::string FormatReportLine(std::string_view timeStamp, int level, std::string_view sourceFile,
                             int line, std::u16string_view message) {
    std::string quoted;
    for (char c : Utf16ToUtf8(message)) {
        quoted += c;
        if (c == '"') quoted += '"';
    }
    std::string out;
    out.reserve(timeStamp.size() + sourceFile.size() + quoted.size() + 32);
    out.append(timeStamp).append(", ").append(ReportLevelName(level)).append(", \"");
    out.append(sourceFile).append("\", ").append(std::to_string(line)).append(", \"");
    out.append(quoted).append("\"\n");
    return out;
}

std::string DiagnosticLogPath() {
    return ToolsetDataFolder() + "/logs/" + HostExecutableName() + ".log";
}

int AddReportListener(ReportListener listener) {
    auto& l = TheListeners();
    std::lock_guard lock(l.mutex);
    int handle = l.nextHandle++;
    l.items.emplace_back(handle, std::move(listener));
    return handle;
}

void RemoveReportListener(int handle) {
    auto& l = TheListeners();
    std::lock_guard lock(l.mutex);
    std::erase_if(l.items, [handle](const auto& item) { return item.first == handle; });
}

}  // namespace ts
