#pragma once

#include <cstdint>
#include <new>

#include "ts/comobject.h"
#include "ts/environment.h"
#include "ts/eventsink.h"
#include "ts/report.h"
#include "ts/resource.h"

// The event sink of one receiver (an editor object, a listening cache). The receiver is held
// by a plain pointer that its owner clears when the receiver goes away; from then on every
// event is accepted and ignored, so a host that still holds the sink can't reach a dead object.
//
// T provides OnEvent(TsAtom event, std::uint32_t, std::uint32_t, ITsResource* resource).
template <class T>
class CTsEventSink : public CTsComObjectRoot<ITsEventSink> {
public:
    void SetReceiver(T* receiver) { receiver_ = receiver; }
    T* GetReceiver() const { return receiver_; }

    HRESULT OnEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                    IUnknown* payload) override {
        if (!receiver_) return S_OK;
        // Receivers see the payload as a resource, or nothing when it is something else.
        CTsComPtr<ITsResource> resource;
        if (payload) payload->QueryInterface(ITsResource::kIID, resource.PutVoid());
        receiver_->OnEvent(event, param1, param2, resource.Get());
        return S_OK;
    }

private:
    T* receiver_ = nullptr;
};

// Owns the sink of a receiver and keeps it advised to the host while it lives.
template <class T>
class CTsEventSinkConnection {
public:
    using Sink = CTsComObject<CTsEventSink<T>>;

    explicit CTsEventSinkConnection(T* receiver) : sink_(Sink::Create()) {
        if (!sink_) throw std::bad_alloc();
        sink_->SetReceiver(receiver);
        if (FAILED(TsAdviseEventSink(sink_.Get(), &cookie_))) {
            cookie_ = 0;
            Report(ReportLevel::Assert, "toolsmfcimpls", __LINE__,
                   u"Unable to advise the event sink");
        }
    }
    ~CTsEventSinkConnection() {
        sink_->SetReceiver(nullptr);
        if (cookie_) TsUnadviseEventSink(cookie_);
    }
    CTsEventSinkConnection(const CTsEventSinkConnection&) = delete;
    CTsEventSinkConnection& operator=(const CTsEventSinkConnection&) = delete;

    ITsEventSink* GetSink() const { return sink_.Get(); }
    std::uint32_t Cookie() const { return cookie_; }

private:
    CTsComPtr<Sink> sink_;
    std::uint32_t cookie_ = 0;
};
