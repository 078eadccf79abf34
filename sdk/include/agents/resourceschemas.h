#pragma once

#include <span>
#include <string_view>

#include "ts/recordschema.h"

// The resource types of the toolset by their short names, and the record schemas of their short
// JSON form, made from the agents' field tables.
namespace ts {

struct ResourceTypeInfo {
    std::u16string_view type;         // "dlg"
    std::u16string_view description;  // "conversation"
};

// dlg conversation, stg stage, cut cutscene, plo plot, utc creature, are area, nss script.
std::span<const ResourceTypeInfo> KnownResourceTypes();
// The description of a known type; empty for any other.
std::u16string_view ResourceTypeDescription(std::u16string_view type);

// The schema of a resource type's root record; null for a type without one.
const RecordSchema* ResourceSchemaOf(std::u16string_view type);
ResourceSchemaLookup ResourceSchemas();

}  // namespace ts
