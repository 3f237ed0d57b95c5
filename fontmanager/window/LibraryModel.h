#pragma once

#include "fontmanager/Catalog.h"
#include "fontmanager/SystemFonts.h"

#include <QAbstractItemModel>
#include <QSortFilterProxyModel>
#include <QStringList>

#include <vector>

namespace Vellumine::Window {

// One face as the window shows it: the catalog's record, and for a face active
// automatically the applications it is active for.
struct FaceEntry {
    FaceRecord face; // id 0 and onSystem for a face fontconfig lists outside the library
    QStringList activeFor;

    QString state() const;
};

struct FamilyEntry {
    QString name;
    std::vector<FaceEntry> faces;

    // "2 of 4 active, 4 on the system"
    QString summary() const;
};

// The library's families (case-insensitively sorted) and their faces (by style), with the
// system's faces when given; one catalog read per load.
std::vector<FamilyEntry> loadFamilies(Catalog& catalog, const SystemFonts* system);

// The library as a tree: families, then their faces, with columns for the PostScript name,
// the format, the state (active, active for an application, inactive, on the system) and
// the file.
class LibraryModel : public QAbstractItemModel {
    Q_OBJECT
public:
    enum Column { nameColumn, postScriptNameColumn, formatColumn, stateColumn, fileColumn };
    static constexpr int columns = 5;
    enum Role {
        faceIdRole = Qt::UserRole + 1, // container identifier; 0 for families and system faces
        searchTextRole,                // family, style, PostScript name and file
    };

    explicit LibraryModel(QObject* parent = nullptr);

    void setFamilies(std::vector<FamilyEntry> families);
    const std::vector<FamilyEntry>& families() const { return entries; }

    // The face of a face row; null for family rows and invalid indexes.
    const FaceEntry* faceAt(const QModelIndex& index) const;
    // A face row by container identifier, else the first by PostScript name; invalid when
    // neither names a face.
    QModelIndex find(std::int64_t containerID, const QString& postScriptName) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVariant faceData(const FaceEntry& entry, int column, int role) const;

    std::vector<FamilyEntry> entries;
};

// The search field's filter: a face stays when its family, style, PostScript name or file
// holds the text (ignoring case); a family stays while one of its faces does.
class LibraryFilter : public QSortFilterProxyModel {
    Q_OBJECT
public:
    explicit LibraryFilter(QObject* parent = nullptr);
};

} // namespace Vellumine::Window
