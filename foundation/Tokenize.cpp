#include "foundation/Tokenize.h"

namespace Tamrik {

std::vector<std::string> tokenize(const std::string& text, const std::string& delimiters,
                                  bool skipEmpty) {
    std::vector<std::string> tokens;
    std::string::size_type start = 0;
    while (true) {
        if (skipEmpty) {
            start = text.find_first_not_of(delimiters, start);
            if (start == std::string::npos) {
                return tokens;
            }
        }
        const std::string::size_type end = text.find_first_of(delimiters, start);
        if (end == std::string::npos) {
            tokens.push_back(text.substr(start));
            return tokens;
        }
        tokens.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

} // namespace Tamrik
