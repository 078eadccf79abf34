#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ts::json {

enum class Kind : std::uint8_t { Null, False, True, Number, String, Array, Object };

// One value of a parsed document: 16 bytes, so that a large exported resource can be read back
// without a heavyweight tree of its own. `a` and `b` depend on the kind: a number's text in the
// source (offset, length), a string's text in the document's pool (offset, length), an array's
// elements or an object's members in the value table (first, count). Members are two values each,
// the key (a string) then the value.
struct Value {
    Kind kind = Kind::Null;
    std::uint32_t at = 0;  // byte offset in the source, for messages
    std::uint32_t a = 0;
    std::uint32_t b = 0;

    bool IsString() const { return kind == Kind::String; }
    bool IsNumber() const { return kind == Kind::Number; }
    bool IsArray() const { return kind == Kind::Array; }
    bool IsObject() const { return kind == Kind::Object; }
    bool IsBool() const { return kind == Kind::True || kind == Kind::False; }
};

struct Member {
    std::u16string_view key;
    const Value* value;
};

// A parsed JSON text (RFC 8259, UTF-8). Strings are decoded to UTF-16, including escaped lone
// surrogates; duplicate keys in one object are refused, since a hand-written file that names a
// field twice is a mistake.
class Document {
public:
    bool Parse(std::string_view utf8, std::u16string* error);

    const Value& Root() const { return values_.back(); }
    std::u16string_view String(const Value& v) const {
        return std::u16string_view(pool_).substr(v.a, v.b);
    }
    std::string_view NumberText(const Value& v) const { return source_.substr(v.a, v.b); }
    std::span<const Value> Items(const Value& array) const {
        return {values_.data() + array.a, array.b};
    }
    std::uint32_t MemberCount(const Value& object) const { return object.b; }
    Member MemberAt(const Value& object, std::uint32_t i) const {
        const Value* pair = values_.data() + object.a + 2 * i;
        return {String(pair[0]), pair + 1};
    }
    const Value* Find(const Value& object, std::u16string_view key) const;

    // "line 3, column 14", counted in characters from 1.
    std::u16string Where(const Value& v) const { return Where(v.at); }
    std::u16string Where(std::size_t offset) const;

private:
    std::string_view source_;
    std::vector<Value> values_;
    std::u16string pool_;
};

}  // namespace ts::json
