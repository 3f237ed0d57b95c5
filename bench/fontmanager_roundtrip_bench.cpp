// Round trip of a font request through the session bus against vellumine, beside a raw
// D-Bus echo of the same request bytes in the same run. Everything runs in a private
// session (own dbus-daemon, own XDG folders) with a library of the URW base35 Type 1 and
// OpenType faces and DejaVu; a tenth of the requested fonts are absent.
//
//   cmake -S . -B build-bench -G Ninja -DVLM_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release
//   cmake --build build-bench --target fontmanager_roundtrip_bench
//   build-bench/bench/fontmanager_roundtrip_bench
//
// BM_AnswerWithoutBus is vellumine's share alone (the same request answered in this
// process); BM_RawRequestToVellumine sends the plug-in's request text and takes the reply text;
// BM_PluginFontRequest adds the plug-in's transport, reply parsing and merge;
// BM_RepeatedFontToVellumine asks for one font of two faces many times, whose reply at
// 40,000 fonts passes the reply size limit and is sent without its face lists. The second
// argument of BM_AnswerWithoutBus and BM_RawRequestToVellumine turns the system-fonts setting
// off (0) or on (1): with it on, every request also reads fontconfig's font list, which here
// holds every face of the library. Counters:
// us_echo (the echo of the same request bytes), x_echo (round trip over echo).

#include "PrivateSession.h"

#include "fontmanager/Activation.h"
#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/RequestDispatcher.h"
#include "link/NotifiyHandlerFactory.h"
#include "link/VLMFontRequestEvent.h"
#include "platform/Status.h"
#include "platform/linux/DBusAppEvents.h"
#include "platform/linux/DefaultServices.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

const std::string echoName = "org.vellumine.BenchEcho";

struct World {
    VlmTest::PrivateSession session;
    std::unique_ptr<Platform::Linux::DefaultServices> host;
    std::vector<std::string> postScriptNames;
};

World* world = nullptr;

bool startWorld() {
    world = new World;
    if (!world->session.ok()) {
        std::fprintf(stderr, "no private session: %s\n", world->session.error().c_str());
        return false;
    }
    Vellumine::SqliteCatalog catalog(Vellumine::LibraryPaths::fromEnvironment().catalogFile());
    Vellumine::FaceReader reader;
    Vellumine::LibraryImporter(catalog, reader)
        .add({"/usr/share/fonts/type1/urw-base35", "/usr/share/fonts/opentype/urw-base35",
              "/usr/share/fonts/truetype/dejavu"});
    for (const auto& face : catalog.allFaces()) {
        world->postScriptNames.push_back(face.postScriptName);
    }
    world->session.spawn({VELLUMINE_EXECUTABLE, "serve"});
    world->session.spawn({VLM_TEST_BUS_PEER, echoName, "--class", "VLMQ", "--lifetime", "3600"});
    int status = 0;
    world->host = Platform::Linux::DefaultServices::install("org.galley.Galley", status);
    VLM::NotifiyHandlerFactory::getNotifyHandler(true);
    return status == Platform::Status::ok && VlmTest::waitFor([] {
               return world->host->bus()->hasOwner("org.vellumine.Vellumine") &&
                      world->host->bus()->hasOwner(echoName);
           });
}

VLMFontList makeRecords(int count) {
    VLMFontList records;
    for (int i = 0; i < count; ++i) {
        Tamrik::SmartPointer<VLMFontInfo> record(new VLMFontInfo());
        record->font.syncID = std::to_string(i);
        const auto& names = world->postScriptNames;
        record->font.psName = i % 10 == 9 ? "Absent-" + std::to_string(i)
                                          : names[static_cast<std::size_t>(i) % names.size()];
        record->font.type = i % 3 == 0 ? 0 : 4;
        records.push_back(record);
    }
    return records;
}

std::string requestText(const VLMFontList& records) {
    VLM::VLMFontRequestEvent request;
    request.fonts = records;
    request.build();
    return request.getMessage();
}

std::string send(const std::string& target, const std::string& text) {
    std::string reply;
    if (world->host->bus()->send(target, {"VLMQ", "****", text}, reply) != Platform::Status::ok) {
        std::fprintf(stderr, "send to %s failed\n", target.c_str());
        std::abort();
    }
    return reply;
}

template <typename Exchange>
double meanMicroseconds(Exchange exchange, std::int64_t repetitions) {
    const auto start = std::chrono::steady_clock::now();
    for (std::int64_t i = 0; i < repetitions; ++i) {
        exchange();
    }
    const std::chrono::duration<double, std::micro> spent =
        std::chrono::steady_clock::now() - start;
    return spent.count() / static_cast<double>(repetitions);
}

// The echo of the same bytes, timed right after the measured loop, and the ratio of the
// loop's mean (timed the same way) over it.
template <typename Exchange>
void reportAgainstEcho(benchmark::State& state, const std::string& text, Exchange exchange) {
    const std::int64_t repetitions = std::max<std::int64_t>(3, state.iterations());
    const double measured = meanMicroseconds(exchange, repetitions);
    const double echo = meanMicroseconds([&] { send(echoName, text); }, repetitions);
    state.counters["us_roundtrip"] = measured;
    state.counters["us_echo"] = echo;
    state.counters["x_echo"] = measured / echo;
    state.counters["request_bytes"] = static_cast<double>(text.size());
}

// The setting as the server reads it, from the catalog, at each request.
void useSystemFonts(const benchmark::State& state) {
    Vellumine::SqliteCatalog catalog(Vellumine::LibraryPaths::fromEnvironment().catalogFile());
    catalog.write([&] { catalog.setSystemFonts(state.range(1) != 0); });
}

void BM_RawRequestToVellumine(benchmark::State& state) {
    useSystemFonts(state);
    const std::string text = requestText(makeRecords(static_cast<int>(state.range(0))));
    std::size_t replyBytes = 0;
    for (auto _ : state) {
        replyBytes = send("org.vellumine.Vellumine", text).size();
        benchmark::DoNotOptimize(replyBytes);
    }
    state.counters["reply_bytes"] = static_cast<double>(replyBytes);
    reportAgainstEcho(state, text, [&] { send("org.vellumine.Vellumine", text); });
}

void BM_PluginFontRequest(benchmark::State& state) {
    const VLMFontList records = makeRecords(static_cast<int>(state.range(0)));
    VLM::VLMFontRequestEvent request;
    request.fonts = records;
    request.build();
    const auto exchange = [&] {
        if (request.send() == nullptr) {
            std::fprintf(stderr, "the plug-in rejected the reply\n");
            std::abort();
        }
    };
    for (auto _ : state) {
        exchange();
    }
    reportAgainstEcho(state, request.getMessage(), exchange);
}

std::string repeatedFontRequest(int count) {
    std::string text = "<cmd>fontRequest</cmd>\n";
    for (int i = 0; i < count; ++i) {
        text += "<font>\n<syncID>" + std::to_string(i) +
                "</syncID>\n<psName>NimbusRoman-Regular</psName>\n</font>\n";
    }
    return text + "</cmd>\n";
}

void BM_RepeatedFontToVellumine(benchmark::State& state) {
    const std::string text = repeatedFontRequest(static_cast<int>(state.range(0)));
    std::string reply;
    for (auto _ : state) {
        reply = send("org.vellumine.Vellumine", text);
        benchmark::DoNotOptimize(reply.size());
    }
    state.counters["reply_bytes"] = static_cast<double>(reply.size());
    state.counters["face_lists"] = reply.find("<fontInfo>") != std::string::npos ? 1 : 0;
    reportAgainstEcho(state, text, [&] { send("org.vellumine.Vellumine", text); });
}

// vellumine's own share: the same request answered in this process, without the bus.
void BM_AnswerWithoutBus(benchmark::State& state) {
    useSystemFonts(state);
    const std::string text = requestText(makeRecords(static_cast<int>(state.range(0))));
    const auto paths = Vellumine::LibraryPaths::fromEnvironment();
    Vellumine::SqliteCatalog catalog(paths.catalogFile());
    Vellumine::Activation activation(catalog, paths.activationFolder());
    Vellumine::LibraryChanges changes(catalog, [](const std::string&) { return 0; });
    Vellumine::RequestDispatcher dispatcher(catalog, activation, changes);
    for (auto _ : state) {
        benchmark::DoNotOptimize(dispatcher.answer(text));
    }
    reportAgainstEcho(state, text, [&] { dispatcher.answer(text); });
}

BENCHMARK(BM_AnswerWithoutBus)
    ->ArgsProduct({{1, 100, 5000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RawRequestToVellumine)
    ->ArgsProduct({{1, 100, 5000}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PluginFontRequest)->Arg(1)->Arg(100)->Arg(5000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_RepeatedFontToVellumine)->Arg(100)->Arg(40000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (!startWorld()) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    world->host.reset();
    delete world;
    return 0;
}
