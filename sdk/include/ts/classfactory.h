#pragma once

#include "ts/comobject.h"

// The standard class factory for an implementation T: refuses aggregation, creates one object
// and hands out the requested interface of it.
template <class T>
class CTsClassFactoryImpl : public CTsComObjectRoot<IClassFactory> {
public:
    HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        auto instance = CTsComObject<T>::Create();
        if (!instance) return E_OUTOFMEMORY;
        return instance->QueryInterface(iid, object);
    }
    HRESULT LockServer(bool lock) override {
        lock ? ts::LockModule() : ts::UnlockModule();
        return S_OK;
    }
};

template <class T>
using CTsClassFactory = CTsComObjectNoLock<CTsClassFactoryImpl<T>>;
