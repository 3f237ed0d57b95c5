#pragma once

#include "IdmlBuilder.h"
#include "host/document/FontUsage.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/fonts/InstalledFace.h"
#include "host/session/GalleySession.h"
#include "sdk/IAttributeStrand.h"
#include "sdk/ICommand.h"
#include "sdk/IComposeScanner.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocFontMgr.h"
#include "sdk/IDocument.h"
#include "sdk/IFontFamily.h"
#include "sdk/IObserver.h"
#include "sdk/IStoryList.h"
#include "sdk/ITextAttrUtils.h"
#include "sdk/ITextModel.h"
#include "sdk/IWorkspace.h"
#include "sdk/TextAttributes.h"
#include "tests/support/ListedFaces.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace HostTest {

// A folder under /tmp, removed with everything in it.
class TempDir {
public:
    TempDir() {
        std::string pattern = "/tmp/galley-test-XXXXXX";
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("cannot create a temporary folder");
        path_ = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::string& path() const { return path_; }
    std::string file(const std::string& name) const { return path_ + "/" + name; }
    long entries() const {
        std::filesystem::directory_iterator it(path_);
        return std::distance(begin(it), end(it));
    }

private:
    std::string path_;
};

// A fontconfig world of its own: FONTCONFIG_FILE points at a configuration that scans only
// the world's font folder, where tests link Debian-packaged font files.
class PrivateFontconfig {
public:
    PrivateFontconfig() {
        std::filesystem::create_directories(dir_.file("fonts"));
        // A configured folder that does not exist, as ~/.fonts on most machines.
        std::ofstream(dir_.file("fonts.conf"))
            << "<?xml version=\"1.0\"?>\n<fontconfig><dir>" << dir_.file("fonts") << "</dir><dir>"
            << dir_.file("absent") << "</dir><cachedir>" << dir_.file("cache")
            << "</cachedir></fontconfig>\n";
        ::setenv("FONTCONFIG_FILE", dir_.file("fonts.conf").c_str(), 1);
    }
    ~PrivateFontconfig() { ::unsetenv("FONTCONFIG_FILE"); }
    void link(const std::string& file) const {
        std::filesystem::create_symlink(
            file, dir_.file("fonts/" + std::filesystem::path(file).filename().string()));
    }
    // The world's font folder, where `link` puts its links.
    std::string fontFolder() const { return dir_.file("fonts"); }

private:
    TempDir dir_;
};

// Fontconfig as Galley uses it, inside a private world.
struct FontconfigWorld : PrivateFontconfig, Galley::FontconfigFontSystem {};

struct RecordingObserver : IObserver {
    std::vector<std::pair<ClassID, PMIID>> changes;
    void Update(ClassID change, ISubject*, PMIID protocol, void*) override {
        changes.emplace_back(change, protocol);
    }
};

// Replaces, in every story, runs whose face has PostScript name `from` by the installed font
// the session knows as `to`, walking the text through the SDK the way the plug-in does.
// Returns the number of runs changed.
inline int replaceFontThroughSdk(IDocument* document, const std::string& from,
                                 const std::string& to) {
    IDataBase* db = document->GetDataBase();
    IStoryList* stories = document->GetStoryList();
    ITextAttrUtils* utils = gSession->GetTextAttrUtils();
    int changed = 0;
    for (int32 s = 0; s < stories->GetTextModelCount(); ++s) {
        ITextModel* model = db->InstantiateTextModel(stories->GetNthTextModelUID(s));
        IAttributeStrand* strand = model->QueryFontStrand();
        IComposeScanner* scanner = model->QueryComposeScanner();
        for (TextIndex at = 0, length; at < model->TotalLength(); at += length) {
            if ((length = strand->GetRunLength(at)) <= 0)
                break;
            const ITextAttrUID* family = scanner->QueryFontFamilyAttribute(at, at + length);
            const ITextAttrFont* face = scanner->QueryFontFaceAttribute(at, at + length);
            IFontFamily* fontFamily =
                family ? db->InstantiateFontFamily(family->GetUIDData()) : nullptr;
            if (!fontFamily || !face ||
                fontFamily->GetFacePostScriptName(face->GetFontName()).GetUTF8String() != from)
                continue;
            IPMFont* font = gSession->GetFontMgr()->QueryFont(PMString(to));
            if (!font)
                return changed;
            auto apply = [&](const ITextAttribute& attribute) {
                auto command = utils->BuildApplyTextAttrCmd(model, at, length, attribute);
                return CmdUtils::ProcessCommand(command.get()) == kSuccess;
            };
            UID uid = document->GetDocWorkSpace()->GetDocFontMgr()->GetFontFamilyUID(font);
            if (!apply(*utils->CreateFontFamilyAttribute(uid)) ||
                !apply(*utils->CreateFontFaceAttribute(font->GetStyleName())))
                break;
            ++changed;
        }
    }
    return changed;
}

inline std::string readFile(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline std::string writeDescribed(const TempDir& dir, const std::string& description,
                                  const std::string& name = "doc.idml") {
    IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(description), dir.file(name));
    return dir.file(name);
}

// "Family/Style" of the resolved face of every run, story after story.
inline std::vector<std::string> runFonts(const Galley::IdmlDocument& document) {
    std::vector<std::string> fonts;
    for (const auto& story : document.stories())
        for (const auto& run : story->runs()) {
            Galley::FontKey key = Galley::resolveRunFont(run, document.styles());
            fonts.push_back(key.family + "/" + key.style);
        }
    return fonts;
}

// "Family/Style" of each usage entry.
inline std::vector<std::string>
usageNames(const std::vector<Galley::DocumentFontUsage::Entry>& list) {
    std::vector<std::string> names;
    for (const auto& entry : list)
        names.push_back(entry.key.family + "/" + entry.key.style);
    return names;
}

// A temporary folder and a session over `faces`, started when first needed (so that a test
// can fill in the faces first).
template <class Faces>
class SessionTest : public ::testing::Test {
protected:
    TempDir dir;
    Faces faces;
    std::unique_ptr<Galley::GalleySession> session;
    Galley::SessionFontMgr& fonts() {
        if (!session)
            session = std::make_unique<Galley::GalleySession>(faces);
        return session->fonts();
    }
    std::unique_ptr<Galley::IdmlDocument> open(const std::string& description) {
        return Galley::IdmlDocument::open(writeDescribed(dir, description), fonts());
    }
};

} // namespace HostTest
