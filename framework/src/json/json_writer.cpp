#include "json/json_writer.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "ts/text.h"

namespace ts::json {

void Writer::Newline() {
    out_ += '\n';
    out_.append(levels_.size() * 2, ' ');
}

void Writer::BeforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (levels_.empty()) return;
    Level& level = levels_.back();
    if (!level.empty) out_ += level.inlineLayout ? ", " : ",";
    if (!level.inlineLayout) Newline();
    level.empty = false;
}

void Writer::Begin(char open, bool inlineLayout) {
    BeforeValue();
    out_ += open;
    bool parentInline = !levels_.empty() && levels_.back().inlineLayout;
    levels_.push_back({inlineLayout || parentInline});
}

void Writer::End(char close) {
    Level level = levels_.back();
    levels_.pop_back();
    if (!level.empty && !level.inlineLayout) Newline();
    out_ += close;
    if (levels_.empty()) out_ += '\n';
}

void Writer::Key(std::u16string_view key) {
    BeforeValue();
    Quoted(key);
    out_ += ": ";
    afterKey_ = true;
}

void Writer::String(std::u16string_view text) {
    BeforeValue();
    Quoted(text);
}

void Writer::Quoted(std::u16string_view text) {
    out_ += '"';
    std::size_t run = 0;  // start of the current run of units that need no escape
    auto flush = [&](std::size_t end) {
        if (end > run) out_ += Utf16ToUtf8(text.substr(run, end - run));
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        char16_t c = text[i];
        const char* escape = nullptr;
        switch (c) {
            case u'"':
                escape = "\\\"";
                break;
            case u'\\':
                escape = "\\\\";
                break;
            case u'\n':
                escape = "\\n";
                break;
            case u'\r':
                escape = "\\r";
                break;
            case u'\t':
                escape = "\\t";
                break;
            case u'\b':
                escape = "\\b";
                break;
            case u'\f':
                escape = "\\f";
                break;
            default:
                break;
        }
        bool high = c >= 0xD800 && c <= 0xDBFF, low = c >= 0xDC00 && c <= 0xDFFF;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            ++i;  // a proper pair is ordinary text
            continue;
        }
        if (!escape && c >= 0x20 && !high && !low) continue;
        flush(i);
        if (escape) {
            out_ += escape;
        } else {
            // Control characters and lone surrogates, which UTF-8 cannot carry.
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\u%04X", static_cast<unsigned>(c));
            out_ += buf;
        }
        run = i + 1;
    }
    flush(text.size());
    out_ += '"';
}

void Writer::Int(std::int64_t v) {
    BeforeValue();
    out_ += std::to_string(v);
}

void Writer::UInt(std::uint64_t v) {
    BeforeValue();
    out_ += std::to_string(v);
}

namespace {

template <class T, class Bits>
void WriteReal(Writer& w, T v, std::string& scratch) {
    if (std::isnan(v)) {
        Bits bits = std::bit_cast<Bits>(v);
        Bits canonical = std::bit_cast<Bits>(std::numeric_limits<T>::quiet_NaN());
        if (bits == canonical) {
            w.String(u"NaN");
        } else {
            char buf[32];
            std::snprintf(buf, sizeof buf, "NaN:0x%llx", static_cast<unsigned long long>(bits));
            w.String(Utf8ToUtf16(buf));
        }
        return;
    }
    if (std::isinf(v)) {
        w.String(v > 0 ? u"Infinity" : u"-Infinity");
        return;
    }
    char buf[64];
    auto result = std::to_chars(buf, buf + sizeof buf, v);
    scratch.assign(buf, result.ptr);
}

}  // namespace

void Writer::Float(float v) {
    std::string text;
    WriteReal<float, std::uint32_t>(*this, v, text);
    if (!text.empty()) Scalar(text);
}

void Writer::Double(double v) {
    std::string text;
    WriteReal<double, std::uint64_t>(*this, v, text);
    if (!text.empty()) Scalar(text);
}

namespace {

template <class T>
bool ReadReal(std::string_view text, T& out) {
    T v{};
    auto result = std::from_chars(text.data(), text.data() + text.size(), v);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return false;
    out = v;
    return true;
}

template <class T, class Bits>
bool ReadSpecial(std::u16string_view text, T& out) {
    if (text == u"NaN")
        out = std::numeric_limits<T>::quiet_NaN();
    else if (text == u"Infinity")
        out = std::numeric_limits<T>::infinity();
    else if (text == u"-Infinity")
        out = -std::numeric_limits<T>::infinity();
    else if (text.starts_with(u"NaN:0x") && text.size() > 6 &&
             text.size() <= 6 + 2 * sizeof(Bits)) {
        Bits bits = 0;
        for (char16_t c : text.substr(6)) {
            int d = c >= u'0' && c <= u'9' ? c - u'0' : c >= u'a' && c <= u'f' ? c - u'a' + 10 : -1;
            if (d < 0) return false;
            bits = static_cast<Bits>(bits * 16 + static_cast<Bits>(d));
        }
        T v = std::bit_cast<T>(bits);
        if (!std::isnan(v)) return false;
        out = v;
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool ReadFloat(std::string_view number, float& out) {
    return ReadReal(number, out);
}
bool ReadDouble(std::string_view number, double& out) {
    return ReadReal(number, out);
}
bool ReadSpecialFloat(std::u16string_view text, float& out) {
    return ReadSpecial<float, std::uint32_t>(text, out);
}
bool ReadSpecialDouble(std::u16string_view text, double& out) {
    return ReadSpecial<double, std::uint64_t>(text, out);
}

}  // namespace ts::json
