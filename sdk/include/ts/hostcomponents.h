#pragma once

#include <string_view>

#include "ts/api.h"
#include "ts/unknown.h"

// The components a running host offers to plugins by name ("ResMan", the resource manager):
// the host registers them when it opens a module and plugins fetch them by name and interface.

// Registers `component` under `name` (ASCII case ignored), replacing any earlier one; a null
// component removes the name.
TS_API HRESULT TsRegisterHostComponent(std::u16string_view name, IUnknown* component);
// The interface `iid` of the component named `name`; TS_E_NOT_FOUND when no such component is
// registered, E_NOINTERFACE when it does not offer the interface.
TS_API HRESULT TsGetHostComponent(std::u16string_view name, REFIID iid, void** component);
