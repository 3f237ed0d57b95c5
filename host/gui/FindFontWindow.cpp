#include "host/gui/FindFontWindow.h"

#include "host/document/IdmlDocument.h"
#include "host/gui/GuiText.h"
#include "host/gui/ReplaceFaceDialog.h"
#include "host/gui/ScreenFit.h"
#include "host/runtime/DocumentHub.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Galley {

namespace {

QString countOf(int count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(count);
}

QString runsOfText(int count) {
    return countOf(count, GuiText::tr("1 run of text"), GuiText::tr("%1 runs of text"));
}

QString usedIn(const FaceUse& use) {
    QStringList parts;
    if (use.textRuns > 0)
        parts << runsOfText(use.textRuns);
    if (use.compositeRuns > 0)
        parts << GuiText::tr("%1 in composite fonts").arg(use.compositeRuns);
    if (!use.styles.empty()) {
        QStringList names;
        for (const std::string& style : use.styles)
            names << QString::fromStdString(style);
        parts << GuiText::tr("styles: %1").arg(names.join(", "));
    }
    return parts.join("; ");
}

QString title(const FaceUse& use) {
    return QString::fromStdString(faceTitle(use.key));
}

} // namespace

FindFontWindow::FindFontWindow(DocumentHub& documents, const SessionFontMgr& fonts, QWidget* parent)
    : QDialog(parent), documents_(documents), fonts_(fonts) {
    setWindowTitle(GuiText::tr("Find Font"));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel(GuiText::tr("&Fonts in the document:"), this);
    layout->addWidget(caption);
    list_ = new QTreeWidget(this);
    list_->setObjectName("fontList");
    list_->setAccessibleName(GuiText::tr("Fonts in the document"));
    list_->setColumnCount(3);
    list_->setHeaderLabels({GuiText::tr("Font"), GuiText::tr("Status"), GuiText::tr("Used in")});
    list_->setRootIsDecorated(false);
    list_->setAlternatingRowColors(true);
    list_->header()->setStretchLastSection(true);
    caption->setBuddy(list_);
    layout->addWidget(list_, 1);
    outcome_ = new QLabel(this);
    outcome_->setObjectName("outcome");
    outcome_->setWordWrap(true);
    layout->addWidget(outcome_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    replace_ = buttons->addButton(GuiText::tr("&Replace…"), QDialogButtonBox::ActionRole);
    replace_->setObjectName("replaceButton");
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(replace_, &QPushButton::clicked, this, [this] { chooseReplacement(); });
    connect(list_, &QTreeWidget::itemSelectionChanged, this, [this] { selectionChanged(); });
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { chooseReplacement(); });
    resize(fittedToScreen(*this, {720, 360}));
    refresh();
}

void FindFontWindow::refresh() {
    const QTreeWidgetItem* current = list_->currentItem();
    const QString selected = current ? current->text(0) : QString();
    list_->clear();
    IdmlDocument* document = documents_.front();
    uses_ = document ? describeFaceUse(*document) : std::vector<FaceUse>{};
    for (const FaceUse& use : uses_) {
        auto* item = new QTreeWidgetItem(
            list_, {title(use), use.missing ? GuiText::tr("Missing") : GuiText::tr("Installed"),
                    usedIn(use)});
        if (use.missing)
            item->setForeground(1, QColor(0xc0, 0x1c, 0x28));
        if (!use.postscriptName.empty())
            item->setToolTip(0, QString::fromStdString(use.postscriptName));
        if (item->text(0) == selected)
            list_->setCurrentItem(item);
    }
    for (int column = 0; column < 2; ++column)
        list_->resizeColumnToContents(column);
    if (!list_->currentItem() && list_->topLevelItemCount() > 0)
        list_->setCurrentItem(list_->topLevelItem(0));
    selectionChanged();
}

void FindFontWindow::selectionChanged() {
    replace_->setEnabled(list_->currentItem() != nullptr);
}

void FindFontWindow::chooseReplacement() {
    const int row = list_->indexOfTopLevelItem(list_->currentItem());
    if (row < 0 || row >= static_cast<int>(uses_.size()))
        return;
    const FaceUse& use = uses_[static_cast<std::size_t>(row)];
    const bool onlyInStyles = use.textRuns == 0 && !use.styles.empty();
    ReplaceFaceDialog dialog(fonts_, title(use), onlyInStyles, this);
    if (dialog.exec() != QDialog::Accepted || !dialog.chosenFace())
        return;
    replace(row, *dialog.chosenFace(), dialog.alsoInStyles());
}

void FindFontWindow::replace(int row, const FontKey& to, bool styles) {
    if (row < 0 || row >= static_cast<int>(uses_.size()))
        return;
    const FaceUse use = uses_[static_cast<std::size_t>(row)];
    const ReplacementResult result = documents_.replaceFaces({use.key}, to, styles);
    QString said;
    if (result.runsReplaced == 0 && result.styles.empty()) {
        said = use.styles.empty()
                   ? GuiText::tr("Nothing was replaced: its text is set in composite fonts.")
                   : GuiText::tr("Nothing was replaced: only styles name it; tick “Also in "
                                 "styles” to redefine them.");
    } else {
        const int styles = static_cast<int>(result.styles.size());
        const QString where =
            styles == 0 ? runsOfText(result.runsReplaced)
            : result.runsReplaced == 0
                ? countOf(styles, GuiText::tr("1 style"), GuiText::tr("%1 styles"))
                : GuiText::tr("%1 and %2")
                      .arg(runsOfText(result.runsReplaced),
                           countOf(styles, GuiText::tr("1 style"), GuiText::tr("%1 styles")));
        said = GuiText::tr("Replaced %1 by %2 in %3.")
                   .arg(title(use), QString::fromStdString(faceTitle(to)), where);
    }
    outcome_->setText(said);
    refresh();
}

QString FindFontWindow::outcome() const {
    return outcome_->text();
}

} // namespace Galley
