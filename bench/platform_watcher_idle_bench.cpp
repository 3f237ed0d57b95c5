// What one idle library-change watcher costs: the link's BSDNotification::Daemon polling a
// name over the shared counter files every millisecond while nobody posts, as CPU time of
// this process over ten seconds of wall time. The baseline, measured in the same run, is a
// thread that only sleeps one millisecond per round: the floor that any 1 ms poll pays.
// A second pair compares one notify_check (a pread of the counter through the descriptor
// kept since registration) with a stat() of the counter file by name.

#include "foundation/Thread.h"
#include "link/NotificationDaemon.h"
#include "platform/Platform.h"
#include "platform/linux/FileNotifications.h"
#include "platform/linux/NotifyFolder.h"
#include "platform/linux/notify.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <thread>

namespace {

constexpr auto idleSpan = std::chrono::seconds(10);
const std::string watchedName = "org.vellumine.Vellumine.FontLibraryChanged";

double processCpuSeconds() {
    timespec cpu{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
    return static_cast<double>(cpu.tv_sec) + static_cast<double>(cpu.tv_nsec) / 1e9;
}

// A private notification folder for the whole run, removed at exit.
class PrivateRuntimeFolder {
public:
    PrivateRuntimeFolder() {
        char pattern[] = "/tmp/vlm-watcher-bench-XXXXXX";
        if (mkdtemp(pattern) != nullptr) {
            path_ = pattern;
            setenv("XDG_RUNTIME_DIR", pattern, 1);
        }
    }
    ~PrivateRuntimeFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }

private:
    std::string path_;
};

Platform::Linux::FileNotifications& installNotifications() {
    static PrivateRuntimeFolder folder;
    static Platform::Linux::FileNotifications notifications;
    Platform::Services services;
    services.notifications = &notifications;
    Platform::install(services);
    return notifications;
}

// Share of one core used by the process while `span` of wall time passes.
template <typename Setup>
double coreShareWhile(Setup&& setup) {
    auto running = setup();
    std::this_thread::sleep_for(std::chrono::milliseconds(200)); // let the thread settle
    const double cpuBefore = processCpuSeconds();
    const auto wallBefore = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(idleSpan);
    const double cpu = processCpuSeconds() - cpuBefore;
    const double wall =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    running.reset();
    return cpu / wall;
}

// Stands for the floor: wakes every millisecond like the watcher, checks nothing.
class Sleeper : public Tamrik::Thread {
public:
    ~Sleeper() override {
        keepRunning = false;
        join();
    }

protected:
    int run() override {
        while (keepRunning) {
            Tamrik::Thread::sleep(1);
        }
        return 0;
    }

private:
    std::atomic<bool> keepRunning{true};
};

void BM_IdleWatcherCpu(benchmark::State& state) {
    installNotifications();
    double watcher = 0;
    double sleeper = 0;
    for (auto _ : state) {
        sleeper = coreShareWhile([] {
            auto thread = std::make_unique<Sleeper>();
            thread->start(false, -1);
            return thread;
        });
        watcher = coreShareWhile([] {
            auto daemon = std::make_unique<BSDNotification::Daemon>();
            daemon->addListener(watchedName);
            return daemon;
        });
    }
    state.counters["watcher_core_percent"] = watcher * 100;
    state.counters["sleeper_core_percent"] = sleeper * 100;
    state.counters["watcher_over_sleeper"] = sleeper > 0 ? watcher / sleeper : 0;
}
BENCHMARK(BM_IdleWatcherCpu)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

void BM_NotifyCheck(benchmark::State& state) {
    auto& notifications = installNotifications();
    int token = 0;
    if (notifications.registerCheck(watchedName, token) != 0) {
        state.SkipWithError("cannot register");
        return;
    }
    int changed = 0;
    for (auto _ : state) {
        notifications.check(token, changed);
        benchmark::DoNotOptimize(changed);
    }
    notifications.cancel(token);
}
BENCHMARK(BM_NotifyCheck);

void BM_StatBaseline(benchmark::State& state) {
    installNotifications();
    notify_post(watchedName.c_str());
    const std::string file = Platform::Linux::NotifyFolder::path() + "/" +
                             Platform::Linux::NotifyFolder::fileName(watchedName);
    struct stat info {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(stat(file.c_str(), &info));
    }
}
BENCHMARK(BM_StatBaseline);

} // namespace

BENCHMARK_MAIN();
