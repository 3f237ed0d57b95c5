#pragma once

#include "host/document/FaceUse.h"

#include <QDialog>

#include <vector>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace Galley {

class DocumentHub;
class SessionFontMgr;

// Type ▸ Find Font…: every face of the document (missing ones first) with its status and
// where it is used, in text and in styles, and Replace… for the selected one. The
// replacement is Galley's own (styles too, when asked); the document view, the status
// bar and an open fonts dialog of the plug-in follow at once.
class FindFontWindow : public QDialog {
public:
    FindFontWindow(DocumentHub& documents, const SessionFontMgr& fonts, QWidget* parent);

    // Lists the front document's faces again, keeping the selection where it can.
    void refresh();
    // Sets the text (and, with `styles`, the styles) in the face of row `row` in `to`.
    void replace(int row, const FontKey& to, bool styles);
    QTreeWidget& list() { return *list_; }
    QString outcome() const;

private:
    void chooseReplacement();
    void selectionChanged();

    DocumentHub& documents_;
    const SessionFontMgr& fonts_;
    std::vector<FaceUse> uses_;
    QTreeWidget* list_ = nullptr;
    QLabel* outcome_ = nullptr;
    QPushButton* replace_ = nullptr;
};

} // namespace Galley
