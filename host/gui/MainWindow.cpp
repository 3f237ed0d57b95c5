#include "host/gui/MainWindow.h"

#include "host/document/DocumentSaver.h"
#include "host/document/IdmlDocument.h"
#include "host/gui/DocumentView.h"
#include "host/runtime/Runtime.h"
#include "host/session/GalleySession.h"
#include "sdk/HostIdentifiers.h"
#include "sdk/IFontFamily.h"
#include "sdk/ISubject.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>

namespace Galley {

MainWindow::MainWindow(Runtime& runtime) : runtime_(runtime) {
    setWindowTitle("Galley");
    resize(900, 640);
    view_ = new DocumentView(this);
    setCentralWidget(view_);
    missing_ = new QLabel(this);
    statusBar()->addPermanentWidget(missing_);
    buildMenus();
    if (gSession && gSession->GetFontMgr())
        gSession->GetFontMgr()->GetSubject()->AttachObserver(this, IID_IFONTMGR);
}

MainWindow::~MainWindow() {
    if (gSession && gSession->GetFontMgr())
        gSession->GetFontMgr()->GetSubject()->DetachObserver(this, IID_IFONTMGR);
}

void MainWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Open…", QKeySequence::Open, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(this, "Open", {}, "IDML documents (*.idml)");
        if (!path.isEmpty())
            openLater(path);
    });
    file->addAction("Save &As…", QKeySequence::SaveAs, this, [this] { saveAs(); });
    file->addSeparator();
    file->addAction("&Quit", QKeySequence::Quit, this, [this] { close(); });

    std::map<std::string, QMenu*> pluginMenus;
    for (const auto& item : runtime_.plugins().menu()) {
        QMenu*& menu = pluginMenus[item.plugin];
        if (!menu)
            menu = menuBar()->addMenu(QString::fromStdString(item.plugin));
        const std::string name = item.name;
        menu->addAction(QString::fromStdString(item.title), this, [this, name] {
            runtime_.loop().post([this, name] {
                runtime_.invokeAction(name);
                refreshDocument();
            });
        });
    }
}

void MainWindow::openLater(const QString& path) {
    runtime_.loop().post([this, path] { openDocument(path); });
}

void MainWindow::openDocument(const QString& path) {
    try {
        showStatus("Opening " + QFileInfo(path).fileName() + "…");
        IdmlDocument& document = runtime_.documents().open(path.toStdString());
        setWindowTitle(QFileInfo(path).fileName() + " — Galley");
        (void)document;
        refreshDocument();
        showStatus("Opened " + QFileInfo(path).fileName());
    } catch (const std::exception& error) {
        QMessageBox::warning(this, "Galley", QString::fromStdString(error.what()));
    }
}

void MainWindow::saveAs() {
    IdmlDocument* document = runtime_.documents().front();
    if (!document)
        return;
    const QString path =
        QFileDialog::getSaveFileName(this, "Save As", {}, "IDML documents (*.idml)");
    if (path.isEmpty())
        return;
    try {
        saveDocumentAs(*document, path.toStdString());
        showStatus("Saved " + path);
    } catch (const std::exception& error) {
        QMessageBox::warning(this, "Galley", QString::fromStdString(error.what()));
    }
}

void MainWindow::refreshDocument() {
    IdmlDocument* document = runtime_.documents().front();
    if (!document) {
        missing_->setText("No document");
        return;
    }
    document->usage().Update();
    view_->show(*document);
    const int missing = document->usage().GetMissingFontCount();
    missing_->setText(missing == 0
                          ? "All fonts installed"
                          : QString("%1 missing font%2").arg(missing).arg(missing == 1 ? "" : "s"));
}

void MainWindow::showStatus(const QString& text) {
    statusBar()->showMessage(text, 8000);
}

void MainWindow::Update(ClassID change, ISubject*, PMIID, void*) {
    if (change == kFontSystemChangedMessage)
        runtime_.loop().post([this] { refreshDocument(); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    closed_ = true;
    runtime_.loop().quit();
    event->accept();
}

} // namespace Galley
