// Cost of one font request: build the request text, carry it through the transport (a
// fake font manager answering a prepared reply), parse the reply and merge it into the
// records. Baseline, measured in the same run: libxml2 alone parsing the same reply text.
//
//   cmake -S . -B build-bench -G Ninja -DVLM_BUILD_BENCH=ON -DCMAKE_BUILD_TYPE=Release
//   cmake --build build-bench --target link_protocol_bench
//   build-bench/bench/link_protocol_bench
//
// Counters: ns_per_font (whole exchange per font) and x_libxml2 (exchange time over the
// baseline's time for the same reply; flat across sizes when growth is linear).

#include "link/NotifiyHandlerFactory.h"
#include "link/ReplyText.h"
#include "link/VLMFontRequestEvent.h"
#include "support/FakePlatform.h"

#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <chrono>
#include <string>

namespace {

VLMFontList makeRecords(int count) {
    VLMFontList records;
    records.reserve(count);
    for (int i = 0; i < count; ++i) {
        Tamrik::SmartPointer<VLMFontInfo> record(new VLMFontInfo());
        record->font.syncID = std::to_string(i);
        record->font.psName = "Family" + std::to_string(i / 4) + "-Style" + std::to_string(i % 4);
        record->font.type = i % 4;
        record->font.familyName = "Family " + std::to_string(i / 4);
        records.push_back(record);
    }
    return records;
}

// The reply a font manager writes for the records: one <font> of about twenty lines each.
std::string makeReply(const VLMFontList& records) {
    std::string reply = "<cmd>fontReply</cmd>\n<protocolVersion>2.0</protocolVersion>\n"
                        "<showWindow>0</showWindow>\n";
    for (const auto& record : records) {
        const Protocol::Font& font = record->font;
        reply += "<font>\n<syncID>" + font.syncID + "</syncID>\n<psName>" + font.psName +
                 "</psName>\n<type>" + record->getTypeString() + "</type>\n<familyName>" +
                 font.familyName +
                 " & Co</familyName>\n<styleName>Regular</styleName>\n"
                 "<count>2</count>\n<isActive>false</isActive>\n"
                 "<typeMatchingCount>1</typeMatchingCount>\n"
                 "<isTypeMatchingActive>false</isTypeMatchingActive>\n"
                 "<typeMatchingContainerID>" +
                 font.syncID + "7</typeMatchingContainerID>\n<containerID>" + font.syncID +
                 "7</containerID>\n<fontInfo><label>Foundry</label><value>Tamrik</value>"
                 "</fontInfo>\n</font>\n";
    }
    return reply + "</cmd>\n";
}

double secondsPerLibxml2Parse(const std::string& text, int rounds) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i) {
        xmlDocPtr document = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr,
                                           nullptr, XML_PARSE_NONET);
        benchmark::DoNotOptimize(document);
        xmlFreeDoc(document);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / rounds;
}

void BM_FontRequestExchange(benchmark::State& state) {
    const int fontCount = static_cast<int>(state.range(0));
    VLMTest::FakePlatform platform;
    const VLMFontList records = makeRecords(fontCount);
    const std::string reply = makeReply(records);
    platform.appEvents.setResponder([&reply](const Platform::AppEvent&) {
        return VLMTest::FakeAppEvents::Answer{0, reply};
    });
    VLM::NotifiyHandlerFactory::getNotifyHandler(false);

    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        VLM::VLMFontRequestEvent event;
        event.fonts = records;
        event.build();
        benchmark::DoNotOptimize(event.send());
        if (!event.hasSucceeded() || !records.back()->hasTypeMatching) {
            state.SkipWithError("reply not merged");
            break;
        }
    }
    const double exchange =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() /
        static_cast<double>(state.iterations());

    const std::string parsedText = VLM::escapeAmpersands(VLM::joinReplyLines(reply));
    const int rounds = static_cast<int>(std::max<std::int64_t>(state.iterations(), 3));
    const double baseline = secondsPerLibxml2Parse(parsedText, rounds);
    state.counters["ns_per_font"] = exchange * 1e9 / fontCount;
    state.counters["x_libxml2"] = exchange / baseline;
    state.SetItemsProcessed(state.iterations() * fontCount);
}

BENCHMARK(BM_FontRequestExchange)->Arg(10)->Arg(1000)->Arg(20000)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
