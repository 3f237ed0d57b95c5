#include "host/batch/NamedItem.h"

#include "foundation/AsciiCase.h"

#include <algorithm>

namespace Galley {

namespace {

bool startsWithIgnoringCase(const std::string& shown, const std::string& text) {
    return shown.size() >= text.size() &&
           AsciiCase::equal(std::string_view(shown).substr(0, text.size()), text);
}

} // namespace

NamedItem findNamedItem(const std::vector<std::vector<std::string>>& items,
                        const std::string& text) {
    NamedItem found;
    if (text.empty())
        return found; // an empty cell is not a name
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (std::find(items[i].begin(), items[i].end(), text) != items[i].end()) {
            found.index = i;
            return found;
        }
    }
    std::vector<std::size_t> starting;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (std::any_of(items[i].begin(), items[i].end(), [&](const std::string& shown) {
                return startsWithIgnoringCase(shown, text);
            }))
            starting.push_back(i);
    }
    if (starting.size() == 1) {
        found.index = starting.front();
    } else {
        for (const std::size_t i : starting)
            found.ambiguous.push_back(items[i].empty() ? std::string() : items[i].front());
    }
    return found;
}

} // namespace Galley
