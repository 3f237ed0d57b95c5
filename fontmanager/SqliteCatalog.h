#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/Sqlite.h"

#include <filesystem>
#include <memory>

namespace Vellumine {

// The font library in an SQLite file of the user's own (library URL "sqlite:PATH").
class SqliteCatalog : public Catalog {
public:
    static constexpr int schemaVersion = 4;
    using Access = SqliteDatabase::Access;

    // Opens or creates the catalog file (and its folder) and brings its schema up to date.
    // Read-only access neither creates nor changes anything.
    explicit SqliteCatalog(const std::filesystem::path& file, Access access = Access::readWrite,
                           BusyReporter busyReporter = {});

    // Read-write where the catalog can be written, else read-only: for commands that only
    // read, so that a catalog the user may not write can still be listed.
    static std::unique_ptr<SqliteCatalog> openForReading(const std::filesystem::path& file);

    SqliteDatabase& database() { return db; }
    const std::filesystem::path& file() const { return db.file(); }

    std::string description() const override { return db.description(); }
    std::string location() const override { return "sqlite:" + db.file().string(); }
    bool isReadOnly() const override { return db.isReadOnly(); }

    // When the catalog stays busy past the time-out, lets SqliteBusy through.
    void write(const std::function<void()>& work) override;
    void read(const std::function<void()>& work) override;
    // SQLite's quick check.
    std::vector<std::string> integrityProblems() override;

    // The (file, face index) pair keeps its identifier.
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
    // An SQLite library records paths only: nothing is stored.
    std::optional<std::string> storedContent(const std::string&) override { return {}; }
    // One workstation: every active face counts once.
    std::vector<FaceUse> faceUse() override;
    // The file's permissions decide who may read or change it.
    void grant(const std::string& role, LibraryRight right) override;

private:
    bool setting(const std::string& name);
    void setSetting(const std::string& name, bool on);
    std::string textSetting(const std::string& name);
    void setTextSetting(const std::string& name, const std::string& value);
    void retrying(const std::function<void()>& work);
    void migrate();
    std::vector<FaceRecord> faces(SqliteStatement& statement);

    SqliteDatabase db;
    BusyReporter busyReporter;
};

} // namespace Vellumine
