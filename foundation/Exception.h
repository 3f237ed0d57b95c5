#pragma once

#include <exception>
#include <string>

namespace Tamrik {

// The program's one exception type: a user message, the raising source file and line,
// and an optional snippet of code or data shown with the error.
class Exception : public std::exception {
public:
    static constexpr unsigned long unknownLine = 0xFFFFFFFFul;

    Exception(const std::string& userMessage, const std::string& file, unsigned long line,
              const std::string& codeSnippet);
    ~Exception() override = default;

    // Built once, on the first call; the pointer stays valid while the exception lives.
    const char* what() const noexcept override;
    virtual std::string description() const;
    virtual std::string exceptionName() const;

    std::string descriptionHeader() const;
    std::string descriptionMessage() const;
    std::string descriptionCode() const;

    const std::string& getUserMessage() const { return userMessage; }
    const std::string& getFile() const { return file; }
    unsigned long getLine() const { return line; }
    const std::string& getCodeSnippet() const { return codeSnippet; }

private:
    std::string userMessage;
    std::string file;
    std::string codeSnippet;
    mutable std::string whatCache;
    unsigned int line;
};

} // namespace Tamrik
