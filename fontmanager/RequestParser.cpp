#include "fontmanager/RequestParser.h"

#include "foundation/Logger.h"

#include <cctype>
#include <map>
#include <optional>
#include <string_view>

namespace Vellumine {

namespace {

struct ElementLine {
    std::string_view name;
    std::string_view value;
};

bool isElementName(std::string_view name) {
    if (name.empty() || name.size() > 64) {
        return false;
    }
    for (char c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') {
            return false;
        }
    }
    return true;
}

// "<name>value</name>": the value is everything between the first '>' and the closing tag,
// raw, so that a name holding "<" or "&" arrives as the application wrote it.
std::optional<ElementLine> elementLine(std::string_view line) {
    if (line.size() < 5 || line.front() != '<') {
        return std::nullopt;
    }
    const auto close = line.find('>');
    if (close == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view name = line.substr(1, close - 1);
    if (!isElementName(name)) {
        return std::nullopt;
    }
    const std::string closing = "</" + std::string(name) + ">";
    if (line.size() < close + 1 + closing.size() ||
        line.substr(line.size() - closing.size()) != closing) {
        return std::nullopt;
    }
    return ElementLine{name, line.substr(close + 1, line.size() - closing.size() - close - 1)};
}

class LineReader {
public:
    explicit LineReader(std::string_view text) : rest(text) {}

    // The next non-blank line without its line end; false at the end of the text.
    bool next(std::string_view& line) {
        while (!rest.empty()) {
            const auto end = rest.find('\n');
            line = rest.substr(0, end);
            rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
            ++number;
            if (!line.empty() && line.back() == '\r') {
                line.remove_suffix(1);
            }
            if (line.find_first_not_of(" \t") != std::string_view::npos) {
                return true;
            }
        }
        return false;
    }

    std::size_t lineNumber() const { return number; }

private:
    std::string_view rest;
    std::size_t number = 0;
};

class Parser {
public:
    Parser(const std::string& text, const RequestLimits& limits) : text(text), limits(limits) {}

    ParsedRequest run() {
        ParsedRequest result;
        result.ok = parse(result.request);
        result.error = error;
        return result;
    }

private:
    bool fail(const std::string& why) {
        error = why;
        return false;
    }

    bool failAtLine(const std::string& why) {
        return fail("line " + std::to_string(reader.lineNumber()) + ": " + why);
    }

    bool parse(Request& request) {
        if (text.size() > limits.maximumBytes) {
            return fail("request of " + std::to_string(text.size()) +
                        " bytes exceeds the limit of " + std::to_string(limits.maximumBytes));
        }
        if (text.find('\0') != std::string::npos) {
            return fail("request holds a NUL character");
        }
        std::string_view line;
        if (!reader.next(line)) {
            return fail("empty request");
        }
        if (line.size() > limits.maximumLineBytes || !readCommand(line, request)) {
            return failAtLine("a request begins with <cmd>NAME</cmd>");
        }
        while (reader.next(line)) {
            if (line.size() > limits.maximumLineBytes) {
                return failAtLine("line longer than " + std::to_string(limits.maximumLineBytes) +
                                  " bytes");
            }
            if (line == "</cmd>") {
                return finish();
            }
            if (!readLine(line, request)) {
                return false;
            }
        }
        return fail("request ends without its closing </cmd>");
    }

    bool readCommand(std::string_view line, Request& request) {
        const auto command = elementLine(line);
        if (!command || command->name != "cmd" || !isElementName(command->value)) {
            return false;
        }
        request.command = command->value;
        return true;
    }

    bool finish() {
        if (font) {
            return failAtLine("</cmd> inside an open <font>");
        }
        std::string_view trailing;
        if (reader.next(trailing)) {
            return failAtLine("text after the closing </cmd>");
        }
        return true;
    }

    bool readLine(std::string_view line, Request& request) {
        if (line == "<font>") {
            return openFont(request);
        }
        if (line == "</font>") {
            if (!font) {
                return failAtLine("</font> without <font>");
            }
            font = nullptr;
            fontFields.clear();
            return true;
        }
        const auto element = elementLine(line);
        if (!element) {
            return failAtLine("not an element line");
        }
        return font ? setFontField(*element) : setHeaderField(*element, request);
    }

    bool openFont(Request& request) {
        if (font) {
            return failAtLine("<font> inside <font>");
        }
        if (request.fonts.size() >= limits.maximumFonts) {
            return failAtLine("more than " + std::to_string(limits.maximumFonts) + " fonts");
        }
        font = &request.fonts.emplace_back();
        return true;
    }

    bool setOnce(std::map<std::string, bool>& seen, const ElementLine& element,
                 std::string& field) {
        bool& wasSeen = seen[std::string(element.name)];
        if (wasSeen) {
            return failAtLine("<" + std::string(element.name) + "> given twice");
        }
        wasSeen = true;
        field = element.value;
        return true;
    }

    bool setFontField(const ElementLine& element) {
        static const std::map<std::string_view, std::string RequestFont::*> fields = {
            {"syncID", &RequestFont::syncID},       {"psName", &RequestFont::psName},
            {"type", &RequestFont::type},           {"familyName", &RequestFont::familyName},
            {"styleName", &RequestFont::styleName}, {"containerID", &RequestFont::containerID}};
        const auto field = fields.find(element.name);
        if (field == fields.end()) {
            Logger::log("vellumine-request",
                        "ignored unknown element <" + std::string(element.name) + "> in <font>");
            return true;
        }
        return setOnce(fontFields, element, font->*(field->second));
    }

    bool setHeaderField(const ElementLine& element, Request& request) {
        static const std::map<std::string_view, std::string Request::*> fields = {
            {"targetApp", &Request::targetApp},
            {"targetClass", &Request::targetClass},
            {"protocolVersion", &Request::protocolVersion}};
        const auto field = fields.find(element.name);
        if (field == fields.end()) {
            Logger::log("vellumine-request",
                        "ignored unknown element <" + std::string(element.name) + ">");
            return true;
        }
        return setOnce(headerFields, element, request.*(field->second));
    }

    const std::string& text;
    const RequestLimits& limits;
    LineReader reader{text};
    RequestFont* font = nullptr;
    std::map<std::string, bool> fontFields;
    std::map<std::string, bool> headerFields;
    std::string error;
};

} // namespace

ParsedRequest parseRequest(const std::string& text, const RequestLimits& limits) {
    return Parser(text, limits).run();
}

} // namespace Vellumine
