#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ts/api.h"
#include "ts/property.h"
#include "ts/resourcestore.h"

namespace ts {

// The text of one line as the module's string table keeps it.
struct LineString {
    std::int32_t stringId = -1;
    std::int32_t language = 0;
    std::u16string text;
};

// Every record under `root` that carries a StringID (0 or more) and a Text (the lines of a
// conversation), in tree order; LanguageID when the record has one, else 0.
TS_API void CollectLineStrings(ITsProperty* root, std::vector<LineString>& strings);

// Stores the texts of the lines under `root` under their ids, so that the string table says what
// the resource says. One failure stops it and is returned.
TS_API StoreResult StoreLineStrings(ResourceStore& store, ITsProperty* root);

}  // namespace ts
