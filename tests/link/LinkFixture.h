#pragma once

#include "tests/support/FontRecords.h"

#include "link/FontInfo.h"
#include "link/VLMChangeNotifier.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace VLMTest {

// Fresh fakes for every test.
class LinkTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

// A reply as the font manager writes it: "<cmd>NAME</cmd>", the given element lines and
// a lone "</cmd>", each on its own line.
inline std::string replyLines(std::initializer_list<std::string> lines,
                              const std::string& command = "fontReply") {
    std::string text = "<cmd>" + command + "</cmd>\n";
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text + "</cmd>\n";
}

// A change listener that records what it is told, prefixed with its name, and may act on
// the registry from inside the broadcast.
struct Listener : VLM::IVLMChangeNotifier {
    Listener(std::vector<std::string>& log, std::string name) : log(log), name(std::move(name)) {}
    void OnVLMNotify(const std::string& text) override {
        log.push_back(name + text);
        if (duringNotify) {
            duringNotify();
        }
    }
    std::vector<std::string>& log;
    std::string name;
    std::function<void()> duringNotify;
};

} // namespace VLMTest
