// How the library's cache keys read their lists: tables and resource lists come from the host's
// resource manager, registered under "ResMan" while a module is open.
#include <string>

#include "agents/valuecache.h"
#include "ts/comptr.h"
#include "ts/gametable.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/report.h"
#include "ts/resourcemanager.h"

namespace {

void Warn(std::u16string_view message) {
    Report(ReportLevel::Warning, __FILE__, __LINE__, std::u16string(message));
}

// The host's resource manager; null, with `missing` reported, when no module is open.
CTsComPtr<ITsResourceManager> ResourceManager(std::u16string_view missing) {
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    if (!manager) Report(ReportLevel::Assert, __FILE__, __LINE__, std::u16string(missing));
    return manager;
}

// Reports why the manager's last call failed.
void WarnLastError(ITsResourceManager& manager) {
    CTsHostString error;
    manager.GetLastErrorText(error.Put());
    Warn(error.View());
}

// Whether the row's cell in `column` holds the condition's value. Integers and bools compare
// the cell read as a whole number (a bool is any non-zero number); a cell that is not a number
// never matches them. Strings compare exactly.
bool CellHolds(const ts::GameTable& table, std::size_t row, std::size_t column,
               const variant& value) {
    if (value.type() == kTsTypeString) {
        std::u16string text;
        return table.GetText(row, column, text) && text == value.GetString();
    }
    std::int32_t number = 0;
    if (!table.GetInt(row, column, number)) return false;
    if (value.type() == kTsTypeBool) return (number != 0) == value.GetBool();
    return number == value.GetInt();
}

// Reads the rows of `key`'s table that meet every condition, calling `add(text, rowId)` for each
// in table order. Fails on a missing service, table, or column (its own or a condition's).
template <class Add>
bool ReadTableColumn(const C2daCacheKey& key, Add add) {
    CTsComPtr<ITsResourceManager> manager = ResourceManager(u"Accesing invalid 2DA plugin");
    if (!manager) return false;
    CTsComPtr<ITsTable> opened;
    if (FAILED(manager->OpenTable(key.Table(), opened.Put()))) {
        WarnLastError(*manager);
        return false;
    }
    const ts::GameTable& table = opened->Table();

    std::u16string error;
    std::size_t column = 0;
    if (!table.FindColumn(key.Column(), column, &error)) {
        Warn(error);
        return false;
    }
    std::vector<std::size_t> conditionColumns(key.RowConditions().size());
    for (std::size_t i = 0; i < conditionColumns.size(); ++i) {
        if (!table.FindColumn(key.RowConditions()[i].column, conditionColumns[i], &error)) {
            Warn(error);
            return false;
        }
    }
    for (std::size_t row = 0; row < table.RowCount(); ++row) {
        bool taken = true;
        for (std::size_t i = 0; taken && i < conditionColumns.size(); ++i)
            taken = CellHolds(table, row, conditionColumns[i], key.RowConditions()[i].value);
        std::u16string text;
        if (taken && table.GetText(row, column, text)) add(std::move(text), table.RowId(row));
    }
    return true;
}

}  // namespace

bool C2daCacheKey::LoadNumberedTexts(TsNumberedTexts& list) const {
    return ReadTableColumn(*this, [&](std::u16string text, std::int32_t id) {
        list.emplace_back(std::move(text), id);
    });
}

bool C2daCacheKey::LoadTextPairs(TsTextPairs& list) const {
    return ReadTableColumn(*this, [&](std::u16string text, std::int32_t id) {
        std::string digits = std::to_string(id);
        list.emplace_back(std::move(text), std::u16string(digits.begin(), digits.end()));
    });
}

bool CDbResRefCacheKey::LoadTextPairs(TsTextPairs& list) const {
    std::u16string type = TsGetAtomName(resourceType_);
    if (type.empty()) {
        // An empty type would list every resource of the module, which is never what's meant.
        std::string number = std::to_string(resourceType_);
        Warn(u"Unknown resource type atom " + std::u16string(number.begin(), number.end()));
        return false;
    }
    CTsComPtr<ITsResourceManager> manager = ResourceManager(u"Accesing invalid resource manager");
    if (!manager) return false;
    std::vector<ts::ResourceInfo> resources;
    if (FAILED(manager->ListResources(type, &resources))) {
        WarnLastError(*manager);
        return false;
    }
    for (auto& info : resources) list.emplace_back(info.name, info.name + u"." + info.type);
    return true;
}

// A resource has no number of its own that a pane could store.
bool CDbResRefCacheKey::LoadNumberedTexts(TsNumberedTexts&) const {
    Warn(u"A resource list has no numbered form");
    return false;
}
