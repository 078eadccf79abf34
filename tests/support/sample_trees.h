#pragma once

#include "ts/comptr.h"
#include "ts/property.h"
#include "ts/text.h"

namespace ts::test {

// A resource-shaped tree that holds every type code, flags and declaration attributes, elements
// that share a name, empty and non-ASCII texts (with a pair and a lone surrogate), floats whose
// bits matter (-0, NaN, denormal) and empty lists. Named "Sample"; its list "LineList" holds
// three "Agent" elements.
CTsComPtr<ITsProperty> MakeSampleTree();

}  // namespace ts::test
