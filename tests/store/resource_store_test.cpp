#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <numeric>

#include "support/test_folders.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

using ts::StoreStatus;
using Bytes = std::vector<std::uint8_t>;

// A refused call: its status, and a message that says `words`.
::testing::AssertionResult Refused(const ts::StoreResult& r, StoreStatus status,
                                   std::u16string_view words = {}) {
    if (r.status == status && r.message.find(words) != std::u16string::npos)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "status " << static_cast<int>(r.status) << ": " << ts::Utf16ToUtf8(r.message);
}

// "name.type" of every resource of `type` (every type when empty), in listing order.
std::vector<std::u16string> Listed(ts::ResourceStore& store, std::u16string_view type = {}) {
    std::vector<ts::ResourceInfo> list;
    EXPECT_TRUE(store.ListResources(type, list));
    std::vector<std::u16string> names;
    for (const auto& info : list) names.push_back(info.name + u"." + info.type);
    return names;
}
using Names = std::vector<std::u16string>;

class ResourceStoreTest : public ::testing::Test {
protected:
    std::string folder = ts::test::MakeTempFolder("ts-store");
    std::string path = folder + "/demo.tsmod";

    void TearDown() override { std::filesystem::remove_all(folder); }

    std::unique_ptr<ts::ResourceStore> Open(ts::SqliteStoreOptions options = {}) {
        ts::StoreResult result;
        auto store = ts::OpenSqliteStore(path, options, &result);
        EXPECT_TRUE(store) << ts::Utf16ToUtf8(result.message);
        return store;
    }
    std::unique_ptr<ts::ResourceStore> Create() { return Open({.create = true}); }
};

// A new, empty module.
class NewModule : public ResourceStoreTest {
protected:
    void SetUp() override { ASSERT_TRUE(store = Create()); }
    std::unique_ptr<ts::ResourceStore> store;
};

TEST_F(ResourceStoreTest, KeepsResourcesByNameAndTypeAcrossSessions) {
    Bytes bytes(70000);  // larger than a page
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    {
        auto store = Create();
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->CreateResource(u"tavern", u"dlg", bytes, u"ann"));
        ASSERT_TRUE(store->CreateResource(u"tavern", u"plo", Bytes{1, 2}, u"ann"));  // other type
        ASSERT_TRUE(store->CreateResource(u"Alley", u"dlg", Bytes{}, u"ann"));

        EXPECT_TRUE(Refused(store->CreateResource(u"TAVERN", u"dlg", bytes, u"ann"),
                            StoreStatus::AlreadyExists,
                            u"A resource \"TAVERN\" of type \"dlg\" already exists"));
        for (auto [name, type] :
             {std::pair{u"a/b", u"dlg"}, std::pair{u"", u"dlg"}, std::pair{u"ok", u"d.g"}})
            EXPECT_TRUE(Refused(store->CreateResource(name, type, bytes, u"ann"),
                                StoreStatus::InvalidArgument));
    }

    auto store = Open();
    ASSERT_TRUE(store);
    Bytes content;
    ts::ResourceInfo info;
    ASSERT_TRUE(store->ReadResource(u"Tavern", u"DLG", content, &info));  // case is ignored
    EXPECT_EQ(content, bytes);
    EXPECT_EQ(info.name, u"tavern");
    EXPECT_EQ(info.version, 1);
    EXPECT_EQ(info.size, static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(info.modifiedBy, u"ann");
    EXPECT_NEAR(info.modifiedOn, ts::CurrentDateTime(), 1.0 / 24);
    // An empty content stays an empty content, not a missing one.
    ASSERT_TRUE(store->ReadResource(u"alley", u"dlg", content));
    EXPECT_TRUE(content.empty());

    EXPECT_EQ(Listed(*store, u"dlg"), (Names{u"Alley.dlg", u"tavern.dlg"}));
    EXPECT_EQ(Listed(*store), (Names{u"Alley.dlg", u"tavern.dlg", u"tavern.plo"}));

    ASSERT_TRUE(store->SaveResource(u"tavern", u"dlg", Bytes{9}, 1, u"bob"));
    ASSERT_TRUE(store->GetResourceInfo(u"tavern", u"dlg", info));
    EXPECT_EQ(info.version, 2);
    EXPECT_EQ(info.modifiedBy, u"bob");

    ASSERT_TRUE(store->DeleteResource(u"tavern", u"dlg", u"bob"));
    EXPECT_TRUE(Refused(store->ReadResource(u"tavern", u"dlg", content), StoreStatus::NotFound,
                        u"There is no resource \"tavern\" of type \"dlg\""));
    EXPECT_TRUE(Refused(store->SaveResource(u"tavern", u"dlg", content, ts::kAnyVersion, u"bob"),
                        StoreStatus::NotFound));
    EXPECT_TRUE(store->ReadResource(u"tavern", u"plo", content));
}

TEST_F(ResourceStoreTest, OpeningTellsWhatIsWrongWithTheFile) {
    ts::StoreResult result;
    EXPECT_FALSE(ts::OpenSqliteStore(path, {}, &result));
    EXPECT_TRUE(Refused(result, StoreStatus::NotFound, u"does not exist"));
    EXPECT_FALSE(ts::OpenSqliteStore(folder, {}, &result));
    EXPECT_TRUE(Refused(result, StoreStatus::InvalidArgument));
    ASSERT_TRUE(Create());
    EXPECT_FALSE(ts::OpenSqliteStore(path, {.create = true}, &result));
    EXPECT_TRUE(Refused(result, StoreStatus::AlreadyExists));

    {
        auto reader = Open({.readOnly = true});
        ASSERT_TRUE(reader);
        EXPECT_FALSE(reader->CreateResource(u"a", u"dlg", Bytes{1}, u"ann"));
    }

    // A module of a newer toolset, and an SQLite database of some other program.
    auto stamp = [&](const char* pragma) {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(db, pragma, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(db);
    };
    stamp("PRAGMA user_version=99");
    EXPECT_FALSE(ts::OpenSqliteStore(path, {}, &result));
    EXPECT_TRUE(Refused(result, StoreStatus::Failed, u"was made by a newer toolset"));
    stamp("PRAGMA application_id=7");
    EXPECT_FALSE(ts::OpenSqliteStore(path, {}, &result));
    EXPECT_TRUE(Refused(result, StoreStatus::Damaged, u"is not a toolset module"));
}

TEST_F(NewModule, CheckOutLocksAndVersionsGuardOtherPeoplesWork) {
    Bytes mine{4}, theirs{5};
    ASSERT_TRUE(store->CreateResource(u"plan", u"cut", Bytes{1, 2, 3}, u"ann"));

    ASSERT_TRUE(store->CheckOut(u"plan", u"cut", u"ann"));
    ASSERT_TRUE(store->CheckOut(u"plan", u"cut", u"ann"));  // again: already hers
    EXPECT_TRUE(Refused(store->SaveResource(u"plan", u"cut", theirs, ts::kAnyVersion, u"bob"),
                        StoreStatus::CheckedOut,
                        u"The resource \"plan\" is checked out by \"ann\" and cannot be edited"));
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
    EXPECT_TRUE(Refused(store->SaveResource(u"plan", u"cut", theirs, 1, u"bob"),
                        StoreStatus::VersionConflict, u"was saved by \"ann\" after you opened it"));

    ASSERT_TRUE(store->SetLocked(u"plan", u"cut", true));
    EXPECT_TRUE(Refused(store->SaveResource(u"plan", u"cut", theirs, ts::kAnyVersion, u"ann"),
                        StoreStatus::Locked, u"\"plan\" is locked and cannot be edited"));
    EXPECT_EQ(store->CheckOut(u"plan", u"cut", u"ann").status, StoreStatus::Locked);
    ASSERT_TRUE(store->SetLocked(u"plan", u"cut", false));
    EXPECT_EQ(store->SetLocked(u"nothing", u"cut", true).status, StoreStatus::NotFound);

    Bytes content;
    ASSERT_TRUE(store->ReadResource(u"plan", u"cut", content, &info));
    EXPECT_EQ(content, mine);  // none of the refused saves changed anything
    EXPECT_EQ(info.version, 2);
}

TEST_F(NewModule, StringIdsAreIssuedKeptOrRefused) {
    std::int32_t id = 0, kept = 0, untouched = 77;
    ASSERT_TRUE(store->ValidateStringId(-1, id));
    EXPECT_EQ(id, 1);
    ASSERT_TRUE(store->ValidateStringId(-1, id));
    EXPECT_EQ(id, 2);
    ASSERT_TRUE(store->ValidateStringId(1, kept));
    EXPECT_EQ(kept, 1);
    EXPECT_TRUE(Refused(store->ValidateStringId(99, untouched), StoreStatus::InvalidArgument,
                        u"The string id 99 is not known"));
    EXPECT_FALSE(store->ValidateStringId(-2, untouched));
    EXPECT_EQ(untouched, 77);

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

    // Status records belong to known strings.
    ASSERT_TRUE(store->SetVORecordingStatus({500, 3, 45000.5, true}));
    ts::VORecordingStatus vo;
    ASSERT_TRUE(store->GetVORecordingStatus(500, vo));
    EXPECT_EQ(vo.moduleResRefVersionId, 3);
    EXPECT_EQ(vo.sentForRecordingOn, 45000.5);
    EXPECT_TRUE(vo.requiresReRecording);
    EXPECT_EQ(store->GetVORecordingStatus(1, vo).status, StoreStatus::NotFound);
    EXPECT_TRUE(Refused(store->SetVORecordingStatus({12345, 1, 1.0, false}),
                        StoreStatus::InvalidArgument, u"no such string id"));
}

TEST_F(NewModule, TablesAreReplacedWholeAndReadBack) {
    ts::GameTable table, smaller, back;
    ASSERT_TRUE(ts::GameTable::FromCsv(u"toolset_dlglang",
                                       "ID,LanguageName\n0,English\n1,\"Fran\xC3\xA7"
                                       "ais, Canada\"\n",
                                       table));
    ASSERT_TRUE(store->ImportTable(table));
    ASSERT_TRUE(store->ReadTable(u"TOOLSET_DLGLANG", back));
    EXPECT_EQ(back.ToCsv(), table.ToCsv());

    ASSERT_TRUE(
        ts::GameTable::FromCsv(u"Toolset_DlgLang", "ID,LanguageName\n0,English\n", smaller));
    ASSERT_TRUE(store->ImportTable(smaller));
    ASSERT_TRUE(store->ReadTable(u"toolset_dlglang", back));
    EXPECT_EQ(back.RowCount(), 1u);
    EXPECT_EQ(back.Name(), u"Toolset_DlgLang");
    std::vector<std::u16string> names;
    ASSERT_TRUE(store->ListTables(names));
    EXPECT_EQ(names, std::vector<std::u16string>{u"Toolset_DlgLang"});
    EXPECT_TRUE(Refused(store->ReadTable(u"poses", back), StoreStatus::NotFound,
                        u"has no table \"poses\""));
}

TEST_F(NewModule, ABatchKeepsAllOrNothing) {
    Bytes bytes{1};
    std::int32_t id;
    {
        ts::StoreBatch batch(*store);
        ASSERT_TRUE(batch.Started());
        ASSERT_TRUE(store->CreateResource(u"a", u"dlg", bytes, u"ann"));
        ASSERT_TRUE(store->SetString(7, 0, u"seven"));
        EXPECT_EQ(store->BeginBatch().status, StoreStatus::InvalidArgument);
    }  // not committed
    EXPECT_EQ(Listed(*store), Names{});
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
    EXPECT_EQ(Listed(*store), (Names{u"a.dlg", u"locked.dlg"}));
    EXPECT_TRUE(store->ValidateStringId(7, id));
}

TEST_F(ResourceStoreTest, AModuleHeldByAnotherProgramIsReportedBusy) {
    auto first = Create();
    ASSERT_TRUE(first);
    ASSERT_TRUE(first->CreateResource(u"a", u"dlg", Bytes{1}, u"ann"));
    auto second = Open({.busyTimeoutMs = 20});
    ASSERT_TRUE(second);

    ASSERT_TRUE(first->BeginBatch());
    ASSERT_TRUE(first->SaveResource(u"a", u"dlg", Bytes{2}, ts::kAnyVersion, u"ann"));
    EXPECT_TRUE(Refused(second->SaveResource(u"a", u"dlg", Bytes{3}, ts::kAnyVersion, u"bob"),
                        StoreStatus::Busy, u"in use by another program"));
    // Readers still see the last saved version meanwhile.
    Bytes content;
    ASSERT_TRUE(second->ReadResource(u"a", u"dlg", content));
    EXPECT_EQ(content, Bytes{1});
    ASSERT_TRUE(first->CommitBatch());
    ASSERT_TRUE(second->ReadResource(u"a", u"dlg", content));
    EXPECT_EQ(content, Bytes{2});
}

}  // namespace
