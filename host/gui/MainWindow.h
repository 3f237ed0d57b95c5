#pragma once

#include "host/gui/DocumentController.h"
#include "host/gui/MainMenus.h"
#include "host/gui/RecentFiles.h"
#include "sdk/IObserver.h"

#include <QMainWindow>
#include <QPointer>

#include <memory>

class QLabel;
class QMimeData;

namespace Galley {

class DocumentPrompts;
class DocumentView;
class FindFontWindow;
class QtPresenter;
class Runtime;

// Galley's window: the menus, the document set in its fonts, and a status line with the
// count of missing fonts. Opening a document runs the plug-ins' responders exactly as batch
// mode does; the title names the document from the moment it is read.
class MainWindow : public QMainWindow, private IObserver {
public:
    // `prompts` answers the questions around the document; null: message boxes and file
    // dialogs.
    MainWindow(Runtime& runtime, QtPresenter& presenter, DocumentPrompts* prompts = nullptr);
    ~MainWindow() override;

    // Opens at the next turn of the main loop, so that the window is up first.
    void openLater(const QString& path);
    // Shows the document's state again: title, modified mark, text, missing count.
    void refreshDocument();
    bool closed() const { return closed_; }
    DocumentView& view() { return *view_; }
    DocumentController& documents() { return controller_; }
    const MainMenus& menus() const { return menus_; }
    QString missingFontsText() const;
    void showStatus(const QString& text);
    FindFontWindow& showFindFont();
    void showAbout();
    // Opens the IDML document among dropped data; false when there is none.
    bool openDropped(const QMimeData* data);

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;
    void connectMenus();
    void addPluginMenus(QMenuBar& bar);
    void fillRecentMenu();
    void showSaved();

    Runtime& runtime_;
    std::unique_ptr<DocumentPrompts> ownPrompts_;
    DocumentPrompts& prompts_;
    RecentFiles recent_;
    DocumentController controller_;
    MainMenus menus_;
    DocumentView* view_ = nullptr;
    QLabel* missing_ = nullptr;
    QPointer<FindFontWindow> findFont_;
    bool closed_ = false;
};

} // namespace Galley
