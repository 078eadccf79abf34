// The resource manager: the store as plugins reach it, with trees instead of bytes and HRESULTs
// with a last-error text instead of store results.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "support/sample_trees.h"
#include "support/test_folders.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/propertycompare.h"
#include "ts/resourcemanager.h"

namespace {

using Node = CTsComPtr<ITsProperty>;

class ResourceManagerTest : public ::testing::Test {
protected:
    std::string folder = ts::test::MakeTempFolder("ts-resman");
    std::shared_ptr<ts::ResourceStore> store;
    CTsComPtr<ITsResourceManager> resman;
    Node tree = ts::test::MakeSampleTree();

    void SetUp() override {
        store = ts::OpenSqliteStore(folder + "/m.tsmod", {.create = true});
        ASSERT_TRUE(store);
        ASSERT_EQ(TsCreateResourceManager(store, u"ann", resman.Put()), S_OK);
    }
    void TearDown() override {
        TsRegisterHostComponent(kTsResourceManagerName, nullptr);
        resman.Reset();
        store.reset();
        std::filesystem::remove_all(folder);
    }

    std::u16string LastError() {
        CTsHostString text;
        resman->GetLastErrorText(text.Put());
        return std::u16string(text.View());
    }
    static Node Root(ITsResource* resource) {
        Node root;
        EXPECT_EQ(resource->GetRootProperty(root.Put()), S_OK);
        return root;
    }
};

TEST_F(ResourceManagerTest, PluginsFindItByNameAndInterface) {
    CTsComPtr<ITsResourceManager> found;
    EXPECT_EQ(TsGetHostComponent(u"ResMan", ITsResourceManager::kIID, found.PutVoid()),
              TS_E_NOT_FOUND);
    ASSERT_EQ(TsRegisterHostComponent(kTsResourceManagerName, resman.Get()), S_OK);
    ASSERT_EQ(TsGetHostComponent(u"resman", ITsResourceManager::kIID, found.PutVoid()), S_OK);
    EXPECT_EQ(found.Get(), resman.Get());
    CTsComPtr<ITsResource> wrong;
    EXPECT_EQ(TsGetHostComponent(u"ResMan", ITsResource::kIID, wrong.PutVoid()), E_NOINTERFACE);
}

TEST_F(ResourceManagerTest, HandsTreesToEditorsAndGuardsTheirSaves) {
    CTsComPtr<ITsResource> created, mine, theirs, reopened;
    ASSERT_EQ(resman->CreateResource(u"market", u"dlg", tree.Get(), created.Put()), S_OK);
    ASSERT_EQ(resman->OpenResource(u"Market", u"dlg", mine.Put()), S_OK);
    ASSERT_EQ(resman->OpenResource(u"market", u"dlg", theirs.Put()), S_OK);
    CTsHostString name;
    mine->GetName(name.Put());
    EXPECT_EQ(name.View(), u"market.dlg");
    Node root = Root(mine.Get());
    EXPECT_TRUE(ts::PropertyTreesEqual(root.Get(), tree.Get()));
    EXPECT_NE(root.Get(), tree.Get());  // a copy of its own, decoded from the store

    // The editor changes the tree in place and saves, twice: its own version moves on.
    Node count;
    ASSERT_EQ(root->FindChild(TsAddAtom(u"Count"), 0, count.Put()), S_OK);
    count->SetValue(variant(kTsTypeInt, 7));
    ASSERT_EQ(resman->SaveResource(mine.Get()), S_OK);
    ASSERT_EQ(resman->SaveResource(mine.Get()), S_OK);
    ts::ResourceInfo info;
    ASSERT_EQ(resman->GetResourceInfo(u"market", u"dlg", &info), S_OK);
    EXPECT_EQ(info.version, 3);
    ASSERT_EQ(resman->OpenResource(u"market", u"dlg", reopened.Put()), S_OK);
    EXPECT_TRUE(ts::PropertyTreesEqual(Root(reopened.Get()).Get(), root.Get()));

    // The other copy was read at version 1: saving it would lose the change.
    EXPECT_EQ(resman->SaveResource(theirs.Get()), TS_E_VERSION_CONFLICT);
    EXPECT_NE(LastError().find(u"after you opened it"), std::u16string::npos);

    // Another user's check-out holds off saves and check-outs until it is checked in.
    ASSERT_TRUE(store->CheckOut(u"market", u"dlg", u"bob"));
    EXPECT_EQ(resman->SaveResource(mine.Get()), TS_E_LOCKED);
    EXPECT_EQ(LastError(),
              u"The resource \"market\" is checked out by \"bob\" and cannot be edited");
    EXPECT_EQ(resman->CheckOutResource(u"market", u"dlg"), TS_E_LOCKED);
    ASSERT_TRUE(store->CheckIn(u"market", u"dlg", u"bob"));
    ASSERT_EQ(resman->CheckOutResource(u"market", u"dlg"), S_OK);
    ASSERT_EQ(resman->SaveResource(mine.Get()), S_OK);
    ASSERT_EQ(resman->CheckInResource(u"market", u"dlg"), S_OK);
    ASSERT_EQ(resman->PrepareForExternalTool(), S_OK);
}

TEST_F(ResourceManagerTest, RefusalsLeaveTheirReasonAsTheLastError) {
    CTsComPtr<ITsResource> resource;
    ASSERT_EQ(resman->CreateResource(u"market", u"dlg", tree.Get(), resource.Put()), S_OK);
    EXPECT_EQ(resman->CreateResource(u"market", u"dlg", tree.Get(), resource.Put()),
              TS_E_ALREADY_EXISTS);
    // A resource object of some other host cannot be saved here.
    auto foreign = CTsComObject<ts::test::FakeResource>::Create(u"market.dlg");
    foreign->SetRootProperty(tree.Get());
    EXPECT_EQ(resman->SaveResource(foreign.Get()), E_INVALIDARG);

    ASSERT_TRUE(store->CreateResource(u"junk", u"dlg", std::vector<std::uint8_t>{'n', 'o'}, u"b"));
    EXPECT_EQ(resman->OpenResource(u"junk", u"dlg", resource.Put()), TS_E_DAMAGED);
    EXPECT_EQ(LastError(),
              u"The resource \"junk\" (dlg) cannot be read: This is not a resource: "
              u"2 bytes, too short for the header");
    EXPECT_EQ(resman->OpenResource(u"nothing", u"dlg", resource.Put()), TS_E_NOT_FOUND);
    EXPECT_FALSE(resource);
    EXPECT_EQ(LastError(), u"There is no resource \"nothing\" of type \"dlg\" in \"" +
                               ts::Utf8ToUtf16(folder) + u"/m.tsmod\"");
}

TEST_F(ResourceManagerTest, TablesStringsAndStatusRecords) {
    ts::GameTable parms;
    ASSERT_TRUE(ts::GameTable::FromCsv(u"toolset_dlgparms",
                                       "ID,Name,Value\n0,Gold,25\n1,Bribe,lots\n", parms));
    ASSERT_TRUE(store->ImportTable(parms));

    CTsComPtr<ITsTable> table;
    EXPECT_EQ(resman->OpenTable(u"poses", table.Put()), TS_E_NOT_FOUND);
    ASSERT_EQ(resman->OpenTable(u"toolset_dlgparms", table.Put()), S_OK);
    EXPECT_EQ(table->GetRowCount(), 2u);
    std::uint32_t value = 0, name = 0;
    ASSERT_EQ(table->FindColumn(u"value", &value), S_OK);
    ASSERT_EQ(table->FindColumn(u"Name", &name), S_OK);
    std::int32_t number = -5;
    ASSERT_EQ(table->GetInt(0, value, &number), S_OK);
    EXPECT_EQ(number, 25);
    CTsHostString text;
    ASSERT_EQ(table->GetText(1, name, text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"Bribe");
    {
        // Each refusal is reported with the table's own message.
        ts::test::ReportCapture reports;
        number = -5;
        EXPECT_EQ(table->GetInt(1, value, &number), TS_E_DAMAGED);
        EXPECT_EQ(number, -5);
        EXPECT_EQ(table->FindColumn(u"Colour", &value), TS_E_NOT_FOUND);
        EXPECT_EQ(table->GetText(9, 0, text.Put()), E_INVALIDARG);
        EXPECT_EQ(table->GetInt(0, 9, &number), E_INVALIDARG);
        ASSERT_EQ(reports.size(), 4u);
        EXPECT_EQ(reports.entries()[1].message,
                  u"The table \"toolset_dlgparms\" has no column \"Colour\"");
    }

    std::int32_t id = 0;
    ASSERT_EQ(resman->ValidateStringId(-1, &id), S_OK);
    EXPECT_EQ(id, 1);
    EXPECT_EQ(resman->ValidateStringId(40, &id), E_INVALIDARG);
    ASSERT_EQ(resman->SetString(1, 0, u"Hello there."), S_OK);
    ASSERT_EQ(resman->GetString(1, 0, text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"Hello there.");

    // A string without a status record reads as "never sent": S_FALSE and a cleared record.
    ts::VORecordingStatus vo{1, 9, 123.0, true};
    ts::LocalizationStatus loc{1, 9, 123.0, true};
    ASSERT_EQ(resman->GetVORecordingStatus(1, &vo), S_FALSE);
    ASSERT_EQ(resman->GetLocalizationStatus(1, &loc), S_FALSE);
    EXPECT_TRUE(vo.sentForRecordingOn == 0 && !vo.requiresReRecording && vo.stringId == 1);
    EXPECT_TRUE(loc.exportedOn == 0 && !loc.requiresReTranslation && loc.stringId == 1);
    ASSERT_EQ(resman->SetVORecordingStatus({1, 2, 45000.0, false}), S_OK);
    ASSERT_EQ(resman->SetLocalizationStatus({1, 2, 45001.0, true}), S_OK);
    ASSERT_EQ(resman->GetVORecordingStatus(1, &vo), S_OK);
    ASSERT_EQ(resman->GetLocalizationStatus(1, &loc), S_OK);
    EXPECT_EQ(vo.sentForRecordingOn, 45000.0);
    EXPECT_TRUE(loc.exportedOn == 45001.0 && loc.requiresReTranslation);
}

}  // namespace
