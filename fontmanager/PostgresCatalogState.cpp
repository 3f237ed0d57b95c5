// The PostgreSQL library's journal, settings, sets and roles: what is not about faces and
// their links (PostgresCatalog.cpp).
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/PostgresCatalog.h"
#include "fontmanager/PostgresSchema.h"

#include <ctime>

namespace Vellumine {

namespace {

std::int64_t now() {
    return static_cast<std::int64_t>(std::time(nullptr));
}

} // namespace

void PostgresCatalog::rememberTarget(const TargetApplication& target) {
    connection.query("INSERT INTO targets (machine, signature, event_class, last_seen) "
                     "VALUES ($1, $2, $3, $4) ON CONFLICT (machine, signature) DO UPDATE "
                     "SET event_class = excluded.event_class, last_seen = excluded.last_seen",
                     {machine, target.signature, target.eventClass, now()});
}

std::vector<TargetApplication> PostgresCatalog::targets() {
    const PgResult rows = connection.query(
        "SELECT signature, event_class FROM targets WHERE machine = $1 ORDER BY signature",
        {machine});
    std::vector<TargetApplication> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.text(row, 0), rows.text(row, 1)});
    }
    return result;
}

void PostgresCatalog::recordWindowlessRequest(const WindowlessRequest& request) {
    connection.query("INSERT INTO windowless_requests (machine, kind, at, application, ps_name, "
                     "container_id, type) VALUES ($1, $2, $3, $4, $5, $6, $7)",
                     {machine, request.kind, request.unixTime != 0 ? request.unixTime : now(),
                      request.application, request.postScriptName, request.containerID,
                      request.type});
}

std::vector<WindowlessRequest> PostgresCatalog::windowlessRequests(const std::string& kind,
                                                                   int limit) {
    const PgResult rows = connection.query(
        "SELECT id, kind, at, application, ps_name, container_id, type FROM windowless_requests "
        "WHERE machine = $1 AND ($2 = '' OR kind = $2) ORDER BY id DESC LIMIT $3",
        {machine, kind, static_cast<std::int64_t>(limit)});
    std::vector<WindowlessRequest> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.integer(row, 0), rows.text(row, 1), rows.integer(row, 2),
                          rows.text(row, 3), rows.text(row, 4), rows.text(row, 5),
                          rows.text(row, 6)});
    }
    return result;
}

std::int64_t PostgresCatalog::recordChange(const std::string& kind) {
    const bool wholeLibrary = kind == ChangeKind::libraryFilesChanged;
    std::int64_t id = 0;
    write([&] {
        id = connection
                 .query("INSERT INTO changes (machine, kind, at) VALUES ($1, $2, $3) RETURNING id",
                        {wholeLibrary ? PgParam::null() : PgParam(machine), kind, now()})
                 .single();
        if (wholeLibrary) {
            notifyChange();
        }
    });
    return id;
}

std::int64_t PostgresCatalog::lastChange() {
    return connection
        .query("SELECT coalesce(max(id), 0) FROM changes WHERE machine IS NULL OR machine = $1",
               {machine})
        .single();
}

std::vector<LibraryChange> PostgresCatalog::changesAfter(std::int64_t id) {
    const PgResult rows = connection.query("SELECT id, kind, at FROM changes WHERE id > $2 AND "
                                           "(machine IS NULL OR machine = $1) ORDER BY id",
                                           {machine, id});
    std::vector<LibraryChange> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.integer(row, 0), rows.text(row, 1), rows.integer(row, 2)});
    }
    return result;
}

std::string PostgresCatalog::setting(const std::string& name, const std::string& fallback) {
    const PgResult row = connection.query(
        "SELECT value FROM settings WHERE machine = $1 AND name = $2", {machine, name});
    return row.rows() > 0 ? row.text(0, 0) : fallback;
}

void PostgresCatalog::setSetting(const std::string& name, const std::string& value) {
    connection.query("INSERT INTO settings (machine, name, value) VALUES ($1, $2, $3) "
                     "ON CONFLICT (machine, name) DO UPDATE SET value = excluded.value",
                     {machine, name, value});
}

bool PostgresCatalog::autoActivation() {
    return setting("auto-activate", "on") != "off";
}

void PostgresCatalog::setAutoActivation(bool on) {
    setSetting("auto-activate", on ? "on" : "off");
}

bool PostgresCatalog::systemFonts() {
    return setting("system-fonts", "on") != "off";
}

void PostgresCatalog::setSystemFonts(bool on) {
    setSetting("system-fonts", on ? "on" : "off");
}

bool PostgresCatalog::autoDeactivation() {
    return setting("auto-deactivate", "on") != "off";
}

void PostgresCatalog::setAutoDeactivation(bool on) {
    setSetting("auto-deactivate", on ? "on" : "off");
}

std::string PostgresCatalog::storeUrl() {
    return setting("store-url", "");
}

void PostgresCatalog::setStoreUrl(const std::string& urlTemplate) {
    setSetting("store-url", urlTemplate);
}

std::int64_t PostgresCatalog::createSet(const std::string& name) {
    // The update that changes nothing makes RETURNING answer for an existing set too.
    return connection
        .query("INSERT INTO sets (name) VALUES ($1) ON CONFLICT (name) DO UPDATE SET name = "
               "excluded.name RETURNING id",
               {name})
        .single();
}

std::optional<std::int64_t> PostgresCatalog::setByName(const std::string& name) {
    const PgResult row = connection.query("SELECT id FROM sets WHERE name = $1", {name});
    if (row.rows() == 0) {
        return std::nullopt;
    }
    return row.integer(0, 0);
}

bool PostgresCatalog::deleteSet(const std::string& name) {
    return connection.query("DELETE FROM sets WHERE name = $1 RETURNING id", {name}).rows() > 0;
}

std::vector<FaceSet> PostgresCatalog::sets() {
    const PgResult rows =
        connection.query("SELECT s.id, s.name, count(m.face_id) FROM sets s "
                         "LEFT JOIN set_faces m ON m.set_id = s.id GROUP BY s.id ORDER BY s.name");
    std::vector<FaceSet> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.integer(row, 0), rows.text(row, 1), rows.integer(row, 2)});
    }
    return result;
}

void PostgresCatalog::addToSet(std::int64_t setId, std::int64_t faceId) {
    connection.query("INSERT INTO set_faces (set_id, face_id) VALUES ($1, $2) "
                     "ON CONFLICT DO NOTHING",
                     {setId, faceId});
}

void PostgresCatalog::removeFromSet(std::int64_t setId, std::int64_t faceId) {
    connection.query("DELETE FROM set_faces WHERE set_id = $1 AND face_id = $2", {setId, faceId});
}

std::vector<std::int64_t> PostgresCatalog::setMembers(std::int64_t setId) {
    const PgResult rows = connection.query(
        "SELECT face_id FROM set_faces WHERE set_id = $1 ORDER BY face_id", {setId});
    std::vector<std::int64_t> ids;
    for (int row = 0; row < rows.rows(); ++row) {
        ids.push_back(rows.integer(row, 0));
    }
    return ids;
}

std::vector<AutoRequester> PostgresCatalog::autoRequesters() {
    const PgResult rows = connection.query(
        "SELECT face_id, auto_for FROM links WHERE machine = $1 AND auto_for IS NOT NULL "
        "UNION SELECT r.face_id, r.application FROM requesters r JOIN links l "
        "ON l.machine = r.machine AND l.face_id = r.face_id AND l.auto_for IS NOT NULL "
        "WHERE r.machine = $1 ORDER BY 1, 2",
        {machine});
    std::vector<AutoRequester> result;
    for (int row = 0; row < rows.rows(); ++row) {
        result.push_back({rows.integer(row, 0), rows.text(row, 1)});
    }
    return result;
}

void PostgresCatalog::addRequester(std::int64_t faceId, const std::string& application) {
    connection.query("INSERT INTO requesters (machine, face_id, application) VALUES ($1, $2, $3) "
                     "ON CONFLICT DO NOTHING",
                     {machine, faceId, application});
}

void PostgresCatalog::clearRequesters(std::int64_t faceId) {
    connection.query("DELETE FROM requesters WHERE machine = $1 AND face_id = $2",
                     {machine, faceId});
}

void PostgresCatalog::grant(const std::string& role, LibraryRight right) {
    write([&] {
        const std::string who = connection.quoteIdentifier(role);
        const std::string libraryTables = postgresLibraryTables;
        // PostgreSQL gives these to every role by default, but a hardened server takes them
        // away from PUBLIC; given again they cost nothing.
        const std::string database =
            connection.quoteIdentifier(connection.query("SELECT current_database()").text(0, 0));
        connection.execute("GRANT CONNECT ON DATABASE " + database + " TO " + who);
        connection.execute("GRANT USAGE ON SCHEMA public TO " + who);
        connection.execute(std::string("GRANT SELECT ON ") + postgresReadTables + " TO " + who);
        connection.execute(std::string("GRANT SELECT, INSERT, UPDATE, DELETE ON ") +
                           postgresWorkstationTables + " TO " + who);
        connection.execute(std::string("GRANT USAGE ON SEQUENCE ") + postgresWorkstationSequences +
                           " TO " + who);
        if (right == LibraryRight::write) {
            connection.execute("GRANT INSERT, UPDATE, DELETE ON " + libraryTables + " TO " + who);
            connection.execute(std::string("GRANT USAGE ON SEQUENCE ") + postgresLibrarySequences +
                               " TO " + who);
        } else {
            connection.execute("REVOKE INSERT, UPDATE, DELETE ON " + libraryTables + " FROM " +
                               who);
            connection.execute(std::string("REVOKE USAGE ON SEQUENCE ") + postgresLibrarySequences +
                               " FROM " + who);
        }
    });
}

} // namespace Vellumine
