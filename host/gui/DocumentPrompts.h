#pragma once

#include <QString>

class QWidget;

namespace Galley {

// What the window asks the user around a document: whether to keep unsaved changes, which
// file to open or save to, and what went wrong. Tests answer through their own.
class DocumentPrompts {
public:
    enum class Answer { save, discard, cancel };

    virtual ~DocumentPrompts() = default;
    // The document `name` has unsaved changes that are about to be given up.
    virtual Answer askToSave(const QString& name) = 0;
    // Empty when the user cancels.
    virtual QString chooseDocumentToOpen() = 0;
    virtual QString chooseSaveTarget(const QString& suggested) = 0;
    virtual void showError(const QString& text) = 0;
};

// The prompts as the desktop shows them: message boxes and file dialogs over `parent`.
class QtDocumentPrompts : public DocumentPrompts {
public:
    explicit QtDocumentPrompts(QWidget* parent) : parent_(parent) {}
    Answer askToSave(const QString& name) override;
    QString chooseDocumentToOpen() override;
    QString chooseSaveTarget(const QString& suggested) override;
    void showError(const QString& text) override;

private:
    QWidget* parent_;
};

} // namespace Galley
