#pragma once

#include "fontmanager/Activation.h"
#include "fontmanager/Catalog.h"
#include "fontmanager/FaceDetails.h"
#include "fontmanager/FaceSets.h"
#include "fontmanager/LibraryChanges.h"
#include "fontmanager/LibraryPaths.h"
#include "fontmanager/SystemFonts.h"
#include "fontmanager/window/FacePreview.h"
#include "fontmanager/window/LibraryModel.h"

#include <QObject>
#include <QStandardItemModel>
#include <QTimer>

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Vellumine::Window {

// Everything the window shows and does, without a widget: the library tree and its search
// filter, the sets, the duplicates, previews, details, and the actions (activate,
// deactivate, sets). The widgets (MainWindow) only lay it out and forward the user's input,
// so that all of this is tested under Qt Test without a display.
//
// Changes are made as the command line makes them (catalog, activation folder, change
// announcement), so that the server tells applications; the window reloads whenever the
// library-change notification fires, whoever changed the library.
class WindowModel : public QObject {
    Q_OBJECT
public:
    explicit WindowModel(const LibraryPaths& paths, QObject* parent = nullptr);
    ~WindowModel() override;

    LibraryModel& library() { return libraryModel; }
    LibraryFilter& filter() { return libraryFilter; }
    QStandardItemModel& sets() { return setsModel; }
    QStandardItemModel& duplicates() { return duplicatesModel; }
    Catalog& catalog() { return *catalogFile; }
    const LibraryPaths& paths() const { return libraryPaths; }

    // Reads the library, its sets and duplicates again.
    void reload();
    void setSearch(const QString& text);

    // The face as a row of the filter, clearing the search when it hides the face; invalid
    // when the library has no such face.
    QModelIndex locate(std::int64_t containerID, const QString& postScriptName);
    const FaceEntry* faceAt(const QModelIndex& filterIndex) const;
    // "TeXGyrePagella-Regular — Vellumine", or "Vellumine" without a face.
    static QString titleFor(const FaceEntry* face);

    // Each returns one message per face, as the command line prints them.
    QStringList activate(const std::vector<std::int64_t>& ids);
    QStringList deactivate(const std::vector<std::int64_t>& ids);
    QStringList activateSet(const QString& name);
    QStringList deactivateSet(const QString& name);
    // Throws std::exception with a message for the user (bad name, unknown face).
    void createSet(const QString& name);
    void addToSet(const QString& name, const std::vector<std::int64_t>& ids);
    void deleteSet(const QString& name);

    // Label and value rows for the details pane: file, format, version, foundry, designer,
    // licence and URLs, as far as the font says them.
    std::vector<std::pair<QString, QString>> detailRows(const FaceEntry& entry);
    Preview preview(const FaceEntry& entry, const QString& text, int pixelSize, int width);

    // Call after a change made outside this model (an import): announces it and reloads.
    void libraryFilesChanged();

signals:
    void reloaded();

private:
    QStringList results(const std::vector<ActivationResult>& results);
    void announceActiveFontsChanged(const std::vector<ActivationResult>& results);
    void loadSets();
    void loadDuplicates(const std::vector<FaceRecord>& faces);
    void watchChanges();

    LibraryPaths libraryPaths;
    std::unique_ptr<Catalog> catalogFile;
    Activation activation;
    // A shared library's files, read from this workstation's cache.
    FaceFiles files{*catalogFile};
    LibraryChanges changes;
    FaceSets faceSets;
    SystemFontsCache systemFonts;
    LibraryModel libraryModel;
    LibraryFilter libraryFilter;
    QStandardItemModel setsModel;
    QStandardItemModel duplicatesModel;
    QTimer changeTimer;
    int changeToken = -1;
    // Duplicates are listed again on every reload; their files are read once.
    std::map<std::pair<std::string, long>, FaceDetails> detailsCache;
};

} // namespace Vellumine::Window
