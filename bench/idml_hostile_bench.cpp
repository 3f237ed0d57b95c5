// What `galley fonts` costs on each kind of hostile IDML package: peak resident memory and
// seconds of a child process that reports the package, against a benign document of the
// same generator measured in the same run. Each package is well under 1 MB; the figure to
// hold is at most 256 MB and 1 s for every one of them.
#include "HostileIdml.h"
#include "IdmlBuilder.h"
#include "host/app/FontsCommand.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Cost {
    double peakMb = 0;
    double seconds = 0;
    int exitStatus = -1;
};

constexpr const char* kReportArgument = "--report-fonts-of";
constexpr int kPeakChannel = 3; // where the reporting process writes its peak memory

// The peak resident memory of this process since its last exec, in kilobytes. (A forked
// child's own rusage would also count the pages it shared with its parent before exec.)
long peakKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return std::stol(line.substr(6));
    }
    return -1;
}

// Reports `path` in a fresh process (this program started again), so that its peak memory
// is its alone and owes nothing to what this process has built.
Cost report(const std::string& path) {
    int channel[2];
    if (::pipe(channel) != 0)
        return {};
    auto start = std::chrono::steady_clock::now();
    pid_t child = ::fork();
    if (child == 0) {
        int null = ::open("/dev/null", O_WRONLY);
        ::dup2(null, 1);
        ::dup2(null, 2);
        ::dup2(channel[1], kPeakChannel);
        ::execl("/proc/self/exe", "idml_hostile_bench", kReportArgument, path.c_str(), nullptr);
        ::_exit(127);
    }
    ::close(channel[1]);
    int status = 0;
    ::waitpid(child, &status, 0);
    Cost cost;
    cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    char text[32] = {};
    ssize_t got = ::read(channel[0], text, sizeof text - 1);
    ::close(channel[0]);
    cost.peakMb = got > 0 ? std::atof(text) / 1024.0 : -1;
    cost.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return cost;
}

struct Packages {
    std::string root;
    std::string baseline;

    Packages() {
        std::string pattern = "/tmp/galley-hostile-XXXXXX";
        root = ::mkdtemp(pattern.data());
        baseline = root + "/baseline.idml";
        IdmlTestKit::writeIdml(IdmlTestKit::parseDescription(R"(
font "C059" Roman C059-Roman Type1
pstyle Body font="C059" style=Roman
cstyle Emphasis style=Italic
story
para pstyle=Body
run text="An ordinary paragraph "
run cstyle=Emphasis text="with a little emphasis.\n"
)"),
                               baseline);
    }
    ~Packages() { std::filesystem::remove_all(root); }
};

Packages& packages() {
    static Packages instance;
    return instance;
}

void measure(benchmark::State& state, const IdmlTestKit::HostileCase& hostile) {
    const std::string path = packages().root + "/" + hostile.name + ".idml";
    hostile.write(path);
    const Cost baseline = report(packages().baseline);
    Cost cost;
    for (auto _ : state)
        cost = report(path);
    state.counters["package_kb"] = static_cast<double>(std::filesystem::file_size(path)) / 1024.0;
    state.counters["peak_mb"] = cost.peakMb;
    state.counters["seconds"] = cost.seconds;
    state.counters["exit"] = cost.exitStatus;
    state.counters["x_baseline_mb"] = cost.peakMb / baseline.peakMb;
    state.counters["x_baseline_s"] = cost.seconds / baseline.seconds;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == kReportArgument) {
        int status = Galley::runFontsCommand({argv[2]});
        std::string peak = std::to_string(peakKilobytes());
        ssize_t ignored = ::write(kPeakChannel, peak.data(), peak.size());
        (void)ignored;
        return status;
    }
    static const auto cases = IdmlTestKit::hostileCases();
    for (const auto& hostile : cases)
        benchmark::RegisterBenchmark(
            ("BM_Report/" + hostile.name).c_str(),
            [&hostile](benchmark::State& state) { measure(state, hostile); })
            ->Iterations(1)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
