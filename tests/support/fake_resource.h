#pragma once

#include <string>

#include "ts/comobject.h"
#include "ts/hoststring.h"
#include "ts/resource.h"

namespace ts::test {

// A host resource object holding a name and a property tree, as event payloads and Load carry.
class FakeResource : public CTsComObjectRoot<ITsResource> {
public:
    explicit FakeResource(std::u16string name = u"intro_talk.dlg") : name_(std::move(name)) {}

    HRESULT GetName(char16_t** name) override {
        if (!name) return E_POINTER;
        *name = TsAllocString(name_);
        return S_OK;
    }
    HRESULT GetRootProperty(ITsProperty** root) override {
        if (!root) return E_POINTER;
        *root = root_.Get();
        if (*root) (*root)->AddRef();
        return *root ? S_OK : E_FAIL;
    }
    HRESULT SetRootProperty(ITsProperty* root) override {
        root_ = CTsComPtr<ITsProperty>(root);
        return S_OK;
    }

private:
    std::u16string name_;
    CTsComPtr<ITsProperty> root_;
};

// A payload that is something else than a resource.
struct IOtherPayload : IUnknown {
    TS_INTERFACE_ID("{D3C1A8E2-51B4-4F7A-9C66-0A2B7E5F1C90}");
};
class OtherPayload : public CTsComObjectRoot<IOtherPayload> {};

}  // namespace ts::test
