#include "json/json_values.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "ts/format.h"
#include "ts/text.h"

namespace ts::json {

namespace {

struct TypeName {
    std::uint32_t code;
    const char16_t* name;
};
constexpr TypeName kTypeNames[] = {
    {kTsTypeList, u"list"},         {kTsTypeInt, u"int"},         {kTsTypeUInt, u"uint"},
    {kTsTypeFloat, u"float"},       {kTsTypeDouble, u"double"},   {kTsTypeString, u"string"},
    {kTsTypeVector, u"vector"},     {kTsTypeBool, u"bool"},       {kTsTypeUInt2, u"uint2"},
    {kTsTypeDateTime, u"datetime"}, {kTsTypeString2, u"string2"}, {kTsTypeColour, u"colour"},
    {kTsTypeBlob, u"bytes"},
};

bool WholeNumber(std::string_view text, std::int64_t& out) {
    auto result = std::from_chars(text.data(), text.data() + text.size(), out);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool ReadFloatValue(const Document& doc, const Value& v, float& out) {
    if (v.IsNumber()) return ReadFloat(doc.NumberText(v), out);
    return v.IsString() && ReadSpecialFloat(doc.String(v), out);
}

bool ReadDoubleValue(const Document& doc, const Value& v, double& out) {
    if (v.IsNumber()) return ReadDouble(doc.NumberText(v), out);
    return v.IsString() && ReadSpecialDouble(doc.String(v), out);
}

// Floats of a vector or colour given as an array of `min` to `max` numbers.
bool ReadFloats(const Document& doc, const Value& v, std::size_t min, std::size_t max, float* out) {
    if (!v.IsArray()) return false;
    auto items = doc.Items(v);
    if (items.size() < min || items.size() > max) return false;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (!ReadFloatValue(doc, items[i], out[i])) return false;
    return true;
}

// Days from 1970-01-01 of a civil date (proleptic Gregorian), after H. Hinnant's algorithm.
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    auto yoe = static_cast<unsigned>(y - era * 400);
    unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void CivilFromDays(std::int64_t z, std::int64_t& y, unsigned& m, unsigned& d) {
    z += 719468;
    std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    auto doe = static_cast<unsigned>(z - era * 146097);
    unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = static_cast<std::int64_t>(yoe) + era * 400;
    unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    y += m <= 2;
}

const std::int64_t kEpoch = DaysFromCivil(1899, 12, 30);

}  // namespace

bool TypeCodeFromName(std::u16string_view text, std::uint32_t& code) {
    for (const auto& t : kTypeNames)
        if (text == t.name) {
            code = t.code;
            return true;
        }
    return false;
}

const char16_t* TypeCodeName(std::uint32_t code) {
    for (const auto& t : kTypeNames)
        if (code == t.code) return t.name;
    return u"";
}

bool ReadValue(const Document& doc, const Value& v, std::uint32_t type, variant& out,
               std::u16string& problem) {
    switch (TsAccessorGroup(type)) {
        case kTsTypeInt: {
            std::int64_t n;
            if (v.IsNumber() && WholeNumber(doc.NumberText(v), n) && n >= INT32_MIN &&
                n <= INT32_MAX) {
                out = variant(type, static_cast<std::int32_t>(n));
                return true;
            }
            problem = u"expected a whole number from -2147483648 to 2147483647";
            return false;
        }
        case kTsTypeUInt: {
            std::int64_t n;
            if (v.IsNumber() && WholeNumber(doc.NumberText(v), n) && n >= 0 && n <= UINT32_MAX) {
                out = variant(type, static_cast<std::uint32_t>(n));
                return true;
            }
            problem = u"expected a whole number from 0 to 4294967295";
            return false;
        }
        case kTsTypeFloat: {
            float f;
            if (ReadFloatValue(doc, v, f)) {
                out = variant(type, f);
                return true;
            }
            problem = u"expected a number (within the range of a float)";
            return false;
        }
        case kTsTypeDouble: {
            double d;
            if (ReadDoubleValue(doc, v, d) ||
                (type == kTsTypeDateTime && v.IsString() && ParseDate(doc.String(v), d))) {
                out = variant(type, d);
                return true;
            }
            problem = type == kTsTypeDateTime ? u"expected a date as \"YYYY-MM-DD\", "
                                                u"\"YYYY-MM-DDTHH:MM:SS\" or a number of days"
                                              : u"expected a number";
            return false;
        }
        case kTsTypeString:
            if (v.IsString()) {
                out = variant(type, doc.String(v));
                return true;
            }
            problem = u"expected a text in double quotes";
            return false;
        case kTsTypeBool:
            if (v.IsBool()) {
                out = variant(type, v.kind == Kind::True);
                return true;
            }
            problem = u"expected true or false";
            return false;
        case kTsTypeVector: {
            float f[3] = {};
            if (ReadFloats(doc, v, 3, 3, f)) {
                out = variant(type, TsVector3{f[0], f[1], f[2]});
                return true;
            }
            problem = u"expected a vector as an array of three numbers";
            return false;
        }
        case kTsTypeColour: {
            float f[4] = {0, 0, 0, 1};
            if (ReadFloats(doc, v, 3, 4, f)) {
                out = variant(type, TsColour{f[0], f[1], f[2], f[3]});
                return true;
            }
            problem =
                u"expected a colour as an array of three or four numbers (red, green, blue, alpha)";
            return false;
        }
        case kTsTypeBlob: {
            std::vector<std::uint8_t> bytes;
            if (v.IsString() && Base64Decode(doc.String(v), bytes)) {
                out = variant(type, std::move(bytes));
                return true;
            }
            problem = u"expected bytes as a base64 text";
            return false;
        }
        default:
            problem = u"a list has no value";
            return false;
    }
}

void WriteValue(Writer& w, const variant& value) {
    std::uint32_t type = value.type();
    switch (TsAccessorGroup(type)) {
        case kTsTypeInt:
            w.Int(value.GetInt());
            break;
        case kTsTypeUInt:
            w.UInt(value.GetUInt());
            break;
        case kTsTypeFloat:
            w.Float(value.GetFloat());
            break;
        case kTsTypeDouble:
            w.Double(value.GetDouble());
            break;
        case kTsTypeString:
            w.String(value.GetString());
            break;
        case kTsTypeBool:
            w.Bool(value.GetBool());
            break;
        case kTsTypeVector: {
            TsVector3 v = value.GetVector();
            w.BeginArray(true);
            w.Float(v.x);
            w.Float(v.y);
            w.Float(v.z);
            w.EndArray();
            break;
        }
        case kTsTypeColour: {
            TsColour c = value.GetColour();
            w.BeginArray(true);
            w.Float(c.r);
            w.Float(c.g);
            w.Float(c.b);
            w.Float(c.a);
            w.EndArray();
            break;
        }
        case kTsTypeBlob:
            w.String(Base64Encode(value.GetBlob()));
            break;
        default:
            w.Null();
            break;
    }
}

bool ParseDate(std::u16string_view text, double& days) {
    if (text.size() != 10 && text.size() != 19) return false;
    auto number = [&](std::size_t at, std::size_t n, unsigned& out) {
        out = 0;
        for (std::size_t i = at; i < at + n; ++i) {
            if (text[i] < u'0' || text[i] > u'9') return false;
            out = out * 10 + (text[i] - u'0');
        }
        return true;
    };
    unsigned y, m, d, hh = 0, mm = 0, ss = 0;
    if (!number(0, 4, y) || text[4] != u'-' || !number(5, 2, m) || text[7] != u'-' ||
        !number(8, 2, d))
        return false;
    if (y < 1 || m < 1 || m > 12 || d < 1) return false;
    static constexpr unsigned kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    if (d > kMonthDays[m - 1] + (m == 2 && leap ? 1 : 0)) return false;
    if (text.size() == 19) {
        if (text[10] != u'T' || !number(11, 2, hh) || text[13] != u':' || !number(14, 2, mm) ||
            text[16] != u':' || !number(17, 2, ss))
            return false;
        if (hh > 23 || mm > 59 || ss > 59) return false;
    }
    days = static_cast<double>(DaysFromCivil(y, m, d) - kEpoch) +
           (hh * 3600.0 + mm * 60.0 + ss) / 86400.0;
    return true;
}

std::u16string FormatDate(double days) {
    if (!std::isfinite(days) || std::fabs(days) > 3e6) return {};
    double whole = std::floor(days);
    long long seconds = std::llround((days - whole) * 86400.0);
    if (seconds >= 86400) return {};
    std::int64_t y;
    unsigned m, d;
    CivilFromDays(static_cast<std::int64_t>(whole) + kEpoch, y, m, d);
    if (y < 1 || y > 9999) return {};
    char buf[64];
    if (seconds == 0 && whole == days)
        std::snprintf(buf, sizeof buf, "%04d-%02u-%02u", static_cast<int>(y), m, d);
    else
        std::snprintf(buf, sizeof buf, "%04d-%02u-%02uT%02lld:%02lld:%02lld", static_cast<int>(y),
                      m, d, seconds / 3600, seconds / 60 % 60, seconds % 60);
    std::u16string text = Utf8ToUtf16(buf);
    // Only a text that reads back to the very same bits stands for the value.
    double back;
    if (!ParseDate(text, back) ||
        std::bit_cast<std::uint64_t>(back) != std::bit_cast<std::uint64_t>(days))
        return {};
    return text;
}

namespace {
constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
}

std::u16string Base64Encode(const std::vector<std::uint8_t>& bytes) {
    std::u16string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t n = std::uint32_t(bytes[i]) << 16;
        if (i + 1 < bytes.size()) n |= std::uint32_t(bytes[i + 1]) << 8;
        if (i + 2 < bytes.size()) n |= bytes[i + 2];
        out += static_cast<char16_t>(kBase64[(n >> 18) & 63]);
        out += static_cast<char16_t>(kBase64[(n >> 12) & 63]);
        out += i + 1 < bytes.size() ? static_cast<char16_t>(kBase64[(n >> 6) & 63]) : u'=';
        out += i + 2 < bytes.size() ? static_cast<char16_t>(kBase64[n & 63]) : u'=';
    }
    return out;
}

bool Base64Decode(std::u16string_view text, std::vector<std::uint8_t>& bytes) {
    if (text.size() % 4 != 0) return false;
    bytes.clear();
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::uint32_t n = 0;
        int padding = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            char16_t c = text[i + k];
            int v = c >= u'A' && c <= u'Z'   ? c - u'A'
                    : c >= u'a' && c <= u'z' ? c - u'a' + 26
                    : c >= u'0' && c <= u'9' ? c - u'0' + 52
                    : c == u'+'              ? 62
                    : c == u'/'              ? 63
                                             : -1;
            if (c == u'=' && i + 4 == text.size() && k >= 2) {
                ++padding;
                v = 0;
            } else if (v < 0 || padding) {
                return false;  // not base64, or data after padding
            }
            n = (n << 6) | static_cast<std::uint32_t>(v);
        }
        bytes.push_back(static_cast<std::uint8_t>(n >> 16));
        if (padding < 2) bytes.push_back(static_cast<std::uint8_t>(n >> 8));
        if (padding < 1) bytes.push_back(static_cast<std::uint8_t>(n));
    }
    return true;
}

}  // namespace ts::json
