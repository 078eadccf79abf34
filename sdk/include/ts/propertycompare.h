#pragma once

#include <string>

#include "ts/api.h"
#include "ts/property.h"

namespace ts {

// True when both trees have the same names, type codes, flags, declaration attributes, values
// (floating-point values bit for bit) and children in the same order. Otherwise `difference`
// tells where the first difference lies, as a path of names ("Agent/NPCLineList/Agent[3]/Text")
// and what differs there.
TS_API bool PropertyTreesEqual(ITsProperty* a, ITsProperty* b,
                               std::u16string* difference = nullptr);

}  // namespace ts
