#include "HostTestSupport.h"

#include "host/document/FontUsage.h"
#include "sdk/IAttributeStrand.h"
#include "sdk/ICommand.h"
#include "sdk/IComposeScanner.h"
#include "sdk/IDataBase.h"
#include "sdk/IDocFontMgr.h"
#include "sdk/IFontFamily.h"
#include "sdk/IFontMgr.h"
#include "sdk/ISession.h"
#include "sdk/IStoryList.h"
#include "sdk/ITextAttrUtils.h"
#include "sdk/ITextModel.h"
#include "sdk/IWorkspace.h"
#include "sdk/TextAttributes.h"

#include <zip.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace HostTest {

TempDir::TempDir() {
    std::string pattern = "/tmp/galley-test-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("cannot create a temporary folder");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Galley::InstalledFace face(const std::string& postscriptName, const std::string& family,
                           const std::string& style, IPMFont::FontType type,
                           const std::string& file) {
    Galley::InstalledFace f;
    f.postscriptName = postscriptName;
    f.families = {family};
    f.styles = {style};
    f.fullName = family + " " + style;
    f.file = file.empty() ? "/fonts/" + postscriptName + "." + std::to_string(type) : file;
    f.type = type;
    return f;
}

PrivateFontconfig::PrivateFontconfig() {
    std::filesystem::create_directories(fonts());
    std::ofstream conf(dir_.file("fonts.conf"));
    conf << "<?xml version=\"1.0\"?>\n<!DOCTYPE fontconfig SYSTEM \"fonts.dtd\">\n<fontconfig>\n"
         << "  <dir>" << fonts() << "</dir>\n  <cachedir>" << dir_.file("cache")
         << "</cachedir>\n</fontconfig>\n";
    conf.close();
    if (const char* previous = std::getenv("FONTCONFIG_FILE")) {
        previous_ = previous;
        hadPrevious_ = true;
    }
    ::setenv("FONTCONFIG_FILE", dir_.file("fonts.conf").c_str(), 1);
}

PrivateFontconfig::~PrivateFontconfig() {
    if (hadPrevious_)
        ::setenv("FONTCONFIG_FILE", previous_.c_str(), 1);
    else
        ::unsetenv("FONTCONFIG_FILE");
}

void PrivateFontconfig::link(const std::string& fontFile) const {
    std::filesystem::create_symlink(
        fontFile, fonts() + "/" + std::filesystem::path(fontFile).filename().string());
}

int replaceFontThroughSdk(IDocument* document, const std::string& from, const std::string& to) {
    IFontMgr* fontMgr = gSession ? gSession->GetFontMgr() : nullptr;
    if (!document || !fontMgr)
        return 0;
    IDocFontMgr* docFontMgr = document->GetDocWorkSpace()->GetDocFontMgr();
    IStoryList* stories = document->GetStoryList();
    int changed = 0;
    for (int32 s = 0; s < stories->GetTextModelCount(); ++s) {
        ITextModel* model =
            document->GetDataBase()->InstantiateTextModel(stories->GetNthTextModelUID(s));
        IAttributeStrand* strand = model ? model->QueryFontStrand() : nullptr;
        if (!strand)
            continue;
        for (TextIndex position = 0; position < model->TotalLength();) {
            int32 length = strand->GetRunLength(position);
            if (length <= 0)
                break;
            IComposeScanner* scanner = model->QueryComposeScanner();
            const ITextAttrUID* family =
                scanner->QueryFontFamilyAttribute(position, position + length);
            const ITextAttrFont* face =
                scanner->QueryFontFaceAttribute(position, position + length);
            IFontFamily* fontFamily =
                family ? document->GetDataBase()->InstantiateFontFamily(family->GetUIDData())
                       : nullptr;
            if (fontFamily && face &&
                fontFamily->GetFacePostScriptName(face->GetFontName()).GetUTF8String() == from) {
                IPMFont* font = fontMgr->QueryFont(PMString(to));
                if (!font)
                    return changed;
                ITextAttrUtils* utils = gSession->GetTextAttrUtils();
                auto familyAttr =
                    utils->CreateFontFamilyAttribute(docFontMgr->GetFontFamilyUID(font));
                auto faceAttr = utils->CreateFontFaceAttribute(font->GetStyleName());
                auto familyCmd = utils->BuildApplyTextAttrCmd(model, position, length, *familyAttr);
                if (CmdUtils::ProcessCommand(familyCmd.get()) != kSuccess)
                    break;
                auto faceCmd = utils->BuildApplyTextAttrCmd(model, position, length, *faceAttr);
                if (CmdUtils::ProcessCommand(faceCmd.get()) != kSuccess)
                    break;
                ++changed;
            }
            position += length;
        }
    }
    return changed;
}

std::vector<std::pair<std::string, std::string>> readParts(const std::string& path) {
    int code = 0;
    zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, &code);
    if (!archive)
        throw std::runtime_error("cannot open " + path);
    std::vector<std::pair<std::string, std::string>> parts;
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
        zip_stat_t stat;
        zip_stat_index(archive, i, 0, &stat);
        std::string data(stat.size, '\0');
        zip_file_t* file = zip_fopen_index(archive, i, 0);
        zip_fread(file, data.data(), data.size());
        zip_fclose(file);
        parts.emplace_back(stat.name, data);
    }
    zip_discard(archive);
    return parts;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string writeDescribed(const TempDir& dir, const std::string& description,
                           const std::string& name) {
    std::string path = dir.file(name);
    IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(description), path);
    return path;
}

std::unique_ptr<Galley::IdmlDocument>
openDescribed(const TempDir& dir, Galley::SessionFontMgr& fonts, const std::string& description) {
    return Galley::IdmlDocument::open(writeDescribed(dir, description), fonts);
}

std::vector<Galley::FontKey> runFonts(const Galley::IdmlDocument& document) {
    std::vector<Galley::FontKey> fonts;
    for (const auto& story : document.stories()) {
        for (const auto& run : story->runs())
            fonts.push_back(Galley::resolveRunFont(run, document.styles()));
    }
    return fonts;
}

std::vector<std::string> usageNames(const std::vector<Galley::DocumentFontUsage::Entry>& list) {
    std::vector<std::string> names;
    for (const auto& entry : list)
        names.push_back(entry.key.family + "/" + entry.key.style);
    return names;
}

} // namespace HostTest
