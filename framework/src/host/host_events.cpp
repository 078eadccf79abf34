// Events between the host and its plugins: the sinks advised to the host, and the environment
// object through which plugins send events to host code.
#include <mutex>
#include <utility>
#include <vector>

#include "ts/comobject.h"
#include "ts/environment.h"
#include "ts/hoststring.h"

namespace {

struct AdvisedSinks {
    std::mutex mutex;
    std::uint32_t nextCookie = 1;
    std::vector<std::pair<std::uint32_t, CTsComPtr<ITsEventSink>>> items;
};

AdvisedSinks& Sinks() {
    static auto* sinks = new AdvisedSinks;  // lives as long as the process, like the host
    return *sinks;
}

struct Listeners {
    std::mutex mutex;
    int nextHandle = 1;
    std::vector<std::pair<int, ts::HostEventListener>> items;
};

Listeners& TheListeners() {
    static auto* listeners = new Listeners;
    return *listeners;
}

class Environment : public CTsComObjectRoot<ITsEnvironment> {
public:
    HRESULT SendEvent(TsAtom event, std::uint32_t flags, const char16_t* text,
                      IUnknown* payload) override {
        if (event == 0) return E_INVALIDARG;
        ts::HostEvent e{event, flags,
                        text ? std::u16string(text, TsStringLength(text)) : std::u16string(),
                        payload};
        std::vector<ts::HostEventListener> copy;
        {
            auto& l = TheListeners();
            std::lock_guard lock(l.mutex);
            for (auto& [handle, fn] : l.items) copy.push_back(fn);
        }
        for (auto& fn : copy) fn(e);
        return S_OK;
    }
};

}  // namespace

HRESULT TsGetEnvironment(ITsEnvironment** environment) {
    if (!environment) return E_POINTER;
    // One environment for the process; the static reference keeps it alive.
    static CTsComPtr<CTsComObjectNoLock<Environment>>* theEnvironment =
        new CTsComPtr<CTsComObjectNoLock<Environment>>(CTsComObjectNoLock<Environment>::Create());
    *environment = theEnvironment->Get();
    if (!*environment) return E_OUTOFMEMORY;
    (*environment)->AddRef();
    return S_OK;
}

HRESULT TsAdviseEventSink(ITsEventSink* sink, std::uint32_t* cookie) {
    if (!sink || !cookie) return E_POINTER;
    auto& s = Sinks();
    std::lock_guard lock(s.mutex);
    *cookie = s.nextCookie++;
    if (s.nextCookie == 0) s.nextCookie = 1;
    s.items.emplace_back(*cookie, CTsComPtr<ITsEventSink>(sink));
    return S_OK;
}

HRESULT TsUnadviseEventSink(std::uint32_t cookie) {
    CTsComPtr<ITsEventSink> released;  // released after the lock: its Release may run anything
    auto& s = Sinks();
    std::lock_guard lock(s.mutex);
    for (auto it = s.items.begin(); it != s.items.end(); ++it) {
        if (it->first != cookie) continue;
        released = std::move(it->second);
        s.items.erase(it);
        return S_OK;
    }
    return E_INVALIDARG;
}

namespace ts {

int AddHostEventListener(HostEventListener listener) {
    auto& l = TheListeners();
    std::lock_guard lock(l.mutex);
    int handle = l.nextHandle++;
    l.items.emplace_back(handle, std::move(listener));
    return handle;
}

void RemoveHostEventListener(int handle) {
    auto& l = TheListeners();
    std::lock_guard lock(l.mutex);
    std::erase_if(l.items, [handle](const auto& item) { return item.first == handle; });
}

void BroadcastToEventSinks(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                           IUnknown* payload) {
    // A snapshot with its own references: a sink may unadvise itself, or others, while it runs.
    std::vector<CTsComPtr<ITsEventSink>> snapshot;
    {
        auto& s = Sinks();
        std::lock_guard lock(s.mutex);
        snapshot.reserve(s.items.size());
        for (auto& [cookie, sink] : s.items) snapshot.push_back(sink);
    }
    for (auto& sink : snapshot) sink->OnEvent(event, param1, param2, payload);
}

std::size_t AdvisedEventSinkCount() {
    auto& s = Sinks();
    std::lock_guard lock(s.mutex);
    return s.items.size();
}

}  // namespace ts
