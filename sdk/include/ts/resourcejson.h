#pragma once

#include <string>
#include <string_view>

#include "ts/api.h"
#include "ts/comptr.h"
#include "ts/property.h"
#include "ts/recordschema.h"

// The JSON text form of resources, for import, export and the demo module's sources.
//
// A document names the resource and its type and gives its tree in one of two forms:
//
//   exact  {"resource": "tavern", "type": "dlg", "root": NODE}
//          NODE = {"name": "Agent", "type": "list", "flags": 2, "display": "Agent",
//                  "children": [NODE, ...]}   or   {"name": "StringID", "type": "int", "value": 5}
//          Every name, type code, flag, attribute, value and child is spelled out, so any tree
//          comes back exactly. Optional keys: "flags" (0), "display", "category",
//          "subCategory", "description", "editor" (empty), "value" (the type's zero),
//          "children" (none). Types by name (list int uint float double string vector bool
//          uint2 datetime string2 colour bytes) or by code.
//
//   short  {"resource": "tavern", "type": "dlg", "fields": RECORD}
//          RECORD = {"FieldName": value, ...}: only what differs from the record's defaults.
//          The record is made by its agent (every field declared and defaulted) and the named
//          fields are then set; list fields take arrays of RECORDs of their element kind (or
//          exact NODEs). Vectors and colours are arrays of numbers, dates a number of days or a
//          "YYYY-MM-DD[THH:MM:SS]" text, bytes base64 text. Unknown field names are errors.
//
// "resource" and "type" may be left out when the caller knows them (from the file name).
namespace ts {

struct ResourceDocument {
    std::u16string name;
    std::u16string type;
    CTsComPtr<ITsProperty> root;
};

// Reads a document of either form. `name` and `type` of `out` are taken as defaults for a
// document that leaves them out, and must agree with one that gives them. Errors name the line
// and column. `schemas` may be empty when only the exact form is expected.
TS_API bool ReadResourceJson(std::string_view utf8, ResourceDocument& out,
                             std::u16string* error = nullptr,
                             const ResourceSchemaLookup& schemas = {});

// Writes the exact form.
TS_API bool WriteResourceJson(const ResourceDocument& resource, std::string& utf8,
                              std::u16string* error = nullptr);

// Writes the short form where the tree is what its record kinds would make (fields declared as the
// agents declare them, in their order), and the exact form for any subtree that is not; reading
// the result back gives the same tree. Without a schema for the type, the whole is exact.
TS_API bool WriteResourceJsonShort(const ResourceDocument& resource,
                                   const ResourceSchemaLookup& schemas, std::string& utf8,
                                   std::u16string* error = nullptr);

}  // namespace ts
