#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

#include "ts/api.h"

// Strings that the host allocates for "newly allocated string" outputs; the receiver frees them
// with TsFreeString. Length-prefixed and zero-terminated, so they can hold embedded zeros.
TS_API char16_t* TsAllocString(std::u16string_view text);
TS_API void TsFreeString(char16_t* text);
TS_API std::size_t TsStringLength(const char16_t* text);

// Owns one host string.
class CTsHostString {
public:
    CTsHostString() = default;
    explicit CTsHostString(std::u16string_view text) : p_(TsAllocString(text)) {}
    CTsHostString(CTsHostString&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    CTsHostString& operator=(CTsHostString&& o) noexcept {
        std::swap(p_, o.p_);
        return *this;
    }
    CTsHostString(const CTsHostString&) = delete;
    CTsHostString& operator=(const CTsHostString&) = delete;
    ~CTsHostString() { TsFreeString(p_); }

    char16_t** Put() {
        TsFreeString(std::exchange(p_, nullptr));
        return &p_;
    }
    const char16_t* Get() const { return p_; }
    std::u16string_view View() const { return p_ ? std::u16string_view(p_, TsStringLength(p_)) : std::u16string_view(); }

private:
    char16_t* p_ = nullptr;
};
