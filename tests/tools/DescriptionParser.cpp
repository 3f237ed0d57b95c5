#include "IdmlBuilder.h"

#include <sstream>
#include <stdexcept>

namespace IdmlTestKit {

namespace {

[[noreturn]] void fail(int number, const std::string& why) {
    throw std::runtime_error("line " + std::to_string(number) + ": " + why);
}

// Splits a line into words; "double quotes" group words, \n inside quotes is a line break.
std::vector<std::string> words(const std::string& line, int number) {
    std::vector<std::string> out;
    std::string word;
    bool quoted = false, any = false;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        char c = i < line.size() ? line[i] : ' ';
        if (!quoted && (c == ' ' || c == '\t')) {
            if (any)
                out.push_back(word);
            word.clear();
            any = false;
        } else if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (quoted && c == '\\' && i + 1 < line.size() &&
                   (line[i + 1] == 'n' || line[i + 1] == '"')) {
            word += line[++i] == 'n' ? '\n' : '"';
        } else {
            word += c;
            any = true;
        }
    }
    if (quoted)
        fail(number, "unterminated quote");
    return out;
}

// key=value words, and the flags "props" and "refs" on their own.
using Options = std::map<std::string, std::string>;

Options options(const std::vector<std::string>& list, std::size_t from, int number) {
    Options result;
    for (std::size_t i = from; i < list.size(); ++i) {
        auto eq = list[i].find('=');
        if (eq == std::string::npos && list[i] != "props" && list[i] != "refs")
            fail(number, "expected key=value, got \"" + list[i] + "\"");
        result[list[i].substr(0, eq)] = eq == std::string::npos ? "" : list[i].substr(eq + 1);
    }
    return result;
}

std::optional<std::string> get(const Options& o, const char* key) {
    auto found = o.find(key);
    return found == o.end() ? std::nullopt : std::optional(found->second);
}

FontAttrs fontAttrs(const Options& o) {
    return {get(o, "font"), get(o, "style"), o.count("props") > 0};
}

Container container(const Options& o, int number) {
    static const std::map<std::string, Container> names{{"table", Container::Table},
                                                        {"footnote", Container::Footnote},
                                                        {"note", Container::Note},
                                                        {"anchored", Container::Anchored}};
    auto in = get(o, "in");
    if (!in)
        return Container::None;
    auto found = names.find(*in);
    if (found == names.end())
        fail(number, "unknown container \"" + *in + "\"");
    return found->second;
}

// "xml,link" -> {"xml", "link"}
std::vector<std::string> wrappers(const std::string& list, int number) {
    std::vector<std::string> kinds;
    std::istringstream in(list);
    for (std::string kind; std::getline(in, kind, ',');) {
        if (kind != "xml" && kind != "link" && kind != "change")
            fail(number, "unknown wrapper \"" + kind + "\" (xml, link or change)");
        kinds.push_back(kind);
    }
    return kinds;
}

StyleDef style(const std::vector<std::string>& w, int number) {
    Options o = options(w, 2, number);
    auto basedBy = get(o, "basedby").value_or("self");
    if (basedBy != "self" && basedBy != "name")
        fail(number, "basedby is \"self\" or \"name\"");
    return {w[1], get(o, "based").value_or(""), fontAttrs(o), get(o, "group").value_or(""),
            basedBy == "name"};
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
        const std::string& verb = w[0];
        if (verb == "dom" && w.size() == 2) {
            d.domVersion = w[1];
        } else if (verb == "font" && w.size() == 5) {
            d.fonts.push_back({w[1], w[2], w[3] == "-" ? "" : w[3], w[4]});
        } else if (verb == "exported" && w.size() == 1) {
            d.exported = true;
        } else if (verb == "composite" && w.size() >= 4 && w.size() % 2 == 0) {
            CompositeDef composite{w[1], {}};
            for (std::size_t i = 2; i < w.size(); i += 2)
                composite.faces.emplace_back(w[i], w[i + 1]);
            d.composites.push_back(composite);
        } else if (verb == "proot" || verb == "croot") {
            (verb == "proot" ? d.rootParagraph : d.rootCharacter) =
                fontAttrs(options(w, 1, number));
        } else if ((verb == "pstyle" || verb == "cstyle") && w.size() >= 2) {
            (verb == "pstyle" ? d.paragraphStyles : d.characterStyles).push_back(style(w, number));
        } else if (verb == "story" && w.size() == 1) {
            d.stories.emplace_back();
        } else if (verb == "para") {
            if (d.stories.empty())
                fail(number, "\"para\" before any \"story\"");
            Options o = options(w, 1, number);
            d.stories.back().paragraphs.push_back(
                {get(o, "pstyle").value_or(""), fontAttrs(o), {}, get(o, "in") == "xml"});
        } else if (verb == "run") {
            if (d.stories.empty() || d.stories.back().paragraphs.empty())
                fail(number, "\"run\" before any \"para\"");
            Options o = options(w, 1, number);
            auto ace = get(o, "ace");
            d.stories.back().paragraphs.back().runs.push_back(
                {get(o, "cstyle").value_or(""), fontAttrs(o), get(o, "text").value_or(""),
                 container(o, number), get(o, "pstyle").value_or(""), ace ? std::stoi(*ace) : -1,
                 o.count("refs") > 0, -1, wrappers(get(o, "wrap").value_or(""), number)});
        } else {
            fail(number, "cannot read \"" + line + "\"");
        }
    }
    return d;
}

} // namespace IdmlTestKit
