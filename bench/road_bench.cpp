// The main road, end to end: `galley --batch` opens a document whose 50 fonts are all
// missing and all held once in vellumine's library; the plug-in asks, vellumine activates
// them on the request, Galley's font-folder watch sees them arrive and the progress dialog
// closes itself. Timed until galley has exited (0: every font installed).
//
// The baseline, in the same run, is one font request round trip to the same vellumine
// (one font, through the session bus). Counter x_roundtrip: the road over the round trip.
// Goal: the road under a second, with no wait on the 5-second refresh period.
//
//   cmake -S . -B build-bench -G Ninja -DVLM_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release
//   cmake --build build-bench --target road_bench galley vellumine vellumine-link
//   build-bench/bench/road_bench
#include "IdmlBuilder.h"
#include "PrivateSession.h"
#include "QuietProcess.h"

#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/SqliteCatalog.h"
#include "platform/linux/DBusAppEvents.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace {

constexpr int kFonts = 50;

struct World {
    VlmTest::PrivateSession session;
    std::string document;
    std::string oneFontRequest;
    std::unique_ptr<Platform::Linux::DBusAppEvents> bus;
};
World* world = nullptr;

std::string fontEntry(const Vellumine::FaceRecord& face) {
    return "font \"" + face.family + "\" \"" + face.style + "\" " + face.postScriptName +
           " OpenTypeCFF\n";
}

bool startWorld() {
    world = new World;
    if (!world->session.ok())
        return false;
    const std::string root = world->session.root();
    std::ofstream(root + "/fonts.conf")
        << "<?xml version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir><dir>"
        << world->session.dataHome() << "/fonts</dir><cachedir>" << root
        << "/fc-cache</cachedir></fontconfig>\n";
    setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
    std::filesystem::create_directories(world->session.dataHome() + "/fonts");

    Vellumine::SqliteCatalog catalog(Vellumine::LibraryPaths::fromEnvironment().catalogFile());
    Vellumine::FaceReader reader;
    Vellumine::LibraryImporter(catalog, reader)
        .add({"/usr/share/fonts/opentype/urw-base35",
              "/usr/share/texmf/fonts/opentype/public/tex-gyre"});
    std::string description = "pstyle Body font=\"DejaVu Sans\" style=Book\nfont \"DejaVu Sans\" "
                              "Book DejaVuSans TrueType\n";
    std::string story = "story\npara pstyle=Body\n";
    int fonts = 0;
    for (const auto& face : catalog.allFaces()) {
        if (fonts == kFonts || face.postScriptName.empty())
            continue;
        description += fontEntry(face);
        story += "run font=\"" + face.family + "\" style=\"" + face.style + "\" text=\"" +
                 face.postScriptName + " \"\n";
        if (fonts == 0)
            world->oneFontRequest =
                "<cmd>fontRequest</cmd>\n<protocolVersion>1.00</protocolVersion>\n"
                "<targetApp>InDn</targetApp>\n<font>\n<syncID>1</syncID>\n<psName>" +
                face.postScriptName + "</psName>\n<type>OT_T1</type>\n</font>\n</cmd>\n";
        ++fonts;
    }
    world->document = root + "/fifty.idml";
    IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(description + story), world->document);
    world->session.spawn({VELLUMINE_EXECUTABLE, "serve"});
    int status = 0;
    world->bus =
        Platform::Linux::DBusAppEvents::openAddress(world->session.busAddress(), "", status);
    return world->bus &&
           VlmTest::waitFor([] { return world->bus->hasOwner("org.vellumine.Vellumine"); });
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void MainRoad(benchmark::State& state) {
    if (!world && !startWorld()) {
        state.SkipWithError("no private world");
        return;
    }
    std::vector<double> roundTrips;
    for (int i = 0; i < 20; ++i) {
        const auto start = std::chrono::steady_clock::now();
        std::string reply;
        world->bus->send("org.vellumine.Vellumine", {"VLMQ", "****", world->oneFontRequest}, reply);
        roundTrips.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    std::vector<double> roads;
    for (auto _ : state) {
        state.PauseTiming();
        Bench::runQuietly({VELLUMINE_EXECUTABLE, "deactivate", "--auto"});
        state.ResumeTiming();
        const auto start = std::chrono::steady_clock::now();
        const int status =
            Bench::runQuietly({GALLEY_EXECUTABLE, "--batch", world->document, "--timeout", "20"});
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        roads.push_back(seconds);
        if (status != 0)
            state.SkipWithError("galley did not end with every font installed");
    }
    state.counters["roundtrip_ms"] = medianOf(roundTrips) * 1000;
    state.counters["road_median_ms"] = medianOf(roads) * 1000;
    state.counters["x_roundtrip"] = medianOf(roads) / medianOf(roundTrips);
}

} // namespace

BENCHMARK(MainRoad)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(9);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    delete world; // stops vellumine and the bus
    return 0;
}
