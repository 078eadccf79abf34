#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ts::json {

// Writes JSON text (UTF-8) as it goes, for exports too large to build in memory first. A
// container is laid out either as a block (one entry per line, indented by two blanks) or inline
// (on one line); what is inside an inline container is inline too.
class Writer {
public:
    explicit Writer(std::string& out) : out_(out) {}

    void BeginObject(bool inlineLayout = false) { Begin('{', inlineLayout); }
    void EndObject() { End('}'); }
    void BeginArray(bool inlineLayout = false) { Begin('[', inlineLayout); }
    void EndArray() { End(']'); }
    void Key(std::u16string_view key);

    void String(std::u16string_view text);
    void Int(std::int64_t v);
    void UInt(std::uint64_t v);
    // Shortest text that reads back to the same bits; infinities and NaNs, which JSON lacks, as
    // the strings "Infinity", "-Infinity", "NaN" (or "NaN:0x..." for a NaN with other bits).
    void Float(float v);
    void Double(double v);
    void Bool(bool v) { Scalar(v ? "true" : "false"); }
    void Null() { Scalar("null"); }

private:
    struct Level {
        bool inlineLayout;
        bool empty = true;
    };

    void Begin(char open, bool inlineLayout);
    void End(char close);
    void BeforeValue();
    void Scalar(std::string_view text) {
        BeforeValue();
        out_ += text;
    }
    void Newline();
    void Quoted(std::u16string_view text);

    std::string& out_;
    std::vector<Level> levels_;
    bool afterKey_ = false;
};

// Reads a number written by Writer::Float/Double (or by hand) back into bits; false when the
// text is not a number of that kind.
bool ReadFloat(std::string_view number, float& out);
bool ReadDouble(std::string_view number, double& out);
bool ReadSpecialFloat(std::u16string_view text, float& out);
bool ReadSpecialDouble(std::u16string_view text, double& out);

}  // namespace ts::json
