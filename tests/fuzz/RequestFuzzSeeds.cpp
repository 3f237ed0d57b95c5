// Writes the seed corpus of the request fuzzer: one file per kind of request the plug-in
// sends, and the hostile shapes the parser must refuse.
//
//   request_fuzz_seeds FOLDER
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

std::string request(const std::string& command, const std::vector<std::string>& fonts) {
    std::string text = "<cmd>" + command + "</cmd>\n<targetApp>InDn</targetApp>\n"
                       "<targetClass>VLM4</targetClass>\n<protocolVersion>1.00</protocolVersion>\n";
    for (const auto& font : fonts) {
        text += "<font>\n" + font + "</font>\n";
    }
    return text + "</cmd>\n";
}

std::string font(const std::string& syncID, const std::string& psName, const std::string& type,
                 const std::string& family = "", const std::string& style = "") {
    return "<syncID>" + syncID + "</syncID>\n<psName>" + psName + "</psName>\n<type>" + type +
           "</type>\n<familyName>" + family + "</familyName>\n<styleName>" + style +
           "</styleName>\n";
}

std::vector<std::pair<std::string, std::string>> seeds() {
    return {
        {"font-request", request("fontRequest", {font("1", "NimbusRoman-Regular", "T1"),
                                                 font("2", "DejaVuSans", "all"),
                                                 font("3", "Missing-Bold", "OT_TT")})},
        {"font-by-family", request("fontRequest", {font("1", "", "", "nimbus roman", "Bold"),
                                                   font("2", "X", "TT", "DejaVu Sans", "")})},
        {"font-choice", request("fontRequest", {font("1", "NimbusRoman-Regular", "")})},
        {"activation", request("activationRequest",
                               {"<containerID>1</containerID>\n<psName>NimbusRoman-Regular</psName>\n",
                                "<containerID>/etc/passwd</containerID>\n"})},
        {"show", request("showRequest", {font("1", "DejaVuSans", "TT")})},
        {"buy", request("buyRequest", {font("1", "Missing-Bold", "")})},
        {"values", request("fontRequest", {font("a&b<c>]]></cmd>", "x<y", "T1", "&amp;", "\t")})},
        {"entities", "<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaa\">]><cmd>&a;</cmd>\n"},
        {"unbalanced", "<cmd>fontRequest</cmd>\n<font>\n<syncID>1</syncID>\n</cmd>\n"},
        {"repeated", "<cmd>fontRequest</cmd>\n<font>\n<syncID>1</syncID>\n<syncID>2</syncID>\n"
                     "</font>\n</cmd>\n"},
    };
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: request_fuzz_seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    for (const auto& [name, text] : seeds()) {
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::cout << "wrote " << seeds().size() << " seeds to " << folder.string() << "\n";
    return 0;
}
