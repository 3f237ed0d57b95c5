#pragma once

#include "sdk/IObserver.h"

#include <QMainWindow>

class QLabel;

namespace Galley {

class DocumentView;
class Runtime;

// Galley's window: File (Open, Save As, Quit), a menu of each plug-in's entries, the
// document set in its fonts, and a status line with the count of missing fonts. Opening a
// document runs the plug-ins' responders exactly as batch mode does.
class MainWindow : public QMainWindow, private IObserver {
public:
    explicit MainWindow(Runtime& runtime);
    ~MainWindow() override;

    // Opens at the next turn of the main loop, so that the window is up first.
    void openLater(const QString& path);
    void refreshDocument();
    bool closed() const { return closed_; }
    DocumentView& view() { return *view_; }
    void showStatus(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void Update(ClassID change, ISubject* subject, PMIID protocol, void* changedBy) override;
    void buildMenus();
    void openDocument(const QString& path);
    void saveAs();

    Runtime& runtime_;
    DocumentView* view_ = nullptr;
    QLabel* missing_ = nullptr;
    bool closed_ = false;
};

} // namespace Galley
