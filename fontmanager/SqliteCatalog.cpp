#include "fontmanager/SqliteCatalog.h"

#include "foundation/Logger.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace Vellumine {

namespace {

std::filesystem::path ensureFolder(const std::filesystem::path& file) {
    std::filesystem::create_directories(file.parent_path());
    return file;
}

// A new catalog: schema 2, then what schema 3 adds (below).
const char* const schema = R"(
CREATE TABLE faces (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    path TEXT NOT NULL,
    face_index INTEGER NOT NULL,
    ps_name TEXT NOT NULL,
    family TEXT NOT NULL,
    style TEXT NOT NULL,
    type TEXT NOT NULL,
    metrics_path TEXT NOT NULL DEFAULT '',
    added_at INTEGER NOT NULL,
    UNIQUE (path, face_index)
);
CREATE INDEX faces_by_ps_name ON faces (ps_name);
CREATE INDEX faces_by_family ON faces (family COLLATE NOCASE);
CREATE TABLE links (
    face_id INTEGER PRIMARY KEY REFERENCES faces (id) ON DELETE CASCADE,
    link_path TEXT NOT NULL,
    target_path TEXT NOT NULL,
    metrics_link_path TEXT NOT NULL DEFAULT '',
    metrics_target_path TEXT NOT NULL DEFAULT '',
    auto_for TEXT
);
CREATE INDEX links_by_path ON links (link_path);
CREATE TABLE settings (
    name TEXT PRIMARY KEY,
    value TEXT NOT NULL
);
CREATE TABLE targets (
    signature TEXT PRIMARY KEY,
    event_class TEXT NOT NULL,
    last_seen INTEGER NOT NULL
);
CREATE TABLE changes (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    kind TEXT NOT NULL,
    at INTEGER NOT NULL
);
CREATE TABLE windowless_requests (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    kind TEXT NOT NULL,
    at INTEGER NOT NULL,
    application TEXT NOT NULL,
    ps_name TEXT NOT NULL,
    container_id TEXT NOT NULL,
    type TEXT NOT NULL
);
)";

// From schema 1: automatic activations and settings.
const char* const schema1to2 = R"(
ALTER TABLE links ADD COLUMN auto_for TEXT;
CREATE TABLE settings (
    name TEXT PRIMARY KEY,
    value TEXT NOT NULL
);
)";

// From schema 2 (and part of a new catalog): sets of faces, and the applications that asked
// for a face activated automatically besides the one it was activated for.
const char* const schema2to3 = R"(
CREATE TABLE sets (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT NOT NULL UNIQUE
);
CREATE TABLE set_faces (
    set_id INTEGER NOT NULL REFERENCES sets (id) ON DELETE CASCADE,
    face_id INTEGER NOT NULL REFERENCES faces (id) ON DELETE CASCADE,
    PRIMARY KEY (set_id, face_id)
);
CREATE TABLE requesters (
    face_id INTEGER NOT NULL REFERENCES faces (id) ON DELETE CASCADE,
    application TEXT NOT NULL,
    PRIMARY KEY (face_id, application)
);
)";

// From schema 3: the font file's stamp when its face was added.
const char* const schema3to4 = R"(
ALTER TABLE faces ADD COLUMN file_stamp TEXT NOT NULL DEFAULT '';
)";

constexpr int busyAttempts = 5;

const char* const faceColumns =
    "SELECT f.id, f.path, f.face_index, f.ps_name, f.family, f.style, f.type, f.metrics_path, "
    "l.face_id IS NOT NULL, f.file_stamp FROM faces f LEFT JOIN links l ON l.face_id = f.id ";

std::string faceQuery(const char* tail) {
    return std::string(faceColumns) + tail;
}

std::int64_t now() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

} // namespace

SqliteCatalog::SqliteCatalog(const std::filesystem::path& file, Access access,
                             BusyReporter busyReporter)
    : db(access == Access::readWrite ? ensureFolder(file) : file, access),
      busyReporter(std::move(busyReporter)) {
    if (access == Access::readOnly) {
        const std::int64_t version = db.prepare("PRAGMA user_version").singleInteger();
        if (version != schemaVersion) {
            throw SqliteError(db.description() + " has schema " + std::to_string(version) +
                              ", this vellumine reads " + std::to_string(schemaVersion) +
                              ", and it cannot be upgraded: it is read-only");
        }
        return;
    }
    // WAL lets `vellumine list` read while the server writes. The mode cannot change inside
    // a transaction, and a new catalog's first opener may hold the lock meanwhile.
    retrying([this] { db.execute("PRAGMA journal_mode = WAL"); });
    // Only an old or new catalog needs the write lock (most opens find the schema current).
    if (db.prepare("PRAGMA user_version").singleInteger() != schemaVersion) {
        write([this] { migrate(); });
    }
    db.execute("PRAGMA synchronous = NORMAL");
    db.execute("PRAGMA foreign_keys = ON");
}

std::unique_ptr<SqliteCatalog> SqliteCatalog::openForReading(const std::filesystem::path& file) {
    std::error_code error;
    if (std::filesystem::exists(file, error)) {
        try {
            return std::make_unique<SqliteCatalog>(file);
        } catch (const SqliteBusy&) {
            throw;
        } catch (const std::exception& failure) {
            Logger::log("vellumine-catalog",
                        std::string(failure.what()) + "; reading it read-only instead");
            return std::make_unique<SqliteCatalog>(file, Access::readOnly);
        }
    }
    return std::make_unique<SqliteCatalog>(file);
}

void SqliteCatalog::write(const std::function<void()>& work) {
    retrying([&] {
        SqliteTransaction transaction(db);
        work();
        transaction.commit();
    });
}

void SqliteCatalog::read(const std::function<void()>& work) {
    SqliteTransaction snapshot(db, SqliteTransaction::Mode::read);
    work();
    snapshot.commit();
}

std::vector<std::string> SqliteCatalog::integrityProblems() {
    SqliteStatement& integrity = db.prepare("PRAGMA quick_check");
    std::vector<std::string> problems;
    while (integrity.step()) {
        if (integrity.text(0) != "ok") {
            problems.push_back("SQLite: " + integrity.text(0));
        }
    }
    return problems;
}

void SqliteCatalog::retrying(const std::function<void()>& work) {
    for (int attempt = 1;; ++attempt) {
        try {
            work();
            return;
        } catch (const SqliteBusy& busy) {
            if (attempt == busyAttempts || db.inTransaction()) {
                throw; // an enclosing transaction decides for itself
            }
            const std::string message = std::string(busy.what()) + "; trying again";
            Logger::log("vellumine-catalog", message);
            if (busyReporter) {
                busyReporter(message);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50 * attempt));
        }
    }
}

// Runs inside the write transaction, so that two processes opening a new catalog at once
// cannot both create the schema: the second sees the first one's version and does nothing.
void SqliteCatalog::migrate() {
    const std::int64_t current = db.prepare("PRAGMA user_version").singleInteger();
    if (current == schemaVersion) {
        return;
    }
    if (current > schemaVersion) {
        throw SqliteError(db.description() + " was written by a newer vellumine (schema " +
                          std::to_string(current) + ")");
    }
    if (current == 0) {
        db.execute(schema);
    } else if (current == 1) {
        db.execute(schema1to2);
    }
    if (current < 3) {
        db.execute(schema2to3);
    }
    db.execute(schema3to4);
    db.execute("PRAGMA user_version = " + std::to_string(schemaVersion));
}

AddedFace SqliteCatalog::addFace(const std::filesystem::path& file,
                                 const std::filesystem::path& metricsFile,
                                 const FaceDescription& face) {
    const std::int64_t id =
        db.prepare("SELECT coalesce(max(id), 0) FROM faces WHERE path = ? AND face_index = ?")
            .bind(1, file.string())
            .bind(2, static_cast<std::int64_t>(face.faceIndex))
            .singleInteger();
    if (id != 0) {
        db.prepare("UPDATE faces SET ps_name = ?, family = ?, style = ?, type = ?, "
                   "metrics_path = ?, file_stamp = ? WHERE id = ?")
            .bind(1, face.postScriptName)
            .bind(2, face.family)
            .bind(3, face.style)
            .bind(4, wireText(face.type))
            .bind(5, metricsFile.string())
            .bind(6, face.fileStamp)
            .bind(7, id)
            .run();
        return {id, false};
    }
    db.prepare("INSERT INTO faces (path, face_index, ps_name, family, style, type, metrics_path, "
               "added_at, file_stamp) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
        .bind(1, file.string())
        .bind(2, static_cast<std::int64_t>(face.faceIndex))
        .bind(3, face.postScriptName)
        .bind(4, face.family)
        .bind(5, face.style)
        .bind(6, wireText(face.type))
        .bind(7, metricsFile.string())
        .bind(8, now())
        .bind(9, face.fileStamp)
        .run();
    return {db.lastInsertedRow(), true};
}

std::vector<FaceRecord> SqliteCatalog::faces(SqliteStatement& statement) {
    std::vector<FaceRecord> records;
    while (statement.step()) {
        const auto type = faceTypeFromWireText(statement.text(6));
        if (!type) {
            continue; // see facesOfUnknownType()
        }
        FaceRecord record;
        record.type = *type;
        record.id = statement.integer(0);
        record.file = statement.text(1);
        record.faceIndex = static_cast<long>(statement.integer(2));
        record.postScriptName = statement.text(3);
        record.family = statement.text(4);
        record.style = statement.text(5);
        record.metricsFile = statement.text(7);
        record.active = statement.integer(8) != 0;
        record.fileStamp = statement.text(9);
        records.push_back(std::move(record));
    }
    return records;
}

std::optional<FaceRecord> SqliteCatalog::face(std::int64_t id) {
    static const std::string query = faceQuery("WHERE f.id = ?");
    auto found = faces(db.prepare(query).bind(1, id));
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<FaceRecord> SqliteCatalog::facesByPostScriptName(const std::string& name) {
    static const std::string query = faceQuery("WHERE f.ps_name = ? ORDER BY f.id");
    return faces(db.prepare(query).bind(1, name));
}

std::vector<FaceRecord> SqliteCatalog::facesByFamily(const std::string& family) {
    static const std::string query = faceQuery("WHERE f.family = ? COLLATE NOCASE ORDER BY f.id");
    return faces(db.prepare(query).bind(1, family));
}

std::vector<FaceRecord> SqliteCatalog::facesOfFile(const std::filesystem::path& file) {
    static const std::string query = faceQuery("WHERE f.path = ? ORDER BY f.face_index");
    return faces(db.prepare(query).bind(1, file.string()));
}

std::vector<FaceRecord> SqliteCatalog::allFaces() {
    static const std::string query = faceQuery("ORDER BY f.id");
    return faces(db.prepare(query));
}

std::vector<std::pair<std::int64_t, std::string>> SqliteCatalog::facesOfUnknownType() {
    SqliteStatement& statement = db.prepare("SELECT id, type FROM faces ORDER BY id");
    std::vector<std::pair<std::int64_t, std::string>> unknown;
    while (statement.step()) {
        if (!faceTypeFromWireText(statement.text(1))) {
            unknown.emplace_back(statement.integer(0), statement.text(1));
        }
    }
    return unknown;
}

std::int64_t SqliteCatalog::faceCount() {
    return db.prepare("SELECT count(*) FROM faces").singleInteger();
}

std::int64_t SqliteCatalog::activeFaceCount() {
    return db.prepare("SELECT count(*) FROM links").singleInteger();
}

void SqliteCatalog::recordLink(const LinkRecord& link) {
    SqliteStatement& statement =
        db.prepare("INSERT OR REPLACE INTO links (face_id, link_path, target_path, "
                   "metrics_link_path, metrics_target_path, auto_for) VALUES (?, ?, ?, ?, ?, ?)")
            .bind(1, link.faceId)
            .bind(2, link.link.string())
            .bind(3, link.target.string())
            .bind(4, link.metricsLink.string())
            .bind(5, link.metricsTarget.string());
    if (link.autoFor.empty()) {
        statement.bindNull(6);
    } else {
        statement.bind(6, link.autoFor);
    }
    statement.run();
}

namespace {

std::vector<LinkRecord> links(SqliteStatement& statement) {
    std::vector<LinkRecord> records;
    while (statement.step()) {
        records.push_back({statement.integer(0), statement.text(1), statement.text(2),
                           statement.text(3), statement.text(4), statement.text(5)});
    }
    return records;
}

const char* const linkColumns =
    "SELECT face_id, link_path, target_path, metrics_link_path, metrics_target_path, "
    "coalesce(auto_for, '') FROM links ";

} // namespace

std::optional<LinkRecord> SqliteCatalog::link(std::int64_t faceId) {
    auto found = links(db.prepare(std::string(linkColumns) + "WHERE face_id = ?").bind(1, faceId));
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<LinkRecord> SqliteCatalog::allLinks() {
    return links(db.prepare(std::string(linkColumns) + "ORDER BY face_id"));
}

std::vector<LinkRecord> SqliteCatalog::autoActivatedLinks() {
    return links(
        db.prepare(std::string(linkColumns) + "WHERE auto_for IS NOT NULL ORDER BY face_id"));
}

void SqliteCatalog::claimLink(std::int64_t faceId) {
    db.prepare("UPDATE links SET auto_for = NULL WHERE face_id = ?").bind(1, faceId).run();
}

std::int64_t SqliteCatalog::linkUsers(const std::filesystem::path& link) {
    return db.prepare("SELECT count(*) FROM links WHERE link_path = ?")
        .bind(1, link.string())
        .singleInteger();
}

void SqliteCatalog::removeLink(std::int64_t faceId) {
    db.prepare("DELETE FROM links WHERE face_id = ?").bind(1, faceId).run();
}

void SqliteCatalog::rememberTarget(const TargetApplication& target) {
    db.prepare("INSERT INTO targets (signature, event_class, last_seen) VALUES (?, ?, ?) "
               "ON CONFLICT (signature) DO UPDATE SET event_class = excluded.event_class, "
               "last_seen = excluded.last_seen")
        .bind(1, target.signature)
        .bind(2, target.eventClass)
        .bind(3, now())
        .run();
}

std::vector<TargetApplication> SqliteCatalog::targets() {
    SqliteStatement& statement =
        db.prepare("SELECT signature, event_class FROM targets ORDER BY signature");
    std::vector<TargetApplication> result;
    while (statement.step()) {
        result.push_back({statement.text(0), statement.text(1)});
    }
    return result;
}

void SqliteCatalog::recordWindowlessRequest(const WindowlessRequest& request) {
    db.prepare("INSERT INTO windowless_requests (kind, at, application, ps_name, container_id, "
               "type) VALUES (?, ?, ?, ?, ?, ?)")
        .bind(1, request.kind)
        .bind(2, request.unixTime != 0 ? request.unixTime : now())
        .bind(3, request.application)
        .bind(4, request.postScriptName)
        .bind(5, request.containerID)
        .bind(6, request.type)
        .run();
}

std::vector<WindowlessRequest> SqliteCatalog::windowlessRequests(const std::string& kind,
                                                                 int limit) {
    SqliteStatement& statement =
        db.prepare("SELECT id, kind, at, application, ps_name, container_id, type "
                   "FROM windowless_requests WHERE ?1 = '' OR kind = ?1 ORDER BY id DESC LIMIT ?2")
            .bind(1, kind)
            .bind(2, static_cast<std::int64_t>(limit));
    std::vector<WindowlessRequest> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), statement.text(1), statement.integer(2),
                          statement.text(3), statement.text(4), statement.text(5),
                          statement.text(6)});
    }
    return result;
}

std::int64_t SqliteCatalog::recordChange(const std::string& kind) {
    db.prepare("INSERT INTO changes (kind, at) VALUES (?, ?)").bind(1, kind).bind(2, now()).run();
    return db.lastInsertedRow();
}

std::int64_t SqliteCatalog::lastChange() {
    return db.prepare("SELECT coalesce(max(id), 0) FROM changes").singleInteger();
}

std::vector<LibraryChange> SqliteCatalog::changesAfter(std::int64_t id) {
    SqliteStatement& statement =
        db.prepare("SELECT id, kind, at FROM changes WHERE id > ? ORDER BY id").bind(1, id);
    std::vector<LibraryChange> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), statement.text(1), statement.integer(2)});
    }
    return result;
}

bool SqliteCatalog::setting(const std::string& name) {
    SqliteStatement& statement =
        db.prepare("SELECT value FROM settings WHERE name = ?").bind(1, name);
    const std::string value = statement.step() ? statement.text(0) : "on";
    statement.reset();
    return value != "off";
}

void SqliteCatalog::setSetting(const std::string& name, bool on) {
    db.prepare("INSERT INTO settings (name, value) VALUES (?, ?) "
               "ON CONFLICT (name) DO UPDATE SET value = excluded.value")
        .bind(1, name)
        .bind(2, std::string(on ? "on" : "off"))
        .run();
}

bool SqliteCatalog::autoActivation() {
    return setting("auto-activate");
}

void SqliteCatalog::setAutoActivation(bool on) {
    setSetting("auto-activate", on);
}

bool SqliteCatalog::systemFonts() {
    return setting("system-fonts");
}

void SqliteCatalog::setSystemFonts(bool on) {
    setSetting("system-fonts", on);
}

std::string SqliteCatalog::textSetting(const std::string& name) {
    SqliteStatement& statement =
        db.prepare("SELECT value FROM settings WHERE name = ?").bind(1, name);
    const std::string value = statement.step() ? statement.text(0) : "";
    statement.reset();
    return value;
}

void SqliteCatalog::setTextSetting(const std::string& name, const std::string& value) {
    db.prepare("INSERT INTO settings (name, value) VALUES (?, ?) "
               "ON CONFLICT (name) DO UPDATE SET value = excluded.value")
        .bind(1, name)
        .bind(2, value)
        .run();
}

bool SqliteCatalog::autoDeactivation() {
    return setting("auto-deactivate");
}

void SqliteCatalog::setAutoDeactivation(bool on) {
    setSetting("auto-deactivate", on);
}

std::string SqliteCatalog::storeUrl() {
    return textSetting("store-url");
}

void SqliteCatalog::setStoreUrl(const std::string& urlTemplate) {
    setTextSetting("store-url", urlTemplate);
}

std::int64_t SqliteCatalog::createSet(const std::string& name) {
    if (const auto existing = setByName(name)) {
        return *existing;
    }
    db.prepare("INSERT INTO sets (name) VALUES (?)").bind(1, name).run();
    return db.lastInsertedRow();
}

std::optional<std::int64_t> SqliteCatalog::setByName(const std::string& name) {
    SqliteStatement& statement = db.prepare("SELECT id FROM sets WHERE name = ?").bind(1, name);
    std::optional<std::int64_t> id;
    if (statement.step()) {
        id = statement.integer(0);
    }
    statement.reset();
    return id;
}

bool SqliteCatalog::deleteSet(const std::string& name) {
    const auto id = setByName(name);
    if (!id) {
        return false;
    }
    db.prepare("DELETE FROM set_faces WHERE set_id = ?").bind(1, *id).run();
    db.prepare("DELETE FROM sets WHERE id = ?").bind(1, *id).run();
    return true;
}

std::vector<FaceSet> SqliteCatalog::sets() {
    SqliteStatement& statement =
        db.prepare("SELECT s.id, s.name, count(m.face_id) FROM sets s "
                   "LEFT JOIN set_faces m ON m.set_id = s.id GROUP BY s.id ORDER BY s.name");
    std::vector<FaceSet> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), statement.text(1), statement.integer(2)});
    }
    return result;
}

void SqliteCatalog::addToSet(std::int64_t setId, std::int64_t faceId) {
    db.prepare("INSERT OR IGNORE INTO set_faces (set_id, face_id) VALUES (?, ?)")
        .bind(1, setId)
        .bind(2, faceId)
        .run();
}

void SqliteCatalog::removeFromSet(std::int64_t setId, std::int64_t faceId) {
    db.prepare("DELETE FROM set_faces WHERE set_id = ? AND face_id = ?")
        .bind(1, setId)
        .bind(2, faceId)
        .run();
}

std::vector<std::int64_t> SqliteCatalog::setMembers(std::int64_t setId) {
    SqliteStatement& statement =
        db.prepare("SELECT face_id FROM set_faces WHERE set_id = ? ORDER BY face_id")
            .bind(1, setId);
    std::vector<std::int64_t> ids;
    while (statement.step()) {
        ids.push_back(statement.integer(0));
    }
    return ids;
}

std::vector<AutoRequester> SqliteCatalog::autoRequesters() {
    SqliteStatement& statement = db.prepare(
        "SELECT face_id, auto_for FROM links WHERE auto_for IS NOT NULL "
        "UNION SELECT r.face_id, r.application FROM requesters r "
        "JOIN links l ON l.face_id = r.face_id AND l.auto_for IS NOT NULL ORDER BY 1, 2");
    std::vector<AutoRequester> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), statement.text(1)});
    }
    return result;
}

void SqliteCatalog::addRequester(std::int64_t faceId, const std::string& application) {
    db.prepare("INSERT OR IGNORE INTO requesters (face_id, application) VALUES (?, ?)")
        .bind(1, faceId)
        .bind(2, application)
        .run();
}

void SqliteCatalog::clearRequesters(std::int64_t faceId) {
    db.prepare("DELETE FROM requesters WHERE face_id = ?").bind(1, faceId).run();
}

bool SqliteCatalog::removeFace(std::int64_t id) {
    db.prepare("DELETE FROM faces WHERE id = ?").bind(1, id).run();
    return db.changes() > 0;
}

std::vector<FaceUse> SqliteCatalog::faceUse() {
    SqliteStatement& statement = db.prepare("SELECT face_id FROM links ORDER BY face_id");
    std::vector<FaceUse> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), 1});
    }
    return result;
}

void SqliteCatalog::grant(const std::string&, LibraryRight) {
    throw SqliteError(db.description() + " is an SQLite file: its file permissions decide who " +
                      "reads and changes it; roles belong to a PostgreSQL library");
}

} // namespace Vellumine
