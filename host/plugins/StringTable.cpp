#include "host/plugins/StringTable.h"

#include <fstream>

namespace Galley {

namespace {

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos)
        return {};
    const auto last = text.find_last_not_of(" \t\r");
    return text.substr(first, last - first + 1);
}

std::string unescaped(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == 'n') {
            out += '\n';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

} // namespace

bool StringTable::load(const std::string& path) {
    std::ifstream in(path);
    if (!in)
        return false;
    for (std::string line; std::getline(in, line);) {
        const std::string entry = trimmed(line);
        if (entry.empty() || entry[0] == '#')
            continue;
        const auto equals = entry.find('=');
        if (equals == std::string::npos)
            continue;
        texts_[trimmed(entry.substr(0, equals))] = unescaped(trimmed(entry.substr(equals + 1)));
    }
    return true;
}

const std::string& StringTable::lookup(const std::string& key) const {
    auto found = texts_.find(key);
    return found == texts_.end() ? key : found->second;
}

} // namespace Galley
