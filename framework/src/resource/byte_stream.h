#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace ts {

// Appends the little-endian pieces of the resource format to a byte vector.
class ByteWriter {
public:
    explicit ByteWriter(std::vector<std::uint8_t>& out) : out_(out) {}

    void Byte(std::uint8_t b) { out_.push_back(b); }
    void Varint(std::uint32_t v) {
        while (v >= 0x80) {
            out_.push_back(static_cast<std::uint8_t>(v | 0x80));
            v >>= 7;
        }
        out_.push_back(static_cast<std::uint8_t>(v));
    }
    void ZigZag(std::int32_t v) {
        Varint((static_cast<std::uint32_t>(v) << 1) ^ static_cast<std::uint32_t>(v >> 31));
    }
    template <class T>
    void Raw(const T& v) {
        auto at = out_.size();
        out_.resize(at + sizeof(T));
        std::memcpy(out_.data() + at, &v, sizeof(T));
    }
    void Bytes(const void* data, std::size_t size) {
        auto* p = static_cast<const std::uint8_t*>(data);
        out_.insert(out_.end(), p, p + size);
    }
    // A count of UTF-16 units, then the units as WTF-8.
    void Text(std::u16string_view text);

    std::size_t Size() const { return out_.size(); }

private:
    std::vector<std::uint8_t>& out_;
};

// Reads what ByteWriter wrote, never past the end: every read reports success, and a failed read
// leaves the reader failed so that callers can check once per record.
class ByteReader {
public:
    ByteReader(const std::uint8_t* data, std::size_t size)
        : p_(data), begin_(data), end_(data + size) {}

    bool Byte(std::uint8_t& b) {
        if (p_ == end_) return false;
        b = *p_++;
        return true;
    }
    bool Varint(std::uint32_t& v) {
        // The common case, one byte, first.
        if (p_ != end_ && *p_ < 0x80) {
            v = *p_++;
            return true;
        }
        std::uint32_t result = 0;
        for (int shift = 0; shift < 35; shift += 7) {
            if (p_ == end_) return false;
            std::uint8_t b = *p_++;
            if (shift == 28 && (b & 0xF0)) return false;  // more than 32 bits
            result |= std::uint32_t(b & 0x7F) << shift;
            if (!(b & 0x80)) {
                v = result;
                return true;
            }
        }
        return false;
    }
    bool ZigZag(std::int32_t& v) {
        std::uint32_t u;
        if (!Varint(u)) return false;
        v = static_cast<std::int32_t>((u >> 1) ^ (0u - (u & 1)));
        return true;
    }
    template <class T>
    bool Raw(T& v) {
        if (Remaining() < sizeof(T)) return false;
        std::memcpy(&v, p_, sizeof(T));
        p_ += sizeof(T);
        return true;
    }
    bool Bytes(void* out, std::size_t size) {
        if (Remaining() < size) return false;
        if (size) std::memcpy(out, p_, size);
        p_ += size;
        return true;
    }
    // Decodes exactly `units` UTF-16 units of WTF-8 into `out`.
    bool Text(char16_t* out, std::uint32_t units);
    bool Text(std::u16string& out);

    std::size_t Remaining() const { return static_cast<std::size_t>(end_ - p_); }
    std::size_t Offset() const { return static_cast<std::size_t>(p_ - begin_); }

private:
    const std::uint8_t* p_;
    const std::uint8_t* begin_;
    const std::uint8_t* end_;
};

}  // namespace ts
