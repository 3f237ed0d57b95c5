#pragma once

#include "host/dialogs/DialogText.h"

#include <QAbstractItemModel>

#include <vector>

namespace Galley {

class Widget;

// A Qt item model over a tree widget's rows: each row shows its row widget's texts as
// columns, in the colour the plug-in gave the row's texts. Rebuilt whenever the tree's rows
// change (reset), so it never holds a row the tree dropped.
class TreeRowsModel : public QAbstractItemModel {
public:
    explicit TreeRowsModel(Widget& tree, QObject* parent = nullptr);

    // Takes in the tree's rows as they are now.
    void reload();
    // The position in the tree's rows of an index, or -1.
    int rowIndex(const QModelIndex& index) const;
    QModelIndex indexOfRow(int rowIndex) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    struct Node {
        int row = -1;    // position in the tree's rows
        int parent = -1; // node index of the parent, -1 for top rows
        std::vector<int> children;
    };
    Widget& tree_;
    std::vector<Node> nodes_; // one per row
    std::vector<int> topLevel_;
    TreeTable table_;
};

} // namespace Galley
