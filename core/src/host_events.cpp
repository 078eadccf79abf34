#include "core/host_events.h"

#include "ts/comptr.h"
#include "ts/environment.h"
#include "ts/hoststring.h"

namespace ts {

HRESULT SendHostEvent(TsAtom event, std::uint32_t flags, std::u16string_view text,
                      IUnknown* payload) {
    CTsComPtr<ITsEnvironment> environment;
    if (HRESULT hr = TsGetEnvironment(environment.Put()); FAILED(hr)) return hr;
    if (!environment) return E_FAIL;
    CTsHostString hostText;
    if (!text.empty()) hostText = CTsHostString(text);
    return environment->SendEvent(event, flags, hostText.Get(), payload);
}

}  // namespace ts
