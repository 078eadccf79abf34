#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "ts/api.h"
#include "ts/result.h"

// The diagnostic report: internal consistency failures are logged and the program goes on.
enum class ReportLevel : int {
    Assert = 0,
    Trace = 1,
    User = 2,
    Info = 3,
    Warning = 4,
    Error = 5,
};

// "ASSERT", "TRACE", ... for the known levels, "UNKNOWN" for any other.
TS_API const char* ReportLevelName(int level);

// Appends one line to the diagnostic log; E_FAIL when the log can't be opened. Listeners (the
// log window, tests) see the report either way.
TS_API HRESULT Report(int level, const char* sourceFile, int line, std::u16string_view message);

inline HRESULT Report(ReportLevel level, const char* sourceFile, int line,
                      std::u16string_view message) {
    return Report(static_cast<int>(level), sourceFile, line, message);
}

namespace ts {

struct ReportEntry {
    int level;
    std::string sourceFile;
    int line;
    std::u16string message;
};

using ReportListener = std::function<void(const ReportEntry&)>;

// Returns a handle for RemoveReportListener.
TS_API int AddReportListener(ReportListener listener);
TS_API void RemoveReportListener(int handle);

// The log line for a report: "time, LEVEL, \"file\", line, \"message\"\n", quotes in the
// message doubled. UTF-8.
TS_API std::string FormatReportLine(std::string_view timeStamp, int level,
                                    std::string_view sourceFile, int line,
                                    std::u16string_view message);

// The folder that holds the log ("<data folder>/logs") and the log file itself.
TS_API std::string DiagnosticLogPath();

}  // namespace ts
