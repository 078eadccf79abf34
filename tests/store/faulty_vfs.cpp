#include "faulty_vfs.h"

#include <sqlite3.h>

namespace ts::test {

namespace {

struct FaultyFile {
    sqlite3_file base;
    sqlite3_file* real;  // the default layer's file, stored right after this one
};

sqlite3_vfs* gDefault = nullptr;
sqlite3_vfs gFaulty;
sqlite3_io_methods gMethods;

sqlite3_file* Real(sqlite3_file* f) {
    return reinterpret_cast<FaultyFile*>(f)->real;
}

int Close(sqlite3_file* f) {
    return Real(f)->pMethods->xClose(Real(f));
}
int Read(sqlite3_file* f, void* p, int n, sqlite3_int64 at) {
    return Real(f)->pMethods->xRead(Real(f), p, n, at);
}
int Write(sqlite3_file* f, const void* p, int n, sqlite3_int64 at) {
    FaultPlan& plan = Faults();
    if (plan.failWriteAt > 0 && (plan.failed || ++plan.writes == plan.failWriteAt)) {
        plan.failed = true;
        return SQLITE_IOERR_WRITE;
    }
    return Real(f)->pMethods->xWrite(Real(f), p, n, at);
}
int Truncate(sqlite3_file* f, sqlite3_int64 size) {
    if (Faults().failed) return SQLITE_IOERR_TRUNCATE;
    return Real(f)->pMethods->xTruncate(Real(f), size);
}
int Sync(sqlite3_file* f, int flags) {
    return Real(f)->pMethods->xSync(Real(f), flags);
}
int FileSize(sqlite3_file* f, sqlite3_int64* size) {
    return Real(f)->pMethods->xFileSize(Real(f), size);
}
int Lock(sqlite3_file* f, int level) {
    return Real(f)->pMethods->xLock(Real(f), level);
}
int Unlock(sqlite3_file* f, int level) {
    return Real(f)->pMethods->xUnlock(Real(f), level);
}
int CheckReservedLock(sqlite3_file* f, int* out) {
    return Real(f)->pMethods->xCheckReservedLock(Real(f), out);
}
int FileControl(sqlite3_file* f, int op, void* arg) {
    return Real(f)->pMethods->xFileControl(Real(f), op, arg);
}
int SectorSize(sqlite3_file* f) {
    return Real(f)->pMethods->xSectorSize(Real(f));
}
int DeviceCharacteristics(sqlite3_file* f) {
    return Real(f)->pMethods->xDeviceCharacteristics(Real(f));
}
int ShmMap(sqlite3_file* f, int page, int size, int extend, void volatile** p) {
    return Real(f)->pMethods->xShmMap(Real(f), page, size, extend, p);
}
int ShmLock(sqlite3_file* f, int offset, int n, int flags) {
    return Real(f)->pMethods->xShmLock(Real(f), offset, n, flags);
}
void ShmBarrier(sqlite3_file* f) {
    Real(f)->pMethods->xShmBarrier(Real(f));
}
int ShmUnmap(sqlite3_file* f, int deleteFlag) {
    return Real(f)->pMethods->xShmUnmap(Real(f), deleteFlag);
}
int Fetch(sqlite3_file* f, sqlite3_int64 at, int n, void** p) {
    return Real(f)->pMethods->xFetch(Real(f), at, n, p);
}
int Unfetch(sqlite3_file* f, sqlite3_int64 at, void* p) {
    return Real(f)->pMethods->xUnfetch(Real(f), at, p);
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    auto* f = reinterpret_cast<FaultyFile*>(file);
    f->real = reinterpret_cast<sqlite3_file*>(f + 1);
    int rc = gDefault->xOpen(gDefault, name, f->real, flags, outFlags);
    f->base.pMethods = f->real->pMethods ? &gMethods : nullptr;
    return rc;
}

}  // namespace

FaultPlan& Faults() {
    static FaultPlan plan;
    return plan;
}

void RegisterFaultyVfs() {
    if (gDefault) return;
    gDefault = sqlite3_vfs_find(nullptr);
    gFaulty = *gDefault;
    gFaulty.zName = "faulty";
    gFaulty.szOsFile = static_cast<int>(sizeof(FaultyFile)) + gDefault->szOsFile;
    gFaulty.xOpen = Open;
    gMethods = sqlite3_io_methods{3,
                                  Close,
                                  Read,
                                  Write,
                                  Truncate,
                                  Sync,
                                  FileSize,
                                  Lock,
                                  Unlock,
                                  CheckReservedLock,
                                  FileControl,
                                  SectorSize,
                                  DeviceCharacteristics,
                                  ShmMap,
                                  ShmLock,
                                  ShmBarrier,
                                  ShmUnmap,
                                  Fetch,
                                  Unfetch};
    sqlite3_vfs_register(&gFaulty, 0);
}

}  // namespace ts::test
