#pragma once

#include "IdmlBuilder.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/InstalledFace.h"
#include "sdk/IDocument.h"
#include "sdk/IObserver.h"

#include <memory>
#include <string>
#include <vector>

namespace HostTest {

// A folder under /tmp, removed with everything in it.
class TempDir {
public:
    TempDir();
    ~TempDir();
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

// Installed faces for tests that leave fontconfig out.
class FixedFaces : public Galley::FaceSource {
public:
    std::vector<Galley::InstalledFace> faces;
    bool changed = false;
    std::vector<Galley::InstalledFace> load() override {
        changed = false;
        return faces;
    }
    bool changedSinceLoad() override { return changed; }
};

Galley::InstalledFace face(const std::string& postscriptName, const std::string& family,
                           const std::string& style, IPMFont::FontType type,
                           const std::string& file = "");

// A fontconfig world of its own: FONTCONFIG_FILE points at a configuration that scans only
// `fonts()` (where tests link Debian-packaged font files) and caches in the world's folder.
class PrivateFontconfig {
public:
    PrivateFontconfig();
    ~PrivateFontconfig();
    std::string fonts() const { return dir_.file("fonts"); }
    // Links a font file into the scanned folder.
    void link(const std::string& fontFile) const;

private:
    TempDir dir_;
    std::string previous_;
    bool hadPrevious_ = false;
};

// Counts the changes an observer is told of.
struct RecordingObserver : IObserver {
    std::vector<std::pair<ClassID, PMIID>> changes;
    void Update(ClassID change, ISubject*, PMIID protocol, void*) override {
        changes.emplace_back(change, protocol);
    }
};

// Replaces, in every story, runs whose face has PostScript name `from` by the installed font
// the session knows as `to`, walking the text through the SDK the way the plug-in does.
// Returns the number of runs changed.
int replaceFontThroughSdk(IDocument* document, const std::string& from, const std::string& to);

// The package's parts, by name, in container order.
std::vector<std::pair<std::string, std::string>> readParts(const std::string& path);
std::string readFile(const std::string& path);

// Writes the described package into `dir` and opens it.
std::string writeDescribed(const TempDir& dir, const std::string& description,
                           const std::string& name = "doc.idml");
std::unique_ptr<Galley::IdmlDocument>
openDescribed(const TempDir& dir, Galley::SessionFontMgr& fonts, const std::string& description);
// The resolved face of every run, story after story.
std::vector<Galley::FontKey> runFonts(const Galley::IdmlDocument& document);
// "Family/Style" of each usage entry.
std::vector<std::string> usageNames(const std::vector<Galley::DocumentFontUsage::Entry>& list);

} // namespace HostTest
