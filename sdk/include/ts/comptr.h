#pragma once

#include <utility>

#include "ts/report.h"
#include "ts/unknown.h"

// An owning interface reference. Dereferencing an empty one is a programming error: it is
// reported before the call goes through, so the log shows where it happened.
template <class T>
class CTsComPtr {
public:
    CTsComPtr() = default;
    CTsComPtr(std::nullptr_t) {}
    // Takes a new reference.
    CTsComPtr(T* p) : p_(p) {
        if (p_) p_->AddRef();
    }
    CTsComPtr(const CTsComPtr& other) : CTsComPtr(other.p_) {}
    CTsComPtr(CTsComPtr&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    template <class U>
    CTsComPtr(const CTsComPtr<U>& other) : CTsComPtr(static_cast<T*>(other.Get())) {}
    ~CTsComPtr() { Reset(); }

    CTsComPtr& operator=(CTsComPtr other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }

    // Adopts a reference the caller already owns (an out-parameter filled by a host call).
    static CTsComPtr Adopt(T* p) {
        CTsComPtr r;
        r.p_ = p;
        return r;
    }

    void Reset() {
        if (T* p = std::exchange(p_, nullptr)) p->Release();
    }
    T* Detach() { return std::exchange(p_, nullptr); }
    T* Get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }

    // For out-parameters: releases what is held and hands out the slot.
    T** Put() {
        Reset();
        return &p_;
    }
    void** PutVoid() { return reinterpret_cast<void**>(Put()); }

    T* operator->() const {
        if (!p_) Report(ReportLevel::Assert, "toolscpphelpers", __LINE__, u"Deferencing a NULL CTsComPtr");
        return p_;
    }
    T& operator*() const { return *operator->(); }

    template <class U>
    HRESULT QueryInterface(CTsComPtr<U>& out) const {
        if (!p_) return E_POINTER;
        return p_->QueryInterface(TsIidOf<U>(), out.PutVoid());
    }

    friend bool operator==(const CTsComPtr& a, const CTsComPtr& b) { return a.p_ == b.p_; }
    friend bool operator==(const CTsComPtr& a, std::nullptr_t) { return a.p_ == nullptr; }

private:
    T* p_ = nullptr;
};

// A plain, non-owning pointer that reports instead of silently dereferencing null.
template <class T>
class CTsPtr {
public:
    CTsPtr() = default;
    CTsPtr(T* p) : p_(p) {}
    T* Get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }
    T* operator->() const {
        if (!p_) Report(ReportLevel::Assert, "toolscpphelpers", __LINE__, u"Dereferencing a NULL pointer");
        return p_;
    }
    T& operator*() const { return *operator->(); }

private:
    T* p_ = nullptr;
};
