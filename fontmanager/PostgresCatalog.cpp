#include "fontmanager/PostgresCatalog.h"

#include "fontmanager/PostgresSchema.h"
#include "fontmanager/Sha256.h"
#include "foundation/Logger.h"

#include <chrono>
#include <ctime>
#include <fstream>
#include <sstream>
#include <thread>

namespace Vellumine {

namespace {

constexpr int transientAttempts = 5;

const char* const faceColumns =
    "SELECT f.id, f.path, f.face_index, f.ps_name, f.family, f.style, f.type, f.metrics_path, "
    "l.face_id IS NOT NULL, f.content, coalesce(f.metrics_content, '') FROM faces f "
    "LEFT JOIN links l ON l.face_id = f.id AND l.machine = $1 ";

const char* const linkColumns =
    "SELECT face_id, link_path, target_path, metrics_link_path, metrics_target_path, "
    "coalesce(auto_for, '') FROM links WHERE machine = $1 ";

std::int64_t now() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

std::string readWhole(const std::filesystem::path& file, const std::string& where) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    if (!in || !(bytes << in.rdbuf())) {
        throw CatalogError(where + ": cannot read " + file.string() + " to store it");
    }
    return bytes.str();
}

} // namespace

PostgresCatalog::PostgresCatalog(const LibraryLocation& location, std::string workstation,
                                 BusyReporter busyReporter)
    : url(location.url), machine(std::move(workstation)),
      connection(location.url, location.shown()), busyReporter(std::move(busyReporter)) {
    const bool exists =
        connection.query("SELECT to_regclass('vellumine_schema') IS NOT NULL").text(0, 0) == "t";
    if (!exists ||
        connection.query("SELECT max(version) FROM vellumine_schema").single() != schemaVersion) {
        write([this] { migrate(); });
    }
}

// Under a transaction-level advisory lock: a second workstation opening a new library at
// the same time waits, then finds the schema made.
void PostgresCatalog::migrate() {
    connection.execute("SELECT pg_advisory_xact_lock(hashtext('vellumine schema'))");
    std::int64_t current = 0;
    if (connection.query("SELECT to_regclass('vellumine_schema') IS NOT NULL").text(0, 0) == "t") {
        current =
            connection.query("SELECT coalesce(max(version), 0) FROM vellumine_schema").single();
    }
    if (current == schemaVersion) {
        return;
    }
    if (current > schemaVersion) {
        throw CatalogError(description() + " was written by a newer vellumine (schema " +
                           std::to_string(current) + ")");
    }
    connection.execute(postgresSchema);
    connection.query("INSERT INTO vellumine_schema (version) VALUES ($1)",
                     {std::int64_t{schemaVersion}});
}

void PostgresCatalog::rollbackQuietly() {
    depth = 0;
    try {
        if (connection.isOpen()) {
            connection.execute("ROLLBACK");
        }
    } catch (const CatalogError&) {
        // the connection went with the failure; the server rolled back
    }
}

void PostgresCatalog::write(const std::function<void()>& work) {
    if (depth > 0) {
        work();
        return;
    }
    for (int attempt = 1;; ++attempt) {
        storedFiles.clear();
        try {
            connection.execute("BEGIN");
            depth = 1;
            notifyOnCommit = false;
            work();
            if (notifyOnCommit) {
                connection.query("SELECT pg_notify($1, $2)", {changeChannel, machine});
            }
            connection.execute("COMMIT");
            depth = 0;
            return;
        } catch (const PostgresError& failure) {
            rollbackQuietly();
            if (!failure.isTransient() || attempt == transientAttempts) {
                throw;
            }
            const std::string message = std::string(failure.what()) + "; trying again";
            Logger::log("vellumine-catalog", message);
            if (busyReporter) {
                busyReporter(message);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20 * attempt));
        } catch (...) {
            rollbackQuietly();
            throw;
        }
    }
}

void PostgresCatalog::read(const std::function<void()>& work) {
    if (depth > 0) {
        work();
        return;
    }
    try {
        try {
            connection.execute("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY");
        } catch (const PostgresUnreachable&) {
            if (!connection.remembersAnswers()) {
                throw;
            }
            // The last answers, without a snapshot: there is nothing to be consistent with.
            depth = 1;
            work();
            depth = 0;
            return;
        }
        depth = 1;
        work();
        connection.execute("COMMIT");
        depth = 0;
    } catch (...) {
        rollbackQuietly();
        throw;
    }
}

// The database keeps its own consistency (constraints, foreign keys); what is left to
// check is that every stored file still has the bytes its address promises.
std::vector<std::string> PostgresCatalog::integrityProblems() {
    const PgResult sizes =
        connection.query("SELECT sha256 FROM blobs WHERE size <> octet_length(bytes)");
    std::vector<std::string> problems;
    for (int row = 0; row < sizes.rows(); ++row) {
        problems.push_back("PostgreSQL: stored file " + sizes.text(row, 0) +
                           " does not have the size it was stored with");
    }
    return problems;
}

std::string PostgresCatalog::store(const std::filesystem::path& file) {
    if (const auto known = storedFiles.find(file); known != storedFiles.end()) {
        return known->second;
    }
    const std::string bytes = readWhole(file, description());
    const std::string hash = Sha256::of(bytes);
    // Sending the bytes only when the library lacks them keeps a second add cheap.
    if (connection.query("SELECT 1 FROM blobs WHERE sha256 = $1", {hash}).rows() == 0) {
        connection.query("INSERT INTO blobs (sha256, size, bytes) VALUES ($1, $2, $3) "
                         "ON CONFLICT (sha256) DO NOTHING",
                         {hash, static_cast<std::int64_t>(bytes.size()), PgParam::bytes(bytes)});
    }
    storedFiles[file] = hash;
    return hash;
}

void PostgresCatalog::dropUnusedContent(const std::vector<std::string>& hashes) {
    for (const auto& hash : hashes) {
        if (!hash.empty()) {
            connection.query("DELETE FROM blobs WHERE sha256 = $1 AND NOT EXISTS (SELECT 1 FROM "
                             "faces WHERE content = $1 OR metrics_content = $1)",
                             {hash});
        }
    }
}

// Sent once, just before the transaction commits: PostgreSQL delivers it with the commit,
// and a transaction that adds ten thousand faces needs to say so only once.
void PostgresCatalog::notifyChange() {
    notifyOnCommit = true;
}

AddedFace PostgresCatalog::addFace(const std::filesystem::path& file,
                                   const std::filesystem::path& metricsFile,
                                   const FaceDescription& face) {
    AddedFace added;
    write([&] {
        const std::string content = store(file);
        const std::string metrics = metricsFile.empty() ? "" : store(metricsFile);
        // One round trip: `old` sees the row as it was before the upsert (every part of the
        // statement sees the same snapshot), so a refresh knows which bytes it replaced.
        const PgResult row = connection.query(
            "WITH old AS (SELECT content, coalesce(metrics_content, '') AS metrics FROM faces "
            "WHERE path = $1 AND face_index = $2), "
            "upsert AS (INSERT INTO faces (path, face_index, ps_name, family, style, type, "
            "metrics_path, content, metrics_content, added_at, added_by) "
            "VALUES ($1, $2, $3, $4, $5, $6, $7, $8, nullif($9, ''), $10, $11) "
            "ON CONFLICT (path, face_index) DO UPDATE SET ps_name = excluded.ps_name, "
            "family = excluded.family, style = excluded.style, type = excluded.type, "
            "metrics_path = excluded.metrics_path, content = excluded.content, "
            "metrics_content = excluded.metrics_content RETURNING id) "
            "SELECT upsert.id, old.content IS NULL, coalesce(old.content, ''), "
            "coalesce(old.metrics, '') FROM upsert LEFT JOIN old ON true",
            {file.string(), static_cast<std::int64_t>(face.faceIndex), face.postScriptName,
             face.family, face.style, wireText(face.type), metricsFile.string(), content, metrics,
             now(), machine});
        added = {row.integer(0, 0), row.text(0, 1) == "t"};
        if (!added.isNew && (row.text(0, 2) != content || row.text(0, 3) != metrics)) {
            dropUnusedContent({row.text(0, 2), row.text(0, 3)});
        }
        notifyChange();
    });
    return added;
}

bool PostgresCatalog::removeFace(std::int64_t id) {
    bool removed = false;
    write([&] {
        const PgResult row = connection.query("DELETE FROM faces WHERE id = $1 "
                                              "RETURNING content, coalesce(metrics_content, '')",
                                              {id});
        removed = row.rows() > 0;
        if (removed) {
            dropUnusedContent({row.text(0, 0), row.text(0, 1)});
            notifyChange();
        }
    });
    return removed;
}

std::optional<std::string> PostgresCatalog::storedContent(const std::string& sha256) {
    const PgResult row =
        connection.queryBinary("SELECT bytes FROM blobs WHERE sha256 = $1", {sha256});
    if (row.rows() == 0) {
        return std::nullopt;
    }
    return row.text(0, 0);
}

std::vector<FaceRecord> PostgresCatalog::faces(const std::string& condition,
                                               std::vector<PgParam> params) {
    params.insert(params.begin(), PgParam(machine));
    const PgResult rows = connection.query(faceColumns + condition, params);
    std::vector<FaceRecord> records;
    records.reserve(static_cast<std::size_t>(rows.rows()));
    for (int row = 0; row < rows.rows(); ++row) {
        const auto type = faceTypeFromWireText(rows.text(row, 6));
        if (!type) {
            continue; // see facesOfUnknownType()
        }
        FaceRecord record;
        record.type = *type;
        record.id = rows.integer(row, 0);
        record.file = rows.text(row, 1);
        record.faceIndex = static_cast<long>(rows.integer(row, 2));
        record.postScriptName = rows.text(row, 3);
        record.family = rows.text(row, 4);
        record.style = rows.text(row, 5);
        record.metricsFile = rows.text(row, 7);
        record.active = rows.text(row, 8) == "t";
        record.contentHash = rows.text(row, 9);
        record.metricsHash = rows.text(row, 10);
        records.push_back(std::move(record));
    }
    return records;
}

std::optional<FaceRecord> PostgresCatalog::face(std::int64_t id) {
    auto found = faces("WHERE f.id = $2", {id});
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<FaceRecord> PostgresCatalog::facesByPostScriptName(const std::string& name) {
    return faces("WHERE f.ps_name = $2 ORDER BY f.id", {name});
}

std::vector<FaceRecord> PostgresCatalog::facesByFamily(const std::string& family) {
    return faces("WHERE lower(f.family) = lower($2) ORDER BY f.id", {family});
}

std::vector<FaceRecord> PostgresCatalog::facesOfFile(const std::filesystem::path& file) {
    return faces("WHERE f.path = $2 ORDER BY f.face_index", {file.string()});
}

std::vector<FaceRecord> PostgresCatalog::allFaces() {
    return faces("ORDER BY f.id", {});
}

std::vector<std::pair<std::int64_t, std::string>> PostgresCatalog::facesOfUnknownType() {
    const PgResult rows = connection.query("SELECT id, type FROM faces ORDER BY id");
    std::vector<std::pair<std::int64_t, std::string>> unknown;
    for (int row = 0; row < rows.rows(); ++row) {
        if (!faceTypeFromWireText(rows.text(row, 1))) {
            unknown.emplace_back(rows.integer(row, 0), rows.text(row, 1));
        }
    }
    return unknown;
}

std::int64_t PostgresCatalog::faceCount() {
    return connection.query("SELECT count(*) FROM faces").single();
}

std::int64_t PostgresCatalog::activeFaceCount() {
    return connection.query("SELECT count(*) FROM links WHERE machine = $1", {machine}).single();
}

void PostgresCatalog::recordLink(const LinkRecord& link) {
    connection.query(
        "INSERT INTO links (machine, face_id, link_path, target_path, metrics_link_path, "
        "metrics_target_path, auto_for) VALUES ($1, $2, $3, $4, $5, $6, nullif($7, '')) "
        "ON CONFLICT (machine, face_id) DO UPDATE SET link_path = excluded.link_path, "
        "target_path = excluded.target_path, metrics_link_path = excluded.metrics_link_path, "
        "metrics_target_path = excluded.metrics_target_path, auto_for = excluded.auto_for",
        {machine, link.faceId, link.link.string(), link.target.string(), link.metricsLink.string(),
         link.metricsTarget.string(), link.autoFor});
}

std::vector<LinkRecord> PostgresCatalog::links(const std::string& condition,
                                               std::vector<PgParam> params) {
    params.insert(params.begin(), PgParam(machine));
    const PgResult rows = connection.query(linkColumns + condition, params);
    std::vector<LinkRecord> records;
    for (int row = 0; row < rows.rows(); ++row) {
        records.push_back({rows.integer(row, 0), rows.text(row, 1), rows.text(row, 2),
                           rows.text(row, 3), rows.text(row, 4), rows.text(row, 5)});
    }
    return records;
}

std::optional<LinkRecord> PostgresCatalog::link(std::int64_t faceId) {
    auto found = links("AND face_id = $2", {faceId});
    if (found.empty()) {
        return std::nullopt;
    }
    return found.front();
}

std::vector<LinkRecord> PostgresCatalog::allLinks() {
    return links("ORDER BY face_id", {});
}

std::vector<LinkRecord> PostgresCatalog::autoActivatedLinks() {
    return links("AND auto_for IS NOT NULL ORDER BY face_id", {});
}

void PostgresCatalog::claimLink(std::int64_t faceId) {
    connection.query("UPDATE links SET auto_for = NULL WHERE machine = $1 AND face_id = $2",
                     {machine, faceId});
}

std::int64_t PostgresCatalog::linkUsers(const std::filesystem::path& link) {
    return connection
        .query("SELECT count(*) FROM links WHERE machine = $1 AND link_path = $2",
               {machine, link.string()})
        .single();
}

void PostgresCatalog::removeLink(std::int64_t faceId) {
    connection.query("DELETE FROM links WHERE machine = $1 AND face_id = $2", {machine, faceId});
}

std::vector<FaceUse> PostgresCatalog::faceUse() {
    const PgResult rows =
        connection.query("SELECT face_id, count(*) FROM links GROUP BY face_id ORDER BY face_id");
    std::vector<FaceUse> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.integer(row, 0), rows.integer(row, 1)});
    }
    return result;
}

} // namespace Vellumine
