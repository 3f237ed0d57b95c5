#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Galley {

// Which of a dialog's rows or list entries a batch action's TEXT names. Each item shows one
// or more texts (a tree row: its cells). The item showing TEXT exactly wins; failing that,
// the only item with a text that starts with TEXT, ignoring ASCII case, so that
// `select Helvetica` finds the row "Helvetica Italic" as a user would expect.
struct NamedItem {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    std::size_t index = none;
    // When several items start with TEXT and none shows it exactly: their first texts.
    std::vector<std::string> ambiguous;
};

NamedItem findNamedItem(const std::vector<std::vector<std::string>>& items,
                        const std::string& text);

} // namespace Galley
