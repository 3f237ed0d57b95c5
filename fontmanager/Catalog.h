#pragma once

#include "fontmanager/CatalogError.h"
#include "fontmanager/FaceReader.h"

#include <cstdint>
#include <filesystem>
#include <functional>
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
    // A library that holds the bytes (PostgreSQL): the SHA-256 of the file's and the
    // metrics file's content, which a workstation activates from its local copy; `file` and
    // `metricsFile` then say where they were added from. Empty where the library only
    // records paths (SQLite).
    std::string contentHash;
    std::string metricsHash;
    // The font file as it was when the face was added (fileStamp()): while the file still
    // has this stamp, activation need not read it again to know it holds the face. Empty
    // where it is not known (faces added by an older vellumine, libraries that hold the bytes).
    std::string fileStamp;
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

// How many workstations have a face active: the ground for licence seat counts.
struct FaceUse {
    std::int64_t faceId = 0;
    std::int64_t workstations = 0;
};

// What `vellumine grant` gives a database role.
enum class LibraryRight { read, write };

struct AddedFace {
    std::int64_t id = 0;
    bool isNew = false;
};

// The font library's catalog: its faces, the links that activated them, the applications
// that hear of changes, the change journal and the user's settings. One interface, several
// databases behind it (see openCatalog() in fontmanager/OpenCatalog.h): SQLite, a file of
// the user's own, is the default.
//
// Every failure is a CatalogError (or a subclass) whose message names the library.
class Catalog {
public:
    // Told when the catalog was busy and the work is tried again.
    using BusyReporter = std::function<void(const std::string& message)>;

    virtual ~Catalog() = default;

    // How messages name the library ("catalog /home/ann/.local/share/vellumine/library.db").
    virtual std::string description() const = 0;
    // The library URL it was opened from ("sqlite:/home/ann/.local/share/vellumine/library.db").
    virtual std::string location() const = 0;
    // Opened for reading only: every change fails.
    virtual bool isReadOnly() const = 0;

    // Runs `work` in one write transaction; when the catalog stays busy, reports it and tries
    // again a few times before giving up. `work` must be safe to run again after a rollback.
    // Inside a transaction, a nested call joins it.
    virtual void write(const std::function<void()>& work) = 0;
    // Runs `work` on one consistent view of the catalog (a read transaction), so that many
    // queries cost one snapshot instead of one each. Inside a transaction, joins it.
    virtual void read(const std::function<void()>& work) = 0;
    // What the database's own consistency check finds wrong, one line each.
    virtual std::vector<std::string> integrityProblems() = 0;

    // Adds or refreshes a face; a face added again keeps its identifier.
    virtual AddedFace addFace(const std::filesystem::path& file,
                              const std::filesystem::path& metricsFile,
                              const FaceDescription& face) = 0;

    virtual std::optional<FaceRecord> face(std::int64_t id) = 0;
    virtual std::vector<FaceRecord> facesByPostScriptName(const std::string& name) = 0;
    // Case-insensitive (ASCII) family match; every style of the family.
    virtual std::vector<FaceRecord> facesByFamily(const std::string& family) = 0;
    virtual std::vector<FaceRecord> facesOfFile(const std::filesystem::path& file) = 0;
    virtual std::vector<FaceRecord> allFaces() = 0;
    // Rows whose type this vellumine does not know (written by another version): left out
    // of every face query, so that they cannot break listings; `check` names them.
    virtual std::vector<std::pair<std::int64_t, std::string>> facesOfUnknownType() = 0;
    virtual std::int64_t faceCount() = 0;
    virtual std::int64_t activeFaceCount() = 0;

    virtual void recordLink(const LinkRecord& link) = 0;
    virtual std::optional<LinkRecord> link(std::int64_t faceId) = 0;
    virtual std::vector<LinkRecord> allLinks() = 0;
    virtual std::vector<LinkRecord> autoActivatedLinks() = 0;
    // The user (or an application's explicit request) wants this active face: it no longer
    // counts as activated automatically.
    virtual void claimLink(std::int64_t faceId) = 0;
    // How many faces use this link (faces of one collection share one).
    virtual std::int64_t linkUsers(const std::filesystem::path& link) = 0;
    virtual void removeLink(std::int64_t faceId) = 0;

    virtual void rememberTarget(const TargetApplication& target) = 0;
    virtual std::vector<TargetApplication> targets() = 0;

    virtual void recordWindowlessRequest(const WindowlessRequest& request) = 0;
    // Newest first; `kind` empty for both kinds.
    virtual std::vector<WindowlessRequest> windowlessRequests(const std::string& kind,
                                                              int limit) = 0;

    virtual std::int64_t recordChange(const std::string& kind) = 0;
    virtual std::int64_t lastChange() = 0;
    virtual std::vector<LibraryChange> changesAfter(std::int64_t id) = 0;

    // User settings, kept in the catalog so that the server and the command line share them.
    virtual bool autoActivation() = 0;
    virtual void setAutoActivation(bool on) = 0;
    // Whether font requests count the fonts fontconfig lists besides vellumine's own.
    virtual bool systemFonts() = 0;
    virtual void setSystemFonts(bool on) = 0;

    // --- Sets, the requesters of automatic activations, and two more settings (SQLite
    // schema 3) ---

    // The set's identifier, made when no set has that name.
    virtual std::int64_t createSet(const std::string& name) = 0;
    virtual std::optional<std::int64_t> setByName(const std::string& name) = 0;
    // Removes the set (never its faces); false when no set has that name.
    virtual bool deleteSet(const std::string& name) = 0;
    virtual std::vector<FaceSet> sets() = 0;
    // Adding a member twice changes nothing.
    virtual void addToSet(std::int64_t setId, std::int64_t faceId) = 0;
    virtual void removeFromSet(std::int64_t setId, std::int64_t faceId) = 0;
    virtual std::vector<std::int64_t> setMembers(std::int64_t setId) = 0;

    // Every application that asked for a face still active automatically: the one it was
    // activated for (LinkRecord::autoFor) and those that asked for it since.
    virtual std::vector<AutoRequester> autoRequesters() = 0;
    virtual void addRequester(std::int64_t faceId, const std::string& application) = 0;
    // Forgets who asked for the face, besides the one it is activated for.
    virtual void clearRequesters(std::int64_t faceId) = 0;

    // Whether faces activated for an application are deactivated once it has left.
    virtual bool autoDeactivation() = 0;
    virtual void setAutoDeactivation(bool on) = 0;
    // The store a buy request opens; "%s" stands for the font's name. Empty: the default.
    virtual std::string storeUrl() = 0;
    virtual void setStoreUrl(const std::string& urlTemplate) = 0;

    // --- A studio's library ---

    // Removes a face from the library (its links' records and set memberships with it, and
    // its bytes when no other face uses them); false when there is no such face. The links
    // on disk are the caller's (Activation) to remove first.
    virtual bool removeFace(std::int64_t id) = 0;
    // The bytes stored under a content hash (FaceRecord::contentHash), or nothing when the
    // library holds none.
    virtual std::optional<std::string> storedContent(const std::string& sha256) = 0;
    // Faces active on at least one workstation, with the number of workstations.
    virtual std::vector<FaceUse> faceUse() = 0;
    // Lets a database role use the library; throws where the library has no roles.
    virtual void grant(const std::string& role, LibraryRight right) = 0;
    // For the server: while a shared library's database is unreachable, queries answer as
    // they last did (changes still fail), so that applications keep getting answers. A
    // library on this machine has nothing to do.
    virtual void keepLastAnswers() {}
};

} // namespace Vellumine
