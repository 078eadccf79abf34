#pragma once

#include <string>
#include <vector>

#include "ts/comobject.h"
#include "ts/stringenum.h"

// A list of texts handed to the host through ITsStringEnum.
class CTsStringEnum : public CTsComObjectRoot<ITsStringEnum> {
public:
    explicit CTsStringEnum(std::vector<std::u16string> items) : items_(std::move(items)) {}

    // A new enumeration over `items`; E_POINTER for a null output.
    static HRESULT Create(std::vector<std::u16string> items, ITsStringEnum** enumeration);

    HRESULT Next(char16_t** item) override;
    HRESULT Reset() override;
    HRESULT GetCount(std::uint32_t* count) override;

private:
    std::vector<std::u16string> items_;
    std::size_t next_ = 0;
};
