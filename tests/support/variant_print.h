#pragma once

#include <ostream>

#include "ts/text.h"
#include "ts/variant.h"

// Lets GoogleTest show a property value readably ("float 45", "string \"OWNER\"") in failures.
// Include it in every file of a test program that compares variants: GoogleTest's printer for a
// type is instantiated once per program, and a file without this header would bring the raw-bytes
// printer instead.
inline void PrintTo(const variant& v, std::ostream* os) {
    switch (TsAccessorGroup(v.type())) {
        case kTsTypeInt: *os << "int " << v.GetInt(); break;
        case kTsTypeUInt: *os << "unsigned " << v.GetUInt(); break;
        case kTsTypeFloat: *os << "float " << v.GetFloat(); break;
        case kTsTypeDouble: *os << "double " << v.GetDouble(); break;
        case kTsTypeString: *os << "string \"" << ts::Utf16ToUtf8(v.GetString()) << '"'; break;
        case kTsTypeBool: *os << "bool " << (v.GetBool() ? "true" : "false"); break;
        case kTsTypeVector: {
            auto x = v.GetVector();
            *os << "vector (" << x.x << ", " << x.y << ", " << x.z << ')';
            break;
        }
        case kTsTypeColour: {
            auto c = v.GetColour();
            *os << "colour (" << c.r << ", " << c.g << ", " << c.b << ", " << c.a << ')';
            break;
        }
        case kTsTypeBlob: *os << "blob of " << v.GetBlob().size() << " bytes"; break;
        default: *os << "empty"; return;
    }
    *os << " (type " << v.type() << ')';
}
