#include "ts/guid.h"

#include <cstdio>

namespace ts {

std::string FormatGuid(const GUID& g) {
    char text[39];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  g.Data1, g.Data2, g.Data3, g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3],
                  g.Data4[4], g.Data4[5], g.Data4[6], g.Data4[7]);
    return text;
}

}  // namespace ts
