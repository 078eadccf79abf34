#pragma once

#include <string>
#include <vector>

#include "ts/report.h"

namespace ts::test {

// Collects the diagnostic reports made while it lives.
class ReportCapture {
public:
    ReportCapture() : handle_(AddReportListener([this](const ReportEntry& e) { entries_.push_back(e); })) {}
    ~ReportCapture() { RemoveReportListener(handle_); }
    ReportCapture(const ReportCapture&) = delete;
    ReportCapture& operator=(const ReportCapture&) = delete;

    const std::vector<ReportEntry>& entries() const { return entries_; }
    std::size_t size() const { return entries_.size(); }
    // How many reports carried exactly this message.
    std::size_t Count(const std::u16string& message) const {
        std::size_t n = 0;
        for (const auto& e : entries_) n += e.message == message;
        return n;
    }
    void Clear() { entries_.clear(); }

private:
    std::vector<ReportEntry> entries_;
    int handle_;
};

}  // namespace ts::test
