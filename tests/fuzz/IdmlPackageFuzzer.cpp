// Feeds arbitrary bytes to Galley as the container of an IDML package: the ZIP reader, every
// part it reads, the styles, the stories, the font report in both forms, and an edit of the
// first story written back out. Opening may fail only with IdmlError.
#include "host/app/FontsReport.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/InstalledFace.h"
#include "host/idml/IdmlError.h"
#include "host/session/GalleySession.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

struct OneFace : Galley::FaceSource {
    std::vector<Galley::InstalledFace> load() override {
        return {{.postscriptName = "C059-Roman",
                 .families = {"C059"},
                 .styles = {"Roman"},
                 .fullName = "C059 Roman",
                 .file = "/fonts/C059-Roman.t1",
                 .type = IPMFont::kType1}};
    }
    bool changedSinceLoad() override { return false; }
};

// Smaller than Galley's own, so that each input stays fast; the checks are the same.
Galley::PackageLimits fuzzLimits() {
    Galley::PackageLimits limits;
    limits.maxPartBytes = 4u << 20;
    limits.maxTotalBytes = 8u << 20;
    limits.maxPartNodes = 50000;
    limits.maxTotalNodes = 100000;
    return limits;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static OneFace faces;
    static Galley::GalleySession session(faces);
    std::string bytes(reinterpret_cast<const char*>(data), size);
    try {
        auto document = Galley::IdmlDocument::open(
            Galley::IdmlPackage::fromBytes("fuzz.idml", std::move(bytes), fuzzLimits()),
            session.fonts());
        auto entries = Galley::fontReport(*document);
        Galley::formatFontTable(entries);
        Galley::formatFontJson("fuzz.idml", entries);
        if (!document->stories().empty()) {
            Galley::Story& story = *document->stories().front();
            story.applyLocalFont(story.length() / 3, story.length() / 3 + 1,
                                 {std::string("C059"), std::string("Roman")});
            story.serialize();
        }
    } catch (const Galley::IdmlError&) {
        return 0;
    }
    return 0;
}
