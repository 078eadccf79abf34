#include "ts/variant.h"

#include <cstring>

#include "ts/report.h"

std::uint32_t TsAccessorGroup(std::uint32_t type) {
    switch (type) {
        case kTsTypeInt:
        case kTsTypeFloat:
        case kTsTypeVector:
        case kTsTypeBool:
        case kTsTypeColour:
        case kTsTypeBlob:
            return type;
        case kTsTypeUInt:
        case kTsTypeUInt2:
            return kTsTypeUInt;
        case kTsTypeDouble:
        case kTsTypeDateTime:
            return kTsTypeDouble;
        case kTsTypeString:
        case kTsTypeString2:
            return kTsTypeString;
        default:
            return kTsTypeList;
    }
}

bool TsIsKnownTypeCode(std::uint32_t type) {
    return type == kTsTypeList || TsAccessorGroup(type) != kTsTypeList;
}

namespace {
void ReportBadRequest() {
    Report(ReportLevel::Assert, "toolscpphelpers", __LINE__, u"Invalid variant type request");
}
}  // namespace

// Each constructor checks that its code belongs to its accessor group.
#define TS_VARIANT_CTOR(ValueType, group, member)                     \
    variant::variant(std::uint32_t type, ValueType v) : type_(type) { \
        if (TsAccessorGroup(type) != group) { Reject(); return; }        \
        member = v;                                                   \
    }
TS_VARIANT_CTOR(std::int32_t, kTsTypeInt, i_)
TS_VARIANT_CTOR(std::uint32_t, kTsTypeUInt, u_)
TS_VARIANT_CTOR(float, kTsTypeFloat, f_)
TS_VARIANT_CTOR(double, kTsTypeDouble, d_)
TS_VARIANT_CTOR(bool, kTsTypeBool, b_)
#undef TS_VARIANT_CTOR

variant::variant(std::uint32_t type, TsVector3 v) : type_(type) {
    if (TsAccessorGroup(type) != kTsTypeVector) { Reject(); return; }
    raw_[0] = v.x, raw_[1] = v.y, raw_[2] = v.z;
}

variant::variant(std::uint32_t type, TsColour v) : type_(type) {
    if (TsAccessorGroup(type) != kTsTypeColour) { Reject(); return; }
    raw_[0] = v.r, raw_[1] = v.g, raw_[2] = v.b, raw_[3] = v.a;
}

variant::variant(std::uint32_t type, std::u16string_view v) : type_(type) {
    if (TsAccessorGroup(type) != kTsTypeString) { Reject(); return; }
    s_.assign(v);
}

variant::variant(std::uint32_t type, std::vector<std::uint8_t> v) : type_(type) {
    if (type != kTsTypeBlob) { Reject(); return; }
    blob_ = std::move(v);
}

void variant::Reject() {
    type_ = kTsTypeList;
    raw_[0] = raw_[1] = raw_[2] = raw_[3] = 0;
    Report(ReportLevel::Assert, "toolscpphelpers", __LINE__, u"Invalid constructor type");
}

bool variant::Check(std::uint32_t group) const {
    if (TsAccessorGroup(type_) == group && type_ != kTsTypeList) return true;
    ReportBadRequest();
    return false;
}

std::int32_t variant::GetInt() const { return Check(kTsTypeInt) ? i_ : 0; }
std::uint32_t variant::GetUInt() const { return Check(kTsTypeUInt) ? u_ : 0u; }
float variant::GetFloat() const { return Check(kTsTypeFloat) ? f_ : 0.0f; }
double variant::GetDouble() const { return Check(kTsTypeDouble) ? d_ : 0.0; }
TsVector3 variant::GetVector() const {
    return Check(kTsTypeVector) ? TsVector3{raw_[0], raw_[1], raw_[2]} : TsVector3{};
}
bool variant::GetBool() const { return Check(kTsTypeBool) ? b_ : false; }
TsColour variant::GetColour() const {
    return Check(kTsTypeColour) ? TsColour{raw_[0], raw_[1], raw_[2], raw_[3]} : TsColour{};
}

const std::u16string& variant::GetString() const {
    static const std::u16string kEmpty;
    return Check(kTsTypeString) ? s_ : kEmpty;
}

const std::vector<std::uint8_t>& variant::GetBlob() const {
    static const std::vector<std::uint8_t> kEmpty;
    return Check(kTsTypeBlob) ? blob_ : kEmpty;
}

bool operator==(const variant& a, const variant& b) {
    if (a.type_ != b.type_) return false;
    switch (TsAccessorGroup(a.type_)) {
        case kTsTypeInt: return a.i_ == b.i_;
        case kTsTypeUInt: return a.u_ == b.u_;
        // Bitwise, so that a round trip of NaN or -0 counts as equal only when exact.
        case kTsTypeFloat: return std::memcmp(&a.f_, &b.f_, sizeof a.f_) == 0;
        case kTsTypeDouble: return std::memcmp(&a.d_, &b.d_, sizeof a.d_) == 0;
        case kTsTypeString: return a.s_ == b.s_;
        case kTsTypeVector: return std::memcmp(a.raw_, b.raw_, 3 * sizeof(float)) == 0;
        case kTsTypeBool: return a.b_ == b.b_;
        case kTsTypeColour: return std::memcmp(a.raw_, b.raw_, sizeof a.raw_) == 0;
        case kTsTypeBlob: return a.blob_ == b.blob_;
        default: return true;
    }
}
