// How batch mode's select, pick and double-click find the row or entry a user names.
#include "host/batch/NamedItem.h"

#include <gtest/gtest.h>

namespace {

using Galley::findNamedItem;
using Galley::NamedItem;

const std::vector<std::vector<std::string>> rows = {
    {"Helvetica Italic", "Helvetica-Italic", "TrueType", "Not in library"},
    {"Nimbus Sans Black", "NimbusSans-Black", "OpenType PostScript", "Not in library"},
    {"Nimbus Sans", "NimbusSans-Regular", "OpenType PostScript", "Activating"},
    {"helvetica.ttf in /fonts", "", "TrueType", ""},
};

TEST(NamedItem, ExactTextFirstThenTheOnlyRowStartingWithItIgnoringCase) {
    struct Case {
        std::string text;
        std::size_t index;
        std::vector<std::string> ambiguous;
    } const cases[] = {
        {"NimbusSans-Black", 1, {}}, // any cell, exactly
        {"Nimbus Sans", 2, {}},      // an exact match beats two rows starting with it
        {"Helvetica Italic", 0, {}},
        {"Helvetica-It", 0, {}},   // a prefix of the PostScript name
        {"nimbus sans bl", 1, {}}, // case is ignored for a prefix
        {"Helvetica", NamedItem::none, {"Helvetica Italic", "helvetica.ttf in /fonts"}},
        {"Nimbus", NamedItem::none, {"Nimbus Sans Black", "Nimbus Sans"}},
        {"Times", NamedItem::none, {}},
        {"", NamedItem::none, {}},
    };
    for (const auto& c : cases) {
        const NamedItem found = findNamedItem(rows, c.text);
        EXPECT_EQ(found.index, c.index) << c.text;
        EXPECT_EQ(found.ambiguous, c.ambiguous) << c.text;
    }
}

} // namespace
