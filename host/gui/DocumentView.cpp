#include "host/gui/DocumentView.h"

#include "host/document/IdmlDocument.h"
#include "host/fonts/InstalledFont.h"
#include "sdk/IComposeScanner.h"
#include "sdk/IFontFamily.h"
#include "sdk/ITextModel.h"
#include "sdk/TextAttributes.h"

#include <QFontDatabase>
#include <QTextCursor>

namespace Galley {

DocumentView::DocumentView(QWidget* parent) : QTextEdit(parent) {
    setReadOnly(true);
    document()->setDocumentMargin(24);
}

const QColor& DocumentView::missingFontBackground() {
    static const QColor pink(255, 182, 206);
    return pink;
}

QString DocumentView::qtFamilyFor(const std::string& file, const std::string& family) {
    auto found = added_.find(file);
    if (found != added_.end())
        return found->second;
    QString qtFamily = QString::fromStdString(family);
    const int id = QFontDatabase::addApplicationFont(QString::fromStdString(file));
    const QStringList families =
        id >= 0 ? QFontDatabase::applicationFontFamilies(id) : QStringList();
    if (!families.isEmpty())
        qtFamily = families.front();
    added_[file] = qtFamily;
    return qtFamily;
}

int DocumentView::show(IdmlDocument& document) {
    clear();
    QTextCursor cursor(this->document());
    int missingRuns = 0;
    for (int32 s = 0; s < document.GetTextModelCount(); ++s) {
        ITextModel* model = document.InstantiateTextModel(document.GetNthTextModelUID(s));
        auto* storyModel = dynamic_cast<StoryTextModel*>(model);
        if (!storyModel)
            continue;
        IComposeScanner* scanner = model->QueryComposeScanner();
        for (const StoryRun& run : storyModel->story().runs()) {
            const std::string text = Story::text(run);
            const ITextAttrUID* familyAttr =
                scanner->QueryFontFamilyAttribute(run.start, run.start + run.length);
            const ITextAttrFont* faceAttr =
                scanner->QueryFontFaceAttribute(run.start, run.start + run.length);
            IFontFamily* family =
                familyAttr ? document.InstantiateFontFamily(familyAttr->GetUIDData()) : nullptr;
            const PMString face = faceAttr ? faceAttr->GetFontName() : PMString();
            auto* installed =
                family ? dynamic_cast<InstalledFont*>(family->QueryFace(face)) : nullptr;

            QTextCharFormat format;
            QFont font = this->font();
            font.setPointSize(14);
            if (installed) {
                font.setFamily(qtFamilyFor(installed->face().file, installed->face().family()));
                font.setStyleName(QString::fromStdString(installed->face().style()));
            } else {
                ++missingRuns;
                format.setBackground(missingFontBackground());
                format.setToolTip(QString("Missing font: %1 %2")
                                      .arg(family ? QString::fromStdString(
                                                        family->GetFamilyName().GetUTF8String())
                                                  : "?",
                                           QString::fromStdString(face.GetUTF8String())));
            }
            format.setFont(font);
            cursor.insertText(QString::fromStdString(text), format);
        }
        cursor.insertBlock();
    }
    return missingRuns;
}

} // namespace Galley
