#include "host/gui/ReplaceFaceDialog.h"

#include "host/fonts/SessionFontMgr.h"
#include "host/gui/GuiText.h"
#include "host/gui/ScreenFit.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Galley {

namespace {

constexpr int familyRole = Qt::UserRole;
constexpr int styleRole = Qt::UserRole + 1;

// The arrow and page keys typed in the search field move through the list, as in a
// desktop's file and font choosers, so the hands stay on the keyboard.
class ListKeysFromSearch : public QObject {
public:
    ListKeysFromSearch(QListWidget& list, QObject* parent) : QObject(parent), list_(list) {}
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return false;
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_PageUp:
        case Qt::Key_PageDown:
            QCoreApplication::sendEvent(&list_, event);
            return true;
        default:
            return false;
        }
    }

private:
    QListWidget& list_;
};

QFont faceFont(const QString& family, const QString& style, qreal pointSize) {
    QFont font(family);
    font.setStyleName(style);
    font.setPointSizeF(pointSize);
    return font;
}

} // namespace

ReplaceFaceDialog::ReplaceFaceDialog(const SessionFontMgr& fonts, const QString& replacing,
                                     bool onlyInStyles, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(GuiText::tr("Replace Font"));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel(GuiText::tr("Replace “%1” with:").arg(replacing), this);
    layout->addWidget(caption);
    search_ = new QLineEdit(this);
    search_->setObjectName("search");
    search_->setPlaceholderText(GuiText::tr("Search installed fonts"));
    search_->setAccessibleName(GuiText::tr("Search installed fonts"));
    search_->setClearButtonEnabled(true);
    layout->addWidget(search_);
    faces_ = new QListWidget(this);
    faces_->setObjectName("faceList");
    faces_->setAccessibleName(GuiText::tr("Installed fonts"));
    caption->setBuddy(faces_);
    layout->addWidget(faces_, 1);
    preview_ = new QLabel(this);
    preview_->setObjectName("preview");
    preview_->setAccessibleName(GuiText::tr("Preview"));
    preview_->setMinimumHeight(56);
    // A wide face's sample is cut at the edge rather than widening the dialog.
    preview_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    preview_->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    preview_->setMargin(6);
    preview_->setMargin(6);
    preview_->setFrameShape(QFrame::StyledPanel);
    layout->addWidget(preview_);
    styles_ =
        new QCheckBox(GuiText::tr("Also in &styles (redefine the styles that name it)"), this);
    styles_->setObjectName("alsoInStyles");
    // A face named by styles alone is only mended there.
    styles_->setChecked(onlyInStyles);
    layout->addWidget(styles_);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(GuiText::tr("&Replace"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    search_->installEventFilter(new ListKeysFromSearch(*faces_, search_));
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) { filter(text); });
    connect(faces_, &QListWidget::currentRowChanged, this, [this, buttons] {
        showPreview();
        buttons->button(QDialogButtonBox::Ok)->setEnabled(chosenFace().has_value());
    });
    connect(faces_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    fill(fonts);
    buttons->button(QDialogButtonBox::Ok)->setEnabled(false);
    search_->setFocus();
    resize(fittedToScreen(*this, {460, 520}));
}

void ReplaceFaceDialog::fill(const SessionFontMgr& fonts) {
    struct Face {
        QString family, style, title;
    };
    std::vector<Face> installed;
    for (const InstalledFont* font : fonts.installedFonts()) {
        if (!font->installed)
            continue;
        const QString family = QString::fromStdString(font->GetFamilyName().GetUTF8String());
        const QString style = QString::fromStdString(font->GetStyleName().GetUTF8String());
        installed.push_back({family, style, family + ' ' + style});
    }
    std::sort(installed.begin(), installed.end(), [](const Face& a, const Face& b) {
        return QString::localeAwareCompare(a.title, b.title) < 0;
    });
    // URW's faces come as Type 1 and OpenType both: one entry each.
    installed.erase(std::unique(installed.begin(), installed.end(),
                                [](const Face& a, const Face& b) { return a.title == b.title; }),
                    installed.end());
    const qreal size = font().pointSizeF() * 1.2;
    for (const Face& face : installed) {
        auto* item = new QListWidgetItem(face.title, faces_);
        item->setData(familyRole, face.family);
        item->setData(styleRole, face.style);
        item->setFont(faceFont(face.family, face.style, size));
    }
}

void ReplaceFaceDialog::filter(const QString& text) {
    const QStringList words = text.split(' ', Qt::SkipEmptyParts);
    QListWidgetItem* firstShown = nullptr;
    for (int row = 0; row < faces_->count(); ++row) {
        QListWidgetItem* item = faces_->item(row);
        const bool shown = std::all_of(words.begin(), words.end(), [&](const QString& word) {
            return item->text().contains(word, Qt::CaseInsensitive);
        });
        item->setHidden(!shown);
        if (shown && !firstShown)
            firstShown = item;
    }
    if (faces_->currentItem() && faces_->currentItem()->isHidden())
        faces_->setCurrentItem(firstShown);
}

void ReplaceFaceDialog::showPreview() {
    QListWidgetItem* item = faces_->currentItem();
    if (!item) {
        preview_->clear();
        return;
    }
    preview_->setFont(faceFont(item->data(familyRole).toString(), item->data(styleRole).toString(),
                               font().pointSizeF() * 1.6));
    preview_->setText(GuiText::tr("The quick brown fox jumps over the lazy dog"));
}

std::optional<FontKey> ReplaceFaceDialog::chosenFace() const {
    const QListWidgetItem* item = faces_->currentItem();
    if (!item || item->isHidden())
        return std::nullopt;
    return FontKey{item->data(familyRole).toString().toStdString(),
                   item->data(styleRole).toString().toStdString()};
}

bool ReplaceFaceDialog::alsoInStyles() const {
    return styles_->isChecked();
}

} // namespace Galley
