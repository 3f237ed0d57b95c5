#include "fontmanager/window/MainWindow.h"

#include "fontmanager/LibrarySelection.h"
#include "fontmanager/window/ImportJob.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace Vellumine::Window {

namespace {

const QString defaultSample =
    QStringLiteral("The quick brown fox jumps over the lazy dog 0123456789");
constexpr int previewPixels = 30;

} // namespace

MainWindow::MainWindow(WindowModel& model, QWidget* parent) : QMainWindow(parent), model(model) {
    setWindowTitle(WindowModel::titleFor(nullptr));
    makeToolBar();
    auto* splitter = new QSplitter(this);
    tabs = new QTabWidget(splitter);
    tabs->addTab(makeLibraryTab(), QStringLiteral("Library"));
    tabs->addTab(makeSetsTab(), QStringLiteral("Sets"));
    duplicateTree = new QTreeView;
    duplicateTree->setModel(&model.duplicates());
    duplicateTree->setAlternatingRowColors(true);
    tabs->addTab(duplicateTree, QStringLiteral("Duplicates"));
    splitter->addWidget(tabs);
    splitter->addWidget(makeDetailsPane());
    splitter->setSizes({700, 480});
    setCentralWidget(splitter);
    connect(&model, &WindowModel::reloaded, this, [this] {
        fitDuplicates();
        selectionChanged();
    });
    fitDuplicates();
    resize(1180, 720);
}

void MainWindow::fitDuplicates() {
    duplicateTree->expandAll();
    for (int column = 0; column < model.duplicates().columnCount(); ++column) {
        duplicateTree->resizeColumnToContents(column);
    }
}

void MainWindow::makeToolBar() {
    QToolBar* bar = addToolBar(QStringLiteral("Library"));
    bar->setMovable(false);
    search = new QLineEdit;
    search->setPlaceholderText(QStringLiteral("Search family, style, PostScript name, file"));
    search->setClearButtonEnabled(true);
    search->setMinimumWidth(300);
    connect(search, &QLineEdit::textChanged, this, [this](const QString& text) {
        model.setSearch(text);
        if (!text.isEmpty()) {
            tree->expandAll();
        }
    });
    bar->addWidget(search);
    bar->addSeparator();
    bar->addAction(QStringLiteral("Activate"), this,
                   [this] { guarded([&] { report(model.activate(selectedFaces())); }); });
    bar->addAction(QStringLiteral("Deactivate"), this,
                   [this] { guarded([&] { report(model.deactivate(selectedFaces())); }); });
    auto* add = new QToolButton;
    add->setText(QStringLiteral("Add Fonts…"));
    add->setPopupMode(QToolButton::InstantPopup);
    auto* menu = new QMenu(add);
    menu->addAction(QStringLiteral("Files…"), this, [this] { addFonts(false); });
    menu->addAction(QStringLiteral("Folder…"), this, [this] { addFonts(true); });
    add->setMenu(menu);
    bar->addWidget(add);
}

QWidget* MainWindow::makeLibraryTab() {
    tree = new QTreeView;
    tree->setModel(&model.filter());
    tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree->setSelectionBehavior(QAbstractItemView::SelectRows);
    tree->setAlternatingRowColors(true);
    tree->setUniformRowHeights(true);
    tree->header()->resizeSection(LibraryModel::nameColumn, 190);
    tree->header()->resizeSection(LibraryModel::postScriptNameColumn, 180);
    tree->header()->resizeSection(LibraryModel::formatColumn, 55);
    tree->header()->resizeSection(LibraryModel::stateColumn, 170);
    connect(tree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainWindow::selectionChanged);
    return tree;
}

QWidget* MainWindow::makeSetsTab() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    setList = new QListView;
    setList->setModel(&model.sets());
    layout->addWidget(setList);
    auto* buttons = new QHBoxLayout;
    const auto button = [&](const QString& caption, auto action) {
        auto* pushButton = new QPushButton(caption);
        connect(pushButton, &QPushButton::clicked, this, action);
        buttons->addWidget(pushButton);
    };
    button(QStringLiteral("New Set…"), [this] {
        const QString name = QInputDialog::getText(this, QStringLiteral("New Set"),
                                                   QStringLiteral("Name of the set:"));
        if (!name.isEmpty()) {
            guarded([&] { model.createSet(name); });
        }
    });
    button(QStringLiteral("Add Selected Faces"),
           [this] { guarded([&] { model.addToSet(currentSet(), selectedFaces()); }); });
    button(QStringLiteral("Activate Set"),
           [this] { guarded([&] { report(model.activateSet(currentSet())); }); });
    button(QStringLiteral("Deactivate Set"),
           [this] { guarded([&] { report(model.deactivateSet(currentSet())); }); });
    button(QStringLiteral("Delete Set"),
           [this] { guarded([&] { model.deleteSet(currentSet()); }); });
    layout->addLayout(buttons);
    return page;
}

QWidget* MainWindow::makeDetailsPane() {
    auto* pane = new QWidget;
    auto* layout = new QVBoxLayout(pane);
    sample = new QLineEdit(defaultSample);
    connect(sample, &QLineEdit::textChanged, this, &MainWindow::refreshPreview);
    layout->addWidget(sample);
    preview = new QLabel;
    preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    preview->setMinimumHeight(170);
    preview->setWordWrap(true);
    preview->setFrameShape(QFrame::StyledPanel);
    preview->setStyleSheet(QStringLiteral("background: white;"));
    layout->addWidget(preview);
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    auto* form = new QWidget;
    details = new QFormLayout(form);
    details->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    scroll->setWidget(form);
    layout->addWidget(scroll, 1);
    return pane;
}

QString MainWindow::currentSet() const {
    const QModelIndex index = setList->currentIndex();
    return index.isValid() ? model.sets().item(index.row(), 0)->text() : QString();
}

void MainWindow::guarded(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& error) {
        statusBar()->showMessage(QString::fromStdString(error.what()));
    }
}

std::vector<std::int64_t> MainWindow::selectedFaces() const {
    std::vector<std::int64_t> ids;
    const auto add = [&](const QModelIndex& index) {
        const qint64 id = index.data(LibraryModel::faceIdRole).toLongLong();
        if (id > 0) {
            ids.push_back(id);
        }
    };
    for (const QModelIndex& row : tree->selectionModel()->selectedRows()) {
        if (model.faceAt(row) != nullptr) {
            add(row);
            continue;
        }
        for (int i = 0; i < model.filter().rowCount(row); ++i) { // a family: its faces
            add(model.filter().index(i, 0, row));
        }
    }
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

void MainWindow::report(const QStringList& messages) {
    statusBar()->showMessage(messages.isEmpty() ? QStringLiteral("Nothing selected.")
                                                : messages.join(QStringLiteral("; ")));
}

void MainWindow::selectionChanged() {
    const FaceEntry* entry = model.faceAt(tree->currentIndex());
    setWindowTitle(WindowModel::titleFor(entry));
    showDetails(entry);
    refreshPreview();
}

void MainWindow::refreshPreview() {
    const FaceEntry* entry = model.faceAt(tree->currentIndex());
    if (entry == nullptr) {
        preview->setPixmap({});
        preview->setText(QStringLiteral("Select a face to see it."));
        return;
    }
    const int width = std::max(200, preview->width() - 16);
    const Preview drawn = model.preview(*entry, sample->text(), previewPixels, width);
    if (!drawn.ok()) {
        preview->setPixmap({});
        preview->setText(drawn.problem);
        return;
    }
    preview->setPixmap(QPixmap::fromImage(drawn.image));
}

void MainWindow::showDetails(const FaceEntry* entry) {
    while (details->rowCount() > 0) {
        details->removeRow(0);
    }
    if (entry == nullptr) {
        return;
    }
    for (const auto& [label, value] : model.detailRows(*entry)) {
        auto* field = new QLabel(value);
        field->setWordWrap(true);
        field->setTextInteractionFlags(Qt::TextSelectableByMouse);
        details->addRow(label + QStringLiteral(":"), field);
    }
}

bool MainWindow::showFace(std::int64_t containerID, const QString& postScriptName) {
    tabs->setCurrentIndex(0);
    const QModelIndex index = model.locate(containerID, postScriptName);
    if (index.isValid()) {
        tree->expand(index.parent());
        tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                           QItemSelectionModel::Rows);
        tree->scrollTo(index, QAbstractItemView::PositionAtCenter);
    } else {
        setWindowTitle(postScriptName + QStringLiteral(" — not in the library — Vellumine"));
        statusBar()->showMessage(
            QStringLiteral("Asked to show %1, which the library does not hold.")
                .arg(postScriptName));
    }
    showNormal();
    raise();
    activateWindow();
    return index.isValid();
}

void MainWindow::addFonts(bool folders) {
    std::vector<std::filesystem::path> paths;
    if (folders) {
        const QString folder =
            QFileDialog::getExistingDirectory(this, QStringLiteral("Add Folder"));
        if (!folder.isEmpty()) {
            paths.emplace_back(folder.toStdString());
        }
    } else {
        for (const QString& file : QFileDialog::getOpenFileNames(
                 this, QStringLiteral("Add Fonts"), {},
                 QStringLiteral("Fonts (*.otf *.ttf *.ttc *.otc *.pfb *.pfa *.t1)"))) {
            paths.emplace_back(file.toStdString());
        }
    }
    if (paths.empty()) {
        return;
    }
    auto* job = new ImportJob(currentLibrary(), paths, this);
    auto* progress = new QProgressDialog(QStringLiteral("Adding fonts…"), {}, 0, 0, this);
    progress->setWindowModality(Qt::WindowModal);
    progress->setMinimumDuration(300);
    connect(job, &ImportJob::progress, progress, [progress](int done, int total) {
        progress->setMaximum(total);
        progress->setValue(done);
        progress->setLabelText(QStringLiteral("Adding fonts: %1 of %2 files").arg(done).arg(total));
    });
    connect(job, &QThread::finished, this, [this, job, progress] {
        progress->deleteLater();
        guarded([&] { model.libraryFilesChanged(); });
        statusBar()->showMessage(job->summary());
        job->deleteLater();
    });
    job->start();
}

} // namespace Vellumine::Window
