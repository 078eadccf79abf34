// The process's global interface table. All of the toolset runs in one apartment, so a
// registered pointer is handed out as it is, through QueryInterface.
#include <map>
#include <mutex>

#include "ts/comobject.h"
#include "ts/globalinterfacetable.h"

namespace {

class GlobalInterfaceTable : public CTsComObjectRoot<IGlobalInterfaceTable> {
public:
    HRESULT RegisterInterfaceInGlobal(IUnknown* object, REFIID iid,
                                      std::uint32_t* cookie) override {
        if (!object || !cookie) return E_POINTER;
        // Only an object that really offers the interface may be registered under it.
        CTsComPtr<IUnknown> offered;
        if (HRESULT hr = object->QueryInterface(iid, offered.PutVoid()); FAILED(hr)) return hr;
        std::lock_guard lock(mutex_);
        *cookie = nextCookie_++;
        if (nextCookie_ == 0) nextCookie_ = 1;
        entries_.emplace(*cookie, Entry{std::move(offered), iid});
        return S_OK;
    }
    HRESULT RevokeInterfaceFromGlobal(std::uint32_t cookie) override {
        CTsComPtr<IUnknown> released;  // released outside the lock
        std::lock_guard lock(mutex_);
        auto it = entries_.find(cookie);
        if (it == entries_.end()) return E_INVALIDARG;
        released = std::move(it->second.object);
        entries_.erase(it);
        return S_OK;
    }
    HRESULT GetInterfaceFromGlobal(std::uint32_t cookie, REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        CTsComPtr<IUnknown> registered;
        {
            std::lock_guard lock(mutex_);
            auto it = entries_.find(cookie);
            if (it == entries_.end()) return E_INVALIDARG;
            registered = it->second.object;
        }
        return registered->QueryInterface(iid, object);
    }

private:
    struct Entry {
        CTsComPtr<IUnknown> object;
        IID iid;
    };
    std::mutex mutex_;
    std::uint32_t nextCookie_ = 1;
    std::map<std::uint32_t, Entry> entries_;
};

}  // namespace

HRESULT TsCreateGlobalInterfaceTable(IGlobalInterfaceTable** table) {
    if (!table) return E_POINTER;
    static auto* theTable = new CTsComPtr<CTsComObjectNoLock<GlobalInterfaceTable>>(
        CTsComObjectNoLock<GlobalInterfaceTable>::Create());
    *table = theTable->Get();
    if (!*table) return E_OUTOFMEMORY;
    (*table)->AddRef();
    return S_OK;
}
