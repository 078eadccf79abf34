#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <sqlite3.h>

#include "support/sample_trees.h"
#include "support/test_folders.h"
#include "ts/propertycompare.h"
#include "ts/resourcecodec.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

using ts::StoreStatus;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

class ResourceStoreTest : public ::testing::Test {
protected:
    std::string folder = ts::test::MakeTempFolder("ts-store");
    std::string path = folder + "/demo.tsmod";

    void TearDown() override { std::filesystem::remove_all(folder); }

    std::unique_ptr<ts::ResourceStore> Open(ts::SqliteStoreOptions options = {}) {
        ts::StoreResult result;
        auto store = ts::OpenSqliteStore(path, options, &result);
        EXPECT_TRUE(store) << U8(result.message);
        return store;
    }
    std::unique_ptr<ts::ResourceStore> Create() { return Open({.create = true}); }

    static std::vector<std::uint8_t> Bytes(ITsProperty* tree) {
        std::vector<std::uint8_t> bytes;
        EXPECT_TRUE(ts::EncodeResource(tree, bytes));
        return bytes;
    }
};

TEST_F(ResourceStoreTest, KeepsResourcesByNameAndTypeAcrossSessions) {
    auto tree = ts::test::MakeSampleTree();
    auto bytes = Bytes(tree.Get());
    {
        auto store = Create();
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->SetModuleInfo({u"Demo", 42, u"The demo module"}));
        ASSERT_TRUE(store->CreateResource(u"tavern", u"dlg", bytes, u"ann"));
        ASSERT_TRUE(store->CreateResource(u"tavern", u"plo", std::vector<std::uint8_t>{1, 2},
                                          u"ann"));  // same name, other type
        ASSERT_TRUE(store->CreateResource(u"Alley", u"dlg", std::vector<std::uint8_t>{}, u"ann"));

        auto again = store->CreateResource(u"TAVERN", u"dlg", bytes, u"ann");
        EXPECT_EQ(again.status, StoreStatus::AlreadyExists);
        EXPECT_NE(again.message.find(u"A resource \"TAVERN\" of type \"dlg\" already exists"),
                  std::u16string::npos);
        EXPECT_EQ(store->CreateResource(u"a/b", u"dlg", bytes, u"ann").status,
                  StoreStatus::InvalidArgument);
        EXPECT_EQ(store->CreateResource(u"", u"dlg", bytes, u"ann").status,
                  StoreStatus::InvalidArgument);
        EXPECT_EQ(store->CreateResource(u"ok", u"d.g", bytes, u"ann").status,
                  StoreStatus::InvalidArgument);
    }

    auto store = Open();
    ASSERT_TRUE(store);
    ts::ModuleInfo module;
    ASSERT_TRUE(store->GetModuleInfo(module));
    EXPECT_EQ(module.name, u"Demo");
    EXPECT_EQ(module.moduleId, 42);

    std::vector<std::uint8_t> content;
    ts::ResourceInfo info;
    ASSERT_TRUE(
        store->ReadResource(u"Tavern", u"DLG", content, &info));  // names and types ignore case
    EXPECT_EQ(content, bytes);
    EXPECT_EQ(info.name, u"tavern");
    EXPECT_EQ(info.version, 1);
    EXPECT_EQ(info.size, static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(info.modifiedBy, u"ann");
    EXPECT_NEAR(info.modifiedOn, ts::CurrentDateTime(), 1.0 / 24);
    CTsComPtr<ITsProperty> back;
    ASSERT_TRUE(ts::DecodeResource(content, back));
    EXPECT_TRUE(ts::PropertyTreesEqual(tree.Get(), back.Get()));

    // An empty content stays an empty content, not a missing one.
    ASSERT_TRUE(store->ReadResource(u"alley", u"dlg", content));
    EXPECT_TRUE(content.empty());

    std::vector<ts::ResourceInfo> list;
    ASSERT_TRUE(store->ListResources(u"dlg", list));
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].name, u"Alley");
    EXPECT_EQ(list[1].name, u"tavern");
    ASSERT_TRUE(store->ListResources(u"", list));
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[2].type, u"plo");

    ASSERT_TRUE(store->SaveResource(u"tavern", u"dlg", std::vector<std::uint8_t>{9}, 1, u"bob"));
    ASSERT_TRUE(store->GetResourceInfo(u"tavern", u"dlg", info));
    EXPECT_EQ(info.version, 2);
    EXPECT_EQ(info.modifiedBy, u"bob");

    ASSERT_TRUE(store->DeleteResource(u"tavern", u"dlg", u"bob"));
    auto missing = store->ReadResource(u"tavern", u"dlg", content);
    EXPECT_EQ(missing.status, StoreStatus::NotFound);
    EXPECT_NE(missing.message.find(u"There is no resource \"tavern\" of type \"dlg\""),
              std::u16string::npos);
    EXPECT_EQ(store->SaveResource(u"tavern", u"dlg", content, ts::kAnyVersion, u"bob").status,
              StoreStatus::NotFound);
    EXPECT_TRUE(store->ReadResource(u"tavern", u"plo", content));
}

TEST_F(ResourceStoreTest, OpeningTellsWhatIsWrongWithTheFile) {
    ts::StoreResult result;
    EXPECT_FALSE(ts::OpenSqliteStore(path, {}, &result));
    EXPECT_EQ(result.status, StoreStatus::NotFound);
    EXPECT_NE(result.message.find(u"does not exist"), std::u16string::npos);

    std::ofstream(path)
        << "not a database at all, just some text that is long enough to look like a header\n";
    EXPECT_FALSE(ts::OpenSqliteStore(path, {}, &result));
    EXPECT_EQ(result.status, StoreStatus::Damaged);
    EXPECT_NE(result.message.find(u"is not a toolset module"), std::u16string::npos)
        << U8(result.message);

    EXPECT_FALSE(ts::OpenSqliteStore(path, {.create = true}, &result));
    EXPECT_EQ(result.status, StoreStatus::AlreadyExists);
    std::filesystem::remove(path);

    EXPECT_FALSE(ts::OpenSqliteStore(folder, {}, &result));
    EXPECT_EQ(result.status, StoreStatus::InvalidArgument);

    // An SQLite database of some other program.
    {
        auto store = Create();
        ASSERT_TRUE(store);
    }
    std::string other = folder + "/other.db";
    std::filesystem::copy_file(path, other);
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(other.c_str(), &db), SQLITE_OK);
        sqlite3_exec(db, "PRAGMA application_id=7", nullptr, nullptr, nullptr);
        sqlite3_close(db);
    }
    EXPECT_FALSE(ts::OpenSqliteStore(other, {}, &result));
    EXPECT_EQ(result.status, StoreStatus::Damaged);
}

TEST_F(ResourceStoreTest, CheckOutLocksAndVersionsGuardOtherPeoplesWork) {
    auto store = Create();
    ASSERT_TRUE(store);
    std::vector<std::uint8_t> original{1, 2, 3}, mine{4}, theirs{5};
    ASSERT_TRUE(store->CreateResource(u"plan", u"cut", original, u"ann"));

    ASSERT_TRUE(store->CheckOut(u"plan", u"cut", u"ann"));
    ASSERT_TRUE(store->CheckOut(u"plan", u"cut", u"ann"));  // again: already hers
    auto refused = store->SaveResource(u"plan", u"cut", theirs, ts::kAnyVersion, u"bob");
    EXPECT_EQ(refused.status, StoreStatus::CheckedOut);
    EXPECT_EQ(refused.message,
              u"The resource \"plan\" is checked out by \"ann\" and cannot be edited");
    EXPECT_EQ(store->CheckOut(u"plan", u"cut", u"bob").status, StoreStatus::CheckedOut);
    EXPECT_EQ(store->CheckIn(u"plan", u"cut", u"bob").status, StoreStatus::CheckedOut);
    EXPECT_EQ(store->DeleteResource(u"plan", u"cut", u"bob").status, StoreStatus::CheckedOut);
    ts::ResourceInfo info;
    ASSERT_TRUE(store->GetResourceInfo(u"plan", u"cut", info));
    EXPECT_EQ(info.checkedOutBy, u"ann");

    ASSERT_TRUE(store->SaveResource(u"plan", u"cut", mine, 1, u"ann"));
    ASSERT_TRUE(store->CheckIn(u"plan", u"cut", u"ann"));
    ASSERT_TRUE(store->CheckOut(u"plan", u"cut", u"bob"));
    ASSERT_TRUE(store->CheckIn(u"plan", u"cut", u"bob"));

    // Bob read version 1 and saves after Ann's save made version 2.
    auto conflict = store->SaveResource(u"plan", u"cut", theirs, 1, u"bob");
    EXPECT_EQ(conflict.status, StoreStatus::VersionConflict);
    EXPECT_NE(conflict.message.find(u"was saved by \"ann\" after you opened it"),
              std::u16string::npos)
        << U8(conflict.message);

    ASSERT_TRUE(store->SetLocked(u"plan", u"cut", true));
    auto locked = store->SaveResource(u"plan", u"cut", theirs, ts::kAnyVersion, u"ann");
    EXPECT_EQ(locked.status, StoreStatus::Locked);
    EXPECT_EQ(locked.message, u"The resource \"plan\" is locked and cannot be edited");
    EXPECT_EQ(store->CheckOut(u"plan", u"cut", u"ann").status, StoreStatus::Locked);
    ASSERT_TRUE(store->SetLocked(u"plan", u"cut", false));
    EXPECT_EQ(store->SetLocked(u"nothing", u"cut", true).status, StoreStatus::NotFound);

    std::vector<std::uint8_t> content;
    ASSERT_TRUE(store->ReadResource(u"plan", u"cut", content, &info));
    EXPECT_EQ(content, mine);  // none of the refused saves changed anything
    EXPECT_EQ(info.version, 2);
}

TEST_F(ResourceStoreTest, StringIdsAreIssuedKeptOrRefused) {
    auto store = Create();
    ASSERT_TRUE(store);
    std::int32_t id = 0;
    ASSERT_TRUE(store->ValidateStringId(-1, id));
    EXPECT_EQ(id, 1);
    ASSERT_TRUE(store->ValidateStringId(-1, id));
    EXPECT_EQ(id, 2);
    std::int32_t kept = 0;
    ASSERT_TRUE(store->ValidateStringId(1, kept));
    EXPECT_EQ(kept, 1);

    std::int32_t untouched = 77;
    auto unknown = store->ValidateStringId(99, untouched);
    EXPECT_EQ(unknown.status, StoreStatus::InvalidArgument);
    EXPECT_NE(unknown.message.find(u"The string id 99 is not known"), std::u16string::npos);
    EXPECT_EQ(untouched, 77);
    EXPECT_FALSE(store->ValidateStringId(-2, untouched));

    // Imported strings bring their ids; new ids continue after the highest.
    ASSERT_TRUE(store->SetString(500, 0, u"Well met."));
    ASSERT_TRUE(store->SetString(500, 2, u"Bien le bonjour."));
    ASSERT_TRUE(store->SetString(500, 0, u"Well met, traveller."));
    ASSERT_TRUE(store->ValidateStringId(500, kept));
    ASSERT_TRUE(store->ValidateStringId(-1, id));
    EXPECT_EQ(id, 501);
    std::u16string text;
    ASSERT_TRUE(store->GetString(500, 0, text));
    EXPECT_EQ(text, u"Well met, traveller.");
    EXPECT_EQ(store->GetString(500, 1, text).status, StoreStatus::NotFound);
    EXPECT_EQ(store->SetString(-1, 0, u"x").status, StoreStatus::InvalidArgument);
    std::vector<ts::LocalizedString> strings;
    ASSERT_TRUE(store->ListStrings(strings));
    ASSERT_EQ(strings.size(), 2u);
    EXPECT_EQ(strings[1].text, u"Bien le bonjour.");

    ts::VORecordingStatus vo{500, 3, 45000.5, true};
    ASSERT_TRUE(store->SetVORecordingStatus(vo));
    ts::VORecordingStatus readVo;
    ASSERT_TRUE(store->GetVORecordingStatus(500, readVo));
    EXPECT_EQ(readVo.moduleResRefVersionId, 3);
    EXPECT_EQ(readVo.sentForRecordingOn, 45000.5);
    EXPECT_TRUE(readVo.requiresReRecording);
    EXPECT_EQ(store->GetVORecordingStatus(1, readVo).status, StoreStatus::NotFound);
    auto orphan = store->SetVORecordingStatus({12345, 1, 1.0, false});
    EXPECT_EQ(orphan.status, StoreStatus::InvalidArgument);
    EXPECT_NE(orphan.message.find(u"no such string id"), std::u16string::npos);

    ASSERT_TRUE(store->SetLocalizationStatus({1, 2, 45100.0, false}));
    ts::LocalizationStatus loc;
    ASSERT_TRUE(store->GetLocalizationStatus(1, loc));
    EXPECT_EQ(loc.exportedOn, 45100.0);
    EXPECT_FALSE(loc.requiresReTranslation);
    std::int64_t voCount = 0, locCount = 0;
    ASSERT_TRUE(store->CountStatusRecords(voCount, locCount));
    EXPECT_EQ(voCount, 1);
    EXPECT_EQ(locCount, 1);
}

TEST_F(ResourceStoreTest, TablesAreReplacedWholeAndReadBack) {
    auto store = Create();
    ASSERT_TRUE(store);
    ts::GameTable table;
    ASSERT_TRUE(ts::GameTable::FromCsv(u"toolset_dlglang",
                                       "ID,LanguageName\n0,English\n1,\"Fran\xC3\xA7"
                                       "ais, Canada\"\n",
                                       table));
    ASSERT_TRUE(store->ImportTable(table));
    ts::GameTable back;
    ASSERT_TRUE(store->ReadTable(u"TOOLSET_DLGLANG", back));
    EXPECT_EQ(back.ToCsv(), table.ToCsv());
    std::u16string cell;
    ASSERT_TRUE(back.GetText(1, u"languagename", cell));
    EXPECT_EQ(cell, u"Fran\u00e7ais, Canada");

    ts::GameTable smaller;
    ASSERT_TRUE(
        ts::GameTable::FromCsv(u"Toolset_DlgLang", "ID,LanguageName\n0,English\n", smaller));
    ASSERT_TRUE(store->ImportTable(smaller));
    ASSERT_TRUE(store->ReadTable(u"toolset_dlglang", back));
    EXPECT_EQ(back.RowCount(), 1u);
    EXPECT_EQ(back.Name(), u"Toolset_DlgLang");
    std::vector<std::u16string> names;
    ASSERT_TRUE(store->ListTables(names));
    EXPECT_EQ(names, std::vector<std::u16string>{u"Toolset_DlgLang"});

    auto missing = store->ReadTable(u"poses", back);
    EXPECT_EQ(missing.status, StoreStatus::NotFound);
    EXPECT_NE(missing.message.find(u"has no table \"poses\""), std::u16string::npos);
}

TEST_F(ResourceStoreTest, ABatchKeepsAllOrNothing) {
    auto store = Create();
    ASSERT_TRUE(store);
    std::vector<std::uint8_t> bytes{1};
    {
        ts::StoreBatch batch(*store);
        ASSERT_TRUE(batch.Started());
        ASSERT_TRUE(store->CreateResource(u"a", u"dlg", bytes, u"ann"));
        ASSERT_TRUE(store->SetString(7, 0, u"seven"));
        EXPECT_EQ(store->BeginBatch().status, StoreStatus::InvalidArgument);
    }  // not committed
    std::vector<ts::ResourceInfo> list;
    ASSERT_TRUE(store->ListResources(u"", list));
    EXPECT_TRUE(list.empty());
    std::int32_t id;
    EXPECT_FALSE(store->ValidateStringId(7, id));

    {
        ts::StoreBatch batch(*store);
        ASSERT_TRUE(store->CreateResource(u"a", u"dlg", bytes, u"ann"));
        // A failed step inside the batch leaves the batch's other steps in place.
        ASSERT_TRUE(store->CreateResource(u"locked", u"dlg", bytes, u"ann"));
        ASSERT_TRUE(store->SetLocked(u"locked", u"dlg", true));
        EXPECT_EQ(store->SaveResource(u"locked", u"dlg", bytes, ts::kAnyVersion, u"ann").status,
                  StoreStatus::Locked);
        ASSERT_TRUE(store->SetString(7, 0, u"seven"));
        ASSERT_TRUE(batch.Commit());
    }
    ASSERT_TRUE(store->ListResources(u"", list));
    EXPECT_EQ(list.size(), 2u);
    EXPECT_TRUE(store->ValidateStringId(7, id));
}

TEST_F(ResourceStoreTest, AModuleHeldByAnotherProgramIsReportedBusy) {
    auto first = Create();
    ASSERT_TRUE(first);
    std::vector<std::uint8_t> bytes{1};
    ASSERT_TRUE(first->CreateResource(u"a", u"dlg", bytes, u"ann"));
    auto second = Open({.busyTimeoutMs = 20});
    ASSERT_TRUE(second);

    ASSERT_TRUE(first->BeginBatch());
    ASSERT_TRUE(
        first->SaveResource(u"a", u"dlg", std::vector<std::uint8_t>{2}, ts::kAnyVersion, u"ann"));
    auto busy =
        second->SaveResource(u"a", u"dlg", std::vector<std::uint8_t>{3}, ts::kAnyVersion, u"bob");
    EXPECT_EQ(busy.status, StoreStatus::Busy);
    EXPECT_NE(busy.message.find(u"in use by another program"), std::u16string::npos)
        << U8(busy.message);
    // Readers still see the last saved version meanwhile.
    std::vector<std::uint8_t> content;
    ASSERT_TRUE(second->ReadResource(u"a", u"dlg", content));
    EXPECT_EQ(content, bytes);
    ASSERT_TRUE(first->CommitBatch());
    ASSERT_TRUE(second->ReadResource(u"a", u"dlg", content));
    EXPECT_EQ(content, std::vector<std::uint8_t>{2});

    ASSERT_TRUE(second->Flush());
    std::vector<std::u16string> problems;
    ASSERT_TRUE(second->CheckIntegrity(problems));
    EXPECT_TRUE(problems.empty());
}

}  // namespace
