#pragma once

#include "fontmanager/LibraryImporter.h"
#include "fontmanager/LibraryLocation.h"

#include <QStringList>
#include <QThread>

#include <filesystem>
#include <vector>

namespace Vellumine::Window {

// Adds files and folders to the library off the window's thread, a few files at a time, so
// that the window stays responsive and shows progress for a large folder. It has a catalog
// connection of its own: a SQLite connection belongs to one thread.
class ImportJob : public QThread {
    Q_OBJECT
public:
    ImportJob(LibraryLocation library, std::vector<std::filesystem::path> paths,
              QObject* parent = nullptr);

    // Once finished: what was added, known or skipped, and the messages of skipped files.
    const ImportReport& report() const { return total; }
    QString summary() const;

    // The font files a list of files and folders comes to (folders searched recursively
    // for font extensions), in a stable order.
    static std::vector<std::filesystem::path>
    fontFiles(const std::vector<std::filesystem::path>& paths);

signals:
    void progress(int done, int total);

protected:
    void run() override;

private:
    LibraryLocation library;
    std::vector<std::filesystem::path> paths;
    ImportReport total;
};

} // namespace Vellumine::Window
