#include "platform/linux/DesktopEntry.h"

#include <sstream>

namespace Platform::Linux::DesktopEntry {

namespace {

std::string trim(const std::string& text) {
    const char* blanks = " \t\r";
    auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    auto last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

bool isSeparator(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool isQuotedEscapable(char c) {
    return c == '"' || c == '`' || c == '$' || c == '\\';
}

// Reads a quoted argument starting after the opening quote at `pos`; leaves `pos` after
// the closing quote.
bool readQuoted(const std::string& exec, std::size_t& pos, std::string& argument,
                std::string& error) {
    while (pos < exec.size()) {
        char c = exec[pos++];
        if (c == '"') {
            if (pos < exec.size() && !isSeparator(exec[pos])) {
                error = "text directly after a closing quote in Exec";
                return false;
            }
            return true;
        }
        if (c == '\\') {
            if (pos >= exec.size() || !isQuotedEscapable(exec[pos])) {
                error = "invalid escape inside a quoted Exec argument";
                return false;
            }
            c = exec[pos++];
        }
        argument += c;
    }
    error = "unterminated quote in Exec";
    return false;
}

bool isDroppedCode(char code) {
    static const std::string dropped = "fFuUdDnNvm";
    return dropped.find(code) != std::string::npos;
}

} // namespace

bool parseGroup(const std::string& text, std::map<std::string, std::string>& keys,
                std::string& error) {
    keys.clear();
    std::istringstream lines(text);
    std::string line;
    std::string group;
    bool seenGroup = false;
    int number = 0;
    while (std::getline(lines, line)) {
        ++number;
        std::string content = trim(line);
        if (content.empty() || content[0] == '#') {
            continue;
        }
        if (content.front() == '[') {
            if (content.back() != ']') {
                error = "line " + std::to_string(number) + ": unterminated group header";
                return false;
            }
            group = content.substr(1, content.size() - 2);
            seenGroup = seenGroup || group == "Desktop Entry";
            continue;
        }
        auto equals = content.find('=');
        if (equals == std::string::npos || group.empty()) {
            error = "line " + std::to_string(number) + ": not a key=value line of a group";
            return false;
        }
        std::string key = trim(content.substr(0, equals));
        if (group != "Desktop Entry" || key.find('[') != std::string::npos) {
            continue; // other groups and localised values play no part in launching
        }
        // Only the spaces around '=' are insignificant; keep the value's own trailing ones.
        std::string value = line.substr(line.find('=') + 1);
        value.erase(0, value.find_first_not_of(" \t"));
        if (!value.empty() && value.back() == '\r') {
            value.pop_back();
        }
        keys.emplace(key, value); // the first occurrence of a key wins
    }
    if (!seenGroup) {
        error = "no [Desktop Entry] group";
        return false;
    }
    return true;
}

std::string unescapeString(const std::string& value) {
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            out += value[i];
            continue;
        }
        char next = value[i + 1];
        switch (next) {
        case 's':
            out += ' ';
            break;
        case 'n':
            out += '\n';
            break;
        case 't':
            out += '\t';
            break;
        case 'r':
            out += '\r';
            break;
        case '\\':
            out += '\\';
            break;
        default:
            out += '\\';
            out += next;
            break;
        }
        ++i;
    }
    return out;
}

bool splitArguments(const std::string& exec, std::vector<std::string>& arguments,
                    std::string& error) {
    arguments.clear();
    std::size_t pos = 0;
    while (pos < exec.size()) {
        if (isSeparator(exec[pos])) {
            ++pos;
            continue;
        }
        std::string argument;
        if (exec[pos] == '"') {
            ++pos;
            if (!readQuoted(exec, pos, argument, error)) {
                return false;
            }
        } else {
            while (pos < exec.size() && !isSeparator(exec[pos])) {
                if (exec[pos] == '"') {
                    error = "double quote inside an unquoted Exec argument";
                    return false;
                }
                argument += exec[pos++];
            }
        }
        arguments.push_back(argument);
    }
    return true;
}

bool expandFieldCodes(const std::vector<std::string>& arguments, const FieldValues& values,
                      std::vector<std::string>& argv, std::string& error) {
    argv.clear();
    for (const auto& argument : arguments) {
        if (argument == "%i") {
            if (!values.icon.empty()) {
                argv.push_back("--icon");
                argv.push_back(values.icon);
            }
            continue;
        }
        std::string expanded;
        bool onlyDropped = true;
        for (std::size_t i = 0; i < argument.size(); ++i) {
            if (argument[i] != '%') {
                expanded += argument[i];
                onlyDropped = false;
                continue;
            }
            if (i + 1 == argument.size()) {
                error = "lone % at the end of an Exec argument";
                return false;
            }
            char code = argument[++i];
            if (isDroppedCode(code)) {
                continue;
            }
            onlyDropped = false;
            switch (code) {
            case '%':
                expanded += '%';
                break;
            case 'c':
                expanded += values.name;
                break;
            case 'k':
                expanded += values.filePath;
                break;
            case 'i':
                error = "%i must be an Exec argument of its own";
                return false;
            default:
                error = std::string("unknown field code %") + code + " in Exec";
                return false;
            }
        }
        if (!(onlyDropped && !argument.empty())) {
            argv.push_back(expanded);
        }
    }
    return true;
}

bool parseExec(const std::string& rawExec, const FieldValues& values,
               std::vector<std::string>& argv, std::string& error) {
    std::vector<std::string> arguments;
    if (!splitArguments(unescapeString(rawExec), arguments, error) ||
        !expandFieldCodes(arguments, values, argv, error)) {
        return false;
    }
    if (argv.empty() || argv.front().empty()) {
        error = "Exec names no program";
        return false;
    }
    return true;
}

} // namespace Platform::Linux::DesktopEntry
