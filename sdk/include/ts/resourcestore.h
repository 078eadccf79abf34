#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"
#include "ts/gametable.h"

// The module store: a module's resources (encoded property trees by name and type, with their
// version, check-out and lock), its localized strings with their voice-over and translation
// status, its lookup tables and a few module properties. Callers hold a ResourceStore and never
// learn which back end is behind it: one SQLite file per module is the embedded default, and a
// shared database server for a team fits the same interface.
namespace ts {

enum class StoreStatus {
    Ok,
    NotFound,         // no such module, resource, string, status record or table
    AlreadyExists,    // a resource of that name and type exists
    InvalidArgument,  // a name, type or id the store does not accept
    Locked,           // the resource is locked against changes
    CheckedOut,       // the resource is checked out by another user
    VersionConflict,  // someone saved the resource since the caller read it
    Busy,             // another program holds the module; try again
    Damaged,          // the module file is damaged or not a module
    Failed,           // anything else: the disk, the server, the connection
};

// The outcome of a store call: a status and, unless Ok, a message for the user that names the
// module and what could not be done.
struct StoreResult {
    StoreStatus status = StoreStatus::Ok;
    std::u16string message;

    explicit operator bool() const { return status == StoreStatus::Ok; }
    static StoreResult Success() { return {}; }
};

// Versions are 1 for a new resource and one more for every save.
inline constexpr std::int32_t kAnyVersion = -1;

struct ResourceInfo {
    std::u16string name;
    std::u16string type;
    std::int32_t version = 0;
    std::u16string checkedOutBy;  // empty when nobody has it checked out
    bool locked = false;
    std::int64_t size = 0;  // bytes of encoded content
    double modifiedOn = 0;  // a date-time value: days since 30 December 1899, UTC
    std::u16string modifiedBy;
};

struct LocalizedString {
    std::int32_t stringId = -1;
    std::int32_t language = 0;  // a row id of the language table
    std::u16string text;
};

struct VORecordingStatus {
    std::int32_t stringId = -1;
    std::int32_t moduleResRefVersionId = 0;
    double sentForRecordingOn = 0;  // 0: not sent
    bool requiresReRecording = false;
};

struct LocalizationStatus {
    std::int32_t stringId = -1;
    std::int32_t moduleResRefVersionId = 0;
    double exportedOn = 0;  // 0: not exported
    bool requiresReTranslation = false;
};

struct ModuleInfo {
    std::u16string name;
    std::int32_t moduleId = 0;
    std::u16string description;
};

class TS_API ResourceStore {
public:
    virtual ~ResourceStore() = default;

    // Where the module lives, for messages.
    virtual std::u16string Location() const = 0;
    // Opened for reading only (a read-only folder or mount): every change is refused.
    virtual bool ReadOnly() const = 0;

    virtual StoreResult GetModuleInfo(ModuleInfo& info) = 0;
    virtual StoreResult SetModuleInfo(const ModuleInfo& info) = 0;

    // Resources. Names are compared without regard to ASCII case, as the toolset's names are.
    virtual StoreResult CreateResource(std::u16string_view name, std::u16string_view type,
                                       std::span<const std::uint8_t> content,
                                       std::u16string_view user) = 0;
    virtual StoreResult ReadResource(std::u16string_view name, std::u16string_view type,
                                     std::vector<std::uint8_t>& content,
                                     ResourceInfo* info = nullptr) = 0;
    // Replaces the content whole or not at all; the version goes up by one. With a version other
    // than kAnyVersion, the save is refused when the stored version differs (someone else saved).
    // Refused while the resource is locked or checked out by another user.
    virtual StoreResult SaveResource(std::u16string_view name, std::u16string_view type,
                                     std::span<const std::uint8_t> content,
                                     std::int32_t expectedVersion, std::u16string_view user) = 0;
    virtual StoreResult DeleteResource(std::u16string_view name, std::u16string_view type,
                                       std::u16string_view user) = 0;
    virtual StoreResult GetResourceInfo(std::u16string_view name, std::u16string_view type,
                                        ResourceInfo& info) = 0;
    // The resources of one type, or of every type when `type` is empty; by type, then name.
    virtual StoreResult ListResources(std::u16string_view type,
                                      std::vector<ResourceInfo>& list) = 0;
    // Check-out marks a resource as being edited by `user`; others cannot save or check it out
    // until it is checked in. Checking out what one already holds succeeds.
    virtual StoreResult CheckOut(std::u16string_view name, std::u16string_view type,
                                 std::u16string_view user) = 0;
    virtual StoreResult CheckIn(std::u16string_view name, std::u16string_view type,
                                std::u16string_view user) = 0;
    virtual StoreResult SetLocked(std::u16string_view name, std::u16string_view type,
                                  bool locked) = 0;

    // Strings. An id is valid once the store has issued it (or a string was stored under it).
    // Validating keeps a valid id, issues a new one for -1 and fails for any other.
    virtual StoreResult ValidateStringId(std::int32_t current, std::int32_t& valid) = 0;
    virtual StoreResult GetString(std::int32_t stringId, std::int32_t language,
                                  std::u16string& text) = 0;
    // Stores the text, issuing the id when it is new (imported strings carry their ids).
    virtual StoreResult SetString(std::int32_t stringId, std::int32_t language,
                                  std::u16string_view text) = 0;
    virtual StoreResult ListStrings(std::vector<LocalizedString>& list) = 0;

    // Status records by string id; NotFound when the string has none.
    virtual StoreResult GetVORecordingStatus(std::int32_t stringId, VORecordingStatus& status) = 0;
    virtual StoreResult SetVORecordingStatus(const VORecordingStatus& status) = 0;
    virtual StoreResult GetLocalizationStatus(std::int32_t stringId,
                                              LocalizationStatus& status) = 0;
    virtual StoreResult SetLocalizationStatus(const LocalizationStatus& status) = 0;
    virtual StoreResult CountStatusRecords(std::int64_t& voRecording,
                                           std::int64_t& localization) = 0;

    // Tables, replaced whole by an import.
    virtual StoreResult ImportTable(const GameTable& table) = 0;
    virtual StoreResult ReadTable(std::u16string_view name, GameTable& table) = 0;
    virtual StoreResult ListTables(std::vector<std::u16string>& names) = 0;

    // A batch makes several changes one: after Begin, nothing is kept unless Commit succeeds.
    virtual StoreResult BeginBatch() = 0;
    virtual StoreResult CommitBatch() = 0;
    virtual void RollbackBatch() = 0;

    // Makes everything written so far visible to other programs that open the module (before a
    // tool such as VoiceOver is run on it).
    virtual StoreResult Flush() = 0;
    // Checks the store's own structures; `problems` lists what is wrong.
    virtual StoreResult CheckIntegrity(std::vector<std::u16string>& problems) = 0;
};

// Rolls a batch back unless it was committed.
class StoreBatch {
public:
    explicit StoreBatch(ResourceStore& store) : store_(store), result_(store.BeginBatch()) {}
    ~StoreBatch() {
        if (result_ && !committed_) store_.RollbackBatch();
    }
    StoreBatch(const StoreBatch&) = delete;
    StoreBatch& operator=(const StoreBatch&) = delete;

    const StoreResult& Started() const { return result_; }
    StoreResult Commit() {
        if (!result_) return result_;
        committed_ = true;
        return store_.CommitBatch();
    }

private:
    ResourceStore& store_;
    StoreResult result_;
    bool committed_ = false;
};

// The rules for names: resource names are 1 to 128 characters without control characters or
// the path characters / \ : * ? " < > |; types are 1 to 16 letters and digits ("dlg").
TS_API bool IsValidResourceName(std::u16string_view name);
TS_API bool IsValidResourceType(std::u16string_view type);

// The user name stores record for check-outs and saves ($USER, or the account's name).
TS_API std::u16string CurrentUserName();

// The current time as a date-time value (days since 30 December 1899, UTC).
TS_API double CurrentDateTime();

struct SqliteStoreOptions {
    bool create = false;  // make a new module file; fails when the file exists
    bool readOnly = false;
    int busyTimeoutMs = 5000;  // how long to wait for another program that holds the module
    std::string vfs;           // SQLite file-system layer, for tests that inject faults
};

// Opens (or creates) a module file. On failure returns null and says why in `result`.
TS_API std::unique_ptr<ResourceStore> OpenSqliteStore(const std::string& path,
                                                      const SqliteStoreOptions& options,
                                                      StoreResult* result = nullptr);

}  // namespace ts
