#pragma once

#include <string>
#include <vector>

namespace Tamrik {

// Splits text at any of the delimiter characters. Without skipEmpty, consecutive
// delimiters give empty tokens and an empty text gives one empty token; with it, empty
// tokens never occur.
std::vector<std::string> tokenize(const std::string& text, const std::string& delimiters,
                                  bool skipEmpty);

} // namespace Tamrik
