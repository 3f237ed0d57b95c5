// Feeds arbitrary bytes to vellumine as a request and checks that the reply is one the
// plug-in can read: line form with a lone closing line, no line-ending "</cmd>" in a value,
// within the reply size limit, and well-formed XML once the plug-in's transport has joined
// its lines and escaped every "&". Font requests also run auto-activation against a small
// library, which is put back after every input so that inputs do not depend on each other.
//
// Run with `scripts/fuzz SECONDS request`; seeds come from request_fuzz_seeds.
#include "fontmanager/Activation.h"
#include "fontmanager/SqliteCatalog.h"
#include "fontmanager/FaceReader.h"
#include "fontmanager/LibraryImporter.h"
#include "fontmanager/RequestDispatcher.h"

#include <libxml/parser.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace {

using namespace Vellumine;

// Small limits, so that short inputs reach every refusal and the reply fallbacks.
DispatcherOptions fuzzOptions() {
    DispatcherOptions options;
    options.limits = {64 * 1024, 200, 4096};
    options.replyLimits = {32 * 1024, 2};
    return options;
}

struct Library {
    std::filesystem::path folder;
    std::unique_ptr<SqliteCatalog> catalog;
    std::unique_ptr<Activation> activation;
    std::unique_ptr<LibraryChanges> changes;
    std::unique_ptr<RequestDispatcher> dispatcher;

    Library() {
        std::string pattern = (std::filesystem::temp_directory_path() / "vellumine-fuzz-XXXXXX");
        if (mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        folder = pattern;
        catalog = std::make_unique<SqliteCatalog>(folder / "library.db");
        FaceReader reader;
        LibraryImporter(*catalog, reader)
            .add({"/usr/share/fonts/type1/urw-base35/NimbusRoman-Regular.t1",
                  "/usr/share/fonts/opentype/urw-base35/NimbusRoman-Regular.otf",
                  "/usr/share/fonts/opentype/urw-base35/NimbusRoman-Bold.otf",
                  "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"});
        activation = std::make_unique<Activation>(*catalog, folder / "fonts");
        changes = std::make_unique<LibraryChanges>(*catalog, [](const std::string&) { return 0; });
        dispatcher =
            std::make_unique<RequestDispatcher>(*catalog, *activation, *changes, fuzzOptions());
    }

    void deactivateAll() {
        for (const auto& link : catalog->allLinks()) {
            activation->deactivate(link.faceId);
        }
    }
};

void fail(const char* why, const std::string& reply) {
    std::fprintf(stderr, "bad reply (%s):\n%.2000s\n", why, reply.c_str());
    std::abort();
}

// The reply as the plug-in's transport hands it to the XML parser.
std::string joinedAsThePluginDoes(const std::string& reply) {
    std::istringstream lines(reply);
    std::string joined;
    for (std::string line; std::getline(lines, line);) {
        if (line != "</cmd>" && line.ends_with("</cmd>")) {
            line.resize(line.size() - 6);
        }
        for (const char c : line) {
            joined += c == '&' ? std::string("&amp;") : std::string(1, c);
        }
    }
    return joined;
}

void checkReply(const std::string& reply) {
    if (reply.size() > fuzzOptions().replyLimits.maximumBytes) {
        fail("too large", reply);
    }
    if (!reply.starts_with("<cmd>") || !reply.ends_with("\n</cmd>\n")) {
        fail("not in line form", reply);
    }
    const std::string body = reply.substr(reply.find('\n') + 1);
    if (body.find("</cmd>") != body.size() - 7) {
        fail("</cmd> before the closing line", reply);
    }
    const std::string joined = joinedAsThePluginDoes(reply);
    xmlDocPtr document = xmlReadMemory(joined.data(), static_cast<int>(joined.size()), nullptr,
                                       "UTF-8", XML_PARSE_NONET | XML_PARSE_NOERROR |
                                                    XML_PARSE_NOWARNING);
    if (document == nullptr) {
        fail("not well-formed once joined", reply);
    }
    xmlFreeDoc(document);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Library library;
    checkReply(library.dispatcher->answer(std::string(reinterpret_cast<const char*>(data), size)));
    library.deactivateAll();
    return 0;
}
