#include <algorithm>
#include <map>

#include "ts/comobject.h"
#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/linestrings.h"
#include "ts/report.h"
#include "ts/resourcecodec.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace ts {

namespace {

// A resource handed to an editor. Made by the resource manager, which recognises its own through
// the private interface below when the resource comes back to be saved.
struct IResourceObjectPrivate : IUnknown {
    TS_INTERFACE_ID("{9D3F6A21-5C8E-4B07-A1F4-2E6B7C9D0A58}");
    virtual const std::u16string& Name() = 0;
    virtual const std::u16string& Type() = 0;
    virtual std::int32_t Version() = 0;
    virtual void SetVersion(std::int32_t version) = 0;

protected:
    ~IResourceObjectPrivate() = default;
};

class ResourceObject : public CTsComObjectRoot<ITsResource, IResourceObjectPrivate> {
public:
    void Init(std::u16string name, std::u16string type, CTsComPtr<ITsProperty> root,
              std::int32_t version) {
        name_ = std::move(name);
        type_ = std::move(type);
        root_ = std::move(root);
        version_ = version;
    }

    HRESULT GetName(char16_t** name) override {
        if (!name) return E_POINTER;
        *name = TsAllocString(name_ + u"." + type_);
        return S_OK;
    }
    HRESULT GetRootProperty(ITsProperty** root) override {
        if (!root) return E_POINTER;
        *root = root_.Get();
        if (*root) (*root)->AddRef();
        return *root ? S_OK : E_FAIL;
    }
    HRESULT SetRootProperty(ITsProperty* root) override {
        if (!root) return E_POINTER;
        root_ = CTsComPtr<ITsProperty>(root);
        return S_OK;
    }

    const std::u16string& Name() override { return name_; }
    const std::u16string& Type() override { return type_; }
    std::int32_t Version() override { return version_; }
    void SetVersion(std::int32_t version) override { version_ = version; }

private:
    std::u16string name_, type_;
    CTsComPtr<ITsProperty> root_;
    std::int32_t version_ = 0;
};

class TableObject : public CTsComObjectRoot<ITsTable> {
public:
    void Init(GameTable table) { table_ = std::move(table); }

    HRESULT GetName(char16_t** name) override {
        if (!name) return E_POINTER;
        *name = TsAllocString(table_.Name());
        return S_OK;
    }
    std::uint32_t GetRowCount() override { return static_cast<std::uint32_t>(table_.RowCount()); }
    std::uint32_t GetColumnCount() override {
        return static_cast<std::uint32_t>(table_.ColumnCount());
    }
    HRESULT FindColumn(std::u16string_view name, std::uint32_t* column) override {
        if (!column) return E_POINTER;
        std::size_t c;
        std::u16string error;
        if (!table_.FindColumn(name, c, &error)) return Refuse(TS_E_NOT_FOUND, error);
        *column = static_cast<std::uint32_t>(c);
        return S_OK;
    }
    HRESULT GetRowId(std::uint32_t row, std::int32_t* id) override {
        if (!id) return E_POINTER;
        if (row >= table_.RowCount())
            return Refuse(E_INVALIDARG,
                          Format(u"The table \"%ls\" has %lu rows; there is no row at index %u",
                                 table_.Name(), table_.RowCount(), row));
        *id = table_.RowId(row);
        return S_OK;
    }
    HRESULT GetText(std::uint32_t row, std::uint32_t column, char16_t** text) override {
        if (!text) return E_POINTER;
        *text = nullptr;
        std::u16string value, error;
        if (!table_.GetText(row, column, value, &error)) return Refuse(E_INVALIDARG, error);
        *text = TsAllocString(value);
        return S_OK;
    }
    HRESULT GetInt(std::uint32_t row, std::uint32_t column, std::int32_t* value) override {
        if (!value) return E_POINTER;
        std::u16string error;
        if (row >= table_.RowCount() || column >= table_.ColumnCount()) {
            std::u16string ignored;
            table_.GetText(row, column, ignored, &error);
            return Refuse(E_INVALIDARG, error);
        }
        if (!table_.GetInt(row, column, *value, &error)) return Refuse(TS_E_DAMAGED, error);
        return S_OK;
    }
    const GameTable& Table() override { return table_; }

private:
    static HRESULT Refuse(HRESULT code, const std::u16string& message) {
        Report(ReportLevel::Warning, "tables", __LINE__, message);
        return code;
    }

    GameTable table_;
};

class ResourceManager : public CTsComObjectRoot<ITsResourceManager> {
public:
    void Init(std::shared_ptr<ResourceStore> store, std::u16string user) {
        store_ = std::move(store);
        user_ = std::move(user);
    }

    HRESULT OpenResource(std::u16string_view name, std::u16string_view type,
                         ITsResource** resource) override {
        if (!resource) return E_POINTER;
        *resource = nullptr;
        std::vector<std::uint8_t> bytes;
        ResourceInfo info;
        if (auto r = store_->ReadResource(name, type, bytes, &info); !r) return Fail(r);
        CTsComPtr<ITsProperty> root;
        std::u16string error;
        if (!DecodeResource(bytes, root, &error))
            return Fail(TS_E_DAMAGED, Format(u"The resource \"%ls\" (%ls) cannot be read: %ls",
                                             name, type, error));
        return Hand(info.name, info.type, root, info.version, resource);
    }

    HRESULT CreateResource(std::u16string_view name, std::u16string_view type, ITsProperty* root,
                           ITsResource** resource) override {
        if (!root || !resource) return E_POINTER;
        *resource = nullptr;
        std::vector<std::uint8_t> bytes;
        std::u16string error;
        if (!EncodeResource(root, bytes, &error))
            return Fail(E_INVALIDARG, Format(u"The resource \"%ls\" (%ls) cannot be stored: %ls",
                                             name, type, error));
        if (auto r = store_->CreateResource(name, type, bytes, user_); !r) return Fail(r);
        return Hand(std::u16string(name), std::u16string(type), CTsComPtr<ITsProperty>(root), 1,
                    resource);
    }

    HRESULT SaveResource(ITsResource* resource) override {
        if (!resource) return E_POINTER;
        CTsComPtr<IResourceObjectPrivate> own;
        if (FAILED(resource->QueryInterface(IResourceObjectPrivate::kIID, own.PutVoid())))
            return Fail(E_INVALIDARG,
                        u"The resource to save was not opened through this resource manager");
        CTsComPtr<ITsProperty> root;
        resource->GetRootProperty(root.Put());
        std::vector<std::uint8_t> bytes;
        std::u16string error;
        if (!EncodeResource(root.Get(), bytes, &error))
            return Fail(E_INVALIDARG, Format(u"The resource \"%ls\" (%ls) cannot be saved: %ls",
                                             own->Name(), own->Type(), error));
        // The string table follows the texts of the resource's lines, in the same change.
        StoreBatch batch(*store_);
        if (!batch.Started()) return Fail(batch.Started());
        if (auto r = store_->SaveResource(own->Name(), own->Type(), bytes, own->Version(), user_);
            !r)
            return Fail(r);
        if (auto r = StoreLineStrings(*store_, root.Get()); !r) return Fail(r);
        if (auto r = batch.Commit(); !r) return Fail(r);
        own->SetVersion(own->Version() + 1);
        return S_OK;
    }

    HRESULT DeleteResource(std::u16string_view name, std::u16string_view type) override {
        return Done(store_->DeleteResource(name, type, user_));
    }

    HRESULT GetResourceInfo(std::u16string_view name, std::u16string_view type,
                            ResourceInfo* info) override {
        if (!info) return E_POINTER;
        return Done(store_->GetResourceInfo(name, type, *info));
    }

    HRESULT ListResources(std::u16string_view type, std::vector<ResourceInfo>* list) override {
        if (!list) return E_POINTER;
        return Done(store_->ListResources(type, *list));
    }

    HRESULT CheckOutResource(std::u16string_view name, std::u16string_view type) override {
        return Done(store_->CheckOut(name, type, user_));
    }

    HRESULT CheckInResource(std::u16string_view name, std::u16string_view type) override {
        return Done(store_->CheckIn(name, type, user_));
    }

    HRESULT PrepareForExternalTool() override { return Done(store_->Flush()); }

    HRESULT OpenTable(std::u16string_view name, ITsTable** table) override {
        if (!table) return E_POINTER;
        *table = nullptr;
        GameTable read;
        if (auto r = store_->ReadTable(name, read); !r) return Fail(r);
        auto object = CTsComObject<TableObject>::Create();
        if (!object) return E_OUTOFMEMORY;
        object->Init(std::move(read));
        *table = object.Detach();
        return S_OK;
    }

    HRESULT ValidateStringId(std::int32_t current, std::int32_t* valid) override {
        if (!valid) return E_POINTER;
        return Done(store_->ValidateStringId(current, *valid));
    }

    HRESULT ValidateLineStringId(std::u16string_view resource, std::int32_t current,
                                 std::int32_t* valid) override {
        if (!valid) return E_POINTER;
        if (current >= 0) {
            if (auto r = RefreshStringUsers(); !r) return Fail(r);
            std::u16string self = AsciiLower(resource);
            for (const auto& [name, used] : stringUsers_)
                if (name != self && std::binary_search(used.ids.begin(), used.ids.end(), current)) {
                    current = -1;
                    break;
                }
        }
        return Done(store_->ValidateStringId(current, *valid));
    }

    HRESULT GetString(std::int32_t stringId, std::int32_t language, char16_t** text) override {
        if (!text) return E_POINTER;
        *text = nullptr;
        std::u16string value;
        if (auto r = store_->GetString(stringId, language, value); !r) return Fail(r);
        *text = TsAllocString(value);
        return S_OK;
    }

    HRESULT SetString(std::int32_t stringId, std::int32_t language,
                      std::u16string_view text) override {
        return Done(store_->SetString(stringId, language, text));
    }

    HRESULT GetVORecordingStatus(std::int32_t stringId, VORecordingStatus* status) override {
        if (!status) return E_POINTER;
        auto r = store_->GetVORecordingStatus(stringId, *status);
        if (r.status == StoreStatus::NotFound) {
            *status = {stringId, 0, 0, false};
            return S_FALSE;
        }
        return Done(r);
    }

    HRESULT SetVORecordingStatus(const VORecordingStatus& status) override {
        return Done(store_->SetVORecordingStatus(status));
    }

    HRESULT GetLocalizationStatus(std::int32_t stringId, LocalizationStatus* status) override {
        if (!status) return E_POINTER;
        auto r = store_->GetLocalizationStatus(stringId, *status);
        if (r.status == StoreStatus::NotFound) {
            *status = {stringId, 0, 0, false};
            return S_FALSE;
        }
        return Done(r);
    }

    HRESULT SetLocalizationStatus(const LocalizationStatus& status) override {
        return Done(store_->SetLocalizationStatus(status));
    }

    HRESULT GetLastErrorText(char16_t** text) override {
        if (!text) return E_POINTER;
        *text = TsAllocString(lastError_);
        return S_OK;
    }

private:
    HRESULT Fail(HRESULT code, std::u16string message) {
        lastError_ = std::move(message);
        return code;
    }
    HRESULT Fail(const StoreResult& r) { return Fail(ResultOf(r.status), r.message); }
    HRESULT Done(const StoreResult& r) { return r ? S_OK : Fail(r); }

    HRESULT Hand(std::u16string name, std::u16string type, CTsComPtr<ITsProperty> root,
                 std::int32_t version, ITsResource** resource) {
        auto object = CTsComObject<ResourceObject>::Create();
        if (!object) return E_OUTOFMEMORY;
        object->Init(std::move(name), std::move(type), std::move(root), version);
        *resource = static_cast<ITsResource*>(object.Detach());
        return S_OK;
    }

    // Brings the string ids used by each conversation of the module up to date: only those
    // saved since the last look (by this program or another) are read again.
    StoreResult RefreshStringUsers() {
        std::vector<ResourceInfo> list;
        if (auto r = store_->ListResources(u"dlg", list); !r) return r;
        std::map<std::u16string, StringUsers> fresh;
        for (const ResourceInfo& info : list) {
            std::u16string key = AsciiLower(info.name + u"." + info.type);
            auto known = stringUsers_.find(key);
            if (known != stringUsers_.end() && known->second.version == info.version) {
                fresh.emplace(key, std::move(known->second));
                continue;
            }
            StringUsers users{info.version, {}};
            std::vector<std::uint8_t> bytes;
            CTsComPtr<ITsProperty> root;
            std::u16string error;
            if (auto r = store_->ReadResource(info.name, info.type, bytes); !r) return r;
            // A damaged conversation holds no ids anyone can edit; check reports it.
            if (!DecodeResource(bytes, root, &error)) {
                Report(ReportLevel::Warning, "ResMan", __LINE__,
                       Format(u"The resource \"%ls\" (%ls) cannot be read: %ls", info.name,
                              info.type, error));
            } else {
                std::vector<LineString> strings;
                CollectLineStrings(root.Get(), strings);
                for (const LineString& line : strings) users.ids.push_back(line.stringId);
                std::sort(users.ids.begin(), users.ids.end());
            }
            fresh.emplace(key, std::move(users));
        }
        stringUsers_ = std::move(fresh);
        return StoreResult::Success();
    }

    struct StringUsers {
        std::int32_t version = 0;
        std::vector<std::int32_t> ids;  // sorted
    };

    std::shared_ptr<ResourceStore> store_;
    std::u16string user_;
    std::u16string lastError_;
    std::map<std::u16string, StringUsers> stringUsers_;
};

}  // namespace

HRESULT ResultOf(StoreStatus status) {
    switch (status) {
        case StoreStatus::Ok:
            return S_OK;
        case StoreStatus::NotFound:
            return TS_E_NOT_FOUND;
        case StoreStatus::AlreadyExists:
            return TS_E_ALREADY_EXISTS;
        case StoreStatus::InvalidArgument:
            return E_INVALIDARG;
        case StoreStatus::Locked:
        case StoreStatus::CheckedOut:
            return TS_E_LOCKED;
        case StoreStatus::VersionConflict:
            return TS_E_VERSION_CONFLICT;
        case StoreStatus::Busy:
            return TS_E_BUSY;
        case StoreStatus::Damaged:
            return TS_E_DAMAGED;
        case StoreStatus::Failed:
            break;
    }
    return E_FAIL;
}

}  // namespace ts

HRESULT TsCreateResourceManager(std::shared_ptr<ts::ResourceStore> store, std::u16string_view user,
                                ITsResourceManager** manager) {
    if (!manager) return E_POINTER;
    *manager = nullptr;
    if (!store) return E_INVALIDARG;
    auto object = CTsComObject<ts::ResourceManager>::Create();
    if (!object) return E_OUTOFMEMORY;
    object->Init(std::move(store), std::u16string(user));
    *manager = object.Detach();
    return S_OK;
}
