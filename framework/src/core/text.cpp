#include "ts/text.h"

#include <algorithm>
#include <string>

namespace ts {

namespace {
constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

void AppendUtf16(std::u16string& out, char32_t cp) {
    if (cp < 0x10000) {
        out += static_cast<char16_t>(cp);
    } else {
        cp -= 0x10000;
        out += static_cast<char16_t>(0xD800 + (cp >> 10));
        out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
    }
}
}  // namespace

std::u16string Utf8ToUtf16(std::string_view s) {
    std::u16string out;
    out.reserve(s.size());
    std::size_t i = 0;
    while (i < s.size()) {
        unsigned char c = static_cast<unsigned char>(s[i]);
        if (c < 0x80) {
            out += c;
            ++i;
            continue;
        }
        std::size_t extra;
        char32_t cp, least;
        if (c >= 0xC2 && c <= 0xDF) {
            extra = 1, cp = c & 0x1F, least = 0x80;
        } else if (c >= 0xE0 && c <= 0xEF) {
            extra = 2, cp = c & 0x0F, least = 0x800;
        } else if (c >= 0xF0 && c <= 0xF4) {
            extra = 3, cp = c & 0x07, least = 0x10000;
        } else {
            out += char16_t(kReplacement);
            ++i;
            continue;
        }
        std::size_t j = 1;
        for (; j <= extra && i + j < s.size() && (s[i + j] & 0xC0) == 0x80; ++j)
            cp = (cp << 6) | (s[i + j] & 0x3F);
        if (j != extra + 1 || cp < least || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out += char16_t(kReplacement);
        } else {
            AppendUtf16(out, cp);
        }
        i += j;
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view s) {
    std::string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        char16_t c = s[i];
        if (IsHighSurrogate(c) && i + 1 < s.size() && IsLowSurrogate(s[i + 1])) {
            AppendUtf8(out, 0x10000 + ((char32_t(c) - 0xD800) << 10) + (s[i + 1] - 0xDC00));
            ++i;
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
            AppendUtf8(out, kReplacement);
        } else {
            AppendUtf8(out, c);
        }
    }
    return out;
}

std::u16string_view CutUtf16(std::u16string_view text, std::size_t maxUnits) {
    if (text.size() <= maxUnits) return text;
    std::size_t n = maxUnits;
    if (n > 0 && IsHighSurrogate(text[n - 1]) && IsLowSurrogate(text[n])) --n;
    return text.substr(0, n);
}

std::u16string AsciiLower(std::u16string_view text) {
    std::u16string out(text);
    for (auto& c : out)
        if (c >= u'A' && c <= u'Z') c = char16_t(c + 32);
    return out;
}

std::u16string AsciiUpper(std::u16string_view text) {
    std::u16string out(text);
    for (auto& c : out)
        if (c >= u'a' && c <= u'z') c = char16_t(c - 32);
    return out;
}

bool EqualsIgnoreAsciiCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char16_t x = a[i], y = b[i];
        if (x >= u'A' && x <= u'Z') x = char16_t(x + 32);
        if (y >= u'A' && y <= u'Z') y = char16_t(y + 32);
        if (x != y) return false;
    }
    return true;
}

std::u16string MessageText(std::u16string_view text, std::size_t limit) {
    std::u16string_view shown = CutUtf16(text, limit);
    std::u16string out;
    out.reserve(shown.size());
    auto hex = [&out](char16_t c) {
        out += u"\\u";
        for (int shift = 12; shift >= 0; shift -= 4) out += u"0123456789ABCDEF"[(c >> shift) & 0xF];
    };
    for (char16_t c : shown) {
        if (c == u'\n')
            out += u"\\n";
        else if (c == u'\r')
            out += u"\\r";
        else if (c == u'\t')
            out += u"\\t";
        else if (c < 0x20 || c == 0x7F || (c >= 0x80 && c < 0xA0) || c == 0xFEFF ||
                 (c >= 0x200B && c <= 0x200F) || c == 0x2028 || c == 0x2029)
            hex(c);
        else
            out += c;
    }
    if (shown.size() < text.size()) {
        out += u"... (";
        for (char c : std::to_string(text.size())) out += static_cast<char16_t>(c);
        out += u" characters)";
    }
    return out;
}

std::u16string MessageText(std::string_view utf8, std::size_t limit) {
    // A UTF-8 character is at most four bytes, so a longer text is converted only as far as can
    // be shown, and a huge one costs nothing.
    if (utf8.size() <= limit * 4) return MessageText(Utf8ToUtf16(utf8), limit);
    std::u16string head = Utf8ToUtf16(utf8.substr(0, limit * 4));
    std::u16string out = MessageText(CutUtf16(head, limit), limit);
    out += u"... (";
    for (char c : std::to_string(utf8.size())) out += static_cast<char16_t>(c);
    out += u" bytes)";
    return out;
}

}  // namespace ts
