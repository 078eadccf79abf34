#pragma once

#include <cstdint>

#include "ts/atoms.h"
#include "ts/unknown.h"

namespace editordlg {

// The host events after which the cached value lists may be stale: "Refresh", "RefreshNoArt",
// "RefreshOverride", "NewResource", "DeleteResource", "SetResourceProperties", "SaveResource".
bool IsValueCacheFlushEvent(TsAtom event);

// What the library does with a host event (DllSendEvent): empties the process's value cache
// on the events above. Open editors get events through their own sinks. Always S_OK.
HRESULT HandlePluginEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                          IUnknown* payload);

}  // namespace editordlg
