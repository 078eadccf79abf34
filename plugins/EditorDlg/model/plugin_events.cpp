#include "model/plugin_events.h"

#include "agents/valuecache.h"
#include "ts/comptr.h"
#include "ts/events.h"
#include "ts/resource.h"

namespace editordlg {

bool IsValueCacheFlushEvent(TsAtom event) {
    using namespace ts::events;
    return event == Refresh() || event == RefreshNoArt() || event == RefreshOverride() ||
           event == NewResource() || event == DeleteResource() ||
           event == SetResourceProperties() || event == SaveResource();
}

HRESULT HandlePluginEvent(TsAtom event, std::uint32_t, std::uint32_t, IUnknown* payload) {
    // The resource the event is about, held for the length of the call.
    CTsComPtr<ITsResource> resource;
    if (payload) payload->QueryInterface(ITsResource::kIID, resource.PutVoid());
    if (IsValueCacheFlushEvent(event)) CValueCache::Process().Clear();
    return S_OK;
}

}  // namespace editordlg
