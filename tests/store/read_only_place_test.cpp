// A module on a read-only disk or in a read-only folder is still read whole, and every change
// to it is refused with a message that says the module is read-only.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/read_only_place.h"
#include "support/test_folders.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;

TEST(ReadOnlyPlace, AModuleIsReadWholeAndChangesAreRefused) {
    std::string folder = ts::test::MakeTempFolder("ts-read-only");
    // A name with the characters a file URI gives meaning to.
    std::string path = folder + "/odd ?#% name.tsmod";
    const std::vector<std::uint8_t> content(70000, 7);
    {
        auto store = ts::OpenSqliteStore(path, {.create = true});
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->CreateResource(u"inn", u"dlg", content, u"ann"));
    }
    ASSERT_FALSE(fs::exists(path + "-wal")) << "a closed module keeps no log";

    ts::StoreResult result;
    auto writer = ts::OpenSqliteStore(path, {.vfs = ts::test::ReadOnlyPlaceVfs()}, &result);
    EXPECT_FALSE(writer);
    EXPECT_NE(result.message.find(u"Could not open the module"), std::u16string::npos)
        << ts::Utf16ToUtf8(result.message);

    auto reader =
        ts::OpenSqliteStore(path, {.readOnly = true, .vfs = ts::test::ReadOnlyPlaceVfs()}, &result);
    ASSERT_TRUE(reader) << ts::Utf16ToUtf8(result.message);
    EXPECT_TRUE(reader->ReadOnly());
    std::vector<std::uint8_t> read;
    ASSERT_TRUE(reader->ReadResource(u"inn", u"dlg", read));
    EXPECT_EQ(read, content);
    std::vector<std::u16string> problems;
    EXPECT_TRUE(reader->CheckIntegrity(problems));
    EXPECT_TRUE(problems.empty());
    auto saved = reader->SaveResource(u"inn", u"dlg", content, ts::kAnyVersion, u"ann");
    EXPECT_FALSE(saved);
    EXPECT_NE(saved.message.find(u"Could not save the resource \"inn\" (dlg)"),
              std::u16string::npos)
        << ts::Utf16ToUtf8(saved.message);
    EXPECT_NE(saved.message.find(u"read-only"), std::u16string::npos)
        << ts::Utf16ToUtf8(saved.message);
    reader.reset();

    // Changes still waiting in a log cannot be read without the shared-memory file; the module
    // is refused with the reason rather than read without them.
    std::ofstream(path + "-wal") << std::string(4096, 'x');
    reader =
        ts::OpenSqliteStore(path, {.readOnly = true, .vfs = ts::test::ReadOnlyPlaceVfs()}, &result);
    EXPECT_FALSE(reader);
    EXPECT_NE(result.message.find(u"its log file holds changes"), std::u16string::npos)
        << ts::Utf16ToUtf8(result.message);
    fs::remove_all(folder);
}

}  // namespace
