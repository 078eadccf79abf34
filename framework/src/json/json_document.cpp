#include "json/json_document.h"

#include <unordered_set>

#include "ts/format.h"
#include "ts/text.h"

namespace ts::json {

namespace {

constexpr int kMaxDepth = 512;

// The keys of one object, to find a key given twice. Most objects have a handful of keys, which a
// scan compares fastest; past that a hash set keeps the check linear however many keys there are.
// Keys are kept as places in the string pool, which grows (and moves) while the object is read.
class KeySet {
public:
    explicit KeySet(const std::u16string& pool) : pool_(pool), set_(0, Hash{&pool}, Equal{&pool}) {}

    // False when the object already has this key; `scratch` from `first` holds its members so far.
    bool Add(const Value& key, const std::vector<Value>& scratch, std::size_t first) {
        Key k{key.a, key.b};
        if (!set_.empty()) return set_.insert(k).second;
        std::u16string_view name = View(pool_, k);
        std::size_t count = (scratch.size() - first) / 2;
        if (count < kScanLimit) {
            for (std::size_t i = first; i < scratch.size(); i += 2)
                if (View(pool_, {scratch[i].a, scratch[i].b}) == name) return false;
            return true;
        }
        set_.reserve(count * 2);
        for (std::size_t i = first; i < scratch.size(); i += 2)
            set_.insert({scratch[i].a, scratch[i].b});
        return set_.insert(k).second;
    }

private:
    static constexpr std::size_t kScanLimit = 16;
    struct Key {
        std::uint32_t offset, length;
    };
    static std::u16string_view View(const std::u16string& pool, Key k) {
        return std::u16string_view(pool).substr(k.offset, k.length);
    }
    struct Hash {
        const std::u16string* pool;
        std::size_t operator()(Key k) const {
            return std::hash<std::u16string_view>()(View(*pool, k));
        }
    };
    struct Equal {
        const std::u16string* pool;
        bool operator()(Key a, Key b) const { return View(*pool, a) == View(*pool, b); }
    };
    const std::u16string& pool_;
    std::unordered_set<Key, Hash, Equal> set_;
};

class Parser {
public:
    Parser(std::string_view source, std::vector<Value>& values, std::u16string& pool)
        : s_(source), values_(values), pool_(pool) {}

    bool Run(std::u16string& problem, std::size_t& at) {
        if (s_.substr(0, 3) == "\xEF\xBB\xBF") p_ = 3;  // a byte-order mark some editors write
        Value root;
        bool ok = ParseValue(root, 0);
        if (ok) {
            SkipSpace();
            if (p_ != s_.size()) ok = Fail(u"there is more text after the end of the JSON value");
        }
        if (!ok) {
            problem = problem_;
            at = at_;
            return false;
        }
        values_.push_back(root);
        return true;
    }

private:
    bool Fail(std::u16string_view what) { return FailAt(p_, what); }
    bool FailAt(std::size_t at, std::u16string_view what) {
        if (problem_.empty()) {
            problem_ = what;
            at_ = at;
        }
        return false;
    }

    void SkipSpace() {
        while (p_ < s_.size() &&
               (s_[p_] == ' ' || s_[p_] == '\t' || s_[p_] == '\n' || s_[p_] == '\r'))
            ++p_;
    }

    bool Literal(std::string_view word, Kind kind, Value& out) {
        if (s_.substr(p_, word.size()) != word)
            return Fail(
                u"expected a value (an object, array, string, number, true, false or null)");
        out.kind = kind;
        p_ += word.size();
        return true;
    }

    bool ParseValue(Value& out, int depth) {
        SkipSpace();
        if (p_ >= s_.size()) return Fail(u"the text ends where a value was expected");
        out = Value{};
        out.at = static_cast<std::uint32_t>(p_);
        switch (s_[p_]) {
            case '{':
                return ParseObject(out, depth + 1);
            case '[':
                return ParseArray(out, depth + 1);
            case '"':
                out.kind = Kind::String;
                return ParseString(out);
            case 't':
                return Literal("true", Kind::True, out);
            case 'f':
                return Literal("false", Kind::False, out);
            case 'n':
                return Literal("null", Kind::Null, out);
            default:
                return ParseNumber(out);
        }
    }

    bool ParseNumber(Value& out) {
        std::size_t start = p_;
        auto digits = [&] {
            std::size_t from = p_;
            while (p_ < s_.size() && s_[p_] >= '0' && s_[p_] <= '9') ++p_;
            return p_ > from;
        };
        if (p_ < s_.size() && s_[p_] == '-') ++p_;
        if (p_ < s_.size() && s_[p_] == '0') {
            ++p_;
        } else if (!digits()) {
            return FailAt(
                start, u"expected a value (an object, array, string, number, true, false or null)");
        }
        if (p_ < s_.size() && s_[p_] == '.') {
            ++p_;
            if (!digits()) return Fail(u"a number needs digits after its decimal point");
        }
        if (p_ < s_.size() && (s_[p_] == 'e' || s_[p_] == 'E')) {
            ++p_;
            if (p_ < s_.size() && (s_[p_] == '+' || s_[p_] == '-')) ++p_;
            if (!digits()) return Fail(u"a number needs digits in its exponent");
        }
        out.kind = Kind::Number;
        out.a = static_cast<std::uint32_t>(start);
        out.b = static_cast<std::uint32_t>(p_ - start);
        return true;
    }

    bool Hex4(char16_t& unit) {
        if (p_ + 4 > s_.size()) return Fail(u"a \\u escape needs four hexadecimal digits");
        unsigned v = 0;
        for (int i = 0; i < 4; ++i) {
            char c = s_[p_ + i];
            int d = c >= '0' && c <= '9'   ? c - '0'
                    : c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                           : -1;
            if (d < 0) return Fail(u"a \\u escape needs four hexadecimal digits");
            v = v * 16 + static_cast<unsigned>(d);
        }
        p_ += 4;
        unit = static_cast<char16_t>(v);
        return true;
    }

    // Appends one UTF-8 sequence starting at p_ to the pool.
    bool Utf8() {
        auto b = static_cast<unsigned char>(s_[p_]);
        int extra;
        char32_t c, least;
        if (b >= 0xC2 && b <= 0xDF)
            extra = 1, c = b & 0x1F, least = 0x80;
        else if (b >= 0xE0 && b <= 0xEF)
            extra = 2, c = b & 0x0F, least = 0x800;
        else if (b >= 0xF0 && b <= 0xF4)
            extra = 3, c = b & 0x07, least = 0x10000;
        else
            return Fail(u"the text is not valid UTF-8");
        if (p_ + extra >= s_.size()) return Fail(u"the text is not valid UTF-8");
        for (int k = 1; k <= extra; ++k) {
            auto t = static_cast<unsigned char>(s_[p_ + k]);
            if ((t & 0xC0) != 0x80) return Fail(u"the text is not valid UTF-8");
            c = (c << 6) | (t & 0x3F);
        }
        if (c < least || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
            return Fail(u"the text is not valid UTF-8");
        p_ += static_cast<std::size_t>(extra) + 1;
        if (c >= 0x10000) {
            c -= 0x10000;
            pool_ += static_cast<char16_t>(0xD800 + (c >> 10));
            pool_ += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            pool_ += static_cast<char16_t>(c);
        }
        return true;
    }

    bool ParseString(Value& out) {
        ++p_;  // the opening quote
        std::size_t start = pool_.size();
        for (;;) {
            if (p_ >= s_.size()) return FailAt(out.at, u"a string is not closed");
            char c = s_[p_];
            if (c == '"') {
                ++p_;
                break;
            }
            if (static_cast<unsigned char>(c) < 0x20)
                return Fail(
                    u"a string holds a control character; write it as an escape such as \\n");
            if (static_cast<unsigned char>(c) >= 0x80) {
                if (!Utf8()) return false;
                continue;
            }
            if (c != '\\') {
                pool_ += static_cast<char16_t>(c);
                ++p_;
                continue;
            }
            if (++p_ >= s_.size()) return FailAt(out.at, u"a string is not closed");
            char e = s_[p_++];
            switch (e) {
                case '"':
                    pool_ += u'"';
                    break;
                case '\\':
                    pool_ += u'\\';
                    break;
                case '/':
                    pool_ += u'/';
                    break;
                case 'b':
                    pool_ += u'\b';
                    break;
                case 'f':
                    pool_ += u'\f';
                    break;
                case 'n':
                    pool_ += u'\n';
                    break;
                case 'r':
                    pool_ += u'\r';
                    break;
                case 't':
                    pool_ += u'\t';
                    break;
                case 'u': {
                    // Escaped units are taken as they stand, so lone surrogates survive.
                    char16_t unit;
                    if (!Hex4(unit)) return false;
                    pool_ += unit;
                    break;
                }
                default:
                    p_ -= 2;
                    return Fail(u"unknown escape in a string");
            }
        }
        out.a = static_cast<std::uint32_t>(start);
        out.b = static_cast<std::uint32_t>(pool_.size() - start);
        return true;
    }

    bool ParseArray(Value& out, int depth) {
        if (depth > kMaxDepth)
            return Fail(Format(u"the values nest deeper than %d levels", kMaxDepth));
        ++p_;
        out.kind = Kind::Array;
        std::size_t first = scratch_.size();
        SkipSpace();
        if (p_ < s_.size() && s_[p_] == ']') {
            ++p_;
        } else {
            for (;;) {
                Value item;
                if (!ParseValue(item, depth)) return false;
                scratch_.push_back(item);
                SkipSpace();
                if (p_ < s_.size() && s_[p_] == ',') {
                    ++p_;
                    continue;
                }
                if (p_ < s_.size() && s_[p_] == ']') {
                    ++p_;
                    break;
                }
                return Fail(p_ >= s_.size() ? u"the text ends inside an array"
                                            : u"expected ',' or ']' in an array");
            }
        }
        Settle(out, first, scratch_.size() - first);
        return true;
    }

    bool ParseObject(Value& out, int depth) {
        if (depth > kMaxDepth)
            return Fail(Format(u"the values nest deeper than %d levels", kMaxDepth));
        ++p_;
        out.kind = Kind::Object;
        std::size_t first = scratch_.size();
        KeySet keys(pool_);
        SkipSpace();
        if (p_ < s_.size() && s_[p_] == '}') {
            ++p_;
        } else {
            for (;;) {
                SkipSpace();
                if (p_ >= s_.size()) return Fail(u"the text ends inside an object");
                if (s_[p_] != '"') return Fail(u"expected a key in double quotes");
                Value key;
                key.kind = Kind::String;
                key.at = static_cast<std::uint32_t>(p_);
                if (!ParseString(key)) return false;
                if (!keys.Add(key, scratch_, first))
                    return FailAt(
                        key.at,
                        Format(u"the key \"%ls\" appears twice in this object",
                               MessageText(std::u16string_view(pool_).substr(key.a, key.b))));
                SkipSpace();
                if (p_ >= s_.size() || s_[p_] != ':') return Fail(u"expected ':' after a key");
                ++p_;
                Value value;
                if (!ParseValue(value, depth)) return false;
                scratch_.push_back(key);
                scratch_.push_back(value);
                SkipSpace();
                if (p_ < s_.size() && s_[p_] == ',') {
                    ++p_;
                    continue;
                }
                if (p_ < s_.size() && s_[p_] == '}') {
                    ++p_;
                    break;
                }
                return Fail(p_ >= s_.size() ? u"the text ends inside an object"
                                            : u"expected ',' or '}' in an object");
            }
        }
        Settle(out, first, (scratch_.size() - first) / 2);
        return true;
    }

    // Moves a finished container's entries from the scratch stack to the value table, where they
    // lie side by side.
    void Settle(Value& out, std::size_t first, std::size_t count) {
        out.a = static_cast<std::uint32_t>(values_.size());
        out.b = static_cast<std::uint32_t>(count);
        values_.insert(values_.end(), scratch_.begin() + static_cast<std::ptrdiff_t>(first),
                       scratch_.end());
        scratch_.resize(first);
    }

    std::string_view s_;
    std::size_t p_ = 0;
    std::vector<Value>& values_;
    std::u16string& pool_;
    std::vector<Value> scratch_;
    std::u16string problem_;
    std::size_t at_ = 0;
};

}  // namespace

bool Document::Parse(std::string_view utf8, std::u16string* error) {
    source_ = utf8;
    values_.clear();
    pool_.clear();
    if (utf8.size() >= 0xFFFFFFFFu) {
        if (error) *error = u"the text is larger than 4 GiB";
        return false;
    }
    std::u16string problem;
    std::size_t at = 0;
    if (Parser(utf8, values_, pool_).Run(problem, at)) return true;
    values_.clear();
    if (error) *error = Where(at) + u": " + problem;
    return false;
}

const Value* Document::Find(const Value& object, std::u16string_view key) const {
    for (std::uint32_t i = 0; i < object.b; ++i) {
        Member m = MemberAt(object, i);
        if (m.key == key) return m.value;
    }
    return nullptr;
}

std::u16string Document::Where(std::size_t offset) const {
    std::size_t line = 1, column = 1;
    for (std::size_t i = 0; i < offset && i < source_.size(); ++i) {
        if (source_[i] == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(source_[i]) & 0xC0) != 0x80) {
            ++column;  // count characters, not the continuation bytes of UTF-8
        }
    }
    return Format(u"line %lu, column %lu", static_cast<unsigned long>(line),
                  static_cast<unsigned long>(column));
}

}  // namespace ts::json
