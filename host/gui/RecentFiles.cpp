#include "host/gui/RecentFiles.h"

#include <QFileInfo>
#include <QSettings>

namespace Galley {

namespace {

constexpr const char* key = "recentFiles";

} // namespace

QStringList RecentFiles::stored() const {
    return QSettings().value(key).toStringList();
}

void RecentFiles::store(const QStringList& files) {
    QSettings settings;
    settings.setValue(key, files);
}

QStringList RecentFiles::files() const {
    QStringList existing;
    for (const QString& file : stored())
        if (QFileInfo::exists(file))
            existing.push_back(file);
    return existing;
}

void RecentFiles::add(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList files = stored();
    files.removeAll(absolute);
    files.prepend(absolute);
    while (files.size() > capacity)
        files.removeLast();
    store(files);
}

void RecentFiles::remove(const QString& path) {
    QStringList files = stored();
    files.removeAll(QFileInfo(path).absoluteFilePath());
    store(files);
}

void RecentFiles::clear() {
    store({});
}

} // namespace Galley
