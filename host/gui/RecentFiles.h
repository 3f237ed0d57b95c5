#pragma once

#include <QStringList>

namespace Galley {

// The documents opened or saved most recently, newest first, kept in Galley's settings
// (QSettings: $XDG_CONFIG_HOME/Galley/Galley.conf) so that the next start lists them too.
class RecentFiles {
public:
    static constexpr int capacity = 8;

    // The list with files that no longer exist left out.
    QStringList files() const;
    // Puts `path` (made absolute) first.
    void add(const QString& path);
    void remove(const QString& path);
    void clear();

private:
    QStringList stored() const;
    void store(const QStringList& files);
};

} // namespace Galley
