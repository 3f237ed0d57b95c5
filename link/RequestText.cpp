#include "link/RequestText.h"

#include "foundation/NumberText.h"

namespace VLM::RequestText {

std::string command(const std::string& name) {
    return "<cmd>" + name + "</cmd>\n";
}

std::string end() {
    return "</cmd>\n";
}

std::string element(const std::string& name, const std::string& value) {
    return "<" + name + ">" + value + "</" + name + ">\n";
}

std::string fontOpening() {
    return "<font>\n";
}

std::string fontClosing() {
    return "</font>\n";
}

bool namesContainer(const std::string& selectedContainerID) {
    bool ok = false;
    return Tamrik::safeParse<long>(selectedContainerID, ok) > 0; // unreadable text reads 0
}

} // namespace VLM::RequestText
