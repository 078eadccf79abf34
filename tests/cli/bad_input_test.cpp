// Bad input of every kind ends with one readable line on standard error and exit code 1 (2 for a
// wrong command line): names are quoted escaped and cut, damage is named, nothing is changed.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "cli_run.h"
#include "support/test_folders.h"
#include "ts/configuration.h"

namespace {

namespace fs = std::filesystem;
using ts::test::Contains;
using ts::test::ReadWholeFile;
using ts::test::RunToolsetCli;

using BadInput = ts::test::CliDemoModule;

TEST_F(BadInput, NamesAreQuotedEscapedAndCut) {
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string message;
    };
    std::string longJson = folder + "/long.json";
    std::ofstream(longJson) << "{\"resource\": \"" << std::string(1 << 20, 'a')
                            << "\", \"type\": \"dlg\", \"fields\": {}}";
    const Case cases[] = {
        {{"export", demo, std::string(100000, 'n') + ".dlg"},
         1,
         "There is no resource \"" + std::string(80, 'n') + "... (100000 characters)\""},
        {{"export", demo, "bad\x01\x1b[31mname\nx.dlg"},
         1,
         "There is no resource \"bad\\u0001\\u001B[31mname\\nx\" of type \"dlg\""},
        {{"export", demo, "x\x07y"}, 2, "\"x\\u0007y\" does not name a resource"},
        {{"frob\x1b[2J"}, 2, "unknown command \"frob\\u001B[2J\""},
        {{"list", demo, "--\x1b[0m"}, 2, "list does not know the option --\\u001B[0m"},
        {{"import", demo, longJson},
         1,
         "\"" + std::string(80, 'a') + "... (1048576 characters)\" is not a valid resource name"},
    };
    for (const auto& c : cases) {
        auto run = RunToolsetCli(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        // The message is the first line of standard error, whatever follows it (the usage).
        std::string first = run.err.substr(0, run.err.find('\n'));
        EXPECT_TRUE(Contains(first, c.message)) << "wanted: " << c.message << "\ngot: " << first;
        EXPECT_LT(first.size(), 300u);
    }
}

// Rows the store would never write (a name with a line break, a type with a "!", a negative
// version) are damage: check names them, report fails with a reason on standard error.
TEST_F(BadInput, CheckAndReportNameRowsTheStoreNeverWrites) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(demo.c_str(), &db), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(db,
                           "UPDATE resources SET name = 'bad' || char(10) || 'name' WHERE name = "
                           "'orla'; UPDATE resources SET version = -3 WHERE name = 'brannoc'; "
                           "UPDATE resources SET type = 'd!g' WHERE name = 'teodor';",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(db);

    auto checked = RunToolsetCli({"check", demo});
    EXPECT_EQ(checked.exitCode, 1);
    for (const char* line : {
             "damaged  bad\\nname.utc: \"bad\\nname\" is not a valid resource name",
             "damaged  brannoc.utc: its version -3 is not one a save makes (they start at 1)",
             "damaged  teodor.d!g: \"d!g\" is not a valid resource type",
         })
        EXPECT_TRUE(Contains(checked.out, line)) << line << "\nin:\n" << checked.out;
    EXPECT_TRUE(Contains(checked.err, "the module is damaged: 3 of 17 resources cannot be read"))
        << checked.err;

    auto report = RunToolsetCli({"report", demo});
    EXPECT_EQ(report.exitCode, 1);
    EXPECT_TRUE(Contains(report.err, "the module is damaged; toolset-cli check tells where"))
        << report.err;
}

// A byte-order mark left in a header (a doubled one at the start, one inside a name) would be an
// invisible part of a column's name; the table is refused, saying where.
TEST_F(BadInput, AByteOrderMarkInAHeaderIsRefused) {
    std::string sources = folder + "/sources";
    fs::create_directories(sources + "/tables");
    std::ofstream(sources + "/module.json") << "{\"name\": \"Marks\", \"moduleId\": 2}";
    std::ofstream(sources + "/tables/doubled.csv") << "\xEF\xBB\xBF\xEF\xBB\xBFID,Name\n1,x\n";
    auto one = RunToolsetCli({"module", "create", sources, folder + "/marks.tsmod"});
    EXPECT_EQ(one.exitCode, 1);
    EXPECT_TRUE(Contains(one.err,
                         "tables/doubled.csv: line 1: the name of column 1 "
                         "(\"\\uFEFFID\") holds a byte-order mark (U+FEFF)"))
        << one.err;
    EXPECT_TRUE(Contains(one.err, "the module was not made (1 problem)")) << one.err;

    std::ofstream(sources + "/tables/inside.csv") << "ID,Na\xEF\xBB\xBFme\n1,x\n";
    auto two = RunToolsetCli({"module", "create", sources, folder + "/marks.tsmod"});
    EXPECT_TRUE(Contains(two.err, "line 1: the name of column 2 (\"Na\\uFEFFme\")")) << two.err;
    EXPECT_TRUE(Contains(two.err, "the module was not made (2 problems)")) << two.err;
    EXPECT_FALSE(fs::exists(folder + "/marks.tsmod"));

    // One mark at the start is the file's own and is no part of the first name.
    fs::remove(sources + "/tables/doubled.csv");
    std::ofstream(sources + "/tables/inside.csv", std::ios::trunc) << "\xEF\xBB\xBFID,Name\n1,x\n";
    EXPECT_EQ(RunToolsetCli({"module", "create", sources, folder + "/marks.tsmod"}).exitCode, 0);
}

}  // namespace
