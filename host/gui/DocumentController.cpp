#include "host/gui/DocumentController.h"

#include "host/document/DocumentSaver.h"
#include "host/document/IdmlDocument.h"
#include "host/gui/DocumentPrompts.h"
#include "host/gui/GuiText.h"
#include "host/gui/RecentFiles.h"
#include "host/runtime/DocumentHub.h"

#include <QFileInfo>

namespace Galley {

IdmlDocument* DocumentController::document() const {
    return documents_.front();
}

bool DocumentController::modified() const {
    return document() && document()->IsModified();
}

QString DocumentController::windowTitle() const {
    if (!document())
        return GuiText::tr("Galley");
    return GuiText::tr("%1[*] — Galley")
        .arg(QString::fromStdString(document()->GetName().GetUTF8String()));
}

QString DocumentController::withIdmlExtension(const QString& path) {
    return QFileInfo(path).suffix().isEmpty() ? path + ".idml" : path;
}

bool DocumentController::mayDiscard() {
    if (!modified())
        return true;
    const QString name = QString::fromStdString(document()->GetName().GetUTF8String());
    switch (prompts_.askToSave(name)) {
    case DocumentPrompts::Answer::save:
        return save();
    case DocumentPrompts::Answer::discard:
        return true;
    case DocumentPrompts::Answer::cancel:
        break;
    }
    return false;
}

bool DocumentController::open(const QString& path) {
    if (!mayDiscard())
        return false;
    try {
        documents_.open(path.toStdString());
    } catch (const std::exception& error) {
        prompts_.showError(QString::fromStdString(error.what()));
        changed();
        return false;
    }
    recent_.add(path);
    changed();
    return true;
}

bool DocumentController::save() {
    if (!document())
        return false;
    return saveTo(QString::fromStdString(document()->path()));
}

bool DocumentController::saveAs() {
    if (!document())
        return false;
    const QString chosen = prompts_.chooseSaveTarget(QString::fromStdString(document()->path()));
    if (chosen.isEmpty())
        return false;
    if (!saveTo(withIdmlExtension(chosen)))
        return false;
    recent_.add(QString::fromStdString(document()->path()));
    changed();
    return true;
}

bool DocumentController::saveTo(const QString& path) {
    try {
        // The file dialog asked before an existing file is replaced.
        saveDocumentAs(*document(), path.toStdString(), {.overwriteOriginal = true});
    } catch (const std::exception& error) {
        prompts_.showError(QString::fromStdString(error.what()));
        return false;
    }
    changed();
    return true;
}

bool DocumentController::close() {
    if (!document() || !mayDiscard())
        return false;
    documents_.close();
    changed();
    return true;
}

void DocumentController::changed() {
    if (onChanged)
        onChanged();
}

} // namespace Galley
