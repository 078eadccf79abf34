#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ts/comptr.h"
#include "ts/property.h"

namespace ts {

// What the short (hand-written) JSON form needs to know of a record kind: how to make a new
// record with every field at its default, and which record kind the elements of each list field
// are. The agents supply these from their field tables, so the JSON reader never holds a copy of
// a schema.
struct RecordSchema {
    // For messages: "conversation line".
    std::u16string name;
    // Makes a new record node with its fields declared and defaulted (an agent's CreateOn).
    std::function<bool(CTsComPtr<ITsProperty>& record)> create;
    // List field name -> schema of its elements. Lists not named here take their elements in the
    // exact form only.
    std::map<std::u16string, const RecordSchema*, std::less<>> elements;
    // The field that holds a resource's own name ("ResRefName"); filled from the resource's name
    // when the short form leaves it out. Empty when the record has none.
    std::u16string nameField;
    // A family of record kinds told apart by one integer field (a cutscene actor's "Type"):
    // the kinds by their value of it. The elements of a list whose element schema is a family
    // state that field, and the kind it names makes them.
    std::u16string kindField;
    std::map<std::int32_t, const RecordSchema*> kinds;
    // Fields the short form always states, even at their value in a new record: those the record
    // declares without a default (a transition's target), whose value always means something.
    std::vector<std::u16string> alwaysWritten;

    bool IsFamily() const { return !kindField.empty(); }
    const RecordSchema* ElementOf(std::u16string_view list) const {
        auto it = elements.find(list);
        return it == elements.end() ? nullptr : it->second;
    }
};

// The schema of the root record of a resource type ("dlg"), or null when the short form is not
// known for the type.
using ResourceSchemaLookup = std::function<const RecordSchema*(std::u16string_view resourceType)>;

}  // namespace ts
