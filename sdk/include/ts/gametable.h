#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"

namespace ts {

// A lookup table of the module (the toolset's "2DA" tables): named columns, rows in order, each
// row keyed by the integer id in its first column. Tables come from UTF-8 CSV files with a header
// row; every cell is text, read as text or as an integer. Every read checks its row, column and
// cell and fails with a message instead of guessing.
class TS_API GameTable {
public:
    // Parses CSV (RFC 4180: commas, double-quoted cells with "" for a quote, LF or CRLF line ends,
    // an optional byte-order mark). The header names the columns (not empty, no two alike without
    // regard to case); each row has as many cells as the header; the first cell of a row is its
    // id, a whole number that no other row has; blank lines are skipped.
    static bool FromCsv(std::u16string_view name, std::string_view utf8, GameTable& out,
                        std::u16string* error = nullptr);
    // The table as CSV in the form FromCsv reads: quotes only where a cell needs them, LF line
    // ends.
    std::string ToCsv() const;

    const std::u16string& Name() const { return name_; }
    std::size_t ColumnCount() const { return columns_.size(); }
    const std::u16string& ColumnName(std::size_t column) const { return columns_[column]; }
    std::size_t RowCount() const { return rowIds_.size(); }
    std::int32_t RowId(std::size_t row) const { return rowIds_[row]; }

    // The column named `name` (ASCII letters compared without regard to case).
    bool FindColumn(std::u16string_view name, std::size_t& column,
                    std::u16string* error = nullptr) const;
    // The row whose id is `id`.
    bool FindRow(std::int32_t id, std::size_t& row, std::u16string* error = nullptr) const;

    bool GetText(std::size_t row, std::size_t column, std::u16string& out,
                 std::u16string* error = nullptr) const;
    // A whole number from -2147483648 to 2147483647, with an optional sign; blanks around it are
    // allowed. An empty cell or any other text fails.
    bool GetInt(std::size_t row, std::size_t column, std::int32_t& out,
                std::u16string* error = nullptr) const;
    bool GetText(std::size_t row, std::u16string_view column, std::u16string& out,
                 std::u16string* error = nullptr) const;
    bool GetInt(std::size_t row, std::u16string_view column, std::int32_t& out,
                std::u16string* error = nullptr) const;

private:
    bool CheckCell(std::size_t row, std::size_t column, std::u16string* error) const;

    std::u16string name_;
    std::vector<std::u16string> columns_;
    std::vector<std::int32_t> rowIds_;
    std::vector<std::u16string> cells_;  // row by row
};

// The rules for table names: 1 to 64 characters of letters, digits, "_" and "-".
TS_API bool IsValidTableName(std::u16string_view name);

}  // namespace ts
