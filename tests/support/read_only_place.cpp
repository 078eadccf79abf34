#include "support/read_only_place.h"

#include <sqlite3.h>

#include <filesystem>

namespace ts::test {

namespace {

namespace fs = std::filesystem;

sqlite3_vfs* gDefault = nullptr;
sqlite3_vfs gReadOnly;
struct Methods {
    sqlite3_io_methods readOnly;  // first, so a file's method pointer leads back to its entry
    const sqlite3_io_methods* real;
};
Methods gMethods[4];

int NoShm(sqlite3_file*, int, int, int, void volatile**) {
    return SQLITE_CANTOPEN;
}
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    if (!name || !fs::exists(name)) return SQLITE_CANTOPEN;
    flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
    int rc = gDefault->xOpen(gDefault, name, file, flags, outFlags);
    if (!file->pMethods) return rc;
    for (Methods& m : gMethods) {
        if (!m.real) {
            m.real = file->pMethods;
            m.readOnly = *m.real;
            m.readOnly.xShmMap = NoShm;
        }
        if (m.real == file->pMethods) {
            file->pMethods = &m.readOnly;
            return rc;
        }
    }
    // More method tables than expected: the file keeps the default layer's own.
    return rc;
}
int Delete(sqlite3_vfs*, const char*, int) {
    return SQLITE_IOERR_DELETE;
}

void Register() {
    if (gDefault) return;
    gDefault = sqlite3_vfs_find(nullptr);
    gReadOnly = *gDefault;
    gReadOnly.zName = "readonlyplace";
    gReadOnly.xOpen = Open;
    gReadOnly.xDelete = Delete;
    sqlite3_vfs_register(&gReadOnly, 0);
}

}  // namespace

const char* ReadOnlyPlaceVfs() {
    Register();
    return gReadOnly.zName;
}

ReadOnlyPlaceAsDefault::ReadOnlyPlaceAsDefault() {
    Register();
    sqlite3_vfs_register(&gReadOnly, 1);
}

ReadOnlyPlaceAsDefault::~ReadOnlyPlaceAsDefault() {
    sqlite3_vfs_register(gDefault, 1);
}

}  // namespace ts::test
