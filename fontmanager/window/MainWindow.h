#pragma once

#include "fontmanager/window/WindowModel.h"

#include <QMainWindow>

#include <cstdint>
#include <functional>
#include <vector>

class QFormLayout;
class QLabel;
class QLineEdit;
class QListView;
class QTabWidget;
class QTreeView;

namespace Vellumine::Window {

// vellumine's window: the widgets over a WindowModel. The library tree with its search
// field on the left (with the sets and the duplicates in tabs beside it), the selected
// face's preview and details on the right, the actions in the tool bar.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(WindowModel& model, QWidget* parent = nullptr);

    // Selects the face (by container identifier, else PostScript name), names it in the
    // title and brings the window to the front. False when the library has no such face:
    // the window still comes to the front, and the status bar says what was asked for.
    bool showFace(std::int64_t containerID, const QString& postScriptName);

private:
    QWidget* makeLibraryTab();
    QWidget* makeSetsTab();
    QWidget* makeDetailsPane();
    void makeToolBar();
    void selectionChanged();
    void fitDuplicates();
    void refreshPreview();
    void showDetails(const FaceEntry* entry);
    std::vector<std::int64_t> selectedFaces() const;
    void report(const QStringList& messages);
    void addFonts(bool folders);
    QString currentSet() const;
    // Runs a user's action; a refusal (a bad set name, an unknown set) goes to the status bar.
    void guarded(const std::function<void()>& action);

    WindowModel& model;
    QLineEdit* search = nullptr;
    QLineEdit* sample = nullptr;
    QTabWidget* tabs = nullptr;
    QTreeView* tree = nullptr;
    QListView* setList = nullptr;
    QTreeView* duplicateTree = nullptr;
    QLabel* preview = nullptr;
    QFormLayout* details = nullptr;
};

} // namespace Vellumine::Window
