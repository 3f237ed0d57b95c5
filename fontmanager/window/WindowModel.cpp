#include "fontmanager/window/WindowModel.h"

#include "fontmanager/Duplicates.h"
#include "fontmanager/LibrarySelection.h"
#include "fontmanager/OpenCatalog.h"
#include "foundation/Logger.h"
#include "platform/linux/notify.h"

namespace Vellumine::Window {

namespace {

QString text(const std::string& value) {
    return QString::fromStdString(value);
}

// How often the window looks at the library-change notification.
constexpr int changePollMillis = 300;

} // namespace

WindowModel::WindowModel(const LibraryPaths& paths, QObject* parent)
    : QObject(parent), libraryPaths(paths), catalogFile(openCatalogForReading(currentLibrary())),
      activation(*catalogFile, paths.activationFolder()), changes(*catalogFile),
      faceSets(*catalogFile, activation, changes) {
    libraryFilter.setSourceModel(&libraryModel);
    watchChanges();
    reload();
}

WindowModel::~WindowModel() {
    if (changeToken >= 0) {
        notify_cancel(changeToken);
    }
}

void WindowModel::watchChanges() {
    if (notify_register_check(libraryChangedNotification.c_str(), &changeToken) != 0) {
        changeToken = -1;
        return;
    }
    int ignored = 0;
    notify_check(changeToken, &ignored); // the first check always reports a change
    connect(&changeTimer, &QTimer::timeout, this, [this] {
        int changed = 0;
        if (notify_check(changeToken, &changed) != 0 || changed == 0) {
            return;
        }
        try {
            reload();
        } catch (const std::exception& error) {
            // A catalog busy for long, or gone: the window shows what it had and tries again
            // with the next change.
            Logger::log("vellumine-window", std::string("cannot reload: ") + error.what());
        }
    });
    changeTimer.start(changePollMillis);
}

void WindowModel::reload() {
    const SystemFonts* system = nullptr;
    if (catalogFile->systemFonts()) {
        try {
            system = &systemFonts.current(libraryPaths.activationFolder());
        } catch (const std::exception& error) {
            Logger::log("vellumine-window", std::string("system fonts unknown: ") + error.what());
        }
    }
    auto families = loadFamilies(*catalogFile, system);
    std::vector<FaceRecord> libraryFaces;
    for (const auto& family : families) {
        for (const auto& entry : family.faces) {
            if (!entry.face.onSystem) {
                libraryFaces.push_back(entry.face);
            }
        }
    }
    libraryModel.setFamilies(std::move(families));
    loadSets();
    loadDuplicates(libraryFaces);
    emit reloaded();
}

void WindowModel::loadSets() {
    setsModel.clear();
    setsModel.setHorizontalHeaderLabels({QStringLiteral("Set"), QStringLiteral("Faces")});
    for (const auto& set : faceSets.all()) {
        auto* name = new QStandardItem(text(set.name));
        name->setEditable(false);
        auto* count = new QStandardItem(QString::number(set.faceCount));
        count->setEditable(false);
        setsModel.appendRow({name, count});
    }
}

void WindowModel::loadDuplicates(const std::vector<FaceRecord>& faces) {
    duplicatesModel.clear();
    duplicatesModel.setHorizontalHeaderLabels({QStringLiteral("PostScript name / format"),
                                               QStringLiteral("Version"), QStringLiteral("File"),
                                               QStringLiteral("State")});
    const auto cachedDetails = [this](const FaceRecord& face) {
        const auto key = std::make_pair(face.file.string(), face.faceIndex);
        const auto found = detailsCache.find(key);
        if (found != detailsCache.end()) {
            return found->second;
        }
        return detailsCache[key] = readFaceDetails(files.readable(face), face.faceIndex);
    };
    for (const auto& group : findDuplicates(faces, cachedDetails)) {
        QStringList differences;
        for (const auto& difference : group.differences) {
            differences << text(difference);
        }
        auto* head = new QStandardItem(text(group.postScriptName));
        auto* apart =
            new QStandardItem(differences.isEmpty() ? QStringLiteral("identical copies")
                                                    : "differ in " + differences.join(", "));
        for (std::size_t i = 0; i < group.faces.size(); ++i) {
            const FaceRecord& face = group.faces[i];
            auto* format = new QStandardItem(text(wireText(face.type)) + " (" +
                                             text(group.details[i].format) + ")");
            format->setData(QVariant::fromValue<qint64>(face.id), LibraryModel::faceIdRole);
            head->appendRow({format, new QStandardItem(text(group.details[i].version)),
                             new QStandardItem(text(face.file.string())),
                             new QStandardItem(face.active ? "active" : "inactive")});
        }
        duplicatesModel.appendRow({head, apart});
    }
}

void WindowModel::setSearch(const QString& text) {
    libraryFilter.setFilterFixedString(text);
}

QModelIndex WindowModel::locate(std::int64_t containerID, const QString& postScriptName) {
    const QModelIndex source = libraryModel.find(containerID, postScriptName);
    if (!source.isValid()) {
        return {};
    }
    QModelIndex shown = libraryFilter.mapFromSource(source);
    if (!shown.isValid()) {
        setSearch({});
        shown = libraryFilter.mapFromSource(source);
    }
    return shown;
}

const FaceEntry* WindowModel::faceAt(const QModelIndex& filterIndex) const {
    return libraryModel.faceAt(libraryFilter.mapToSource(filterIndex));
}

QString WindowModel::titleFor(const FaceEntry* face) {
    return face != nullptr ? text(face->face.postScriptName) + QStringLiteral(" — Vellumine")
                           : QStringLiteral("Vellumine");
}

QStringList WindowModel::results(const std::vector<ActivationResult>& outcomes) {
    QStringList messages;
    for (const auto& result : outcomes) {
        messages << text(result.message);
    }
    return messages;
}

void WindowModel::announceActiveFontsChanged(const std::vector<ActivationResult>& outcomes) {
    for (const auto& result : outcomes) {
        if (result.outcome == ActivationResult::Outcome::changed) {
            changes.announce(ChangeKind::activeFontsChanged);
            return;
        }
    }
}

QStringList WindowModel::activate(const std::vector<std::int64_t>& ids) {
    std::vector<ActivationResult> outcomes;
    for (const auto id : ids) {
        outcomes.push_back(activation.activate(id));
    }
    announceActiveFontsChanged(outcomes);
    reload();
    return results(outcomes);
}

QStringList WindowModel::deactivate(const std::vector<std::int64_t>& ids) {
    std::vector<ActivationResult> outcomes;
    for (const auto id : ids) {
        outcomes.push_back(activation.deactivate(id));
    }
    announceActiveFontsChanged(outcomes);
    reload();
    return results(outcomes);
}

QStringList WindowModel::activateSet(const QString& name) {
    const auto outcomes = faceSets.activate(name.toStdString());
    reload();
    return results(outcomes);
}

QStringList WindowModel::deactivateSet(const QString& name) {
    const auto outcomes = faceSets.deactivate(name.toStdString());
    reload();
    return results(outcomes);
}

void WindowModel::createSet(const QString& name) {
    faceSets.create(name.toStdString());
    loadSets();
}

void WindowModel::addToSet(const QString& name, const std::vector<std::int64_t>& ids) {
    faceSets.add(name.toStdString(), ids);
    loadSets();
}

void WindowModel::deleteSet(const QString& name) {
    faceSets.remove(name.toStdString());
    loadSets();
}

void WindowModel::libraryFilesChanged() {
    changes.announce(ChangeKind::libraryFilesChanged);
    reload();
}

std::vector<std::pair<QString, QString>> WindowModel::detailRows(const FaceEntry& entry) {
    const FaceRecord& face = entry.face;
    const FaceDetails details = readFaceDetails(files.readable(face), face.faceIndex);
    std::vector<std::pair<QString, QString>> rows = {
        {"Family", text(face.family)},
        {"Style", text(face.style)},
        {"PostScript name", text(face.postScriptName)},
        {"State", entry.state()},
        {"File",
         text(face.file.string()) +
             (face.faceIndex > 0 ? QStringLiteral(" (face %1)").arg(face.faceIndex) : QString())},
    };
    if (!face.onSystem) {
        rows.emplace_back("Container", QString::number(face.id));
    }
    if (!details.problem.empty()) {
        rows.emplace_back("Problem", text(details.problem));
        return rows;
    }
    rows.emplace_back("Format", text(wireText(face.type)) + " (" + text(details.format) + ")");
    const std::pair<const char*, const std::string*> optional[] = {
        {"Version", &details.version},          {"Foundry", &details.manufacturer},
        {"Designer", &details.designer},        {"Licence", &details.licence},
        {"Licence URL", &details.licenceUrl},   {"Vendor URL", &details.vendorUrl},
        {"Designer URL", &details.designerUrl}, {"Copyright", &details.copyright},
    };
    for (const auto& [label, value] : optional) {
        if (!value->empty()) {
            rows.emplace_back(label, text(*value));
        }
    }
    return rows;
}

Preview WindowModel::preview(const FaceEntry& entry, const QString& sample, int pixelSize,
                             int width) {
    return renderPreview(files.readable(entry.face), entry.face.faceIndex, sample, pixelSize,
                         width);
}

} // namespace Vellumine::Window
