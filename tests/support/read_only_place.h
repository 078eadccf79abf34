#pragma once

// An SQLite file layer that behaves as a read-only folder or mount: files open for reading only,
// none can be made or deleted, and no shared-memory file can be made beside a module.
namespace ts::test {

// Registers the layer once and returns its name ("readonlyplace"), for SqliteStoreOptions::vfs.
const char* ReadOnlyPlaceVfs();

// While alive, the read-only layer is SQLite's default, so that code which opens modules its own
// way (the desktop toolset) meets it too.
class ReadOnlyPlaceAsDefault {
public:
    ReadOnlyPlaceAsDefault();
    ~ReadOnlyPlaceAsDefault();
    ReadOnlyPlaceAsDefault(const ReadOnlyPlaceAsDefault&) = delete;
    ReadOnlyPlaceAsDefault& operator=(const ReadOnlyPlaceAsDefault&) = delete;
};

}  // namespace ts::test
