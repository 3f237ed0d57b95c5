#pragma once

#include <QString>

#include <functional>

namespace Galley {

class DocumentHub;
class DocumentPrompts;
class IdmlDocument;
class RecentFiles;

// The window's document and its state, without any window: opening, saving and closing,
// and the question asked before unsaved changes are given up. Every road that gives up the
// document (closing the window, Quit, Open, Close, a recent file, a drop) asks first.
class DocumentController {
public:
    DocumentController(DocumentHub& documents, DocumentPrompts& prompts, RecentFiles& recent)
        : documents_(documents), prompts_(prompts), recent_(recent) {}

    IdmlDocument* document() const;
    bool modified() const;
    // "NAME.idml[*] — Galley" (the window shows "*" at [*] while modified), or "Galley".
    QString windowTitle() const;

    // Gives up the open document (asking first) and opens `path`; the plug-ins respond to
    // it before this returns. False when the user cancelled or the document cannot be read
    // (the user was told; the document open before stays).
    bool open(const QString& path);
    // Saves to the document's own file.
    bool save();
    // Saves to a file the user chooses; ".idml" is added to a name without an extension.
    bool saveAs();
    bool close();
    // True when nothing unsaved would be lost: the document is unmodified, or the user
    // saved it or chose to discard the changes.
    bool mayDiscard();

    // Called whenever the title, the modified state or the recent files may have changed.
    std::function<void()> onChanged;

    // "NAME" or "NAME.idml" for a name without an extension.
    static QString withIdmlExtension(const QString& path);

private:
    bool saveTo(const QString& path);
    void changed();

    DocumentHub& documents_;
    DocumentPrompts& prompts_;
    RecentFiles& recent_;
};

} // namespace Galley
