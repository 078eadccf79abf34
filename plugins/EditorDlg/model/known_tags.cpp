#include "model/known_tags.h"

#include "ts/comptr.h"
#include "ts/gametable.h"
#include "ts/hostcomponents.h"
#include "ts/report.h"
#include "ts/resourcemanager.h"

namespace dlg {

namespace {

void Warn(const std::u16string& message) {
    Report(ReportLevel::Warning, __FILE__, __LINE__, message);
}

}  // namespace

std::optional<TextTagSet> LoadKnownTags() {
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    if (!manager) return std::nullopt;
    TextTagSet tags;
    CTsComPtr<ITsTable> table;
    if (FAILED(manager->OpenTable(kKnownTagsTable, table.Put()))) return tags;

    const ts::GameTable& rows = table->Table();
    std::u16string error;
    std::size_t tagColumn = 0, pairedColumn = 0;
    if (!rows.FindColumn(u"Tag", tagColumn, &error) ||
        !rows.FindColumn(u"Paired", pairedColumn, &error)) {
        Warn(error);
        return tags;
    }
    for (std::size_t row = 0; row < rows.RowCount(); ++row) {
        std::u16string name;
        std::int32_t paired = 0;
        if (!rows.GetText(row, tagColumn, name, &error) ||
            !rows.GetInt(row, pairedColumn, paired, &error))
            Warn(error);
        else if (!name.empty())
            tags.Add(name, paired != 0);
    }
    return tags;
}

}  // namespace dlg
