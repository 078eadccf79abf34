#include "agents/fields.h"

variant TsDefaultVariant(const TsFieldDecl& field) {
    const TsFieldDefault& d = field.defaultValue;
    using K = TsFieldDefault::Kind;
    switch (d.kind) {
        case K::Int: return variant(field.type, static_cast<std::int32_t>(d.i));
        case K::UInt: return variant(field.type, static_cast<std::uint32_t>(d.i));
        case K::Float: return variant(field.type, static_cast<float>(d.d));
        case K::Double: return variant(field.type, d.d);
        case K::String: return variant(field.type, std::u16string_view(d.s ? d.s : u""));
        case K::Vector: return variant(field.type, TsVector3{d.v[0], d.v[1], d.v[2]});
        case K::Bool: return variant(field.type, d.i != 0);
        case K::Colour: return variant(field.type, TsColour{d.v[0], d.v[1], d.v[2], d.v[3]});
        case K::None: break;
    }
    return {};
}
