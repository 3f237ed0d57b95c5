#pragma once

#include "tests/support/FakeAppEvents.h"

#include <map>
#include <string>
#include <vector>

namespace VLMTest {

// Answers the plug-in's requests as the font manager would, from what it is told it holds:
// fonts are looked up by syncID, then by PostScript name. A font it holds nothing of is
// answered with no <font> element (count 0).
struct FontManagerStandIn {
    struct Holding {
        int typeMatchingCount = 1;
        bool active = false;
        std::vector<std::string> containers{"11"};
    };
    std::map<std::string, Holding> holdings;
    std::string protocol = "2.0";
    bool showWindow = false;
    std::string fontReplyOverride; // answers font requests instead, when not empty
    std::vector<std::string> requests; // the first line of each request

    static std::string field(const std::string& block, const std::string& name) {
        const auto open = block.find("<" + name + ">");
        if (open == std::string::npos)
            return {};
        const auto start = open + name.size() + 2;
        return block.substr(start, block.find("</" + name + ">", start) - start);
    }

    bool received(const std::string& command) const {
        for (const auto& request : requests)
            if (request == "<cmd>" + command + "</cmd>")
                return true;
        return false;
    }

    FakeAppEvents::Answer answer(const std::string& request) {
        requests.push_back(request.substr(0, request.find('\n')));
        if (!fontReplyOverride.empty() && requests.back() == "<cmd>fontRequest</cmd>")
            return {0, fontReplyOverride};
        std::string reply = "<cmd>reply</cmd>\n<protocolVersion>" + protocol + "</protocolVersion>\n";
        reply += std::string("<showWindow>") + (showWindow ? "1" : "0") + "</showWindow>\n";
        for (auto at = request.find("<font>"); at != std::string::npos; at = request.find("<font>", at + 1)) {
            const std::string block = request.substr(at, request.find("</font>", at) - at);
            const std::string syncID = field(block, "syncID");
            auto held = holdings.find(syncID);
            if (held == holdings.end())
                held = holdings.find(field(block, "psName"));
            if (held == holdings.end())
                continue;
            const Holding& h = held->second;
            reply += "<font><syncID>" + syncID + "</syncID><type>all</type><count>" +
                     std::to_string(h.containers.size()) + "</count><typeMatchingCount>" +
                     std::to_string(h.typeMatchingCount) + "</typeMatchingCount><isTypeMatchingActive>" +
                     (h.active ? "true" : "false") + "</isTypeMatchingActive>";
            for (const auto& container : h.containers)
                reply += "<fontInfo><containerID>" + container + "</containerID><description>" +
                         field(block, "psName") + " #" + container + "</description></fontInfo>";
            reply += "</font>\n";
        }
        return {0, reply + "</cmd>\n"};
    }
};

} // namespace VLMTest
