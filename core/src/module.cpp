#include "core/module.h"

namespace {

// The standard class factory of the object map: makes objects with the entry's creator.
class CTsCreatorClassFactory : public CTsComObjectRoot<IClassFactory> {
public:
    explicit CTsCreatorClassFactory(TsCreatorFn creator) : creator_(creator) {}

    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        return creator_(nullptr, iid, object);
    }
    HRESULT LockServer(bool lock) override {
        lock ? ts::LockModule() : ts::UnlockModule();
        return S_OK;
    }

private:
    TsCreatorFn creator_;
};

}  // namespace

HRESULT TsUpdateRegistryNothing(bool) {
    return S_OK;
}

const char16_t* TsNoObjectDescription() {
    return nullptr;
}

HRESULT TsCreateClassFactory(void* creator, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (!creator) return E_INVALIDARG;
    // The module caches the factory: it must not keep its own module loaded.
    auto factory =
        CTsComObjectNoLock<CTsCreatorClassFactory>::Create(reinterpret_cast<TsCreatorFn>(creator));
    if (!factory) return E_OUTOFMEMORY;
    return factory->QueryInterface(iid, object);
}

HRESULT CTsModule::Init(std::span<TsObjectMapEntry> objectMap) {
    std::lock_guard lock(criticalSection_);
    objectMap_ = objectMap;
    initialised_ = true;
    return S_OK;
}

void CTsModule::Term() {
    std::lock_guard lock(criticalSection_);
    if (!initialised_) return;
    for (auto& entry : objectMap_)
        if (IUnknown* factory = entry.cachedFactory.exchange(nullptr)) factory->Release();
    if (globalInterfaceTable_) {
        globalInterfaceTable_->Release();
        globalInterfaceTable_ = nullptr;
    }
    initialised_ = false;
}

HRESULT CTsModule::GetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (!initialised_) return E_UNEXPECTED;

    TsObjectMapEntry* found = nullptr;
    for (auto& entry : objectMap_) {
        if (!entry.clsid || !entry.getClassObject) continue;
        if (*entry.clsid == clsid) {
            found = &entry;
            break;
        }
    }
    if (!found) return CLASS_E_CLASSNOTAVAILABLE;

    IUnknown* factory = found->cachedFactory.load(std::memory_order_acquire);
    if (!factory) {
        HRESULT hr = S_OK;
        {
            std::lock_guard lock(criticalSection_);
            // Someone else may have made it while we waited.
            factory = found->cachedFactory.load(std::memory_order_acquire);
            if (!factory) {
                void* made = nullptr;
                hr = found->getClassObject(reinterpret_cast<void*>(found->createInstance),
                                           IUnknown::kIID, &made);
                factory = static_cast<IUnknown*>(made);
                if (factory) found->cachedFactory.store(factory, std::memory_order_release);
            }
        }
        if (!factory) return FAILED(hr) ? hr : CLASS_E_CLASSNOTAVAILABLE;
    }
    HRESULT hr = factory->QueryInterface(iid, object);
    if (SUCCEEDED(hr) && !*object) return CLASS_E_CLASSNOTAVAILABLE;
    return hr;
}

HRESULT CTsModule::GetGlobalInterfaceTable(IGlobalInterfaceTable** table) {
    if (!table) return E_POINTER;
    *table = nullptr;
    std::lock_guard lock(criticalSection_);
    if (!globalInterfaceTable_) {
        if (HRESULT hr = TsCreateGlobalInterfaceTable(&globalInterfaceTable_); FAILED(hr))
            return hr;
    }
    globalInterfaceTable_->AddRef();
    *table = globalInterfaceTable_;
    return S_OK;
}

HRESULT TsModuleGetClassObject(CTsModule* module, REFCLSID clsid, REFIID iid, void** object) {
    if (!module) return E_INVALIDARG;
    return module->GetClassObject(clsid, iid, object);
}
