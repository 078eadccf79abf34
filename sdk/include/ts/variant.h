#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"

// Type codes of property values.
enum TsTypeCode : std::uint32_t {
    kTsTypeList = 0,
    kTsTypeInt = 5,
    kTsTypeUInt = 6,
    kTsTypeFloat = 9,
    kTsTypeDouble = 10,
    kTsTypeString = 11,
    kTsTypeVector = 13,
    kTsTypeBool = 15,
    kTsTypeUInt2 = 16,     // read through the unsigned accessor
    kTsTypeDateTime = 17,  // a day count, read through the double accessor
    kTsTypeString2 = 18,   // read through the string accessor
    kTsTypeColour = 19,
    kTsTypeBlob = 22,      // raw bytes of the host's own
};

struct TsVector3 {
    float x = 0, y = 0, z = 0;
    friend bool operator==(const TsVector3&, const TsVector3&) = default;
};

// Red, green, blue and alpha, each nominally 0 to 1.
struct TsColour {
    float r = 0, g = 0, b = 0, a = 1;
    friend bool operator==(const TsColour&, const TsColour&) = default;
};

// The accessor group a type code belongs to; kTsTypeList for codes without a value.
TS_API std::uint32_t TsAccessorGroup(std::uint32_t typeCode);
// True for the codes a node can hold (0 and the codes above).
TS_API bool TsIsKnownTypeCode(std::uint32_t typeCode);

// A property value: a type code and the value. Each accessor accepts only its own group of
// codes; asking with the wrong one reports "Invalid variant type request" and gives the zero
// value. A constructor given a code it does not accept reports "Invalid constructor type" and
// makes an empty value (code 0).
class TS_API variant {
public:
    variant() = default;
    variant(std::uint32_t type, std::int32_t v);
    variant(std::uint32_t type, std::uint32_t v);
    variant(std::uint32_t type, float v);
    variant(std::uint32_t type, double v);
    variant(std::uint32_t type, std::u16string_view v);
    variant(std::uint32_t type, const char16_t* v) : variant(type, std::u16string_view(v)) {}
    variant(std::uint32_t type, TsVector3 v);
    variant(std::uint32_t type, bool v);
    variant(std::uint32_t type, TsColour v);
    variant(std::uint32_t type, std::vector<std::uint8_t> v);

    std::uint32_t type() const { return type_; }
    bool empty() const { return type_ == kTsTypeList; }

    std::int32_t GetInt() const;
    std::uint32_t GetUInt() const;
    float GetFloat() const;
    double GetDouble() const;
    const std::u16string& GetString() const;
    TsVector3 GetVector() const;
    bool GetBool() const;
    TsColour GetColour() const;
    const std::vector<std::uint8_t>& GetBlob() const;

    friend TS_API bool operator==(const variant& a, const variant& b);

private:
    bool Check(std::uint32_t group) const;
    void Reject();

    std::uint32_t type_ = kTsTypeList;
    union {
        std::int32_t i_;
        std::uint32_t u_;
        float f_;
        double d_;
        bool b_;
        float raw_[4] = {};  // vector (x, y, z) or colour (r, g, b, a)
    };
    std::u16string s_;
    std::vector<std::uint8_t> blob_;
};
