#include "fontmanager/Catalog.h"

#include <ctime>
#include <stdexcept>

namespace Vellumine {

namespace {

std::filesystem::path ensureFolder(const std::filesystem::path& file) {
    std::filesystem::create_directories(file.parent_path());
    return file;
}

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
    metrics_target_path TEXT NOT NULL DEFAULT ''
);
CREATE INDEX links_by_path ON links (link_path);
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

const char* const faceColumns =
    "SELECT f.id, f.path, f.face_index, f.ps_name, f.family, f.style, f.type, f.metrics_path, "
    "l.face_id IS NOT NULL FROM faces f LEFT JOIN links l ON l.face_id = f.id ";

std::string faceQuery(const char* tail) {
    return std::string(faceColumns) + tail;
}

FaceType storedType(const std::string& text) {
    const auto type = faceTypeFromWireText(text);
    if (!type) {
        throw std::runtime_error("catalog: unknown face type '" + text + "'");
    }
    return *type;
}

std::int64_t now() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

} // namespace

Catalog::Catalog(const std::filesystem::path& file) : db(ensureFolder(file)) {
    // WAL lets `vellumine list` read while the server writes.
    db.execute("PRAGMA journal_mode = WAL");
    db.execute("PRAGMA synchronous = NORMAL");
    db.execute("PRAGMA foreign_keys = ON");
    migrate();
}

void Catalog::migrate() {
    const std::int64_t current = db.prepare("PRAGMA user_version").singleInteger();
    if (current == schemaVersion) {
        return;
    }
    if (current > schemaVersion) {
        throw std::runtime_error("catalog: written by a newer vellumine (schema " +
                                 std::to_string(current) + ")");
    }
    SqliteTransaction transaction(db);
    db.execute(schema);
    db.execute("PRAGMA user_version = " + std::to_string(schemaVersion));
    transaction.commit();
}

AddedFace Catalog::addFace(const std::filesystem::path& file,
                           const std::filesystem::path& metricsFile, const FaceDescription& face) {
    const std::int64_t id =
        db.prepare("SELECT coalesce(max(id), 0) FROM faces WHERE path = ? AND face_index = ?")
            .bind(1, file.string())
            .bind(2, static_cast<std::int64_t>(face.faceIndex))
            .singleInteger();
    if (id != 0) {
        db.prepare("UPDATE faces SET ps_name = ?, family = ?, style = ?, type = ?, "
                   "metrics_path = ? WHERE id = ?")
            .bind(1, face.postScriptName)
            .bind(2, face.family)
            .bind(3, face.style)
            .bind(4, wireText(face.type))
            .bind(5, metricsFile.string())
            .bind(6, id)
            .run();
        return {id, false};
    }
    db.prepare("INSERT INTO faces (path, face_index, ps_name, family, style, type, metrics_path, "
               "added_at) VALUES (?, ?, ?, ?, ?, ?, ?, ?)")
        .bind(1, file.string())
        .bind(2, static_cast<std::int64_t>(face.faceIndex))
        .bind(3, face.postScriptName)
        .bind(4, face.family)
        .bind(5, face.style)
        .bind(6, wireText(face.type))
        .bind(7, metricsFile.string())
        .bind(8, now())
        .run();
    return {db.lastInsertedRow(), true};
}

std::vector<FaceRecord> Catalog::faces(SqliteStatement& statement) {
    std::vector<FaceRecord> records;
    while (statement.step()) {
        FaceRecord record;
        record.id = statement.integer(0);
        record.file = statement.text(1);
        record.faceIndex = static_cast<long>(statement.integer(2));
        record.postScriptName = statement.text(3);
        record.family = statement.text(4);
        record.style = statement.text(5);
        record.type = storedType(statement.text(6));
        record.metricsFile = statement.text(7);
        record.active = statement.integer(8) != 0;
        records.push_back(std::move(record));
    }
    return records;
}

std::optional<FaceRecord> Catalog::face(std::int64_t id) {
    static const std::string query = faceQuery("WHERE f.id = ?");
    auto found = faces(db.prepare(query).bind(1, id));
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<FaceRecord> Catalog::facesByPostScriptName(const std::string& name) {
    static const std::string query = faceQuery("WHERE f.ps_name = ? ORDER BY f.id");
    return faces(db.prepare(query).bind(1, name));
}

std::vector<FaceRecord> Catalog::facesByFamily(const std::string& family) {
    static const std::string query = faceQuery("WHERE f.family = ? COLLATE NOCASE ORDER BY f.id");
    return faces(db.prepare(query).bind(1, family));
}

std::vector<FaceRecord> Catalog::facesOfFile(const std::filesystem::path& file) {
    static const std::string query = faceQuery("WHERE f.path = ? ORDER BY f.face_index");
    return faces(db.prepare(query).bind(1, file.string()));
}

std::vector<FaceRecord> Catalog::allFaces() {
    static const std::string query = faceQuery("ORDER BY f.id");
    return faces(db.prepare(query));
}

std::int64_t Catalog::faceCount() {
    return db.prepare("SELECT count(*) FROM faces").singleInteger();
}

std::int64_t Catalog::activeFaceCount() {
    return db.prepare("SELECT count(*) FROM links").singleInteger();
}

void Catalog::recordLink(const LinkRecord& link) {
    db.prepare("INSERT OR REPLACE INTO links (face_id, link_path, target_path, metrics_link_path, "
               "metrics_target_path) VALUES (?, ?, ?, ?, ?)")
        .bind(1, link.faceId)
        .bind(2, link.link.string())
        .bind(3, link.target.string())
        .bind(4, link.metricsLink.string())
        .bind(5, link.metricsTarget.string())
        .run();
}

namespace {

std::vector<LinkRecord> links(SqliteStatement& statement) {
    std::vector<LinkRecord> records;
    while (statement.step()) {
        records.push_back({statement.integer(0), statement.text(1), statement.text(2),
                           statement.text(3), statement.text(4)});
    }
    return records;
}

const char* const linkColumns =
    "SELECT face_id, link_path, target_path, metrics_link_path, metrics_target_path FROM links ";

} // namespace

std::optional<LinkRecord> Catalog::link(std::int64_t faceId) {
    auto found = links(db.prepare(std::string(linkColumns) + "WHERE face_id = ?").bind(1, faceId));
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<LinkRecord> Catalog::allLinks() {
    return links(db.prepare(std::string(linkColumns) + "ORDER BY face_id"));
}

std::int64_t Catalog::linkUsers(const std::filesystem::path& link) {
    return db.prepare("SELECT count(*) FROM links WHERE link_path = ?")
        .bind(1, link.string())
        .singleInteger();
}

void Catalog::removeLink(std::int64_t faceId) {
    db.prepare("DELETE FROM links WHERE face_id = ?").bind(1, faceId).run();
}

void Catalog::rememberTarget(const TargetApplication& target) {
    db.prepare("INSERT INTO targets (signature, event_class, last_seen) VALUES (?, ?, ?) "
               "ON CONFLICT (signature) DO UPDATE SET event_class = excluded.event_class, "
               "last_seen = excluded.last_seen")
        .bind(1, target.signature)
        .bind(2, target.eventClass)
        .bind(3, now())
        .run();
}

std::vector<TargetApplication> Catalog::targets() {
    SqliteStatement& statement =
        db.prepare("SELECT signature, event_class FROM targets ORDER BY signature");
    std::vector<TargetApplication> result;
    while (statement.step()) {
        result.push_back({statement.text(0), statement.text(1)});
    }
    return result;
}

void Catalog::recordWindowlessRequest(const WindowlessRequest& request) {
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

std::vector<WindowlessRequest> Catalog::windowlessRequests(const std::string& kind, int limit) {
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

std::int64_t Catalog::recordChange(const std::string& kind) {
    db.prepare("INSERT INTO changes (kind, at) VALUES (?, ?)").bind(1, kind).bind(2, now()).run();
    return db.lastInsertedRow();
}

std::int64_t Catalog::lastChange() {
    return db.prepare("SELECT coalesce(max(id), 0) FROM changes").singleInteger();
}

std::vector<LibraryChange> Catalog::changesAfter(std::int64_t id) {
    SqliteStatement& statement =
        db.prepare("SELECT id, kind, at FROM changes WHERE id > ? ORDER BY id").bind(1, id);
    std::vector<LibraryChange> result;
    while (statement.step()) {
        result.push_back({statement.integer(0), statement.text(1), statement.integer(2)});
    }
    return result;
}

} // namespace Vellumine
