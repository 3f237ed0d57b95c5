#include "IdmlBuilder.h"

#include <sstream>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

// Splits a line into words; "double quotes" group words, \n inside quotes is a line break.
std::vector<std::string> words(const std::string& line, int number) {
    std::vector<std::string> out;
    std::string word;
    bool quoted = false, any = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (quoted && c == '\\' && i + 1 < line.size() &&
                   (line[i + 1] == 'n' || line[i + 1] == '"')) {
            word += line[i + 1] == 'n' ? '\n' : '"';
            ++i;
        } else if (!quoted && (c == ' ' || c == '\t')) {
            if (any)
                out.push_back(word);
            word.clear();
            any = false;
        } else {
            word += c;
            any = true;
        }
    }
    if (quoted)
        throw std::runtime_error("line " + std::to_string(number) + ": unterminated quote");
    if (any)
        out.push_back(word);
    return out;
}

struct Options {
    std::map<std::string, std::string> values;
    bool props = false;
};

Options options(const std::vector<std::string>& list, std::size_t from, int number) {
    Options result;
    for (std::size_t i = from; i < list.size(); ++i) {
        auto eq = list[i].find('=');
        if (list[i] == "props")
            result.props = true;
        else if (eq == std::string::npos)
            throw std::runtime_error("line " + std::to_string(number) +
                                     ": expected key=value, got \"" + list[i] + "\"");
        else
            result.values[list[i].substr(0, eq)] = list[i].substr(eq + 1);
    }
    return result;
}

FontAttrs fontAttrs(const Options& o) {
    FontAttrs attrs;
    if (o.values.count("font"))
        attrs.font = o.values.at("font");
    if (o.values.count("style"))
        attrs.style = o.values.at("style");
    attrs.inProperties = o.props;
    return attrs;
}

std::string value(const Options& o, const char* key) {
    auto found = o.values.find(key);
    return found == o.values.end() ? "" : found->second;
}

} // namespace

DocumentDef parseDescription(const std::string& text) {
    DocumentDef d;
    std::istringstream in(text);
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        auto w = words(line, number);
        if (w.empty() || w[0].starts_with("#"))
            continue;
        auto fail = [&](const std::string& why) {
            throw std::runtime_error("line " + std::to_string(number) + ": " + why);
        };
        const std::string& verb = w[0];
        if (verb == "dom" && w.size() == 2) {
            d.domVersion = w[1];
        } else if (verb == "font" && w.size() == 5) {
            d.fonts.push_back({w[1], w[2], w[3], w[4]});
        } else if ((verb == "pstyle" || verb == "cstyle") && w.size() >= 2) {
            Options o = options(w, 2, number);
            StyleDef style{w[1], value(o, "based"), fontAttrs(o)};
            (verb == "pstyle" ? d.paragraphStyles : d.characterStyles).push_back(style);
        } else if (verb == "story" && w.size() == 1) {
            d.stories.emplace_back();
        } else if (verb == "para") {
            if (d.stories.empty())
                fail("\"para\" before any \"story\"");
            Options o = options(w, 1, number);
            d.stories.back().paragraphs.push_back({value(o, "pstyle"), fontAttrs(o), {}});
        } else if (verb == "run") {
            if (d.stories.empty() || d.stories.back().paragraphs.empty())
                fail("\"run\" before any \"para\"");
            Options o = options(w, 1, number);
            d.stories.back().paragraphs.back().runs.push_back(
                {value(o, "cstyle"), fontAttrs(o), value(o, "text")});
        } else {
            fail("cannot read \"" + line + "\"");
        }
    }
    return d;
}

} // namespace IdmlTestKit
