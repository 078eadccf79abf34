#pragma once

#include <atomic>
#include <new>
#include <type_traits>

#include "ts/comptr.h"
#include "ts/unknown.h"

namespace ts {

// The lock count of the library this header is compiled into. Symbols are hidden, so every
// shared library (every plugin) has its own count, as every DLL has its own module object.
inline std::atomic<long>& ModuleLockCount() {
    static std::atomic<long> count{0};
    return count;
}
inline void LockModule() { ModuleLockCount().fetch_add(1, std::memory_order_relaxed); }
inline void UnlockModule() { ModuleLockCount().fetch_sub(1, std::memory_order_relaxed); }

}  // namespace ts

// Base of an implementation class: lists the interfaces it answers. QueryInterface hands out
// each listed interface and IUnknown (through the first); anything else is E_NOINTERFACE.
template <class First, class... Rest>
class CTsComObjectRoot : public First, public Rest... {
protected:
    HRESULT InternalQueryInterface(REFIID iid, void** object) {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (iid == IUnknown::kIID) *object = static_cast<First*>(this);
        else if (!(Offer<First>(iid, object) || ... || Offer<Rest>(iid, object))) return E_NOINTERFACE;
        static_cast<First*>(this)->AddRef();
        return S_OK;
    }

private:
    template <class I>
    bool Offer(REFIID iid, void** object) {
        if (iid != I::kIID) return false;
        *object = static_cast<I*>(this);
        return true;
    }
};

// The reference-counted object around an implementation T. Lives as long as references exist;
// while it lives the module stays locked (LockPolicy true), so the library is not unloaded under
// it. Class factories that the module caches use the no-lock form.
template <class T, bool LockPolicy = true>
class CTsComObject final : public T {
public:
    template <class... Args>
    explicit CTsComObject(Args&&... args) : T(std::forward<Args>(args)...) {
        if constexpr (LockPolicy) ts::LockModule();
    }
    ~CTsComObject() {
        if constexpr (LockPolicy) ts::UnlockModule();
    }

    HRESULT QueryInterface(REFIID iid, void** object) override {
        return this->InternalQueryInterface(iid, object);
    }
    std::uint32_t AddRef() override { return refs_.fetch_add(1, std::memory_order_relaxed) + 1; }
    std::uint32_t Release() override {
        std::uint32_t left = refs_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) delete this;
        return left;
    }

    // A new object with one reference held by the returned pointer; empty when out of memory.
    template <class... Args>
    static CTsComPtr<CTsComObject> Create(Args&&... args) {
        auto* object = new (std::nothrow) CTsComObject(std::forward<Args>(args)...);
        return CTsComPtr<CTsComObject>(object);
    }

private:
    std::atomic<std::uint32_t> refs_{0};
};

template <class T>
using CTsComObjectNoLock = CTsComObject<T, false>;
