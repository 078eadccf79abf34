#include "ts/gametable.h"

#include <charconv>
#include <unordered_map>
#include <unordered_set>

#include "ts/format.h"
#include "ts/text.h"

namespace ts {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
    return s;
}

bool ParseInt(std::u16string_view text, std::int32_t& out) {
    std::string ascii;
    for (char16_t c : text) {
        if (c > 0x7F) return false;
        ascii += static_cast<char>(c);
    }
    std::string_view s = Trim(ascii);
    if (!s.empty() && s.front() == '+') s.remove_prefix(1);
    if (s.empty()) return false;
    auto result = std::from_chars(s.data(), s.data() + s.size(), out);
    return result.ec == std::errc() && result.ptr == s.data() + s.size();
}

bool Fail(std::u16string* error, std::u16string message) {
    if (error) *error = std::move(message);
    return false;
}

struct Record {
    std::size_t line;
    std::vector<std::string> cells;
};

// Splits CSV text into records of raw UTF-8 cells. Unquoted cells lose the blanks around them.
class CsvReader {
public:
    explicit CsvReader(std::string_view text) : s_(text) {
        if (s_.substr(0, 3) == "\xEF\xBB\xBF") p_ = 3;
    }

    bool Records(std::vector<Record>& out, std::u16string* error) {
        while (p_ < s_.size()) {
            std::size_t q = p_;
            while (q < s_.size() && IsBlank(s_[q])) ++q;
            if (q == s_.size() || s_[q] == '\n' || s_[q] == '\r') {
                p_ = q;  // a blank line
                EndOfLine();
                continue;
            }
            Record record{line_, {}};
            for (;;) {
                std::string cell;
                if (!Cell(cell, error)) return false;
                record.cells.push_back(std::move(cell));
                if (p_ < s_.size() && s_[p_] == ',') {
                    ++p_;
                    continue;
                }
                EndOfLine();
                break;
            }
            out.push_back(std::move(record));
        }
        return true;
    }

private:
    void EndOfLine() {
        if (p_ < s_.size() && s_[p_] == '\r') ++p_;
        if (p_ < s_.size() && s_[p_] == '\n') ++p_;
        ++line_;
    }
    bool AtEndOfCell() const {
        return p_ >= s_.size() || s_[p_] == ',' || s_[p_] == '\n' || s_[p_] == '\r';
    }

    bool Cell(std::string& cell, std::u16string* error) {
        std::size_t start = p_;
        while (p_ < s_.size() && IsBlank(s_[p_])) ++p_;
        if (p_ < s_.size() && s_[p_] == '"') {
            std::size_t opened = line_;
            ++p_;
            for (;;) {
                if (p_ >= s_.size())
                    return Fail(error, Format(u"line %lu: a quoted cell is not closed", opened));
                char c = s_[p_++];
                if (c == '"') {
                    if (p_ < s_.size() && s_[p_] == '"') {
                        cell += '"';
                        ++p_;
                        continue;
                    }
                    break;
                }
                if (c == '\n') ++line_;
                cell += c;
            }
            while (p_ < s_.size() && IsBlank(s_[p_])) ++p_;
            if (!AtEndOfCell())
                return Fail(error,
                            Format(u"line %lu: text follows the closing quote of a cell", line_));
            return true;
        }
        p_ = start;
        while (!AtEndOfCell()) {
            if (s_[p_] == '"')
                return Fail(
                    error,
                    Format(u"line %lu: a quote inside a cell that does not start with one; put the "
                           u"whole cell in quotes and double the quote",
                           line_));
            ++p_;
        }
        cell = Trim(s_.substr(start, p_ - start));
        return true;
    }

    std::string_view s_;
    std::size_t p_ = 0;
    std::size_t line_ = 1;
};

// Converts a cell, false when it is not valid UTF-8. Malformed bytes come out as U+FFFD, so text
// without U+FFFD or surrogates was valid; only the rest is checked by converting it back.
bool ToUtf16(std::string_view s, std::u16string& out) {
    out = Utf8ToUtf16(s);
    for (char16_t c : out)
        if (c == 0xFFFD || (c >= 0xD800 && c <= 0xDFFF)) return Utf16ToUtf8(out) == s;
    return true;
}

}  // namespace

bool IsValidTableName(std::u16string_view name) {
    if (name.empty() || name.size() > 64) return false;
    for (char16_t c : name)
        if (!((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
              c == u'_' || c == u'-'))
            return false;
    return true;
}

bool GameTable::FromCsv(std::u16string_view name, std::string_view utf8, GameTable& out,
                        std::u16string* error) {
    if (!IsValidTableName(name))
        return Fail(
            error,
            Format(u"\"%ls\" is not a valid table name (1 to 64 letters, digits, \"_\" or \"-\")",
                   MessageText(name)));
    std::vector<Record> records;
    if (!CsvReader(utf8).Records(records, error)) return false;
    if (records.empty())
        return Fail(error, u"the table is empty: it needs a header row naming its columns");

    GameTable table;
    table.name_ = name;
    // Names compare without regard to ASCII case; a set keeps the check linear in the header.
    std::unordered_set<std::u16string> names;
    names.reserve(records.front().cells.size());
    table.columns_.reserve(records.front().cells.size());
    for (const auto& header : records.front().cells) {
        std::u16string column;
        if (!ToUtf16(header, column))
            return Fail(error,
                        Format(u"line %lu: the text is not valid UTF-8", records.front().line));
        if (column.empty())
            return Fail(error, Format(u"line %lu: column %lu of the header has no name",
                                      records.front().line, table.columns_.size() + 1));
        // A second byte-order mark (a file saved twice with one) or one pasted into a name would
        // be an invisible part of the column's name, which no lookup would ever match.
        if (column.find(u'\uFEFF') != std::u16string::npos)
            return Fail(
                error,
                Format(u"line %lu: the name of column %lu (\"%ls\") holds a "
                       u"byte-order mark (U+FEFF), an invisible character; remove it",
                       records.front().line, table.columns_.size() + 1, MessageText(column)));
        if (!names.insert(AsciiLower(column)).second)
            return Fail(error, Format(u"line %lu: the column \"%ls\" is named twice",
                                      records.front().line, MessageText(column)));
        table.columns_.push_back(std::move(column));
    }

    std::unordered_map<std::int32_t, std::size_t> firstLine;
    std::size_t width = table.columns_.size();
    for (std::size_t r = 1; r < records.size(); ++r) {
        const Record& record = records[r];
        if (record.cells.size() != width)
            return Fail(error, Format(u"line %lu has %lu cells but the header names %lu columns",
                                      record.line, record.cells.size(), width));
        for (const auto& cell : record.cells) {
            if (!ToUtf16(cell, table.cells_.emplace_back()))
                return Fail(error, Format(u"line %lu: the text is not valid UTF-8", record.line));
        }
        std::int32_t id;
        const std::u16string& idText = table.cells_[table.cells_.size() - width];
        if (!ParseInt(idText, id))
            return Fail(error, Format(u"line %lu: the row id \"%ls\" is not a whole number",
                                      record.line, MessageText(idText)));
        auto [it, added] = firstLine.emplace(id, record.line);
        if (!added)
            return Fail(error, Format(u"line %lu: the row id %d is used twice (first on line %lu)",
                                      record.line, id, it->second));
        table.rowIds_.push_back(id);
    }
    out = std::move(table);
    return true;
}

std::string GameTable::ToCsv() const {
    std::string out;
    auto cell = [&](const std::u16string& text) {
        std::string s = Utf16ToUtf8(text);
        // Quoted too: blanks at the ends, which a plain cell loses, and a leading byte-order mark,
        // which a reader takes for the file's own when it opens the file.
        bool quote = s.find_first_of(",\"\r\n") != std::string::npos ||
                     (!s.empty() && (IsBlank(s.front()) || IsBlank(s.back()))) ||
                     s.starts_with("\xEF\xBB\xBF");
        if (!quote) {
            out += s;
            return;
        }
        out += '"';
        for (char c : s) {
            if (c == '"') out += '"';
            out += c;
        }
        out += '"';
    };
    for (std::size_t c = 0; c < columns_.size(); ++c) {
        if (c) out += ',';
        cell(columns_[c]);
    }
    out += '\n';
    for (std::size_t r = 0; r < rowIds_.size(); ++r) {
        for (std::size_t c = 0; c < columns_.size(); ++c) {
            if (c) out += ',';
            cell(cells_[r * columns_.size() + c]);
        }
        out += '\n';
    }
    return out;
}

bool GameTable::FindColumn(std::u16string_view name, std::size_t& column,
                           std::u16string* error) const {
    for (std::size_t c = 0; c < columns_.size(); ++c)
        if (EqualsIgnoreAsciiCase(columns_[c], name)) {
            column = c;
            return true;
        }
    return Fail(error,
                Format(u"The table \"%ls\" has no column \"%ls\"", name_, MessageText(name)));
}

bool GameTable::FindRow(std::int32_t id, std::size_t& row, std::u16string* error) const {
    for (std::size_t r = 0; r < rowIds_.size(); ++r)
        if (rowIds_[r] == id) {
            row = r;
            return true;
        }
    return Fail(error, Format(u"The table \"%ls\" has no row with id %d", name_, id));
}

bool GameTable::CheckCell(std::size_t row, std::size_t column, std::u16string* error) const {
    if (row >= rowIds_.size())
        return Fail(error, Format(u"The table \"%ls\" has %lu rows; there is no row at index %lu",
                                  name_, rowIds_.size(), row));
    if (column >= columns_.size())
        return Fail(error,
                    Format(u"The table \"%ls\" has %lu columns; there is no column at index %lu",
                           name_, columns_.size(), column));
    return true;
}

bool GameTable::GetText(std::size_t row, std::size_t column, std::u16string& out,
                        std::u16string* error) const {
    if (!CheckCell(row, column, error)) return false;
    out = cells_[row * columns_.size() + column];
    return true;
}

bool GameTable::GetInt(std::size_t row, std::size_t column, std::int32_t& out,
                       std::u16string* error) const {
    if (!CheckCell(row, column, error)) return false;
    const std::u16string& text = cells_[row * columns_.size() + column];
    if (ParseInt(text, out)) return true;
    return Fail(error, Format(u"In the table \"%ls\", the cell of row %d in column \"%ls\" is not "
                              u"a whole number: \"%ls\"",
                              name_, rowIds_[row], columns_[column], text));
}

bool GameTable::GetText(std::size_t row, std::u16string_view column, std::u16string& out,
                        std::u16string* error) const {
    std::size_t c;
    return FindColumn(column, c, error) && GetText(row, c, out, error);
}

bool GameTable::GetInt(std::size_t row, std::u16string_view column, std::int32_t& out,
                       std::u16string* error) const {
    std::size_t c;
    return FindColumn(column, c, error) && GetInt(row, c, out, error);
}

}  // namespace ts
