// A studio's library on PostgreSQL against the user's own SQLite file, in one run on one
// machine: a font request for 50 fonts from a library of 100,000 faces, and `add` of
// 10,000 faces. The PostgreSQL database is a private cluster's (unix socket, fsync off, as
// the tests run it), so the figures are the catalog's own costs, without a network.
//
//   cmake -S . -B build-bench -G Ninja -DVLM_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release
//   cmake --build build-bench --target studio_library_bench
//   build-bench/bench/studio_library_bench
//
// The fonts are made at start (fontTools' FontBuilder through /usr/bin/python3): 50 small
// TrueType fonts with names of their own that the request asks for, and 10,000 for the add.
// The other 99,950 faces of the request's library are catalog rows that share one file.
//
// BM_FontRequest/<backend>/<activating>: the request answered in process (the server's
// work without the bus); activating 1 deactivates the 50 faces before each request, so
// that every request activates them again (from the workstation's cache for PostgreSQL),
// activating 0 finds them active. BM_Add/<backend>: adding the 10,000 files to an empty
// library (faces_per_s in wall-clock time). Counters on the PostgreSQL rows: x_sqlite, its
// time over SQLite's in this run.

#include "FontFixtures.h"
#include "PrivatePostgres.h"

#include "fontmanager/Activation.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/OpenCatalog.h"
#include "fontmanager/RequestDispatcher.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>

namespace {

using namespace Vellumine;

constexpr int requestedFonts = 50;
constexpr int libraryFaces = 100000;
constexpr int addedFaces = 10000;

const char* const fontMaker = R"(
import sys
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
folder, prefix, count = sys.argv[1], sys.argv[2], int(sys.argv[3])
for i in range(count):
    fb = FontBuilder(1000, isTTF=True)
    fb.setupGlyphOrder([".notdef", "A"])
    fb.setupCharacterMap({65: "A"})
    pen = TTGlyphPen(None)
    pen.moveTo((100, 0)); pen.lineTo((100, 700)); pen.lineTo((500, 700)); pen.closePath()
    glyph = pen.glyph()
    fb.setupGlyf({".notdef": glyph, "A": glyph})
    fb.setupHorizontalMetrics({".notdef": (600, 100), "A": (600, 100)})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": "%s %d" % (prefix, i), "styleName": "Regular",
                       "psName": "%s-%d" % (prefix, i)})
    fb.setupOS2()
    fb.setupPost()
    fb.save("%s/%s-%d.ttf" % (folder, prefix, i))
)";

struct Backend {
    LibraryLocation location;
    std::unique_ptr<Catalog> catalog;
    std::unique_ptr<Activation> activation;
    std::unique_ptr<LibraryChanges> changes;
    std::unique_ptr<RequestDispatcher> dispatcher;
};

struct World {
    VellumineTest::ScratchFolder scratch;
    VellumineTest::PrivatePostgres& cluster = VellumineTest::PrivatePostgres::shared();
    std::map<std::string, Backend> backends; // "sqlite", "postgresql"
    std::vector<std::int64_t> requestedIds[2];
    std::string request;
    std::map<std::string, double> meanMicros; // per benchmark name, for the ratios
};

World* world = nullptr;

bool makeFonts(const std::filesystem::path& folder, const std::string& prefix, int count) {
    std::filesystem::create_directories(folder);
    const auto script = world->scratch.path() / "make-fonts.py";
    std::ofstream(script) << fontMaker;
    const std::string command = "/usr/bin/python3 '" + script.string() + "' '" + folder.string() +
                                "' " + prefix + " " + std::to_string(count);
    return std::system(command.c_str()) == 0;
}

// The 50 requested fonts, then 99,950 rows sharing one file, in one transaction.
void fillLibrary(Catalog& catalog) {
    FaceReader reader;
    LibraryImporter(catalog, reader).add({world->scratch.path() / "requested"});
    const auto filler = world->scratch.path() / "requested" / "Wanted-0.ttf";
    catalog.write([&] {
        for (int i = requestedFonts; i < libraryFaces; ++i) {
            const std::string name = "Filler-" + std::to_string(i);
            catalog.addFace(
                filler, {},
                {i, name, "Filler " + std::to_string(i / 4), "Regular", FaceType::trueType});
        }
        catalog.setSystemFonts(false);
    });
}

Backend& open(const std::string& kind, const LibraryLocation& location) {
    Backend& backend = world->backends[kind];
    backend.location = location;
    backend.catalog = openCatalog(location);
    const auto folder = world->scratch.path() / ("fonts-" + kind);
    backend.activation =
        std::make_unique<Activation>(*backend.catalog, folder, world->scratch.path() / "cache");
    backend.changes =
        std::make_unique<LibraryChanges>(*backend.catalog, [](const std::string&) { return 0; });
    backend.dispatcher = std::make_unique<RequestDispatcher>(*backend.catalog, *backend.activation,
                                                             *backend.changes);
    return backend;
}

bool startWorld() {
    world = new World;
    VellumineTest::usePrivateXdgFolders(world->scratch.path());
    if (!world->cluster.available()) {
        std::fprintf(stderr, "no private PostgreSQL cluster: %s\n",
                     world->cluster.whyNot().c_str());
        return false;
    }
    if (!makeFonts(world->scratch.path() / "requested", "Wanted", requestedFonts) ||
        !makeFonts(world->scratch.path() / "added", "Added", addedFaces)) {
        std::fprintf(stderr, "cannot make the fonts (fontTools for /usr/bin/python3?)\n");
        return false;
    }
    open("sqlite", LibraryLocation::sqliteFile(world->scratch.path() / "library.db"));
    open("postgresql", LibraryLocation::parse(world->cluster.createDatabase(), "bench"));
    for (auto& [kind, backend] : world->backends) {
        fillLibrary(*backend.catalog);
    }
    world->request = "<cmd>fontRequest</cmd>\n<targetApp>InDn</targetApp>\n";
    for (int i = 0; i < requestedFonts; ++i) {
        world->request += "<font>\n<syncID>" + std::to_string(i) + "</syncID>\n<psName>Wanted-" +
                          std::to_string(i) + "</psName>\n</font>\n";
    }
    world->request += "</cmd>\n";
    return true;
}

void deactivateAll(Backend& backend) {
    for (const auto& link : backend.catalog->allLinks()) {
        backend.activation->deactivate(link.faceId);
    }
}

void reportRatio(benchmark::State& state, const std::string& kind, const std::string& name,
                 double micros) {
    world->meanMicros[kind + name] = micros;
    const auto baseline = world->meanMicros.find("sqlite" + name);
    if (kind == "postgresql" && baseline != world->meanMicros.end()) {
        state.counters["x_sqlite"] = micros / baseline->second;
    }
}

void BM_FontRequest(benchmark::State& state) {
    const std::string kind = state.range(0) == 0 ? "sqlite" : "postgresql";
    const bool activating = state.range(1) != 0;
    Backend& backend = world->backends.at(kind);
    std::chrono::duration<double, std::micro> spent{};
    for (auto _ : state) {
        if (activating) {
            state.PauseTiming();
            deactivateAll(backend);
            state.ResumeTiming();
        }
        const auto start = std::chrono::steady_clock::now();
        const std::string reply = backend.dispatcher->answer(world->request);
        spent += std::chrono::steady_clock::now() - start;
        if (reply.find("<isActive>true</isActive>") == std::string::npos) {
            state.SkipWithError(("no font active in the reply: " + reply.substr(0, 300)).c_str());
            break;
        }
        benchmark::DoNotOptimize(reply);
    }
    reportRatio(state, kind, "request" + std::to_string(activating),
                spent.count() / static_cast<double>(state.iterations()));
}
BENCHMARK(BM_FontRequest)
    ->ArgNames({"postgresql", "activating"})
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({0, 1})
    ->Args({1, 1})
    ->Unit(benchmark::kMillisecond);

void BM_Add(benchmark::State& state) {
    const std::string kind = state.range(0) == 0 ? "sqlite" : "postgresql";
    std::chrono::duration<double, std::micro> spent{};
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const LibraryLocation location =
            kind == "sqlite"
                ? LibraryLocation::sqliteFile(world->scratch.path() /
                                              ("add-" + std::to_string(round++) + ".db"))
                : LibraryLocation::parse(world->cluster.createDatabase(), "bench");
        const auto catalog = openCatalog(location);
        FaceReader reader;
        LibraryImporter importer(*catalog, reader);
        state.ResumeTiming();
        const auto start = std::chrono::steady_clock::now();
        const ImportReport report = importer.add({world->scratch.path() / "added"});
        spent += std::chrono::steady_clock::now() - start;
        if (report.facesAdded != addedFaces) {
            state.SkipWithError("not every face was added");
            break;
        }
    }
    const double micros = spent.count() / static_cast<double>(state.iterations());
    state.counters["faces_per_s"] = addedFaces / (micros / 1e6);
    reportRatio(state, kind, "add", micros);
}
BENCHMARK(BM_Add)
    ->ArgName("postgresql")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!startWorld()) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete world;
    return 0;
}
