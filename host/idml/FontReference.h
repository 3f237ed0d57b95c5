#pragma once

#include <optional>
#include <string>

namespace Galley {

// The font attributes one level of formatting sets: a family (AppliedFont), a face
// (FontStyle), either, both or neither.
struct FontReference {
    std::optional<std::string> family;
    std::optional<std::string> style;

    // Takes from `weaker` what this level leaves open.
    void inheritFrom(const FontReference& weaker) {
        if (!family)
            family = weaker.family;
        if (!style)
            style = weaker.style;
    }
    bool empty() const { return !family && !style; }
};

// A face as the document names it.
struct FontKey {
    std::string family;
    std::string style;
    friend bool operator==(const FontKey&, const FontKey&) = default;
};

} // namespace Galley
