#pragma once

#include <map>
#include <string>

namespace Galley {

// The display texts of string keys. A table file holds one "KEY = TEXT" per line; blank
// lines and lines starting with '#' are ignored, and "\n" in a text is a line break.
class StringTable {
public:
    // Adds the table's entries; false (and nothing added) when the file cannot be read.
    bool load(const std::string& path);
    void add(const std::string& key, const std::string& text) { texts_[key] = text; }
    // The text of `key`; the key itself when it has none, so a missing text is visible.
    const std::string& lookup(const std::string& key) const;
    std::size_t size() const { return texts_.size(); }

private:
    std::map<std::string, std::string> texts_;
};

} // namespace Galley
