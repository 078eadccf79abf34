#include "resource/byte_stream.h"

namespace ts {

namespace {
bool IsHigh(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLow(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}
}  // namespace

void ByteWriter::Text(std::u16string_view text) {
    Varint(static_cast<std::uint32_t>(text.size()));
    // Room for the worst case (three bytes a unit), written through a pointer, then trimmed.
    std::size_t at = out_.size();
    out_.resize(at + text.size() * 3);
    std::uint8_t* p = out_.data() + at;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c < 0x80) {
            *p++ = static_cast<std::uint8_t>(c);
            continue;
        }
        if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        }
        // Lone surrogates take the three-byte form like any other unit below 0x10000.
        if (c < 0x800) {
            *p++ = static_cast<std::uint8_t>(0xC0 | (c >> 6));
        } else if (c < 0x10000) {
            *p++ = static_cast<std::uint8_t>(0xE0 | (c >> 12));
            *p++ = static_cast<std::uint8_t>(0x80 | ((c >> 6) & 0x3F));
        } else {
            *p++ = static_cast<std::uint8_t>(0xF0 | (c >> 18));
            *p++ = static_cast<std::uint8_t>(0x80 | ((c >> 12) & 0x3F));
            *p++ = static_cast<std::uint8_t>(0x80 | ((c >> 6) & 0x3F));
        }
        *p++ = static_cast<std::uint8_t>(0x80 | (c & 0x3F));
    }
    out_.resize(static_cast<std::size_t>(p - out_.data()));
}

bool ByteReader::Text(char16_t* out, std::uint32_t units) {
    // Most text is ASCII: widen it in one pass when the next `units` bytes are all below 0x80.
    if (Remaining() >= units) {
        std::uint32_t i = 0;
        while (i < units && p_[i] < 0x80) {
            out[i] = p_[i];
            ++i;
        }
        if (i == units) {
            p_ += units;
            return true;
        }
    }
    std::uint32_t n = 0;
    while (n < units) {
        std::uint8_t b;
        if (!Byte(b)) return false;
        if (b < 0x80) {
            out[n++] = b;
            continue;
        }
        int extra;
        char32_t c, least;
        if (b >= 0xC2 && b <= 0xDF)
            extra = 1, c = b & 0x1F, least = 0x80;
        else if (b >= 0xE0 && b <= 0xEF)
            extra = 2, c = b & 0x0F, least = 0x800;
        else if (b >= 0xF0 && b <= 0xF4)
            extra = 3, c = b & 0x07, least = 0x10000;
        else
            return false;
        for (int k = 0; k < extra; ++k) {
            std::uint8_t t;
            if (!Byte(t) || (t & 0xC0) != 0x80) return false;
            c = (c << 6) | (t & 0x3F);
        }
        if (c < least || c > 0x10FFFF) return false;
        if (c >= 0x10000) {
            if (units - n < 2) return false;
            c -= 0x10000;
            out[n++] = static_cast<char16_t>(0xD800 + (c >> 10));
            out[n++] = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            out[n++] = static_cast<char16_t>(c);
        }
    }
    return true;
}

bool ByteReader::Text(std::u16string& out) {
    std::uint32_t units;
    // Each unit takes at least one byte, which bounds what a damaged count can make us allocate.
    if (!Varint(units) || units > Remaining()) return false;
    out.resize(units);
    return Text(out.data(), units);
}

}  // namespace ts
