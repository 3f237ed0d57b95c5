#pragma once

#include "fontmanager/FaceReader.h"
#include "fontmanager/Sqlite.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Vellumine {

// A face of the library. `id` is its container identifier: positive, never reused.
struct FaceRecord {
    std::int64_t id = 0;
    std::filesystem::path file;
    long faceIndex = 0;
    std::string postScriptName;
    std::string family;
    std::string style;
    FaceType type = FaceType::trueType;
    std::filesystem::path metricsFile; // Type 1 metrics beside the outlines, or empty
    bool active = false;
    // A face fontconfig lists outside vellumine's activation folder: active, with no
    // container (id 0), since vellumine can neither activate nor deactivate it.
    bool onSystem = false;
};

// A link that activation made, with what it pointed to when it was made.
struct LinkRecord {
    std::int64_t faceId = 0;
    std::filesystem::path link;
    std::filesystem::path target;
    std::filesystem::path metricsLink;
    std::filesystem::path metricsTarget;
    // The application whose font request activated the face on its own; empty when a user
    // (or an application's explicit activation request) asked for it.
    std::string autoFor;
};

// An application that named itself in a request and hears of library changes.
struct TargetApplication {
    std::string signature;
    std::string eventClass;
};

// A show or buy request, kept so that the user sees what an application asked for.
struct WindowlessRequest {
    std::int64_t id = 0;
    std::string kind; // "show" or "buy"
    std::int64_t unixTime = 0;
    std::string application;
    std::string postScriptName;
    std::string containerID;
    std::string type;
};

// One entry of the change journal: every library change, from the command line or from a
// request, so that the serving process can tell applications what kind of change it was.
struct LibraryChange {
    std::int64_t id = 0;
    std::string kind; // the VLM4 event ID: "FSBC" or "FFSC"
    std::int64_t unixTime = 0;
};

// A named collection of faces that the user activates and deactivates together.
struct FaceSet {
    std::int64_t id = 0;
    std::string name;
    std::int64_t faceCount = 0;
};

// An application that asked for a face vellumine activated on its own: the face stays while
// one of them runs.
struct AutoRequester {
    std::int64_t faceId = 0;
    std::string application; // the signature from <targetApp>
};

struct AddedFace {
    std::int64_t id = 0;
    bool isNew = false;
};

// The font library in SQLite.
class Catalog {
public:
    static constexpr int schemaVersion = 3;
    using Access = SqliteDatabase::Access;
    // Told when the catalog was busy and the work is tried again.
    using BusyReporter = std::function<void(const std::string& message)>;

    // Opens or creates the catalog file (and its folder) and brings its schema up to date.
    // Read-only access neither creates nor changes anything.
    explicit Catalog(const std::filesystem::path& file, Access access = Access::readWrite,
                     BusyReporter busyReporter = {});

    // Read-write where the catalog can be written, else read-only: for commands that only
    // read, so that a catalog the user may not write can still be listed.
    static std::unique_ptr<Catalog> openForReading(const std::filesystem::path& file);

    SqliteDatabase& database() { return db; }
    const std::filesystem::path& file() const { return db.file(); }

    // Runs `work` in one write transaction; when the catalog stays busy past the time-out,
    // reports it and tries again a few times before letting SqliteBusy through. `work` must
    // be safe to run again after a rollback.
    void write(const std::function<void()>& work);

    // Adds or refreshes a face; the (file, face index) pair keeps its identifier.
    AddedFace addFace(const std::filesystem::path& file, const std::filesystem::path& metricsFile,
                      const FaceDescription& face);

    std::optional<FaceRecord> face(std::int64_t id);
    std::vector<FaceRecord> facesByPostScriptName(const std::string& name);
    // Case-insensitive (ASCII) family match; every style of the family.
    std::vector<FaceRecord> facesByFamily(const std::string& family);
    std::vector<FaceRecord> facesOfFile(const std::filesystem::path& file);
    std::vector<FaceRecord> allFaces();
    // Rows whose type this vellumine does not know (written by another version): left out
    // of every face query, so that they cannot break listings; `check` names them.
    std::vector<std::pair<std::int64_t, std::string>> facesOfUnknownType();
    std::int64_t faceCount();
    std::int64_t activeFaceCount();

    void recordLink(const LinkRecord& link);
    std::optional<LinkRecord> link(std::int64_t faceId);
    std::vector<LinkRecord> allLinks();
    std::vector<LinkRecord> autoActivatedLinks();
    // The user (or an application's explicit request) wants this active face: it no longer
    // counts as activated automatically.
    void claimLink(std::int64_t faceId);
    // How many faces use this link (faces of one collection share one).
    std::int64_t linkUsers(const std::filesystem::path& link);
    void removeLink(std::int64_t faceId);

    void rememberTarget(const TargetApplication& target);
    std::vector<TargetApplication> targets();

    void recordWindowlessRequest(const WindowlessRequest& request);
    // Newest first; `kind` empty for both kinds.
    std::vector<WindowlessRequest> windowlessRequests(const std::string& kind, int limit);

    std::int64_t recordChange(const std::string& kind);
    std::int64_t lastChange();
    std::vector<LibraryChange> changesAfter(std::int64_t id);

    // User settings, kept in the catalog so that the server and the command line share them.
    bool autoActivation();
    void setAutoActivation(bool on);
    // Whether font requests count the fonts fontconfig lists besides vellumine's own.
    bool systemFonts();
    void setSystemFonts(bool on);

    // --- Schema 3: sets, the requesters of automatic activations, text settings ---

    // The set's identifier, made when no set has that name.
    std::int64_t createSet(const std::string& name);
    std::optional<std::int64_t> setByName(const std::string& name);
    // Removes the set (never its faces); false when no set has that name.
    bool deleteSet(const std::string& name);
    std::vector<FaceSet> sets();
    // Adding a member twice changes nothing.
    void addToSet(std::int64_t setId, std::int64_t faceId);
    void removeFromSet(std::int64_t setId, std::int64_t faceId);
    std::vector<std::int64_t> setMembers(std::int64_t setId);

    // Every application that asked for a face still active automatically: the one it was
    // activated for (LinkRecord::autoFor) and those that asked for it since.
    std::vector<AutoRequester> autoRequesters();
    void addRequester(std::int64_t faceId, const std::string& application);
    // Forgets who asked for the face, besides the one it is activated for.
    void clearRequesters(std::int64_t faceId);

    // Whether faces activated for an application are deactivated once it has left.
    bool autoDeactivation();
    void setAutoDeactivation(bool on);
    // The store a buy request opens; "%s" stands for the font's name. Empty: the default.
    std::string storeUrl();
    void setStoreUrl(const std::string& urlTemplate);

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
