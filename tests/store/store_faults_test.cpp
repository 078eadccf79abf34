// A save cut short by a failing disk must leave the module whole.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cerrno>
#include <filesystem>

#include "support/test_folders.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

// An SQLite file-system layer named "faulty" over the default one. Once armed, the n-th write
// fails with an I/O error, and so does every write and truncation after it, as when a disk is
// pulled out mid-save. Files stay the default layer's own; only two of their methods change.
struct FaultPlan {
    int failWriteAt = -1;  // 1-based; -1 never
    int writes = 0;        // writes seen since the plan was set
    bool failed = false;
    int shmError = 0;  // when set, the shared-memory file cannot grow, with this in errno
} gPlan;

sqlite3_vfs* gDefault = nullptr;
sqlite3_vfs gFaulty;
// The default layer's method tables (databases and journals differ), each with its faulty copy.
struct Methods {
    sqlite3_io_methods faulty;  // first, so a file's method pointer leads back to its entry
    const sqlite3_io_methods* real;
};
Methods gMethods[4];

const sqlite3_io_methods* Real(sqlite3_file* f) {
    return reinterpret_cast<const Methods*>(f->pMethods)->real;
}
int Write(sqlite3_file* f, const void* p, int n, sqlite3_int64 at) {
    if (gPlan.failWriteAt > 0 && (gPlan.failed || ++gPlan.writes == gPlan.failWriteAt)) {
        gPlan.failed = true;
        return SQLITE_IOERR_WRITE;
    }
    return Real(f)->xWrite(f, p, n, at);
}
int Truncate(sqlite3_file* f, sqlite3_int64 size) {
    return gPlan.failed ? SQLITE_IOERR_TRUNCATE : Real(f)->xTruncate(f, size);
}
int ShmMap(sqlite3_file* f, int region, int size, int extend, void volatile** p) {
    if (!gPlan.shmError) return Real(f)->xShmMap(f, region, size, extend, p);
    errno = gPlan.shmError;
    return SQLITE_IOERR_SHMSIZE;
}
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    int rc = gDefault->xOpen(gDefault, name, file, flags, outFlags);
    if (!file->pMethods) return rc;
    for (Methods& m : gMethods) {
        if (!m.real) {
            m.real = file->pMethods;
            m.faulty = *m.real;
            m.faulty.xWrite = Write;
            m.faulty.xTruncate = Truncate;
            if (m.real->xShmMap) m.faulty.xShmMap = ShmMap;
        }
        if (m.real == file->pMethods) {
            file->pMethods = &m.faulty;
            return rc;
        }
    }
    ADD_FAILURE() << (name ? name : "a temporary file")
                  << " escapes the faults: the default layer has too many method tables";
    return rc;
}

void RegisterFaultyVfs() {
    if (gDefault) return;
    gDefault = sqlite3_vfs_find(nullptr);
    gFaulty = *gDefault;
    gFaulty.zName = "faulty";
    gFaulty.xOpen = Open;
    sqlite3_vfs_register(&gFaulty, 0);
}

// Whichever write fails, the module holds either the old content or (when the save said so)
// the new, and the resource beside it is untouched.
TEST(StoreFaults, ASaveThatFailsMidWayKeepsTheStoredVersion) {
    RegisterFaultyVfs();
    std::string folder = ts::test::MakeTempFolder("ts-faults");
    std::string path = folder + "/m.tsmod";
    const std::vector<std::uint8_t> before(150000, 1), after(180000, 2), other(5000, 3);

    int failures = 0;
    bool reachedTheEnd = false;
    for (int n = 1; n < 400 && !reachedTheEnd; ++n) {
        SCOPED_TRACE("write " + std::to_string(n));
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(path + suffix);
        {
            auto store = ts::OpenSqliteStore(path, {.create = true});
            ASSERT_TRUE(store);
            ASSERT_TRUE(store->CreateResource(u"big", u"dlg", before, u"ann"));
            ASSERT_TRUE(store->CreateResource(u"other", u"dlg", other, u"ann"));
        }

        ts::StoreResult saved;
        {
            auto store = ts::OpenSqliteStore(path, {.vfs = "faulty"});
            ASSERT_TRUE(store);
            gPlan = {n};
            saved = store->SaveResource(u"big", u"dlg", after, 1, u"ann");
            reachedTheEnd = !gPlan.failed;
            if (!saved) {
                ++failures;
                EXPECT_EQ(saved.status, ts::StoreStatus::Failed);
                EXPECT_NE(saved.message.find(u"Could not save the resource \"big\" (dlg)"),
                          std::u16string::npos)
                    << ts::Utf16ToUtf8(saved.message);
                // The failed save is not visible in the session that tried it either.
                std::vector<std::uint8_t> content;
                gPlan = {};
                ASSERT_TRUE(store->ReadResource(u"big", u"dlg", content));
                EXPECT_EQ(content, before);
                gPlan = {1};  // the disk stays gone while the session closes
            }
        }
        gPlan = {};

        auto store = ts::OpenSqliteStore(path, {});
        ASSERT_TRUE(store);
        std::vector<std::u16string> problems;
        ASSERT_TRUE(store->CheckIntegrity(problems));
        EXPECT_TRUE(problems.empty()) << ts::Utf16ToUtf8(problems.front());
        std::vector<std::uint8_t> content;
        ts::ResourceInfo info;
        ASSERT_TRUE(store->ReadResource(u"big", u"dlg", content, &info));
        EXPECT_EQ(content, saved ? after : before);
        EXPECT_EQ(info.version, saved ? 2 : 1);
        ASSERT_TRUE(store->ReadResource(u"other", u"dlg", content));
        EXPECT_EQ(content, other);
    }
    EXPECT_TRUE(reachedTheEnd);
    EXPECT_GT(failures, 10);  // the save really was cut at many points
    std::filesystem::remove_all(folder);
}

// A disk without room for the module's shared-memory file is reported as full, not as an
// unnamed I/O error.
TEST(StoreFaults, AFullDiskIsCalledFull) {
    RegisterFaultyVfs();
    std::string folder = ts::test::MakeTempFolder("ts-full");
    std::string path = folder + "/m.tsmod";
    ASSERT_TRUE(ts::OpenSqliteStore(path, {.create = true}));
    for (int error : {ENOSPC, EIO}) {
        gPlan = {};
        gPlan.shmError = error;
        ts::StoreResult result;
        auto store = ts::OpenSqliteStore(path, {.vfs = "faulty"}, &result);
        gPlan = {};
        EXPECT_FALSE(store);
        std::string message = ts::Utf16ToUtf8(result.message);
        EXPECT_EQ(message.find("the disk is full") != std::string::npos, error == ENOSPC)
            << message;
    }
    std::filesystem::remove_all(folder);
}

}  // namespace
