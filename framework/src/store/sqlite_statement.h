#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "ts/text.h"

namespace ts::sqlite {

// One prepared statement, finalized when it goes. Text crosses as UTF-8; binds are numbered
// from 1, columns from 0.
class Statement {
public:
    Statement(sqlite3* db, const char* sql) {
        rc_ = sqlite3_prepare_v2(db, sql, -1, &stmt_, nullptr);
    }
    ~Statement() { sqlite3_finalize(stmt_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    bool Prepared() const { return rc_ == SQLITE_OK && stmt_; }
    int Code() const { return rc_; }

    Statement& Bind(int i, std::u16string_view text) {
        if (!stmt_) return *this;
        std::string utf8 = Utf16ToUtf8(text);
        Check(sqlite3_bind_text(stmt_, i, utf8.data(), static_cast<int>(utf8.size()),
                                SQLITE_TRANSIENT));
        return *this;
    }
    Statement& Bind(int i, std::string_view utf8) {
        if (!stmt_) return *this;
        Check(sqlite3_bind_text(stmt_, i, utf8.data(), static_cast<int>(utf8.size()),
                                SQLITE_TRANSIENT));
        return *this;
    }
    template <class T>
    requires std::is_integral_v<T> Statement& Bind(int i, T v) {
        if (!stmt_) return *this;
        Check(sqlite3_bind_int64(stmt_, i, static_cast<sqlite3_int64>(v)));
        return *this;
    }
    Statement& Bind(int i, double v) {
        if (!stmt_) return *this;
        Check(sqlite3_bind_double(stmt_, i, v));
        return *this;
    }
    Statement& Bind(int i, std::span<const std::uint8_t> bytes) {
        // A zero-length blob, not NULL, for empty content.
        if (!stmt_) return *this;
        Check(bytes.empty()
                  ? sqlite3_bind_zeroblob(stmt_, i, 0)
                  : sqlite3_bind_blob64(stmt_, i, bytes.data(), bytes.size(), SQLITE_STATIC));
        return *this;
    }

    // SQLITE_ROW, SQLITE_DONE or an error code (or the first error of preparing or binding).
    int Step() {
        if (!stmt_) return rc_ == SQLITE_OK ? SQLITE_MISUSE : rc_;
        if (rc_ != SQLITE_OK && rc_ != SQLITE_ROW && rc_ != SQLITE_DONE) return rc_;
        rc_ = sqlite3_step(stmt_);
        return rc_;
    }
    // Runs a statement that returns no rows.
    int Run() {
        int rc = Step();
        return rc == SQLITE_DONE ? SQLITE_OK : rc;
    }

    std::int64_t Int(int column) const { return sqlite3_column_int64(stmt_, column); }
    double Double(int column) const { return sqlite3_column_double(stmt_, column); }
    std::u16string Text(int column) const {
        auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
        return p ? Utf8ToUtf16(std::string_view(
                       p, static_cast<std::size_t>(sqlite3_column_bytes(stmt_, column))))
                 : std::u16string();
    }
    std::string Utf8(int column) const {
        auto* p = reinterpret_cast<const char*>(sqlite3_column_text(stmt_, column));
        return p ? std::string(p, static_cast<std::size_t>(sqlite3_column_bytes(stmt_, column)))
                 : std::string();
    }
    void Blob(int column, std::vector<std::uint8_t>& out) const {
        auto* p = static_cast<const std::uint8_t*>(sqlite3_column_blob(stmt_, column));
        out.assign(p, p + sqlite3_column_bytes(stmt_, column));
    }

private:
    void Check(int rc) {
        if (rc != SQLITE_OK && rc_ == SQLITE_OK) rc_ = rc;
    }

    sqlite3_stmt* stmt_ = nullptr;
    int rc_ = SQLITE_OK;
};

}  // namespace ts::sqlite
