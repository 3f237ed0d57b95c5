#include "fontmanager/PostgresSchema.h"

namespace Vellumine {

const char* const postgresSchema = R"(
CREATE TABLE vellumine_schema (
    version INTEGER NOT NULL
);
CREATE TABLE blobs (
    sha256 TEXT PRIMARY KEY,
    size BIGINT NOT NULL,
    bytes BYTEA NOT NULL
);
CREATE TABLE faces (
    id BIGSERIAL PRIMARY KEY,
    path TEXT NOT NULL,
    face_index INTEGER NOT NULL,
    ps_name TEXT NOT NULL,
    family TEXT NOT NULL,
    style TEXT NOT NULL,
    type TEXT NOT NULL,
    metrics_path TEXT NOT NULL DEFAULT '',
    content TEXT NOT NULL REFERENCES blobs (sha256),
    metrics_content TEXT REFERENCES blobs (sha256),
    added_at BIGINT NOT NULL,
    added_by TEXT NOT NULL,
    UNIQUE (path, face_index)
);
CREATE INDEX faces_by_ps_name ON faces (ps_name);
CREATE INDEX faces_by_family ON faces (lower(family));
CREATE INDEX faces_by_content ON faces (content);
CREATE INDEX faces_by_metrics_content ON faces (metrics_content);
CREATE TABLE links (
    machine TEXT NOT NULL,
    face_id BIGINT NOT NULL REFERENCES faces (id) ON DELETE CASCADE,
    link_path TEXT NOT NULL,
    target_path TEXT NOT NULL,
    metrics_link_path TEXT NOT NULL DEFAULT '',
    metrics_target_path TEXT NOT NULL DEFAULT '',
    auto_for TEXT,
    PRIMARY KEY (machine, face_id)
);
CREATE INDEX links_by_face ON links (face_id);
CREATE INDEX links_by_path ON links (machine, link_path);
CREATE TABLE settings (
    machine TEXT NOT NULL,
    name TEXT NOT NULL,
    value TEXT NOT NULL,
    PRIMARY KEY (machine, name)
);
CREATE TABLE targets (
    machine TEXT NOT NULL,
    signature TEXT NOT NULL,
    event_class TEXT NOT NULL,
    last_seen BIGINT NOT NULL,
    PRIMARY KEY (machine, signature)
);
CREATE TABLE changes (
    id BIGSERIAL PRIMARY KEY,
    machine TEXT, -- NULL: a change of the whole library
    kind TEXT NOT NULL,
    at BIGINT NOT NULL
);
CREATE TABLE windowless_requests (
    id BIGSERIAL PRIMARY KEY,
    machine TEXT NOT NULL,
    kind TEXT NOT NULL,
    at BIGINT NOT NULL,
    application TEXT NOT NULL,
    ps_name TEXT NOT NULL,
    container_id TEXT NOT NULL,
    type TEXT NOT NULL
);
CREATE TABLE sets (
    id BIGSERIAL PRIMARY KEY,
    name TEXT NOT NULL UNIQUE
);
CREATE TABLE set_faces (
    set_id BIGINT NOT NULL REFERENCES sets (id) ON DELETE CASCADE,
    face_id BIGINT NOT NULL REFERENCES faces (id) ON DELETE CASCADE,
    PRIMARY KEY (set_id, face_id)
);
CREATE TABLE requesters (
    machine TEXT NOT NULL,
    face_id BIGINT NOT NULL REFERENCES faces (id) ON DELETE CASCADE,
    application TEXT NOT NULL,
    PRIMARY KEY (machine, face_id, application)
);
)";

const char* const postgresReadTables =
    "vellumine_schema, blobs, faces, links, settings, targets, changes, windowless_requests, "
    "sets, set_faces, requesters";
const char* const postgresWorkstationTables =
    "links, settings, targets, changes, windowless_requests, requesters";
const char* const postgresWorkstationSequences = "changes_id_seq, windowless_requests_id_seq";
const char* const postgresLibraryTables = "blobs, faces, sets, set_faces";
const char* const postgresLibrarySequences = "faces_id_seq, sets_id_seq";

} // namespace Vellumine
