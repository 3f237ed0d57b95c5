#pragma once

#include "host/idml/FontReference.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace Galley {

class SessionFontMgr;

// Find Font's Replace…: the installed faces sorted by name, each shown in itself, narrowed
// as the user types, a preview of the chosen face, and whether the styles that name the
// old face are redefined too.
class ReplaceFaceDialog : public QDialog {
public:
    ReplaceFaceDialog(const SessionFontMgr& fonts, const QString& replacing, bool onlyInStyles,
                      QWidget* parent);

    // The chosen face ("Family", "Style"), once the user picked one.
    std::optional<FontKey> chosenFace() const;
    bool alsoInStyles() const;
    QLineEdit& search() { return *search_; }
    QListWidget& faces() { return *faces_; }

private:
    void fill(const SessionFontMgr& fonts);
    void filter(const QString& text);
    void showPreview();

    QLineEdit* search_ = nullptr;
    QListWidget* faces_ = nullptr;
    QLabel* preview_ = nullptr;
    QCheckBox* styles_ = nullptr;
};

} // namespace Galley
