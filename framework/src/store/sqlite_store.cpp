#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "store/sqlite_statement.h"
#include "ts/format.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace ts {

namespace {

using sqlite::Statement;

// "MTS1" marks a toolset module among SQLite files; the user version is the layout below.
constexpr int kApplicationId = 0x4D545331;
constexpr int kSchemaVersion = 1;

constexpr const char* kSchema = R"(
CREATE TABLE module_info(key TEXT PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE resources(
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL COLLATE NOCASE,
    type TEXT NOT NULL COLLATE NOCASE,
    content BLOB NOT NULL,
    version INTEGER NOT NULL,
    checked_out_by TEXT NOT NULL DEFAULT '',
    locked INTEGER NOT NULL DEFAULT 0,
    modified_on REAL NOT NULL,
    modified_by TEXT NOT NULL DEFAULT '',
    UNIQUE(type, name));
CREATE TABLE string_ids(string_id INTEGER PRIMARY KEY);
CREATE TABLE strings(
    string_id INTEGER NOT NULL REFERENCES string_ids,
    language INTEGER NOT NULL,
    text TEXT NOT NULL,
    PRIMARY KEY(string_id, language)) WITHOUT ROWID;
CREATE TABLE vo_recording_status(
    string_id INTEGER PRIMARY KEY REFERENCES string_ids,
    module_resref_version_id INTEGER NOT NULL,
    sent_for_recording_on REAL NOT NULL,
    requires_rerecording INTEGER NOT NULL);
CREATE TABLE localization_status(
    string_id INTEGER PRIMARY KEY REFERENCES string_ids,
    module_resref_version_id INTEGER NOT NULL,
    exported_on REAL NOT NULL,
    requires_retranslation INTEGER NOT NULL);
CREATE TABLE game_tables(name TEXT PRIMARY KEY COLLATE NOCASE, content TEXT NOT NULL);
)";

// What went wrong, in words for the user, from an SQLite result code.
std::u16string Reason(sqlite3* db, int rc) {
    switch (rc & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return u"the module is in use by another program; try again in a moment";
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return u"the module file is damaged";
        case SQLITE_FULL:
            return u"the disk is full";
        case SQLITE_READONLY:
            return u"the module cannot be written (it is read-only)";
        case SQLITE_CANTOPEN:
            return u"the module file cannot be opened";
        case SQLITE_IOERR:
            // Running out of room while growing the log or its shared-memory file comes back as
            // an I/O error; the system's own code tells the two apart.
            if (db && (sqlite3_system_errno(db) == ENOSPC || sqlite3_system_errno(db) == EDQUOT))
                return u"the disk is full";
            return Format(u"the module file could not be read or written (%s)",
                          db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
        default:
            return Utf8ToUtf16(db ? sqlite3_errmsg(db) : sqlite3_errstr(rc));
    }
}

StoreStatus StatusOf(int rc) {
    switch (rc & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return StoreStatus::Busy;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return StoreStatus::Damaged;
        default:
            return StoreStatus::Failed;
    }
}

StoreResult Problem(StoreStatus status, std::u16string message) {
    return {status, std::move(message)};
}

class SqliteStore final : public ResourceStore {
public:
    SqliteStore(sqlite3* db, std::string path, bool readOnly)
        : db_(db), path_(std::move(path)), readOnly_(readOnly) {}
    ~SqliteStore() override { sqlite3_close_v2(db_); }

    std::u16string Location() const override { return Utf8ToUtf16(path_); }
    bool ReadOnly() const override { return readOnly_; }

    StoreResult Open(const SqliteStoreOptions& options) {
        sqlite3_extended_result_codes(db_, 1);
        sqlite3_busy_timeout(db_, options.busyTimeoutMs);
        if (options.create) {
            if (int rc = Exec("PRAGMA journal_mode=WAL"); rc != SQLITE_OK)
                return OpenFailure(rc, u"create");
            if (int rc = Exec(Format(u"PRAGMA application_id=%d; PRAGMA user_version=%d;",
                                     kApplicationId, kSchemaVersion));
                rc != SQLITE_OK)
                return OpenFailure(rc, u"create");
            if (int rc = Exec(std::string("BEGIN;") + kSchema + "COMMIT;"); rc != SQLITE_OK) {
                Exec("ROLLBACK");
                return OpenFailure(rc, u"create");
            }
        } else {
            std::int64_t id = 0, version = 0;
            int rc = QueryInt("PRAGMA application_id", id);
            if (rc == SQLITE_OK) rc = QueryInt("PRAGMA user_version", version);
            if ((rc & 0xFF) == SQLITE_NOTADB || (rc == SQLITE_OK && id != kApplicationId))
                return Problem(StoreStatus::Damaged,
                               Format(u"\"%s\" is not a toolset module", path_));
            if (rc != SQLITE_OK) return OpenFailure(rc, options.readOnly ? u"read" : u"open");
            if (version > kSchemaVersion)
                return Problem(
                    StoreStatus::Failed,
                    Format(u"The module \"%s\" was made by a newer toolset (module format %ld)",
                           path_, version));
            if (!options.readOnly) {
                if (int r = Exec("PRAGMA journal_mode=WAL"); r != SQLITE_OK)
                    return OpenFailure(r, u"open");
            }
        }
        // Every commit reaches the disk before a save reports success.
        if (int rc = Exec("PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON;"); rc != SQLITE_OK)
            return OpenFailure(rc, u"open");
        return StoreResult::Success();
    }

    StoreResult GetModuleInfo(ModuleInfo& info) override {
        Statement q(db_, "SELECT key, value FROM module_info");
        ModuleInfo result;
        int rc;
        while ((rc = q.Step()) == SQLITE_ROW) {
            std::string key = q.Utf8(0);
            if (key == "name")
                result.name = q.Text(1);
            else if (key == "module_id")
                result.moduleId = static_cast<std::int32_t>(q.Int(1));
            else if (key == "description")
                result.description = q.Text(1);
        }
        if (rc != SQLITE_DONE) return Failure(rc, u"Could not read the module's properties");
        info = std::move(result);
        return StoreResult::Success();
    }

    StoreResult SetModuleInfo(const ModuleInfo& info) override {
        return InTransaction(u"Could not change the module's properties", [&]() -> StoreResult {
            const char* sql = "INSERT OR REPLACE INTO module_info(key, value) VALUES(?, ?)";
            if (int rc =
                    Statement(db_, sql).Bind(1, std::string_view("name")).Bind(2, info.name).Run();
                rc != SQLITE_OK)
                return Failure(rc, u"Could not change the module's properties");
            if (int rc = Statement(db_, sql)
                             .Bind(1, std::string_view("module_id"))
                             .Bind(2, info.moduleId)
                             .Run();
                rc != SQLITE_OK)
                return Failure(rc, u"Could not change the module's properties");
            if (int rc = Statement(db_, sql)
                             .Bind(1, std::string_view("description"))
                             .Bind(2, info.description)
                             .Run();
                rc != SQLITE_OK)
                return Failure(rc, u"Could not change the module's properties");
            return StoreResult::Success();
        });
    }

    StoreResult CreateResource(std::u16string_view name, std::u16string_view type,
                               std::span<const std::uint8_t> content,
                               std::u16string_view user) override {
        if (auto bad = CheckKey(name, type); !bad) return bad;
        Statement q(db_,
                    "INSERT INTO resources(name, type, content, version, modified_on, modified_by) "
                    "VALUES(?, ?, ?, 1, ?, ?)");
        int rc = q.Bind(1, name)
                     .Bind(2, type)
                     .Bind(3, content)
                     .Bind(4, CurrentDateTime())
                     .Bind(5, user)
                     .Run();
        if (rc == SQLITE_CONSTRAINT_UNIQUE)
            return Problem(StoreStatus::AlreadyExists,
                           Format(u"A resource \"%ls\" of type \"%ls\" already exists in \"%s\"",
                                  MessageText(name), MessageText(type), path_));
        if (rc != SQLITE_OK)
            return Failure(rc, Format(u"Could not create the resource \"%ls\" (%ls)",
                                      MessageText(name), MessageText(type)));
        return StoreResult::Success();
    }

    StoreResult ReadResource(std::u16string_view name, std::u16string_view type,
                             std::vector<std::uint8_t>& content, ResourceInfo* info) override {
        Statement q(db_,
                    "SELECT content, name, type, version, checked_out_by, locked, length(content), "
                    "modified_on, "
                    "modified_by FROM resources WHERE type = ? AND name = ?");
        int rc = q.Bind(1, type).Bind(2, name).Step();
        if (rc == SQLITE_DONE) return NoSuchResource(name, type);
        if (rc != SQLITE_ROW)
            return Failure(rc, Format(u"Could not read the resource \"%ls\" (%ls)",
                                      MessageText(name), MessageText(type)));
        q.Blob(0, content);
        if (info) ReadInfo(q, 1, *info);
        return StoreResult::Success();
    }

    StoreResult SaveResource(std::u16string_view name, std::u16string_view type,
                             std::span<const std::uint8_t> content, std::int32_t expectedVersion,
                             std::u16string_view user) override {
        std::u16string what = Format(u"Could not save the resource \"%ls\" (%ls)",
                                     MessageText(name), MessageText(type));
        return InTransaction(what, [&]() -> StoreResult {
            ResourceInfo info;
            std::int64_t id;
            if (auto r = FindForChange(name, type, user, id, info); !r) return r;
            if (expectedVersion != kAnyVersion && info.version != expectedVersion)
                return Problem(StoreStatus::VersionConflict,
                               Format(u"The resource \"%ls\" (%ls) was saved by \"%ls\" after you "
                                      u"opened it (it is now at "
                                      u"version %d, yours is version %d); your changes were not "
                                      u"saved over theirs",
                                      MessageText(name), MessageText(type), info.modifiedBy,
                                      info.version, expectedVersion));
            Statement q(db_,
                        "UPDATE resources SET content = ?, version = version + 1, modified_on = ?, "
                        "modified_by = ? "
                        "WHERE id = ?");
            if (int rc =
                    q.Bind(1, content).Bind(2, CurrentDateTime()).Bind(3, user).Bind(4, id).Run();
                rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult DeleteResource(std::u16string_view name, std::u16string_view type,
                               std::u16string_view user) override {
        std::u16string what = Format(u"Could not delete the resource \"%ls\" (%ls)",
                                     MessageText(name), MessageText(type));
        return InTransaction(what, [&]() -> StoreResult {
            ResourceInfo info;
            std::int64_t id;
            if (auto r = FindForChange(name, type, user, id, info); !r) return r;
            if (int rc = Statement(db_, "DELETE FROM resources WHERE id = ?").Bind(1, id).Run();
                rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult GetResourceInfo(std::u16string_view name, std::u16string_view type,
                                ResourceInfo& info) override {
        Statement q(db_,
                    "SELECT name, type, version, checked_out_by, locked, length(content), "
                    "modified_on, modified_by "
                    "FROM resources WHERE type = ? AND name = ?");
        int rc = q.Bind(1, type).Bind(2, name).Step();
        if (rc == SQLITE_DONE) return NoSuchResource(name, type);
        if (rc != SQLITE_ROW)
            return Failure(rc, Format(u"Could not read the resource \"%ls\" (%ls)",
                                      MessageText(name), MessageText(type)));
        ReadInfo(q, 0, info);
        return StoreResult::Success();
    }

    StoreResult ListResources(std::u16string_view type, std::vector<ResourceInfo>& list) override {
        Statement q(db_,
                    "SELECT name, type, version, checked_out_by, locked, length(content), "
                    "modified_on, modified_by "
                    "FROM resources WHERE ?1 = '' OR type = ?1 ORDER BY type, name");
        q.Bind(1, type);
        std::vector<ResourceInfo> result;
        int rc;
        while ((rc = q.Step()) == SQLITE_ROW) ReadInfo(q, 0, result.emplace_back());
        if (rc != SQLITE_DONE) return Failure(rc, u"Could not list the module's resources");
        list = std::move(result);
        return StoreResult::Success();
    }

    StoreResult CheckOut(std::u16string_view name, std::u16string_view type,
                         std::u16string_view user) override {
        std::u16string what = Format(u"Could not check out the resource \"%ls\" (%ls)",
                                     MessageText(name), MessageText(type));
        if (user.empty())
            return Problem(StoreStatus::InvalidArgument, what + u": no user name was given");
        return InTransaction(what, [&]() -> StoreResult {
            ResourceInfo info;
            std::int64_t id;
            if (auto r = FindForChange(name, type, user, id, info); !r) return r;
            Statement q(db_, "UPDATE resources SET checked_out_by = ? WHERE id = ?");
            if (int rc = q.Bind(1, user).Bind(2, id).Run(); rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult CheckIn(std::u16string_view name, std::u16string_view type,
                        std::u16string_view user) override {
        std::u16string what = Format(u"Could not check in the resource \"%ls\" (%ls)",
                                     MessageText(name), MessageText(type));
        return InTransaction(what, [&]() -> StoreResult {
            ResourceInfo info;
            if (auto r = GetResourceInfo(name, type, info); !r) return r;
            if (!info.checkedOutBy.empty() && info.checkedOutBy != user)
                return Problem(
                    StoreStatus::CheckedOut,
                    Format(u"The resource \"%ls\" is checked out by \"%ls\", not by \"%ls\"", name,
                           info.checkedOutBy, user));
            Statement q(db_,
                        "UPDATE resources SET checked_out_by = '' WHERE type = ? AND name = ?");
            if (int rc = q.Bind(1, type).Bind(2, name).Run(); rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult SetLocked(std::u16string_view name, std::u16string_view type,
                          bool locked) override {
        Statement q(db_, "UPDATE resources SET locked = ? WHERE type = ? AND name = ?");
        int rc = q.Bind(1, locked ? 1 : 0).Bind(2, type).Bind(3, name).Run();
        if (rc != SQLITE_OK)
            return Failure(rc, Format(u"Could not lock the resource \"%ls\" (%ls)",
                                      MessageText(name), MessageText(type)));
        if (sqlite3_changes(db_) == 0) return NoSuchResource(name, type);
        return StoreResult::Success();
    }

    StoreResult ValidateStringId(std::int32_t current, std::int32_t& valid) override {
        if (current == -1) {
            return InTransaction(u"Could not issue a new string id", [&]() -> StoreResult {
                std::int64_t last = 0;
                if (int rc = QueryInt("SELECT COALESCE(MAX(string_id), 0) FROM string_ids", last);
                    rc != SQLITE_OK)
                    return Failure(rc, u"Could not issue a new string id");
                if (last >= INT32_MAX)
                    return Problem(StoreStatus::Failed,
                                   u"Could not issue a new string id: every id is used");
                if (int rc = Statement(db_, "INSERT INTO string_ids(string_id) VALUES(?)")
                                 .Bind(1, last + 1)
                                 .Run();
                    rc != SQLITE_OK)
                    return Failure(rc, u"Could not issue a new string id");
                valid = static_cast<std::int32_t>(last + 1);
                return StoreResult::Success();
            });
        }
        std::int64_t known = 0;
        if (current >= 0) {
            Statement q(db_, "SELECT COUNT(*) FROM string_ids WHERE string_id = ?");
            int rc = q.Bind(1, current).Step();
            if (rc != SQLITE_ROW)
                return Failure(rc, Format(u"Could not validate the string id %d", current));
            known = q.Int(0);
        }
        if (!known)
            return Problem(
                StoreStatus::InvalidArgument,
                Format(u"The string id %d is not known to the module \"%s\"", current, path_));
        valid = current;
        return StoreResult::Success();
    }

    StoreResult GetString(std::int32_t stringId, std::int32_t language,
                          std::u16string& text) override {
        Statement q(db_, "SELECT text FROM strings WHERE string_id = ? AND language = ?");
        int rc = q.Bind(1, stringId).Bind(2, language).Step();
        if (rc == SQLITE_DONE)
            return Problem(StoreStatus::NotFound,
                           Format(u"The string %d has no text in language %d", stringId, language));
        if (rc != SQLITE_ROW) return Failure(rc, Format(u"Could not read the string %d", stringId));
        text = q.Text(0);
        return StoreResult::Success();
    }

    StoreResult SetString(std::int32_t stringId, std::int32_t language,
                          std::u16string_view text) override {
        std::u16string what = Format(u"Could not store the string %d", stringId);
        if (stringId < 0)
            return Problem(StoreStatus::InvalidArgument, what + u": string ids are not negative");
        return InTransaction(what, [&]() -> StoreResult {
            if (int rc = Statement(db_, "INSERT OR IGNORE INTO string_ids(string_id) VALUES(?)")
                             .Bind(1, stringId)
                             .Run();
                rc != SQLITE_OK)
                return Failure(rc, what);
            Statement q(
                db_, "INSERT OR REPLACE INTO strings(string_id, language, text) VALUES(?, ?, ?)");
            if (int rc = q.Bind(1, stringId).Bind(2, language).Bind(3, text).Run(); rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult ListStrings(std::vector<LocalizedString>& list) override {
        Statement q(db_,
                    "SELECT string_id, language, text FROM strings ORDER BY string_id, language");
        std::vector<LocalizedString> result;
        int rc;
        while ((rc = q.Step()) == SQLITE_ROW)
            result.push_back({static_cast<std::int32_t>(q.Int(0)),
                              static_cast<std::int32_t>(q.Int(1)), q.Text(2)});
        if (rc != SQLITE_DONE) return Failure(rc, u"Could not list the module's strings");
        list = std::move(result);
        return StoreResult::Success();
    }

    StoreResult GetVORecordingStatus(std::int32_t stringId, VORecordingStatus& status) override {
        Statement q(db_,
                    "SELECT module_resref_version_id, sent_for_recording_on, requires_rerecording "
                    "FROM vo_recording_status WHERE string_id = ?");
        int rc = q.Bind(1, stringId).Step();
        if (rc == SQLITE_DONE)
            return Problem(StoreStatus::NotFound,
                           Format(u"The string %d has no voice-over recording status", stringId));
        if (rc != SQLITE_ROW)
            return Failure(rc,
                           Format(u"Could not read the voice-over status of string %d", stringId));
        status = {stringId, static_cast<std::int32_t>(q.Int(0)), q.Double(1), q.Int(2) != 0};
        return StoreResult::Success();
    }

    StoreResult SetVORecordingStatus(const VORecordingStatus& s) override {
        Statement q(
            db_,
            "INSERT OR REPLACE INTO vo_recording_status(string_id, module_resref_version_id, "
            "sent_for_recording_on, requires_rerecording) VALUES(?, ?, ?, ?)");
        int rc = q.Bind(1, s.stringId)
                     .Bind(2, s.moduleResRefVersionId)
                     .Bind(3, s.sentForRecordingOn)
                     .Bind(4, s.requiresReRecording ? 1 : 0)
                     .Run();
        return StatusWritten(rc, s.stringId, u"voice-over recording");
    }

    StoreResult GetLocalizationStatus(std::int32_t stringId, LocalizationStatus& status) override {
        Statement q(db_,
                    "SELECT module_resref_version_id, exported_on, requires_retranslation "
                    "FROM localization_status WHERE string_id = ?");
        int rc = q.Bind(1, stringId).Step();
        if (rc == SQLITE_DONE)
            return Problem(StoreStatus::NotFound,
                           Format(u"The string %d has no localization status", stringId));
        if (rc != SQLITE_ROW)
            return Failure(
                rc, Format(u"Could not read the localization status of string %d", stringId));
        status = {stringId, static_cast<std::int32_t>(q.Int(0)), q.Double(1), q.Int(2) != 0};
        return StoreResult::Success();
    }

    StoreResult SetLocalizationStatus(const LocalizationStatus& s) override {
        Statement q(db_,
                    "INSERT OR REPLACE INTO localization_status(string_id, "
                    "module_resref_version_id, exported_on, "
                    "requires_retranslation) VALUES(?, ?, ?, ?)");
        int rc = q.Bind(1, s.stringId)
                     .Bind(2, s.moduleResRefVersionId)
                     .Bind(3, s.exportedOn)
                     .Bind(4, s.requiresReTranslation ? 1 : 0)
                     .Run();
        return StatusWritten(rc, s.stringId, u"localization");
    }

    StoreResult CountStatusRecords(std::int64_t& voRecording, std::int64_t& localization) override {
        int rc = QueryInt("SELECT COUNT(*) FROM vo_recording_status", voRecording);
        if (rc == SQLITE_OK)
            rc = QueryInt("SELECT COUNT(*) FROM localization_status", localization);
        return rc == SQLITE_OK ? StoreResult::Success()
                               : Failure(rc, u"Could not count the status records");
    }

    StoreResult ImportTable(const GameTable& table) override {
        std::u16string what =
            Format(u"Could not import the table \"%ls\"", MessageText(table.Name()));
        if (!IsValidTableName(table.Name()))
            return Problem(StoreStatus::InvalidArgument, what + u": the name is not valid");
        return InTransaction(what, [&]() -> StoreResult {
            // Deleting first lets a table be renamed in case only.
            if (int rc = Statement(db_, "DELETE FROM game_tables WHERE name = ?")
                             .Bind(1, table.Name())
                             .Run();
                rc != SQLITE_OK)
                return Failure(rc, what);
            Statement q(db_, "INSERT INTO game_tables(name, content) VALUES(?, ?)");
            if (int rc = q.Bind(1, table.Name()).Bind(2, std::string_view(table.ToCsv())).Run();
                rc != SQLITE_OK)
                return Failure(rc, what);
            return StoreResult::Success();
        });
    }

    StoreResult ReadTable(std::u16string_view name, GameTable& table) override {
        Statement q(db_, "SELECT name, content FROM game_tables WHERE name = ?");
        int rc = q.Bind(1, name).Step();
        if (rc == SQLITE_DONE)
            return Problem(StoreStatus::NotFound, Format(u"The module \"%s\" has no table \"%ls\"",
                                                         path_, MessageText(name)));
        if (rc != SQLITE_ROW)
            return Failure(rc, Format(u"Could not read the table \"%ls\"", MessageText(name)));
        std::u16string error;
        if (!GameTable::FromCsv(q.Text(0), q.Utf8(1), table, &error))
            return Problem(
                StoreStatus::Damaged,
                Format(u"The table \"%ls\" in \"%s\" is damaged: %ls", name, path_, error));
        return StoreResult::Success();
    }

    StoreResult ListTables(std::vector<std::u16string>& names) override {
        Statement q(db_, "SELECT name FROM game_tables ORDER BY name");
        std::vector<std::u16string> result;
        int rc;
        while ((rc = q.Step()) == SQLITE_ROW) result.push_back(q.Text(0));
        if (rc != SQLITE_DONE) return Failure(rc, u"Could not list the module's tables");
        names = std::move(result);
        return StoreResult::Success();
    }

    StoreResult BeginBatch() override {
        if (!sqlite3_get_autocommit(db_))
            return Problem(StoreStatus::InvalidArgument, u"A batch of changes is already open");
        int rc = Exec("BEGIN IMMEDIATE");
        return rc == SQLITE_OK ? StoreResult::Success()
                               : Failure(rc, u"Could not start a batch of changes");
    }

    StoreResult CommitBatch() override {
        int rc = Exec("COMMIT");
        if (rc == SQLITE_OK) return StoreResult::Success();
        RollbackBatch();
        return Failure(rc, u"Could not keep the batch of changes");
    }

    void RollbackBatch() override {
        if (!sqlite3_get_autocommit(db_)) Exec("ROLLBACK");
    }

    StoreResult Flush() override {
        Statement q(db_, "PRAGMA wal_checkpoint(TRUNCATE)");
        int rc = q.Step();
        if (rc == SQLITE_ROW && q.Int(0) != 0)
            rc = SQLITE_BUSY;  // another program still reads part of the log
        if (rc == SQLITE_ROW) return StoreResult::Success();
        return Failure(rc, u"Could not write the module out");
    }

    StoreResult CheckIntegrity(std::vector<std::u16string>& problems) override {
        problems.clear();
        Statement q(db_, "PRAGMA integrity_check");
        int rc;
        while ((rc = q.Step()) == SQLITE_ROW) {
            std::u16string line = q.Text(0);
            if (line != u"ok") problems.push_back(line);
        }
        if (rc != SQLITE_DONE) {
            problems.push_back(Reason(db_, rc));
            return Failure(rc, u"Could not check the module");
        }
        Statement fk(db_, "PRAGMA foreign_key_check");
        while ((rc = fk.Step()) == SQLITE_ROW)
            problems.push_back(
                Format(u"a row of %ls refers to a string id that was never issued", fk.Text(0)));
        if (rc != SQLITE_DONE) return Failure(rc, u"Could not check the module");
        return StoreResult::Success();
    }

private:
    int Exec(const std::string& sql) {
        return sqlite3_exec(db_, sql.c_str(), nullptr, nullptr, nullptr);
    }
    int Exec(const std::u16string& sql) { return Exec(Utf16ToUtf8(sql)); }
    int Exec(const char* sql) { return sqlite3_exec(db_, sql, nullptr, nullptr, nullptr); }

    int QueryInt(const char* sql, std::int64_t& out) {
        Statement q(db_, sql);
        int rc = q.Step();
        if (rc != SQLITE_ROW) return rc == SQLITE_DONE ? SQLITE_ERROR : rc;
        out = q.Int(0);
        return SQLITE_OK;
    }

    StoreResult OpenFailure(int rc, const char16_t* verb) {
        return Problem(StatusOf(rc), Format(u"Could not %ls the module \"%s\": %ls", verb, path_,
                                            Reason(db_, rc)));
    }

    StoreResult Failure(int rc, const std::u16string& what) {
        return Problem(StatusOf(rc), Format(u"%ls in \"%s\": %ls", what, path_, Reason(db_, rc)));
    }

    StoreResult NoSuchResource(std::u16string_view name, std::u16string_view type) {
        return Problem(StoreStatus::NotFound,
                       Format(u"There is no resource \"%ls\" of type \"%ls\" in \"%s\"",
                              MessageText(name), MessageText(type), path_));
    }

    StoreResult CheckKey(std::u16string_view name, std::u16string_view type) {
        if (!IsValidResourceName(name))
            return Problem(StoreStatus::InvalidArgument,
                           Format(u"\"%ls\" is not a valid resource name (1 to 128 characters, "
                                  u"none of / \\ : * ? \" < > | "
                                  u"and no control characters)",
                                  MessageText(name)));
        if (!IsValidResourceType(type))
            return Problem(
                StoreStatus::InvalidArgument,
                Format(u"\"%ls\" is not a valid resource type (1 to 16 letters and digits)",
                       MessageText(type)));
        return StoreResult::Success();
    }

    static void ReadInfo(const Statement& q, int first, ResourceInfo& info) {
        info.name = q.Text(first);
        info.type = q.Text(first + 1);
        info.version = static_cast<std::int32_t>(q.Int(first + 2));
        info.checkedOutBy = q.Text(first + 3);
        info.locked = q.Int(first + 4) != 0;
        info.size = q.Int(first + 5);
        info.modifiedOn = q.Double(first + 6);
        info.modifiedBy = q.Text(first + 7);
    }

    // The resource, when `user` may change it: it is neither locked nor checked out by another.
    StoreResult FindForChange(std::u16string_view name, std::u16string_view type,
                              std::u16string_view user, std::int64_t& id, ResourceInfo& info) {
        Statement q(db_,
                    "SELECT id, name, type, version, checked_out_by, locked, length(content), "
                    "modified_on, modified_by "
                    "FROM resources WHERE type = ? AND name = ?");
        int rc = q.Bind(1, type).Bind(2, name).Step();
        if (rc == SQLITE_DONE) return NoSuchResource(name, type);
        if (rc != SQLITE_ROW)
            return Failure(rc, Format(u"Could not read the resource \"%ls\" (%ls)",
                                      MessageText(name), MessageText(type)));
        id = q.Int(0);
        ReadInfo(q, 1, info);
        if (info.locked)
            return Problem(
                StoreStatus::Locked,
                Format(u"The resource \"%ls\" is locked and cannot be edited", info.name));
        if (!info.checkedOutBy.empty() && info.checkedOutBy != user)
            return Problem(
                StoreStatus::CheckedOut,
                Format(u"The resource \"%ls\" is checked out by \"%ls\" and cannot be edited",
                       info.name, info.checkedOutBy));
        return StoreResult::Success();
    }

    StoreResult StatusWritten(int rc, std::int32_t stringId, const char16_t* kind) {
        if ((rc & 0xFF) == SQLITE_CONSTRAINT)
            return Problem(StoreStatus::InvalidArgument,
                           Format(u"Could not store the %ls status of string %d: the module has no "
                                  u"such string id",
                                  kind, stringId));
        if (rc != SQLITE_OK)
            return Failure(rc,
                           Format(u"Could not store the %ls status of string %d", kind, stringId));
        return StoreResult::Success();
    }

    // Runs `body` as one transaction, or as a savepoint inside an open batch, so that a failure
    // part-way leaves nothing of it behind.
    template <class Body>
    StoreResult InTransaction(const std::u16string& what, Body body) {
        bool nested = !sqlite3_get_autocommit(db_);
        if (int rc = Exec(nested ? "SAVEPOINT step" : "BEGIN IMMEDIATE"); rc != SQLITE_OK)
            return Failure(rc, what);
        StoreResult result = body();
        if (result) {
            int rc = Exec(nested ? "RELEASE step" : "COMMIT");
            if (rc == SQLITE_OK) return result;
            result = Failure(rc, what);
        }
        if (nested)
            Exec("ROLLBACK TO step; RELEASE step");
        else if (!sqlite3_get_autocommit(db_))
            Exec("ROLLBACK");
        return result;
    }

    sqlite3* db_;
    std::string path_;
    bool readOnly_;
};

// Whether the module file and its folder (where its log files go) may be written.
bool CanWriteBeside(const std::string& path) {
    std::error_code ec;
    std::filesystem::path folder = std::filesystem::absolute(path, ec).parent_path();
    return (!std::filesystem::exists(path, ec) || ::access(path.c_str(), W_OK) == 0) &&
           ::access(folder.c_str(), W_OK) == 0;
}

// "file:" URI of a path, for SQLite's URI parameters: absolute, and with the characters that end
// or escape a URI's path percent-encoded.
std::string FileUri(const std::string& path) {
    std::error_code ec;
    std::string absolute = std::filesystem::absolute(path, ec).string();
    if (ec) absolute = path;
    std::string uri = "file:";
    for (char c : absolute) {
        if (c == '%' || c == '?' || c == '#') {
            uri += '%';
            uri += "0123456789ABCDEF"[(static_cast<unsigned char>(c) >> 4) & 0xF];
            uri += "0123456789ABCDEF"[static_cast<unsigned char>(c) & 0xF];
        } else {
            uri += c;
        }
    }
    return uri;
}

// Opens one connection to the module and checks it is one. `immutable` reads the module file
// as a file that nothing changes, without locks or the shared-memory file.
std::unique_ptr<SqliteStore> Connect(const std::string& path, const SqliteStoreOptions& options,
                                     bool immutable, StoreResult& result) {
    int flags = options.readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (options.create) flags |= SQLITE_OPEN_CREATE;
    std::string name = path;
    if (immutable) {
        flags |= SQLITE_OPEN_URI;
        name = FileUri(path) + "?immutable=1";
    }
    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(name.c_str(), &db, flags,
                             options.vfs.empty() ? nullptr : options.vfs.c_str());
    if (rc != SQLITE_OK) {
        std::u16string reason = Reason(db, rc);
        sqlite3_close_v2(db);
        result = {StatusOf(rc), Format(u"Could not %ls the module \"%s\": %ls",
                                       options.readOnly ? u"read" : u"open", path, reason)};
        return nullptr;
    }
    auto store = std::make_unique<SqliteStore>(db, path, options.readOnly);
    result = store->Open(options);
    if (!result) return nullptr;
    return store;
}

}  // namespace

bool IsValidResourceName(std::u16string_view name) {
    if (name.empty() || name.size() > 128) return false;
    for (char16_t c : name)
        if (c < 0x20 || c == 0x7F ||
            std::u16string_view(u"/\\:*?\"<>|").find(c) != std::u16string_view::npos)
            return false;
    return true;
}

bool IsValidResourceType(std::u16string_view type) {
    if (type.empty() || type.size() > 16) return false;
    for (char16_t c : type)
        if (!((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9')))
            return false;
    return true;
}

std::unique_ptr<ResourceStore> OpenSqliteStore(const std::string& path,
                                               const SqliteStoreOptions& options,
                                               StoreResult* result) {
    auto fail = [&](StoreStatus status, std::u16string message) -> std::unique_ptr<ResourceStore> {
        if (result) *result = {status, std::move(message)};
        return nullptr;
    };
    std::error_code ec;
    bool exists = std::filesystem::exists(path, ec);
    if (options.create && exists)
        return fail(StoreStatus::AlreadyExists,
                    Format(u"The module file \"%s\" already exists", path));
    if (!options.create && !exists)
        return fail(StoreStatus::NotFound, Format(u"The module file \"%s\" does not exist", path));
    if (exists && std::filesystem::is_directory(path, ec))
        return fail(StoreStatus::InvalidArgument,
                    Format(u"\"%s\" is a folder, not a module file", path));

    StoreResult opened;
    auto store = Connect(path, options, false, opened);
    // A module in write-ahead-log mode is read through a shared-memory file beside it, which a
    // read-only folder or mount cannot hold. While its log is empty the module file alone holds
    // every change, and it is read as a file that nothing changes.
    if (!store && options.readOnly && opened.status == StoreStatus::Failed) {
        std::uintmax_t log = std::filesystem::file_size(path + "-wal", ec);
        if (ec || log == 0)
            store = Connect(path, options, true, opened);
        else
            opened.message = Format(
                u"Could not read the module \"%s\": its log file holds changes that can only be "
                u"read where the module's folder can be written; open the module once there to "
                u"fold them in",
                path);
    }
    if (!store && !options.readOnly && opened.status == StoreStatus::Failed &&
        !CanWriteBeside(path))
        opened.message = Format(
            u"Could not open the module \"%s\" for changes: the module file or its folder is "
            u"read-only",
            path);
    if (!store) {
        if (options.create) {  // no half-made module left behind
            for (const char* suffix : {"", "-wal", "-shm"})
                std::filesystem::remove(path + suffix, ec);
        }
        return fail(opened.status, opened.message);
    }
    if (result) *result = StoreResult::Success();
    return store;
}

}  // namespace ts
