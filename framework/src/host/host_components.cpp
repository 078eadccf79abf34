#include <map>
#include <mutex>
#include <string>

#include "ts/comptr.h"
#include "ts/hostcomponents.h"
#include "ts/text.h"

namespace {

struct Components {
    std::mutex mutex;
    std::map<std::u16string, CTsComPtr<IUnknown>> byName;
};

Components& TheComponents() {
    static auto* components = new Components;
    return *components;
}

}  // namespace

HRESULT TsRegisterHostComponent(std::u16string_view name, IUnknown* component) {
    if (name.empty()) return E_INVALIDARG;
    CTsComPtr<IUnknown> previous;  // released outside the lock
    auto& c = TheComponents();
    std::lock_guard lock(c.mutex);
    auto key = ts::AsciiLower(name);
    if (auto it = c.byName.find(key); it != c.byName.end()) {
        previous = it->second;
        c.byName.erase(it);
    }
    if (component) c.byName.emplace(std::move(key), CTsComPtr<IUnknown>(component));
    return S_OK;
}

HRESULT TsGetHostComponent(std::u16string_view name, REFIID iid, void** component) {
    if (!component) return E_POINTER;
    *component = nullptr;
    CTsComPtr<IUnknown> found;
    {
        auto& c = TheComponents();
        std::lock_guard lock(c.mutex);
        auto it = c.byName.find(ts::AsciiLower(name));
        if (it == c.byName.end()) return TS_E_NOT_FOUND;
        found = it->second;
    }
    return found->QueryInterface(iid, component);
}
