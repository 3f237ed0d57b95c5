#pragma once

#include <string>

namespace Galley {

class IdmlDocument;

struct SaveOptions {
    // The document's own file is replaced only when asked for.
    bool overwriteOriginal = false;
};

// Save As: writes the document as a new IDML package at `target`.
//
// The package starts with the stored "mimetype" part; every part the document did not
// change is written with its original bytes; changed stories are serialised anew, and
// Resources/Fonts.xml then lists the faces the document now uses. The package is written
// to a temporary file beside the target and renamed over it only when complete, so a
// failed save leaves whatever was at `target` untouched; a symbolic link is followed, an
// existing file keeps its mode and owner, a new one gets 0666 less the umask
// (replaceFileAtomically). Throws IdmlError naming the target.
void saveDocumentAs(IdmlDocument& document, const std::string& target,
                    const SaveOptions& options = {});

} // namespace Galley
