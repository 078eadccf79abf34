#include "core/string_enum.h"

#include "ts/hoststring.h"

HRESULT CTsStringEnum::Create(std::vector<std::u16string> items, ITsStringEnum** enumeration) {
    if (!enumeration) return E_POINTER;
    *enumeration = nullptr;
    auto object = CTsComObject<CTsStringEnum>::Create(std::move(items));
    if (!object) return E_OUTOFMEMORY;
    return object->QueryInterface(ITsStringEnum::kIID, reinterpret_cast<void**>(enumeration));
}

HRESULT CTsStringEnum::Next(char16_t** item) {
    if (!item) return E_POINTER;
    *item = nullptr;
    if (next_ >= items_.size()) return S_FALSE;
    *item = TsAllocString(items_[next_++]);
    return S_OK;
}

HRESULT CTsStringEnum::Reset() {
    next_ = 0;
    return S_OK;
}

HRESULT CTsStringEnum::GetCount(std::uint32_t* count) {
    if (!count) return E_POINTER;
    *count = static_cast<std::uint32_t>(items_.size());
    return S_OK;
}
