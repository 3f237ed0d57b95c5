#include "foundation/Exception.h"

namespace Tamrik {

Exception::Exception(const std::string& userMessage, const std::string& file, unsigned long line,
                     const std::string& codeSnippet)
    : userMessage(userMessage), file(file), codeSnippet(codeSnippet),
      line(static_cast<unsigned int>(line)) {}

const char* Exception::what() const noexcept {
    if (whatCache.empty()) {
        try {
            whatCache = description();
        } catch (...) {
            return "Tamrik::Exception";
        }
    }
    return whatCache.c_str();
}

std::string Exception::description() const {
    return descriptionHeader() + descriptionMessage() + descriptionCode();
}

std::string Exception::exceptionName() const {
    return "Exception";
}

std::string Exception::descriptionHeader() const {
    std::string header = exceptionName() + " in file ";
    header += file.empty() ? std::string("<unknown>") : "'" + file + "'";
    header += " at line ";
    header += line == 0xFFFFFFFFu ? std::string("<unknown>") : std::to_string(line);
    return header;
}

std::string Exception::descriptionMessage() const {
    if (userMessage.empty()) {
        return "";
    }
    return "\n    User Message : " + userMessage;
}

std::string Exception::descriptionCode() const {
    if (codeSnippet.empty()) {
        return "";
    }
    return "\n---vvv----- CODE SNIPPET -----vvv---\n" + codeSnippet +
           "\n---^^^--- END CODE SNIPPET ---^^^---";
}

} // namespace Tamrik
