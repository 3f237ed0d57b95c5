#include "host/gui/DocumentPrompts.h"

#include "host/gui/GuiText.h"

#include <QFileDialog>
#include <QMessageBox>

namespace Galley {

namespace {

QString idmlFilter() {
    return GuiText::tr("IDML documents (*.idml)");
}

} // namespace

DocumentPrompts::Answer QtDocumentPrompts::askToSave(const QString& name) {
    QMessageBox box(QMessageBox::Warning, GuiText::tr("Galley"),
                    GuiText::tr("Do you want to save the changes to “%1”?").arg(name),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, parent_);
    box.setInformativeText(GuiText::tr("Your changes will be lost if you don't save them."));
    box.setDefaultButton(QMessageBox::Save);
    box.setEscapeButton(QMessageBox::Cancel);
    switch (box.exec()) {
    case QMessageBox::Save:
        return Answer::save;
    case QMessageBox::Discard:
        return Answer::discard;
    default:
        return Answer::cancel;
    }
}

QString QtDocumentPrompts::chooseDocumentToOpen() {
    return QFileDialog::getOpenFileName(parent_, GuiText::tr("Open"), {}, idmlFilter());
}

QString QtDocumentPrompts::chooseSaveTarget(const QString& suggested) {
    QFileDialog dialog(parent_, GuiText::tr("Save As"), suggested, idmlFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("idml");
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front();
}

void QtDocumentPrompts::showError(const QString& text) {
    QMessageBox::warning(parent_, GuiText::tr("Galley"), text);
}

} // namespace Galley
