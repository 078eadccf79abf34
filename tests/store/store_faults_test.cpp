#include <gtest/gtest.h>

#include <filesystem>

#include "faulty_vfs.h"
#include "support/test_folders.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

std::vector<std::uint8_t> Content(std::uint8_t fill, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(fill + i * 7);
    return bytes;
}

// A save that fails at any write, and every write after it (the disk goes away mid-save), must
// leave the module whole, holding either the old content or (when the save said so) the new.
TEST(StoreFaults, ASaveThatFailsMidWayKeepsTheStoredVersion) {
    ts::test::RegisterFaultyVfs();
    std::string folder = ts::test::MakeTempFolder("ts-faults");
    std::string path = folder + "/m.tsmod";
    auto before = Content(1, 150000), after = Content(2, 180000);

    int failures = 0;
    bool reachedTheEnd = false;
    for (int n = 1; n < 400 && !reachedTheEnd; ++n) {
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
        {
            auto store = ts::OpenSqliteStore(path, {.create = true});
            ASSERT_TRUE(store);
            ASSERT_TRUE(store->CreateResource(u"big", u"dlg", before, u"ann"));
            ASSERT_TRUE(store->CreateResource(u"other", u"dlg", Content(3, 5000), u"ann"));
        }

        ts::StoreResult saved;
        {
            ts::StoreResult opened;
            auto store = ts::OpenSqliteStore(path, {.vfs = "faulty"}, &opened);
            ASSERT_TRUE(store) << U8(opened.message);
            ts::test::Faults() = {n};
            saved = store->SaveResource(u"big", u"dlg", after, 1, u"ann");
            reachedTheEnd = !ts::test::Faults().failed;
            if (!saved) {
                ++failures;
                EXPECT_EQ(saved.status, ts::StoreStatus::Failed) << U8(saved.message);
                EXPECT_NE(saved.message.find(u"Could not save the resource \"big\" (dlg)"),
                          std::u16string::npos);
                // The failed save is not visible in the session that tried it either.
                std::vector<std::uint8_t> content;
                ts::test::Faults() = {};
                ASSERT_TRUE(store->ReadResource(u"big", u"dlg", content));
                EXPECT_EQ(content, before) << "write " << n;
                ts::test::Faults() = {1};  // the disk stays gone while the session closes
            }
        }  // closing may fail to write back too
        ts::test::Faults() = {};

        auto store = ts::OpenSqliteStore(path, {});
        ASSERT_TRUE(store) << "write " << n;
        std::vector<std::u16string> problems;
        ASSERT_TRUE(store->CheckIntegrity(problems));
        EXPECT_TRUE(problems.empty()) << "write " << n << ": " << U8(problems.front());
        std::vector<std::uint8_t> content;
        ts::ResourceInfo info;
        ASSERT_TRUE(store->ReadResource(u"big", u"dlg", content, &info));
        if (saved) {
            EXPECT_EQ(content, after) << "write " << n;
            EXPECT_EQ(info.version, 2);
        } else {
            EXPECT_EQ(content, before) << "write " << n;
            EXPECT_EQ(info.version, 1);
        }
        ASSERT_TRUE(store->ReadResource(u"other", u"dlg", content));
        EXPECT_EQ(content, Content(3, 5000));
    }
    EXPECT_TRUE(reachedTheEnd);
    EXPECT_GT(failures, 10);  // the save really was cut at many points
    std::filesystem::remove_all(folder);
}

}  // namespace
