#include "host/gui/MainWindow.h"

#include "host/document/IdmlDocument.h"
#include "host/gui/AboutGalley.h"
#include "host/gui/AccessKeys.h"
#include "host/gui/DocumentPrompts.h"
#include "host/gui/DocumentView.h"
#include "host/gui/FindFontWindow.h"
#include "host/gui/GuiText.h"
#include "host/gui/QtPresenter.h"
#include "host/gui/ScreenFit.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IFontFamily.h"
#include "sdk/ISubject.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>

namespace Galley {

namespace {

// The local IDML file among what is dragged over the window, if any.
QString droppedDocument(const QMimeData* data) {
    if (!data)
        return {};
    for (const QUrl& url : data->urls())
        if (url.isLocalFile() && url.toLocalFile().endsWith(".idml", Qt::CaseInsensitive))
            return url.toLocalFile();
    return {};
}

DocumentPrompts& promptsOrOwn(DocumentPrompts* given, std::unique_ptr<DocumentPrompts>& own,
                              QWidget* parent) {
    if (!given)
        own = std::make_unique<QtDocumentPrompts>(parent);
    return given ? *given : *own;
}

} // namespace

MainWindow::MainWindow(Runtime& runtime, QtPresenter& presenter, DocumentPrompts* prompts)
    : runtime_(runtime), prompts_(promptsOrOwn(prompts, ownPrompts_, this)),
      controller_(runtime.documents(), prompts_, recent_) {
    resize(fittedToScreen(*this, {900, 640}));
    setAcceptDrops(true);
    view_ = new DocumentView(this);
    setCentralWidget(view_);
    // The keyboard goes to the document whenever the window gets it back.
    setFocusProxy(view_);
    missing_ = new QLabel(this);
    statusBar()->addPermanentWidget(missing_);
    menus_ = MainMenus::create(*this, [this](QMenuBar& bar) { addPluginMenus(bar); });
    connectMenus();

    presenter.attach(runtime.loop(), this);
    presenter.onDocumentChanged = [this](IdmlDocument&) { refreshDocument(); };
    presenter.onDialogClosed = [this] { runtime_.loop().post([this] { refreshDocument(); }); };
    controller_.onChanged = [this] { refreshDocument(); };
    if (gSession && gSession->GetFontMgr())
        gSession->GetFontMgr()->GetSubject()->AttachObserver(this, IID_IFONTMGR);
    refreshDocument();
}

MainWindow::~MainWindow() {
    if (gSession && gSession->GetFontMgr())
        gSession->GetFontMgr()->GetSubject()->DetachObserver(this, IID_IFONTMGR);
}

void MainWindow::connectMenus() {
    connect(menus_.open, &QAction::triggered, this, [this] {
        const QString path = prompts_.chooseDocumentToOpen();
        if (!path.isEmpty())
            openLater(path);
    });
    connect(menus_.recent, &QMenu::aboutToShow, this, [this] { fillRecentMenu(); });
    connect(menus_.save, &QAction::triggered, this, [this] {
        if (controller_.save())
            showSaved();
    });
    connect(menus_.saveAs, &QAction::triggered, this, [this] {
        if (controller_.saveAs())
            showSaved();
    });
    connect(menus_.close, &QAction::triggered, this, [this] { controller_.close(); });
    connect(menus_.quit, &QAction::triggered, this, [this] { close(); });
    connect(menus_.findFont, &QAction::triggered, this, [this] { showFindFont(); });
    connect(menus_.about, &QAction::triggered, this, [this] { showAbout(); });
}

void MainWindow::addPluginMenus(QMenuBar& bar) {
    // The plug-ins' menus and entries get access keys the menu bar leaves free.
    AccessKeys barKeys;
    for (QAction* menu : bar.actions())
        barKeys.caption(menu, menu->text());
    barKeys.caption(&barKeys, GuiText::tr("&Help")); // added after these
    std::map<std::string, QMenu*> pluginMenus;
    std::map<QMenu*, AccessKeys> entryKeys;
    for (const auto& item : runtime_.plugins().menu()) {
        QMenu*& menu = pluginMenus[item.plugin];
        if (!menu)
            menu = bar.addMenu(barKeys.caption(&menu, QString::fromStdString(item.plugin)));
        const std::string name = item.name;
        const QString title = QString::fromStdString(item.title);
        menu->addAction(entryKeys[menu].caption(&item, title), this, [this, name] {
            runtime_.loop().post([this, name] {
                runtime_.invokeAction(name);
                refreshDocument();
            });
        });
    }
}

void MainWindow::fillRecentMenu() {
    menus_.recent->clear();
    const QStringList files = recent_.files();
    for (int i = 0; i < files.size(); ++i) {
        const QString& file = files[i];
        // &1 … &8: each entry gets its number as access key.
        menus_.recent
            ->addAction(QString("&%1 %2").arg(i + 1).arg(QFileInfo(file).fileName()), this,
                        [this, file] { openLater(file); })
            ->setToolTip(file);
    }
    if (files.isEmpty())
        menus_.recent->addAction(GuiText::tr("No recent documents"))->setEnabled(false);
    menus_.recent->addSeparator();
    menus_.recent->addAction(GuiText::tr("&Clear List"), this, [this] { recent_.clear(); })
        ->setEnabled(!files.isEmpty());
}

void MainWindow::openLater(const QString& path) {
    runtime_.loop().post([this, path] {
        showStatus(GuiText::tr("Opening %1…").arg(QFileInfo(path).fileName()));
        if (controller_.open(path))
            showStatus(GuiText::tr("Opened %1").arg(QFileInfo(path).fileName()));
    });
}

void MainWindow::refreshDocument() {
    setWindowTitle(controller_.windowTitle());
    setWindowModified(controller_.modified());
    IdmlDocument* document = controller_.document();
    for (QAction* action : {menus_.save, menus_.saveAs, menus_.close, menus_.findFont})
        action->setEnabled(document != nullptr);
    if (findFont_)
        findFont_->refresh();
    if (!document) {
        view_->clear();
        missing_->setText(GuiText::tr("No document"));
        return;
    }
    document->usage().Update();
    view_->show(*document);
    const int missing = document->usage().GetMissingFontCount();
    missing_->setText(missing == 0   ? GuiText::tr("All fonts installed")
                      : missing == 1 ? GuiText::tr("1 missing font")
                                     : GuiText::tr("%1 missing fonts").arg(missing));
}

QString MainWindow::missingFontsText() const {
    return missing_->text();
}

void MainWindow::showSaved() {
    if (const IdmlDocument* document = controller_.document())
        showStatus(GuiText::tr("Saved %1").arg(QString::fromStdString(document->path())));
}

void MainWindow::showStatus(const QString& text) {
    statusBar()->showMessage(text, 8000);
}

FindFontWindow& MainWindow::showFindFont() {
    if (!findFont_)
        findFont_ = new FindFontWindow(runtime_.documents(), runtime_.session().fonts(), this);
    findFont_->refresh();
    findFont_->show();
    findFont_->raise();
    findFont_->activateWindow();
    return *findFont_;
}

void MainWindow::showAbout() {
    showAboutGalley(this, runtime_.plugins());
}

void MainWindow::Update(ClassID change, ISubject*, PMIID, void*) {
    if (change == kFontSystemChangedMessage)
        runtime_.loop().post([this] { refreshDocument(); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!controller_.mayDiscard()) {
        event->ignore();
        return;
    }
    closed_ = true;
    runtime_.loop().quit();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!droppedDocument(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
    if (openDropped(event->mimeData()))
        event->acceptProposedAction();
}

bool MainWindow::openDropped(const QMimeData* data) {
    const QString path = droppedDocument(data);
    if (path.isEmpty())
        return false;
    openLater(path);
    return true;
}

} // namespace Galley
