#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "ts/api.h"

// One printf-style formatter for every message built from a pattern. Directives: %d %u %ld %lu
// (integers), %s (UTF-8 text), %ls (UTF-16 text), %f (six decimals), %%. Arguments are typed, so
// a mismatch shows the argument as it is rather than reading garbage.
namespace ts {

class FormatArg {
public:
    enum class Kind { Signed, Unsigned, Double, Narrow, Wide };

    template <class T>
        requires std::is_integral_v<T> && std::is_signed_v<T>
    FormatArg(T v) : kind_(Kind::Signed), i_(v) {}
    template <class T>
        requires std::is_integral_v<T> && std::is_unsigned_v<T> && (!std::is_same_v<T, bool>)
    FormatArg(T v) : kind_(Kind::Unsigned), u_(v) {}
    FormatArg(double v) : kind_(Kind::Double), d_(v) {}
    FormatArg(const char* s) : kind_(Kind::Narrow), narrow_(s ? s : "") {}
    FormatArg(const std::string& s) : kind_(Kind::Narrow), narrow_(s) {}
    FormatArg(std::string_view s) : kind_(Kind::Narrow), narrow_(s) {}
    FormatArg(const char16_t* s) : kind_(Kind::Wide), wide_(s ? s : u"") {}
    FormatArg(const std::u16string& s) : kind_(Kind::Wide), wide_(s) {}
    FormatArg(std::u16string_view s) : kind_(Kind::Wide), wide_(s) {}

    Kind kind() const { return kind_; }
    std::int64_t i() const { return i_; }
    std::uint64_t u() const { return u_; }
    double d() const { return d_; }
    std::string_view narrow() const { return narrow_; }
    std::u16string_view wide() const { return wide_; }

private:
    Kind kind_;
    std::int64_t i_ = 0;
    std::uint64_t u_ = 0;
    double d_ = 0;
    std::string_view narrow_;
    std::u16string_view wide_;
};

TS_API std::u16string FormatArgs(std::u16string_view pattern, std::initializer_list<FormatArg> args);

template <class... Args>
std::u16string Format(std::u16string_view pattern, const Args&... args) {
    return FormatArgs(pattern, {FormatArg(args)...});
}

}  // namespace ts
