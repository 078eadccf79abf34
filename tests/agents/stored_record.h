#pragma once

#include <string_view>

#include <gtest/gtest.h>

#include "ts/comptr.h"
#include "ts/property.h"

namespace ts::test {

// Builds property trees by hand, as a loaded resource would hold them, including damaged ones
// that no agent would write.
inline CTsComPtr<ITsProperty> NewRecordNode() {
    CTsComPtr<ITsProperty> node;
    TsCreateProperty(u"Agent", kTsTypeList, 2, node.Put());
    return node;
}

inline CTsComPtr<ITsProperty> AddStoredField(ITsProperty* record, std::u16string_view name, const variant& value) {
    CTsComPtr<ITsProperty> field;
    if (FAILED(TsCreateProperty(name, value.type(), 0, field.Put()))) return {};
    if (!value.empty()) field->SetValue(value);
    record->InsertChild(kTsAppend, field.Get());
    return field;
}

// What a typed getter gives; a failed read fails the test.
template <class Agent, class Declaring, class T>
T Read(const Agent& agent, bool (Declaring::*get)(T&) const) {
    T value{};
    EXPECT_TRUE((agent.*get)(value));
    return value;
}

}  // namespace ts::test
