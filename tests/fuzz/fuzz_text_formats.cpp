// Any text given to the readers of JSON resources, CSV tables and settings files: each must
// refuse it or read it, never crash, and what it reads must survive being written and read again.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "agents/resourceschemas.h"
#include "ts/configuration.h"
#include "ts/gametable.h"
#include "ts/propertycompare.h"
#include "ts/resourcejson.h"

namespace {

void CheckJson(std::string_view text) {
    // Named beforehand, as a file name would, so that documents that leave the names out still
    // read.
    ts::ResourceDocument doc{u"fuzz", u"dlg", {}};
    if (!ts::ReadResourceJson(text, doc, nullptr, ts::ResourceSchemas())) return;
    std::string exact, brief;
    if (!ts::WriteResourceJson(doc, exact) ||
        !ts::WriteResourceJsonShort(doc, ts::ResourceSchemas(), brief))
        std::abort();
    for (const std::string* written : {&exact, &brief}) {
        ts::ResourceDocument back;
        if (!ts::ReadResourceJson(*written, back, nullptr, ts::ResourceSchemas())) std::abort();
        if (!ts::PropertyTreesEqual(doc.root.Get(), back.root.Get())) std::abort();
    }
}

void CheckCsv(std::string_view text) {
    ts::GameTable table;
    if (!ts::GameTable::FromCsv(u"fuzz", text, table)) return;
    ts::GameTable back;
    if (!ts::GameTable::FromCsv(u"fuzz", table.ToCsv(), back) || back.ToCsv() != table.ToCsv())
        std::abort();
    std::int32_t value;
    std::u16string cell;
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        for (std::size_t column = 0; column <= table.ColumnCount(); ++column) {
            table.GetInt(row, column, value);
            table.GetText(row, column, cell);
        }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    CheckJson(text);
    CheckCsv(text);
    ts::Configuration settings;
    settings.LoadText(text, u"fuzz");
    return 0;
}
