#pragma once

#include <cstdint>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

#include "ts/variant.h"

// Fields of a record are declared as data: one row per field, from which the agent's
// declaration, its defaults and its typed getter/setter pairs all come (see agentbase.h).

// A default written by SetDefaults; kind None for fields that are declared but not written.
struct TsFieldDefault {
    enum class Kind : std::uint8_t { None, Int, UInt, Float, Double, String, Vector, Bool, Colour };
    Kind kind = Kind::None;
    std::int64_t i = 0;
    double d = 0;
    const char16_t* s = nullptr;
    float v[4] = {};
};

// Marks a field without a default.
struct TsNoDefault {};
inline constexpr TsNoDefault TS_NO_DEFAULT{};

struct TsFieldDecl {
    const char16_t* name;
    std::uint32_t type;
    std::uint32_t flags;
    const char16_t* displayName;
    const char16_t* category;
    const char16_t* subCategory;
    const char16_t* description;
    const char16_t* editorKind;
    TsFieldDefault defaultValue;
};

// The value the default stands for, with the field's type code; empty for Kind::None.
variant TsDefaultVariant(const TsFieldDecl& field);

// One traits type per field kind: the type code, the C++ value type of its accessors, and how a
// written default becomes a TsFieldDefault.
namespace ts::field {

using K = TsFieldDefault::Kind;

struct Int {
    using Value = std::int32_t;
    static constexpr std::uint32_t kCode = kTsTypeInt;
    static constexpr TsFieldDefault Default(std::int32_t v) { return {K::Int, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct UInt {
    using Value = std::uint32_t;
    static constexpr std::uint32_t kCode = kTsTypeUInt;
    static constexpr TsFieldDefault Default(std::uint32_t v) { return {K::UInt, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct Float {
    using Value = float;
    static constexpr std::uint32_t kCode = kTsTypeFloat;
    static constexpr TsFieldDefault Default(double v) { return {K::Float, 0, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct Double {
    using Value = double;
    static constexpr std::uint32_t kCode = kTsTypeDouble;
    static constexpr TsFieldDefault Default(double v) { return {K::Double, 0, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct DateTime {
    using Value = double;
    static constexpr std::uint32_t kCode = kTsTypeDateTime;
    static constexpr TsFieldDefault Default(double v) { return {K::Double, 0, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct String {
    using Value = std::u16string;
    static constexpr std::uint32_t kCode = kTsTypeString;
    static constexpr TsFieldDefault Default(const char16_t* v) { return {K::String, 0, 0, v}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct Vector {
    using Value = TsVector3;
    static constexpr std::uint32_t kCode = kTsTypeVector;
    static constexpr TsFieldDefault Default(TsVector3 v) { return {K::Vector, 0, 0, nullptr, {v.x, v.y, v.z, 0}}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct Bool {
    using Value = bool;
    static constexpr std::uint32_t kCode = kTsTypeBool;
    static constexpr TsFieldDefault Default(bool v) { return {K::Bool, v ? 1 : 0}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct Colour {
    using Value = TsColour;
    static constexpr std::uint32_t kCode = kTsTypeColour;
    static constexpr TsFieldDefault Default(TsColour v) { return {K::Colour, 0, 0, nullptr, {v.r, v.g, v.b, v.a}}; }
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};
struct List {
    static constexpr std::uint32_t kCode = kTsTypeList;
    static constexpr TsFieldDefault Default(TsNoDefault) { return {}; }
};

}  // namespace ts::field

// Declares a record's fields and generates its agent members. Inside the class body:
//
//   #define MY_FIELDS(F)
//       F(StringID, Int, 0, u"", u"", u"", u"", u"", -1)
//       F(Text, String, 2, u"Text", u"", u"", u"", u"", u"")
//       F(TransitionList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)
//   (each row ends with a line continuation)
//
//   class CAgentLine : public CAgentBase {
//   public:
//       TS_AGENT_FIELDS(CAgentLine, CAgentBase, "agentconversation", MY_FIELDS)
//       TS_AGENT_DEFAULTS()
//   };
//
// Row: name (the serialized name), kind (Int, UInt, Float, Double, DateTime, String, Vector,
// Bool, Colour, List), flags, display name, category, sub-category, description, editor kind,
// default (TS_NO_DEFAULT when none is written). A value field gets Get<Name>(out) and
// Set<Name>(value); a list field gets <Name>Count() and Get<Name>Item(index, node).
// TS_AGENT_DEFAULTS() writes the base's defaults, then this table's; a record with extra
// default rules writes its own SetDefaults() around WriteDefaults(Fields()). A record with no
// fields of its own passes TS_NO_FIELDS.
#define TS_FIELD_DECL_ROW(Name, Kind, Flags, Display, Category, SubCategory, Description, Editor, Value) \
    TsFieldDecl{u"" #Name, ::ts::field::Kind::kCode, Flags, Display, Category, SubCategory, Description, \
                Editor, ::ts::field::Kind::Default(Value)},

#define TS_FIELD_ACCESSORS(Name, Kind, Flags, Display, Category, SubCategory, Description, Editor, Value) \
    TS_FIELD_ACCESSORS_##Kind(Name, Kind)

#define TS_FIELD_VALUE_ACCESSORS(Name, Kind)                                                   \
    bool Get##Name(::ts::field::Kind::Value& out) const {                                      \
        static const TsAtom atom = TsAddAtom(u"" #Name);                                       \
        return ReadField(atom, ::ts::field::Kind::kCode, out, kSourceHeader, __LINE__);        \
    }                                                                                          \
    bool Set##Name(const ::ts::field::Kind::Value& value) {                                    \
        static const TsAtom atom = TsAddAtom(u"" #Name);                                       \
        return WriteField(atom, ::ts::field::Kind::kCode, value, kSourceHeader, __LINE__);     \
    }
#define TS_FIELD_ACCESSORS_Int(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_UInt(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_Float(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_Double(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_DateTime(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_String(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_Vector(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_Bool(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_Colour(Name, Kind) TS_FIELD_VALUE_ACCESSORS(Name, Kind)
#define TS_FIELD_ACCESSORS_List(Name, Kind)                                                    \
    std::uint32_t Name##Count() const {                                                        \
        static const TsAtom atom = TsAddAtom(u"" #Name);                                       \
        return GetPropertyListEntryCount(atom);                                                \
    }                                                                                          \
    bool Get##Name##Item(std::uint32_t index, CTsComPtr<ITsProperty>& node) const {            \
        static const TsAtom atom = TsAddAtom(u"" #Name);                                       \
        return GetPropertyFromList(atom, index, node);                                         \
    }

// The table ends with an empty row so that a record without fields of its own (a kind that only
// changes defaults) still has a well-formed table; Fields() leaves that row out.
#define TS_AGENT_FIELDS(ClassName, BaseName, SourceHeader, FIELDS)                             \
    using Base = BaseName;                                                                     \
    using BaseName::BaseName;                                                                  \
    static constexpr const char* kSourceHeader = SourceHeader;                                 \
    static constexpr TsFieldDecl kFieldTable[] = {FIELDS(TS_FIELD_DECL_ROW) TsFieldDecl{}};    \
    static std::span<const TsFieldDecl> Fields() {                                             \
        return std::span<const TsFieldDecl>(kFieldTable).first(std::size(kFieldTable) - 1);   \
    }                                                                                          \
    bool BuildProperties() override { return Base::BuildProperties() && DeclareFields(Fields()); } \
    FIELDS(TS_FIELD_ACCESSORS)

#define TS_NO_FIELDS(F)

#define TS_AGENT_DEFAULTS() \
    bool SetDefaults() override { return Base::SetDefaults() && WriteDefaults(Fields()); }
