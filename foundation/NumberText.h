#pragma once

#include <sstream>
#include <string>

namespace Tamrik {

// Number to text through a string stream; with the default width and precision an
// integer is plain decimal without padding.
template <typename T>
std::string toString(T value, unsigned long width = 0, unsigned long precision = 6) {
    std::ostringstream out;
    out.width(static_cast<std::streamsize>(width));
    out.precision(static_cast<std::streamsize>(precision));
    out << value;
    return out.str();
}

// Reads one value from the front of text (leading blanks skipped, trailing characters
// ignored). ok is false when nothing could be read; the result is then 0.
template <typename T>
T safeParse(const std::string& text, bool& ok) {
    std::istringstream in(text);
    T value = 0;
    in >> value;
    ok = !in.fail() && !in.bad();
    if (!ok) {
        value = 0;
    }
    return value;
}

} // namespace Tamrik
