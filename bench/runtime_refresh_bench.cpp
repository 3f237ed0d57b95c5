// Galley's font-system refresh as the plug-in's refresh loop drives it.
//
// RefreshLoop/*: a caller asks the font manager to update its font list for 200 ticks while
// nothing changes (what the plug-in's refresh does after fonts were requested). Counters:
// cpu_per_wall is the CPU time the loop used per second of wall time (goal: at most 0.1).
// The baseline spins without the font-folder watch's wait, in the same run.
//
// FontArrival: the time from a font linked into a watched folder to the font-system change
// (16074) announced by Galley's runtime; median over the repetitions (goal: under 50 ms).
#include "host/fonts/FontconfigFontSystem.h"
#include "host/loop/SdEventLoop.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IObserver.h"
#include "sdk/ISubject.h"
#include "sdk/TickCount.h"

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

const char* const sampleFont = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

// A private fontconfig world with one empty, watched font folder.
struct World {
    std::string root;
    World() {
        std::string pattern = "/tmp/galley-refresh-XXXXXX";
        root = ::mkdtemp(pattern.data());
        fs::create_directories(root + "/fonts");
        std::ofstream(root + "/fonts.conf")
            << "<?xml version=\"1.0\"?>\n<fontconfig><dir>" << root << "/fonts</dir><cachedir>"
            << root << "/cache</cachedir></fontconfig>\n";
        ::setenv("FONTCONFIG_FILE", (root + "/fonts.conf").c_str(), 1);
    }
    ~World() { fs::remove_all(root); }
};

struct Silent : Galley::Presenter {
    int16 alert(IAlertPresenter::Kind, const std::string&, const std::string[3], int16 b) override {
        return b;
    }
};

double cpuSeconds() {
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

void refreshLoop(benchmark::State& state, bool withWatch) {
    World world;
    Galley::FontconfigFontSystem fonts;
    Galley::GalleySession session(fonts);
    Galley::SdEventLoop loop;
    Silent view;
    Galley::Runtime::Options options;
    options.fontFolders = withWatch ? Galley::FolderWatching::inotify : Galley::FolderWatching::off;
    Galley::Runtime runtime(loop, session, view, options);
    IFontMgr* manager = session.GetFontMgr();
    manager->UpdateFontList();
    double cpu = 0, wall = 0;
    for (auto _ : state) {
        const double cpuStart = cpuSeconds();
        const auto wallStart = std::chrono::steady_clock::now();
        const uint32 start = TickCount();
        int passes = 0;
        while (TickCount() - start < 200) {
            manager->UpdateFontList();
            ++passes;
        }
        cpu += cpuSeconds() - cpuStart;
        wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - wallStart).count();
        state.counters["passes"] = passes;
    }
    state.counters["cpu_per_wall"] = cpu / wall;
}

void RefreshLoop_Spinning(benchmark::State& state) {
    refreshLoop(state, false);
}
void RefreshLoop_WaitingOnTheWatch(benchmark::State& state) {
    refreshLoop(state, true);
}

struct Announced : IObserver {
    bool heard = false;
    void Update(ClassID change, ISubject*, PMIID, void*) override {
        heard = heard || change == kFontSystemChangedMessage;
    }
};

void FontArrival(benchmark::State& state) {
    World world;
    Galley::FontconfigFontSystem fonts;
    Galley::GalleySession session(fonts);
    Galley::SdEventLoop loop;
    Silent view;
    Galley::Runtime runtime(loop, session, view, {});
    session.GetFontMgr()->UpdateFontList();
    Announced observer;
    session.GetFontMgr()->GetSubject()->AttachObserver(&observer, IID_IFONTMGR);
    int n = 0;
    for (auto _ : state) {
        const std::string link = world.root + "/fonts/f" + std::to_string(n++) + ".ttf";
        observer.heard = false;
        const auto start = std::chrono::steady_clock::now();
        fs::create_symlink(sampleFont, link);
        runtime.loop().runUntil([&] { return observer.heard; }, start + std::chrono::seconds(5));
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        state.PauseTiming();
        fs::remove(link);
        runtime.loop().runUntil([&] { return false; },
                                std::chrono::steady_clock::now() + std::chrono::milliseconds(30));
        state.ResumeTiming();
        if (!observer.heard)
            state.SkipWithError("the change was never announced");
    }
    session.GetFontMgr()->GetSubject()->DetachObserver(&observer, IID_IFONTMGR);
}

} // namespace

BENCHMARK(RefreshLoop_Spinning)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();
BENCHMARK(RefreshLoop_WaitingOnTheWatch)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2)
    ->UseRealTime();
BENCHMARK(FontArrival)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20)
    ->UseManualTime()
    ->Repetitions(3)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();
