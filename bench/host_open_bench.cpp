// Opening and scanning a large generated IDML document (2,000 stories, 300 fonts), against
// merely unzipping every part of the same package in the same run.
#include "IdmlBuilder.h"
#include "host/document/IdmlDocument.h"
#include "host/fonts/FontconfigFontSystem.h"
#include "host/idml/IdmlPackage.h"
#include "host/fonts/SessionFontMgr.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

constexpr int kStories = 2000;
constexpr int kFonts = 300;

// A private fontconfig world with the URW base35 faces, so the scan checks real fonts.
struct World {
    std::string root;
    std::string document;

    World() {
        std::string pattern = "/tmp/galley-bench-XXXXXX";
        root = ::mkdtemp(pattern.data());
        std::ofstream(root + "/fonts.conf")
            << "<?xml "
               "version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/opentype/urw-base35</dir>"
            << "<dir>/usr/share/fonts/type1/urw-base35</dir><cachedir>" << root
            << "/cache</cachedir></fontconfig>\n";
        ::setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
        document = root + "/large.idml";
        IdmlTestKit::writeIdml(largeDocument(), document);
    }
    ~World() { std::filesystem::remove_all(root); }

    static IdmlTestKit::DocumentDef largeDocument() {
        IdmlTestKit::DocumentDef d;
        for (int f = 0; f < kFonts; ++f) {
            std::string family = "Bench Family " + std::to_string(f / 4);
            std::string style = "Style" + std::to_string(f % 4);
            d.fonts.push_back({family, style, "BenchFamily" + std::to_string(f / 4) + "-" + style,
                               "OpenTypeCFF"});
        }
        for (int p = 0; p < 20; ++p)
            d.paragraphStyles.push_back({"P" + std::to_string(p),
                                         p ? "P0" : "",
                                         {d.fonts[p].family, d.fonts[p].style, p % 2 == 0}});
        for (int s = 0; s < kStories; ++s) {
            IdmlTestKit::StoryDef story;
            for (int para = 0; para < 5; ++para) {
                IdmlTestKit::ParagraphDef paragraph{"P" + std::to_string((s + para) % 20), {}, {}};
                for (int r = 0; r < 4; ++r) {
                    const auto& font = d.fonts[(s * 7 + para * 3 + r) % kFonts];
                    paragraph.runs.push_back({"",
                                              {font.family, font.style, r % 2 == 1},
                                              "Some text of a run, long enough to be typical.\n"});
                }
                story.paragraphs.push_back(paragraph);
            }
            d.stories.push_back(story);
        }
        return d;
    }
};

World& world() {
    static World instance;
    return instance;
}

void BM_UnzipPackage(benchmark::State& state) {
    for (auto _ : state) {
        auto package = Galley::IdmlPackage::read(world().document);
        for (const std::string& name : package.partNames())
            benchmark::DoNotOptimize(package.inflate(name));
    }
}

void BM_OpenDocument(benchmark::State& state) {
    Galley::FontconfigFontSystem fontconfig;
    Galley::SessionFontMgr fonts(fontconfig);
    for (auto _ : state)
        benchmark::DoNotOptimize(Galley::IdmlDocument::open(world().document, fonts));
}

void BM_RescanFontUsage(benchmark::State& state) {
    Galley::FontconfigFontSystem fontconfig;
    Galley::SessionFontMgr fonts(fontconfig);
    auto document = Galley::IdmlDocument::open(world().document, fonts);
    for (auto _ : state) {
        document->GetDocumentFontUsage()->Update();
        benchmark::DoNotOptimize(document->usage().missing().size());
    }
    state.counters["fonts"] =
        static_cast<double>(document->usage().missing().size() + document->usage().used().size());
}

void BM_LoadFontconfig(benchmark::State& state) {
    Galley::FontconfigFontSystem fontconfig;
    for (auto _ : state)
        benchmark::DoNotOptimize(fontconfig.load());
}

} // namespace

BENCHMARK(BM_UnzipPackage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenDocument)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RescanFontUsage)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadFontconfig)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
