#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ts/api.h"
#include "ts/comptr.h"
#include "ts/gametable.h"
#include "ts/hostcomponents.h"
#include "ts/property.h"
#include "ts/resource.h"
#include "ts/resourcestore.h"
#include "ts/unknown.h"

// One lookup table of the module (the "2DA" service). Failed reads return an error code and
// are reported (WARNING) with what was wrong.
struct ITsTable : IUnknown {
    TS_INTERFACE_ID("{C4E1A7B2-3D58-4F9A-B6C0-81D2E5F4A793}");

    virtual HRESULT GetName(char16_t** name) = 0;
    virtual std::uint32_t GetRowCount() = 0;
    virtual std::uint32_t GetColumnCount() = 0;
    // The column of that name (ASCII case ignored); TS_E_NOT_FOUND when there is none.
    virtual HRESULT FindColumn(std::u16string_view name, std::uint32_t* column) = 0;
    virtual HRESULT GetRowId(std::uint32_t row, std::int32_t* id) = 0;
    virtual HRESULT GetText(std::uint32_t row, std::uint32_t column, char16_t** text) = 0;
    // TS_E_DAMAGED when the cell is not a whole number.
    virtual HRESULT GetInt(std::uint32_t row, std::uint32_t column, std::int32_t* value) = 0;
    // The whole table, for callers in C++ that want more than cells.
    virtual const ts::GameTable& Table() = 0;

protected:
    ~ITsTable() = default;
};

// The resource manager ("ResMan"): the module's resources, tables, strings and their status
// records, over a module store. Failures return a code (TS_E_NOT_FOUND, TS_E_LOCKED, ...) and
// leave a message for GetLastErrorText.
struct ITsResourceManager : IUnknown {
    TS_INTERFACE_ID("{7E7EA338-573B-43CF-9731-9A155BE669D9}");

    // Reads and decodes a resource; TS_E_DAMAGED when its content cannot be decoded. The resource
    // object (ts/resource.h) names itself "NAME.TYPE" and remembers the version it was read at.
    virtual HRESULT OpenResource(std::u16string_view name, std::u16string_view type,
                                 ITsResource** resource) = 0;
    // Stores a new resource with the tree `root`.
    virtual HRESULT CreateResource(std::u16string_view name, std::u16string_view type,
                                   ITsProperty* root, ITsResource** resource) = 0;
    // Encodes and saves the resource's tree (as an editor last set it); refused when someone else
    // saved it since it was read, or when the resource was not opened through this manager.
    virtual HRESULT SaveResource(ITsResource* resource) = 0;
    virtual HRESULT DeleteResource(std::u16string_view name, std::u16string_view type) = 0;
    virtual HRESULT GetResourceInfo(std::u16string_view name, std::u16string_view type,
                                    ts::ResourceInfo* info) = 0;
    // The resources of a type (all types for an empty one).
    virtual HRESULT ListResources(std::u16string_view type,
                                  std::vector<ts::ResourceInfo>* list) = 0;
    virtual HRESULT CheckOutResource(std::u16string_view name, std::u16string_view type) = 0;
    virtual HRESULT CheckInResource(std::u16string_view name, std::u16string_view type) = 0;
    // Writes everything out so that an external tool (VoiceOver) sees the module as it is now.
    virtual HRESULT PrepareForExternalTool() = 0;

    virtual HRESULT OpenTable(std::u16string_view name, ITsTable** table) = 0;

    // The string service: keeps a valid id, issues a new one for -1, fails for any other.
    virtual HRESULT ValidateStringId(std::int32_t current, std::int32_t* valid) = 0;
    // The id for a line of `resource` ("NAME.TYPE") whose text changes: a line without one (-1),
    // or whose id a line of another conversation of the module uses (a copied line), gets a new
    // id; otherwise as ValidateStringId.
    virtual HRESULT ValidateLineStringId(std::u16string_view resource, std::int32_t current,
                                         std::int32_t* valid) = 0;
    virtual HRESULT GetString(std::int32_t stringId, std::int32_t language, char16_t** text) = 0;
    virtual HRESULT SetString(std::int32_t stringId, std::int32_t language,
                              std::u16string_view text) = 0;
    // S_FALSE, with the status cleared to "not sent", when the string has no record.
    virtual HRESULT GetVORecordingStatus(std::int32_t stringId, ts::VORecordingStatus* status) = 0;
    virtual HRESULT SetVORecordingStatus(const ts::VORecordingStatus& status) = 0;
    virtual HRESULT GetLocalizationStatus(std::int32_t stringId,
                                          ts::LocalizationStatus* status) = 0;
    virtual HRESULT SetLocalizationStatus(const ts::LocalizationStatus& status) = 0;

    // The message of the last call that failed (newly allocated).
    virtual HRESULT GetLastErrorText(char16_t** text) = 0;

protected:
    ~ITsResourceManager() = default;
};

// The name under which hosts register the resource manager (TsRegisterHostComponent).
inline constexpr std::u16string_view kTsResourceManagerName = u"ResMan";

// The resource manager the running host registered; null while no module is open.
inline CTsComPtr<ITsResourceManager> TsHostResourceManager() {
    CTsComPtr<ITsResourceManager> manager;
    if (FAILED(TsGetHostComponent(kTsResourceManagerName, ITsResourceManager::kIID,
                                  manager.PutVoid())))
        manager.Reset();
    return manager;
}

// A resource manager over `store`, acting for `user` (check-outs, saves).
TS_API HRESULT TsCreateResourceManager(std::shared_ptr<ts::ResourceStore> store,
                                       std::u16string_view user, ITsResourceManager** manager);

namespace ts {
// The result code for a store outcome.
TS_API HRESULT ResultOf(StoreStatus status);
}  // namespace ts
