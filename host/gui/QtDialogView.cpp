#include "host/gui/QtDialogView.h"

#include "host/dialogs/Dialog.h"
#include "host/dialogs/DialogText.h"
#include "host/gui/ScreenFit.h"
#include "host/gui/TreeRowsModel.h"
#include "host/loop/MainLoop.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IWidgetView.h"

#include <QAbstractButton>
#include <QDialog>
#include <QEvent>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QUiLoader>

#include <algorithm>
#include <stdexcept>

namespace Galley {

namespace {

// The host's painter for a plug-in's widget view.
class QtGraphicsPort : public IGraphicsPort {
public:
    explicit QtGraphicsPort(QPainter& painter) : painter_(painter) {}
    void FillRect(const PMRect& rect, const RGBColor& colour) override {
        painter_.fillRect(QRectF(rect.left, rect.top, rect.Width(), rect.Height()), toQt(colour));
    }
    void DrawText(const std::string& utf8, const PMRect& rect, const std::string& fontName,
                  double pointSize, const RGBColor& colour) override {
        QFont font(QString::fromStdString(fontName));
        font.setPointSizeF(pointSize);
        painter_.setFont(font);
        painter_.setPen(toQt(colour));
        painter_.drawText(QRectF(rect.left, rect.top, rect.Width(), rect.Height()), Qt::AlignCenter,
                          QString::fromStdString(utf8));
    }

private:
    static QColor toQt(const RGBColor& c) {
        return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                                static_cast<float>(c.blue));
    }
    QPainter& painter_;
};

// Lets a plug-in's view draw the widget instead of Qt's style.
class PluginPainted : public QObject {
public:
    PluginPainted(IWidgetView& view, Widget& model, QWidget* target)
        : QObject(target), view_(view), model_(model) {}
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint)
            return false;
        auto* widget = static_cast<QWidget*>(watched);
        QPainter painter(widget);
        QtGraphicsPort port(painter);
        view_.Draw(&port,
                   PMRect{0, 0, static_cast<double>(widget->width()),
                          static_cast<double>(widget->height())},
                   &model_);
        return true;
    }

private:
    IWidgetView& view_;
    Widget& model_;
};

// A name for assistive technologies where the description gives none: "fontTree" → "Font
// tree".
QString readableName(const QString& objectName) {
    QString words;
    for (const QChar c : objectName) {
        if (c.isUpper() && !words.isEmpty())
            words += ' ';
        words += words.isEmpty() ? c.toUpper() : c.toLower();
    }
    return words;
}

// Closing the window by its frame, or Escape, cancels the dialog as its Cancel button would.
// QDialog's own Escape would only hide the window, leaving the dialog waiting unseen.
class DialogWindowFilter : public QObject {
public:
    DialogWindowFilter(Dialog& dialog, MainLoop& loop, QObject* parent)
        : QObject(parent), dialog_(dialog), loop_(loop) {}
    bool eventFilter(QObject*, QEvent* event) override {
        const bool escape = event->type() == QEvent::KeyPress &&
                            static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel);
        if (event->type() == QEvent::Close || escape) {
            event->ignore();
            loop_.post([dialog = &dialog_] { dialog->cancel(); });
            return true;
        }
        return false;
    }

private:
    Dialog& dialog_;
    MainLoop& loop_;
};

} // namespace

QtDialogView::QtDialogView(Dialog& dialog, MainLoop& loop, QWidget* parent)
    : dialog_(dialog), loop_(loop) {
    QFile file(QString::fromStdString(dialog.descriptionFile()));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("dialog description " + dialog.descriptionFile() +
                                 " cannot be read");
    QUiLoader loader;
    QWidget* loaded = loader.load(&file, parent);
    window_ = qobject_cast<QDialog*>(loaded);
    if (!window_) {
        delete loaded;
        throw std::runtime_error("dialog description " + dialog.descriptionFile() +
                                 " is not a QDialog");
    }
    window_->setWindowTitle(QString::fromStdString(dialog.displayText(PMString(dialog.title()))));
    // A tree of fonts needs room for its columns.
    if (window_->findChild<QTreeView*>())
        window_->resize(fittedToScreen(
            *window_, {std::max(window_->width(), 820), std::max(window_->height(), 440)}));
    // A list of installed fonts needs room for more than a handful of them.
    else if (window_->findChild<QListWidget*>())
        window_->resize(fittedToScreen(
            *window_, {std::max(window_->width(), 440), std::max(window_->height(), 420)}));
    else
        window_->resize(fittedToScreen(*window_, window_->size()));
    window_->setWindowModality(Qt::ApplicationModal);
    // The description's geometry places the window at the screen's corner; without it,
    // QDialog centres the window over its parent when it is shown.
    window_->setAttribute(Qt::WA_Moved, false);
    window_->installEventFilter(new DialogWindowFilter(dialog, loop, window_));
    dialog.root().forEach([&](Widget& model) {
        QWidget* view = model.GetName().empty()
                            ? nullptr
                            : window_->findChild<QWidget*>(QString::fromStdString(model.GetName()));
        if (&model == &dialog.root())
            view = window_;
        if (view)
            bind(model, view);
    });
    sync();
}

QPushButton* QtDialogView::okButton() const {
    for (const auto& [model, view] : views_)
        if (model->GetWidgetID() == kOKButtonWidgetID)
            return qobject_cast<QPushButton*>(view);
    return nullptr;
}

void QtDialogView::takeFocusBack() {
    if (!window_)
        return;
    window_->raise();
    window_->activateWindow();
    if (QPushButton* ok = okButton(); ok && ok->isEnabled()) {
        ok->setDefault(true);
        ok->setFocus(Qt::OtherFocusReason);
    }
}

QtDialogView::~QtDialogView() {
    if (window_) {
        window_->hide();
        window_->deleteLater();
    }
}

QWidget* QtDialogView::qtWidgetFor(const Widget& widget) const {
    auto found = views_.find(const_cast<Widget*>(&widget));
    return found == views_.end() ? nullptr : found->second;
}

void QtDialogView::bind(Widget& model, QWidget* view) {
    views_[&model] = view;
    bound_.push_back(&model);
    if (view != window_ && view->accessibleName().isEmpty() &&
        !qobject_cast<QAbstractButton*>(view) && !qobject_cast<QLabel*>(view))
        view->setAccessibleName(readableName(view->objectName()));
    Dialog* dialog = &dialog_;
    Widget* widget = &model;
    if (auto* button = qobject_cast<QAbstractButton*>(view)) {
        // The window's own default-button handling would press it twice.
        QObject::connect(button, &QAbstractButton::clicked, this, [this, dialog, widget] {
            loop_.post([dialog, widget] { dialog->pressButton(*widget); });
        });
    } else if (auto* tree = qobject_cast<QTreeView*>(view)) {
        auto* rows = new TreeRowsModel(model, tree);
        trees_[&model] = rows;
        tree->setModel(rows);
        tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
        tree->setRootIsDecorated(true);
        tree->setAlternatingRowColors(true);
        QObject::connect(
            tree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this, tree, rows, widget] {
                if (syncing_)
                    return;
                std::vector<int> chosen;
                for (const QModelIndex& index : tree->selectionModel()->selectedRows())
                    chosen.push_back(rows->rowIndex(index));
                loop_.post([widget, chosen] {
                    widget->DeselectAll(false);
                    for (std::size_t i = 0; i < chosen.size(); ++i)
                        if (chosen[i] >= 0 && chosen[i] < widget->RowCount())
                            widget->Select(widget->rows()[static_cast<std::size_t>(chosen[i])].node,
                                           true, i + 1 == chosen.size());
                    if (chosen.empty())
                        widget->DeselectAll(true);
                });
            });
    } else if (auto* bar = qobject_cast<QProgressBar*>(view)) {
        if (auto* painter = dynamic_cast<IWidgetView*>(model.QueryAddIn(IID_IWIDGETVIEW)))
            bar->installEventFilter(new PluginPainted(*painter, model, bar));
    } else if (auto* list = qobject_cast<QListWidget*>(view)) {
        QObject::connect(list, &QListWidget::currentRowChanged, this, [this, widget](int row) {
            if (!syncing_ && row >= 0)
                loop_.post([widget, row] { widget->Select(row, true); });
        });
        QObject::connect(list, &QListWidget::itemDoubleClicked, this,
                         [this, list, widget](QListWidgetItem* item) {
                             const int row = list->row(item);
                             loop_.post([widget, row] { widget->doubleClickElement(row); });
                         });
    }
}

void QtDialogView::sync(Widget* widget) {
    syncing_ = true;
    if (widget && views_.count(widget)) {
        syncOne(*widget, views_[widget]);
    } else {
        for (Widget* model : bound_)
            syncOne(*model, views_[model]);
    }
    syncing_ = false;
}

void QtDialogView::syncOne(Widget& model, QWidget* view) {
    view->setEnabled(model.IsEnabled());
    if (view != window_)
        view->setVisible(model.IsVisible());
    const QString text = QString::fromStdString(model.displayText());
    if (auto* label = qobject_cast<QLabel*>(view)) {
        label->setText(text);
    } else if (auto* edit = qobject_cast<QLineEdit*>(view)) {
        edit->setText(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(view)) {
        button->setText(accessKeys_.caption(button, text));
    } else if (auto* bar = qobject_cast<QProgressBar*>(view)) {
        bar->setRange(model.GetMinimum(), model.GetMaximum());
        bar->setValue(model.GetValue());
        bar->update();
    } else if (auto* tree = qobject_cast<QTreeView*>(view)) {
        TreeRowsModel* rows = trees_[&model];
        rows->reload();
        tree->expandAll();
        // The first column holds long candidate descriptions; it is capped so that the
        // status stays in view (the full text is in the tool tip).
        for (int c = 0; c < rows->columnCount(); ++c)
            tree->resizeColumnToContents(c);
        tree->setColumnWidth(0, std::min(tree->columnWidth(0), 300));
        NodeIDList selected;
        model.GetSelectedItems(selected);
        tree->selectionModel()->clearSelection();
        for (std::size_t r = 0; r < model.rows().size(); ++r)
            for (const NodeID& node : selected)
                if (model.rows()[r].node == node)
                    tree->selectionModel()->select(rows->indexOfRow(static_cast<int>(r)),
                                                   QItemSelectionModel::Select |
                                                       QItemSelectionModel::Rows);
    } else if (auto* list = qobject_cast<QListWidget*>(view)) {
        list->clear();
        for (int32 n = 0; n < model.Length(); ++n) {
            const auto texts = widgetTexts(*static_cast<Widget*>(model.GetElement(n)));
            list->addItem(QString::fromStdString(texts.empty() ? "" : texts.front()));
        }
        K2Vector<int32> selected;
        model.GetSelected(selected);
        if (!selected.empty())
            list->setCurrentRow(selected.front());
        if (model.backgroundColor() == kInterfaceMenuHighLight)
            list->setStyleSheet("QListWidget::item:selected { background: palette(highlight); }");
    }
}

} // namespace Galley
