#pragma once

#include <QTextEdit>

#include <map>
#include <string>

namespace Galley {

class IdmlDocument;

// The document's stories, each run set in the font it resolves to. Text whose font is
// missing is set in a stand-in font on a pink background, as DTP applications mark it, with
// the missing font's name in its tool tip.
class DocumentView : public QTextEdit {
public:
    explicit DocumentView(QWidget* parent = nullptr);
    // Sets the document's text again in the fonts installed now; returns the number of runs
    // whose font is missing.
    int show(IdmlDocument& document);
    static const QColor& missingFontBackground();

private:
    // Qt reads the installed fonts once; a face activated later is handed to it by file.
    QString qtFamilyFor(const std::string& file, const std::string& family);
    std::map<std::string, QString> added_;
};

} // namespace Galley
