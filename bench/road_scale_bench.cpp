// The main road at a studio's scale, and where its time goes. vellumine is not running; the
// document names 51 fonts, 50 of them missing and each held once in a library of N generated
// faces (scripts/generate-faces, written at bench time into the world's folder). Per
// iteration, in one private world:
//
//   floor    galley fonts on the document: opening it, with no font manager (the floor)
//   start    vellumine serve, from exec until it has answered a request with no fonts
//   request  the 50-font request to a running vellumine, activating all 50 before it answers
//   road     galley --batch on the document until it exits 0: the plug-in launches vellumine,
//            asks, vellumine activates, Galley's watch sees the fonts, the dialog closes
//
// The floor and the road are also measured each in a session bus of its own
// (dbus-run-session around the command, as a user's session would be started for it):
// floor_own_bus_ms, road_own_bus_ms and x_floor_own_bus. Both then include starting a bus
// daemon, and the road a vellumine that serves that bus only.
//
// Counters are medians in milliseconds; x_floor is the road over the floor, and for the
// larger library x_small_library is its road over the 1,000-face road of the same run.
// Goal: x_floor at most 2, x_small_library at most 1.2.
//
// ROAD_BENCH_GALLEY and ROAD_BENCH_VELLUMINE name other builds' programs to measure instead
// (an earlier commit's, say), so that a change is measured against its baseline in one run.
//
// The worlds live in /dev/shm unless TMPDIR says otherwise. Each iteration links and unlinks
// the same 50 faces twice; on ext4, creating a file within half a minute of deleting others
// makes the inode allocator step over every recently deleted inode, so on a disk the
// iterations would measure the benchmark's own churn (a request 7 ms at first, 45 ms by the
// tenth round), which a designer opening a document never meets.
//
//   cmake -S . -B build-bench -G Ninja -DVLM_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release
//   cmake --build build-bench --target road_scale_bench galley vellumine vellumine-link
//   build-bench/bench/road_scale_bench
#include "IdmlBuilder.h"
#include "PrivateSession.h"
#include "QuietProcess.h"

#include "platform/linux/BusRunningApplications.h"
#include "platform/linux/DBusAppEvents.h"

#include <benchmark/benchmark.h>

#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>

namespace {

constexpr int kMissingFonts = 50;
constexpr long kSmallLibrary = 1000;
const char* const kFontManager = "org.vellumine.Vellumine";
const char* const kRunSession = "/usr/bin/dbus-run-session";

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

std::string program(const char* variable, const char* built) {
    const char* chosen = std::getenv(variable);
    return chosen != nullptr && *chosen != '\0' ? chosen : built;
}

const std::string& galley() {
    static const std::string path = program("ROAD_BENCH_GALLEY", GALLEY_EXECUTABLE);
    return path;
}

const std::string& vellumine() {
    static const std::string path = program("ROAD_BENCH_VELLUMINE", VELLUMINE_EXECUTABLE);
    return path;
}

std::string faceNumber(long index) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%06ld", index);
    return digits;
}

// One private world: its bus, XDG folders, fontconfig configuration (DejaVu and the folder
// vellumine links into), a library of `faces` generated faces, vellumine's launcher and the
// document.
class ScaleWorld {
public:
    explicit ScaleWorld(long faces) {
        if (!session_.ok())
            return;
        const std::string root = session_.root();
        std::ofstream(root + "/fonts.conf")
            << "<?xml version=\"1.0\"?>\n<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
            << "<dir>" << session_.dataHome() << "/fonts</dir><cachedir>" << root
            << "/fc-cache</cachedir></fontconfig>\n";
        setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
        std::filesystem::create_directories(session_.dataHome() + "/fonts");
        if (Bench::runQuietly({"/usr/bin/python3", GENERATE_FACES, std::to_string(faces),
                               root + "/faces"}) != 0 ||
            Bench::runQuietly({vellumine(), "add", root + "/faces"}) != 0 ||
            Bench::runQuietly(
                {vellumine(), "install-launcher", "--data-home", session_.dataHome()}) != 0)
            return;
        writeDocument(faces);
        int status = 0;
        bus_ = Platform::Linux::DBusAppEvents::openAddress(session_.busAddress(), "", status);
        ready_ = bus_ != nullptr;
    }

    bool ready() const { return ready_; }
    const std::string& document() const { return document_; }

    // vellumine stopped and every face it activated for an application gone: the road's start.
    void reset() {
        stopFontManager();
        Bench::runQuietly({vellumine(), "deactivate", "--auto"});
    }

    double floorMilliseconds() const {
        const auto begin = Clock::now();
        Bench::runQuietly({galley(), "fonts", document_});
        return millisecondsSince(begin);
    }

    // From exec until a request is answered; vellumine keeps running afterwards.
    double startMilliseconds() {
        const auto begin = Clock::now();
        session_.killLater(Bench::startQuietly({vellumine(), "serve"}));
        std::string reply;
        while (bus_->send("VLMQ", {"VLMQ", "****", requestFor(0)}, reply) != 0 &&
               millisecondsSince(begin) < 10000)
            ;
        return millisecondsSince(begin);
    }

    double requestMilliseconds() {
        const auto begin = Clock::now();
        std::string reply;
        bus_->send("VLMQ", {"VLMQ", "****", requestFor(kMissingFonts)}, reply);
        return millisecondsSince(begin);
    }

    // The road; negative when Galley did not end with every font installed.
    double roadMilliseconds() const {
        const auto begin = Clock::now();
        const int status = Bench::runQuietly({galley(), "--batch", document_, "--timeout", "20"});
        const double elapsed = millisecondsSince(begin);
        return status == 0 ? elapsed : -1;
    }

    double floorOwnBusMilliseconds() const {
        const auto begin = Clock::now();
        Bench::runQuietly({kRunSession, "--", galley(), "fonts", document_});
        return millisecondsSince(begin);
    }

    // The road in a bus of its own; the vellumine it launched loses that bus with Galley's
    // exit and is stopped before the next measure. Negative as roadMilliseconds().
    double roadOwnBusMilliseconds() const {
        const auto begin = Clock::now();
        const int status = Bench::runQuietly(
            {kRunSession, "--", galley(), "--batch", document_, "--timeout", "20"});
        const double elapsed = millisecondsSince(begin);
        stopServersOfThisWorld();
        return status == 0 ? elapsed : -1;
    }

private:
    static long spacedFace(int font) { return font * 7L; }

    void writeDocument(long faces) {
        std::string description = "pstyle Body font=\"DejaVu Sans\" style=Book\n"
                                  "font \"DejaVu Sans\" Book DejaVuSans TrueType\n";
        std::string story = "story\npara pstyle=Body\n";
        for (int font = 0; font < kMissingFonts; ++font) {
            const std::string number = faceNumber(spacedFace(font) % faces);
            description += "font \"Bench Face " + number + "\" Regular BenchFace" + number +
                           "-Regular TrueType\n";
            story +=
                "run font=\"Bench Face " + number + "\" style=Regular text=\"" + number + " \"\n";
        }
        document_ = session_.root() + "/fifty.idml";
        IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(description + story), document_);
        faces_ = faces;
    }

    std::string requestFor(int fonts) const {
        std::string request = "<cmd>fontRequest</cmd>\n<protocolVersion>1.00</protocolVersion>\n"
                              "<targetApp>InDn</targetApp>\n";
        for (int font = 0; font < fonts; ++font) {
            request += "<font>\n<syncID>" + std::to_string(font + 1) +
                       "</syncID>\n<psName>BenchFace" + faceNumber(spacedFace(font) % faces_) +
                       "-Regular</psName>\n<type>TT</type>\n</font>\n";
        }
        return request + "</cmd>\n";
    }

    // Every vellumine server started in this world, found by its XDG_DATA_HOME.
    void stopServersOfThisWorld() const {
        const std::string marker = "XDG_DATA_HOME=" + session_.dataHome();
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            const std::string name = entry.path().filename().string();
            if (name.find_first_not_of("0123456789") != std::string::npos)
                continue;
            std::ifstream commandLine(entry.path() / "cmdline");
            std::string program;
            std::getline(commandLine, program, '\0');
            if (program != vellumine())
                continue;
            std::ifstream environment(entry.path() / "environ");
            for (std::string variable; std::getline(environment, variable, '\0');) {
                if (variable == marker) {
                    const pid_t pid = static_cast<pid_t>(std::stol(name));
                    kill(pid, SIGTERM);
                    VlmTest::waitFor([&] { return kill(pid, 0) != 0; });
                    break;
                }
            }
        }
        Bench::runQuietly({vellumine(), "deactivate", "--auto"});
    }

    void stopFontManager() {
        Platform::Linux::BusRunningApplications running(*bus_);
        std::vector<Platform::RunningApplication> applications;
        running.list(applications);
        for (const auto& application : applications) {
            if (application.name == kFontManager)
                kill(application.processID, SIGTERM);
        }
        VlmTest::waitFor([&] { return !bus_->hasOwner(kFontManager); });
    }

    VlmTest::PrivateSession session_;
    std::unique_ptr<Platform::Linux::DBusAppEvents> bus_;
    std::string document_;
    long faces_ = 1;
    bool ready_ = false;
};

std::map<long, double> roadMedians;

void RoadAtScale(benchmark::State& state) {
    const long faces = state.range(0);
    ScaleWorld world(faces);
    if (!world.ready()) {
        state.SkipWithError("no private world with a generated library");
        return;
    }
    std::vector<double> floors, starts, requests, roads, floorsOwnBus, roadsOwnBus;
    const auto measureOnce = [&] {
        // The floor opens the document as the road finds it: its fonts missing, vellumine
        // not running (with the last road's fonts still active, it would measure fontconfig
        // reading the faces that road activated instead).
        world.reset();
        floors.push_back(world.floorMilliseconds());
        starts.push_back(world.startMilliseconds());
        requests.push_back(world.requestMilliseconds());
        world.reset();
        roads.push_back(world.roadMilliseconds());
        world.reset();
        floorsOwnBus.push_back(world.floorOwnBusMilliseconds());
        roadsOwnBus.push_back(world.roadOwnBusMilliseconds());
        return roads.back() >= 0 && roadsOwnBus.back() >= 0;
    };
    // Once unmeasured: the world's first run writes fontconfig's caches and warms the page
    // cache, which a library met for the first time would otherwise pay in its first rows.
    if (!measureOnce()) {
        state.SkipWithError("galley did not end with every font installed");
        return;
    }
    for (auto* figures : {&floors, &starts, &requests, &roads, &floorsOwnBus, &roadsOwnBus})
        figures->clear();
    for (auto _ : state) {
        if (!measureOnce()) {
            state.SkipWithError("galley did not end with every font installed");
            break;
        }
        state.SetIterationTime(roads.back() / 1000);
    }
    world.reset();
    const double road = medianOf(roads);
    roadMedians[faces] = road;
    state.counters["floor_ms"] = medianOf(floors);
    state.counters["start_ms"] = medianOf(starts);
    state.counters["request_ms"] = medianOf(requests);
    state.counters["road_ms"] = road;
    state.counters["x_floor"] = road / medianOf(floors);
    state.counters["floor_own_bus_ms"] = medianOf(floorsOwnBus);
    state.counters["road_own_bus_ms"] = medianOf(roadsOwnBus);
    state.counters["x_floor_own_bus"] = medianOf(roadsOwnBus) / medianOf(floorsOwnBus);
    if (faces != kSmallLibrary && roadMedians.count(kSmallLibrary) != 0)
        state.counters["x_small_library"] = road / roadMedians[kSmallLibrary];
}

} // namespace

BENCHMARK(RoadAtScale)
    ->Arg(kSmallLibrary)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);

int main(int argc, char** argv) {
    if (std::getenv("TMPDIR") == nullptr && std::filesystem::is_directory("/dev/shm"))
        setenv("TMPDIR", "/dev/shm", 1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
