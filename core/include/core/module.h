#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>

#include "ts/comobject.h"
#include "ts/globalinterfacetable.h"
#include "ts/unknown.h"

// A creator: makes an object and hands out its interface `iid`. For a class factory creator the
// context is the instance creator the factory will use; for an instance creator it is the
// outer object, which is always refused.
using TsCreatorFn = HRESULT (*)(void* context, REFIID iid, void** object);

// One class the module offers. The table of these entries is the module's list of classes.
struct TsObjectMapEntry {
    const CLSID* clsid;
    HRESULT (*updateRegistry)(bool registering);
    TsCreatorFn getClassObject;
    TsCreatorFn createInstance;
    std::atomic<IUnknown*> cachedFactory;  // made on first request, kept until the module ends
    std::uint32_t registerCookie;
    const char16_t* (*objectDescription)();
};

// Shared by every entry: plugins keep no registry of their own, and have no descriptions.
HRESULT TsUpdateRegistryNothing(bool registering);
const char16_t* TsNoObjectDescription();
// Makes a standard class factory whose CreateInstance uses the instance creator `creator`.
HRESULT TsCreateClassFactory(void* creator, REFIID iid, void** object);

// The instance creator of an implementation T: refuses aggregation, makes one
// CTsComObject<T> (which locks the module while it lives) and hands out `iid`; an object
// whose interface is refused is destroyed again.
template <class T>
struct CTsCreator {
    static HRESULT CreateInstance(void* outer, REFIID iid, void** object) {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        auto instance = CTsComObject<T>::Create();
        if (!instance) return E_OUTOFMEMORY;
        return instance->QueryInterface(iid, object);
    }
};

#define TS_OBJECT_ENTRY(clsid, T)                                                                  \
    TsObjectMapEntry {                                                                             \
        &(clsid), &TsUpdateRegistryNothing, &TsCreateClassFactory, &CTsCreator<T>::CreateInstance, \
            nullptr, 0, &TsNoObjectDescription                                                     \
    }

// The module object of a plugin library: its class-object table, the critical section that
// guards the making of class factories, its lock count, and the process's global interface
// table, fetched on first demand.
class CTsModule {
public:
    CTsModule() = default;
    explicit CTsModule(std::span<TsObjectMapEntry> objectMap) { Init(objectMap); }
    ~CTsModule() { Term(); }
    CTsModule(const CTsModule&) = delete;
    CTsModule& operator=(const CTsModule&) = delete;

    HRESULT Init(std::span<TsObjectMapEntry> objectMap);
    // Releases every cached class factory and the global interface table.
    void Term();
    bool IsInitialised() const { return initialised_; }

    // The lookup behind DllGetClassObject.
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object);
    HRESULT GetGlobalInterfaceTable(IGlobalInterfaceTable** table);

    // While the count is above zero the library must stay loaded: every living object and
    // every LockServer(true) holds one.
    long Lock() { return ts::ModuleLockCount().fetch_add(1) + 1; }
    long Unlock() { return ts::ModuleLockCount().fetch_sub(1) - 1; }
    long GetLockCount() const { return ts::ModuleLockCount().load(); }

private:
    std::mutex criticalSection_;
    std::span<TsObjectMapEntry> objectMap_;
    // Read without the lock by every class lookup; Init and Term change it under the lock.
    std::atomic<bool> initialised_ = false;
    IGlobalInterfaceTable* globalInterfaceTable_ = nullptr;
};

// DllGetClassObject of a module: E_INVALIDARG without a module, E_UNEXPECTED before it is
// initialised, then the module's lookup.
HRESULT TsModuleGetClassObject(CTsModule* module, REFCLSID clsid, REFIID iid, void** object);
