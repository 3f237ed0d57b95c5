#include "fontmanager/window/LibraryModel.h"

#include "fontmanager/BusDesktop.h"

#include <QBrush>
#include <QColor>

#include <algorithm>
#include <map>

namespace Vellumine::Window {

namespace {

QString text(const std::string& value) {
    return QString::fromStdString(value);
}

// Families by name, ignoring case; library faces before the system's copies, by style.
std::vector<FamilyEntry> group(std::vector<FaceEntry> faces) {
    std::map<QString, FamilyEntry> byKey;
    for (auto& entry : faces) {
        const QString family = text(entry.face.family);
        FamilyEntry& target = byKey[family.toCaseFolded()];
        if (target.name.isEmpty()) {
            target.name = family;
        }
        target.faces.push_back(std::move(entry));
    }
    std::vector<FamilyEntry> families;
    for (auto& [key, family] : byKey) {
        std::stable_sort(family.faces.begin(), family.faces.end(),
                         [](const FaceEntry& a, const FaceEntry& b) {
                             return std::tie(a.face.onSystem, a.face.style, a.face.id) <
                                    std::tie(b.face.onSystem, b.face.style, b.face.id);
                         });
        families.push_back(std::move(family));
    }
    return families;
}

} // namespace

QString FamilyEntry::summary() const {
    const auto onSystem = std::count_if(faces.begin(), faces.end(),
                                        [](const FaceEntry& e) { return e.face.onSystem; });
    const auto held = static_cast<std::ptrdiff_t>(faces.size()) - onSystem;
    const auto active = std::count_if(faces.begin(), faces.end(), [](const FaceEntry& e) {
        return e.face.active && !e.face.onSystem;
    });
    QStringList parts;
    if (held > 0) {
        parts << QStringLiteral("%1 of %2 active").arg(active).arg(held);
    }
    if (onSystem > 0) {
        parts << QStringLiteral("%1 on the system").arg(onSystem);
    }
    return parts.join(QStringLiteral(", "));
}

QString FaceEntry::state() const {
    if (face.onSystem) {
        return QStringLiteral("on the system");
    }
    if (!face.active) {
        return QStringLiteral("inactive");
    }
    return activeFor.isEmpty() ? QStringLiteral("active")
                               : QStringLiteral("active for ") + activeFor.join(", ");
}

std::vector<FamilyEntry> loadFamilies(Catalog& catalog, const SystemFonts* system) {
    std::map<std::int64_t, QStringList> activeFor;
    std::vector<FaceEntry> faces;
    catalog.read([&] {
        for (const auto& requester : catalog.autoRequesters()) {
            activeFor[requester.faceId].append(text(applicationDisplayName(requester.application)));
        }
        for (auto& face : catalog.allFaces()) {
            const auto found = activeFor.find(face.id);
            faces.push_back(
                {std::move(face), found != activeFor.end() ? found->second : QStringList()});
        }
    });
    if (system != nullptr) {
        for (const auto& systemFace : system->all()) {
            faces.push_back({systemFace.record, {}});
        }
    }
    return group(std::move(faces));
}

LibraryModel::LibraryModel(QObject* parent) : QAbstractItemModel(parent) {}

void LibraryModel::setFamilies(std::vector<FamilyEntry> families) {
    beginResetModel();
    entries = std::move(families);
    endResetModel();
}

// A face row's internal identifier is its family's row + 1; a family row's is 0.
QModelIndex LibraryModel::index(int row, int column, const QModelIndex& parent) const {
    if (!hasIndex(row, column, parent)) {
        return {};
    }
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row() + 1) : quintptr(0));
}

QModelIndex LibraryModel::parent(const QModelIndex& child) const {
    if (!child.isValid() || child.internalId() == 0) {
        return {};
    }
    return createIndex(static_cast<int>(child.internalId() - 1), 0, quintptr(0));
}

int LibraryModel::rowCount(const QModelIndex& parent) const {
    if (!parent.isValid()) {
        return static_cast<int>(entries.size());
    }
    if (parent.internalId() != 0 || parent.column() != 0) {
        return 0;
    }
    return static_cast<int>(entries[static_cast<std::size_t>(parent.row())].faces.size());
}

int LibraryModel::columnCount(const QModelIndex&) const {
    return columns;
}

const FaceEntry* LibraryModel::faceAt(const QModelIndex& index) const {
    if (!index.isValid() || index.model() != this || index.internalId() == 0) {
        return nullptr;
    }
    const auto& family = entries[index.internalId() - 1];
    return &family.faces[static_cast<std::size_t>(index.row())];
}

QModelIndex LibraryModel::find(std::int64_t containerID, const QString& postScriptName) const {
    QModelIndex byName;
    for (std::size_t f = 0; f < entries.size(); ++f) {
        const QModelIndex family = index(static_cast<int>(f), 0);
        for (std::size_t i = 0; i < entries[f].faces.size(); ++i) {
            const FaceRecord& face = entries[f].faces[i].face;
            if (containerID > 0 && face.id == containerID) {
                return index(static_cast<int>(i), 0, family);
            }
            if (!byName.isValid() && !postScriptName.isEmpty() &&
                text(face.postScriptName) == postScriptName) {
                byName = index(static_cast<int>(i), 0, family);
            }
        }
    }
    return byName;
}

QVariant LibraryModel::faceData(const FaceEntry& entry, int column, int role) const {
    const FaceRecord& face = entry.face;
    if (role == faceIdRole) {
        return QVariant::fromValue<qint64>(face.onSystem ? 0 : face.id);
    }
    if (role == searchTextRole) {
        return text(face.family + "\n" + face.style + "\n" + face.postScriptName + "\n" +
                    face.file.string());
    }
    if (role == Qt::ForegroundRole && column == stateColumn && !face.active) {
        return QBrush(QColor(Qt::darkGray));
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
        return {};
    }
    switch (column) {
    case nameColumn:
        return text(face.style);
    case postScriptNameColumn:
        return text(face.postScriptName);
    case formatColumn:
        return text(wireText(face.type));
    case stateColumn:
        return entry.state();
    case fileColumn:
        return text(face.file.string()) +
               (face.faceIndex > 0 ? QStringLiteral(" #%1").arg(face.faceIndex) : QString());
    default:
        return {};
    }
}

QVariant LibraryModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    if (const FaceEntry* entry = faceAt(index)) {
        return faceData(*entry, index.column(), role);
    }
    const FamilyEntry& family = entries[static_cast<std::size_t>(index.row())];
    if (role == searchTextRole) {
        return family.name;
    }
    if (role == faceIdRole) {
        return QVariant::fromValue<qint64>(0);
    }
    if (role == Qt::DisplayRole && index.column() == nameColumn) {
        return family.name;
    }
    if (role == Qt::DisplayRole && index.column() == stateColumn) {
        return family.summary();
    }
    return {};
}

QVariant LibraryModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    static const char* const titles[columns] = {"Family / style", "PostScript name", "Format",
                                                "State", "File"};
    return section >= 0 && section < columns ? QString(titles[section]) : QVariant();
}

LibraryFilter::LibraryFilter(QObject* parent) : QSortFilterProxyModel(parent) {
    setRecursiveFilteringEnabled(true);
    setFilterRole(LibraryModel::searchTextRole);
    setFilterCaseSensitivity(Qt::CaseInsensitive);
    setFilterKeyColumn(LibraryModel::nameColumn);
}

} // namespace Vellumine::Window
