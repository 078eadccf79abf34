#pragma once

#include <cstdint>
#include <string_view>

#include "ts/atoms.h"
#include "ts/unknown.h"

namespace ts {

// Sends an event from the plugin to the host through the host environment. The text travels as
// a newly allocated host string (none when empty) that is freed after the call. Returns the
// host's result.
HRESULT SendHostEvent(TsAtom event, std::uint32_t flags, std::u16string_view text,
                      IUnknown* payload = nullptr);

}  // namespace ts
