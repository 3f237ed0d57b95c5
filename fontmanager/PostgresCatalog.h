#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/LibraryLocation.h"
#include "fontmanager/Postgres.h"

#include <filesystem>
#include <map>
#include <string>

namespace Vellumine {

// A studio's shared library in a PostgreSQL database (library URL "postgresql://…").
//
// The faces, their bytes (content-addressed by SHA-256, one row per distinct content), the
// sets and the change journal belong to the whole library; activations, the requesters of
// automatic activations, the applications told of changes, show and buy requests and the
// settings belong to one workstation (Workstation.h), since each links the fonts into its
// own fontconfig folder. Adding or removing faces NOTIFYs the channel `vellumine_library`
// in the same transaction, with the workstation as payload, so that every other
// workstation's `serve` hears of it.
class PostgresCatalog : public Catalog {
public:
    static constexpr int schemaVersion = 1;
    // The channel a change of the library's faces is announced on.
    static constexpr const char* changeChannel = "vellumine_library";

    // Connects, creates or upgrades the schema (one transaction under an advisory lock, so
    // that two workstations opening a new library at once create it once).
    PostgresCatalog(const LibraryLocation& location, std::string workstation,
                    BusyReporter busyReporter = {});

    std::string description() const override { return connection.description(); }
    std::string location() const override { return url; }
    bool isReadOnly() const override { return false; }

    // Tried again on a serialization failure or deadlock.
    void write(const std::function<void()>& work) override;
    // One REPEATABLE READ snapshot.
    void read(const std::function<void()>& work) override;
    std::vector<std::string> integrityProblems() override;

    // Stores the file's bytes (once per content); the (file, face index) pair keeps its
    // identifier, and bytes no face uses any more after a refresh are dropped.
    AddedFace addFace(const std::filesystem::path& file, const std::filesystem::path& metricsFile,
                      const FaceDescription& face) override;

    std::optional<FaceRecord> face(std::int64_t id) override;
    std::vector<FaceRecord> facesByPostScriptName(const std::string& name) override;
    std::vector<FaceRecord> facesByFamily(const std::string& family) override;
    std::vector<FaceRecord> facesOfFile(const std::filesystem::path& file) override;
    std::vector<FaceRecord> allFaces() override;
    std::vector<std::pair<std::int64_t, std::string>> facesOfUnknownType() override;
    std::int64_t faceCount() override;
    std::int64_t activeFaceCount() override;

    void recordLink(const LinkRecord& link) override;
    std::optional<LinkRecord> link(std::int64_t faceId) override;
    std::vector<LinkRecord> allLinks() override;
    std::vector<LinkRecord> autoActivatedLinks() override;
    void claimLink(std::int64_t faceId) override;
    std::int64_t linkUsers(const std::filesystem::path& link) override;
    void removeLink(std::int64_t faceId) override;

    void rememberTarget(const TargetApplication& target) override;
    std::vector<TargetApplication> targets() override;

    void recordWindowlessRequest(const WindowlessRequest& request) override;
    std::vector<WindowlessRequest> windowlessRequests(const std::string& kind, int limit) override;

    // A change of the library's files is the whole library's (and NOTIFYs); a change of the
    // active fonts is this workstation's.
    std::int64_t recordChange(const std::string& kind) override;
    std::int64_t lastChange() override;
    std::vector<LibraryChange> changesAfter(std::int64_t id) override;

    bool autoActivation() override;
    void setAutoActivation(bool on) override;
    bool systemFonts() override;
    void setSystemFonts(bool on) override;

    std::int64_t createSet(const std::string& name) override;
    std::optional<std::int64_t> setByName(const std::string& name) override;
    bool deleteSet(const std::string& name) override;
    std::vector<FaceSet> sets() override;
    void addToSet(std::int64_t setId, std::int64_t faceId) override;
    void removeFromSet(std::int64_t setId, std::int64_t faceId) override;
    std::vector<std::int64_t> setMembers(std::int64_t setId) override;

    std::vector<AutoRequester> autoRequesters() override;
    void addRequester(std::int64_t faceId, const std::string& application) override;
    void clearRequesters(std::int64_t faceId) override;

    bool autoDeactivation() override;
    void setAutoDeactivation(bool on) override;
    std::string storeUrl() override;
    void setStoreUrl(const std::string& urlTemplate) override;

    bool removeFace(std::int64_t id) override;
    std::optional<std::string> storedContent(const std::string& sha256) override;
    std::vector<FaceUse> faceUse() override;
    // read: list, request, activate and record this workstation's activations; write: also
    // add and remove faces and change sets. Granting read to a writer takes writing away.
    void grant(const std::string& role, LibraryRight right) override;

    void keepLastAnswers() override { connection.rememberAnswers(); }

    const std::string& workstation() const { return machine; }

private:
    void migrate();
    std::string store(const std::filesystem::path& file);
    void dropUnusedContent(const std::vector<std::string>& hashes);
    void notifyChange();
    std::vector<FaceRecord> faces(const std::string& condition, std::vector<PgParam> params);
    std::vector<LinkRecord> links(const std::string& condition, std::vector<PgParam> params);
    std::string setting(const std::string& name, const std::string& fallback);
    void setSetting(const std::string& name, const std::string& value);
    void rollbackQuietly();

    std::string url;
    std::string machine;
    PgConnection connection;
    BusyReporter busyReporter;
    int depth = 0; // open transactions: nested ones join the outermost
    bool notifyOnCommit = false;
    // Files stored in this transaction, so that the faces of a collection read it once.
    std::map<std::filesystem::path, std::string> storedFiles;
};

} // namespace Vellumine
