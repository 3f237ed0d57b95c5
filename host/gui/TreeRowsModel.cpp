#include "host/gui/TreeRowsModel.h"

#include "host/dialogs/DialogText.h"
#include "host/dialogs/Widget.h"

#include <QBrush>
#include <QColor>

#include <functional>

namespace Galley {

TreeRowsModel::TreeRowsModel(Widget& tree, QObject* parent)
    : QAbstractItemModel(parent), tree_(tree) {
    reload();
}

void TreeRowsModel::reload() {
    beginResetModel();
    nodes_.clear();
    topLevel_.clear();
    table_ = tableOf(tree_);
    std::vector<int> openAtLevel; // node index of the last row seen at each level
    const auto& rows = tree_.rows();
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const int level = rows[static_cast<std::size_t>(r)].level;
        Node node;
        node.row = r;
        openAtLevel.resize(static_cast<std::size_t>(level) + 1, -1);
        node.parent = level > 0 ? openAtLevel[static_cast<std::size_t>(level) - 1] : -1;
        const int self = static_cast<int>(nodes_.size());
        if (node.parent >= 0)
            nodes_[static_cast<std::size_t>(node.parent)].children.push_back(self);
        else
            topLevel_.push_back(self);
        openAtLevel[static_cast<std::size_t>(level)] = self;
        nodes_.push_back(node);
    }
    endResetModel();
}

int TreeRowsModel::rowIndex(const QModelIndex& index) const {
    return index.isValid() ? nodes_[static_cast<std::size_t>(index.internalId())].row : -1;
}

QModelIndex TreeRowsModel::indexOfRow(int rowIndex) const {
    for (std::size_t n = 0; n < nodes_.size(); ++n) {
        if (nodes_[n].row != rowIndex)
            continue;
        const auto& siblings = nodes_[n].parent >= 0
                                   ? nodes_[static_cast<std::size_t>(nodes_[n].parent)].children
                                   : topLevel_;
        const auto at =
            std::find(siblings.begin(), siblings.end(), static_cast<int>(n)) - siblings.begin();
        return createIndex(static_cast<int>(at), 0, static_cast<quintptr>(n));
    }
    return {};
}

QModelIndex TreeRowsModel::index(int row, int column, const QModelIndex& parent) const {
    const auto& siblings = parent.isValid()
                               ? nodes_[static_cast<std::size_t>(parent.internalId())].children
                               : topLevel_;
    if (row < 0 || row >= static_cast<int>(siblings.size()) || column < 0 ||
        column >= columnCount())
        return {};
    return createIndex(row, column, static_cast<quintptr>(siblings[static_cast<std::size_t>(row)]));
}

QModelIndex TreeRowsModel::parent(const QModelIndex& child) const {
    if (!child.isValid())
        return {};
    const int parentNode = nodes_[static_cast<std::size_t>(child.internalId())].parent;
    if (parentNode < 0)
        return {};
    const Node& parent = nodes_[static_cast<std::size_t>(parentNode)];
    const auto& siblings =
        parent.parent >= 0 ? nodes_[static_cast<std::size_t>(parent.parent)].children : topLevel_;
    const auto at = std::find(siblings.begin(), siblings.end(), parentNode) - siblings.begin();
    return createIndex(static_cast<int>(at), 0, static_cast<quintptr>(parentNode));
}

int TreeRowsModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return 0;
    return static_cast<int>(
        parent.isValid() ? nodes_[static_cast<std::size_t>(parent.internalId())].children.size()
                         : topLevel_.size());
}

int TreeRowsModel::columnCount(const QModelIndex&) const {
    return std::max(1, static_cast<int>(table_.headers.size()));
}

QVariant TreeRowsModel::data(const QModelIndex& index, int role) const {
    const int row = rowIndex(index);
    if (row < 0 || row >= static_cast<int>(tree_.rows().size()))
        return {};
    const auto& cells = table_.cells[static_cast<std::size_t>(row)];
    if (index.column() >= static_cast<int>(cells.size()) ||
        !cells[static_cast<std::size_t>(index.column())])
        return {};
    const Widget& cell = *cells[static_cast<std::size_t>(index.column())];
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return QString::fromStdString(cell.displayText());
    if (role == Qt::ForegroundRole && cell.textColor()) {
        const RGBColor& c = *cell.textColor();
        return QBrush(QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green),
                                       static_cast<float>(c.blue)));
    }
    return {};
}

QVariant TreeRowsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole ||
        section >= static_cast<int>(table_.headers.size()))
        return {};
    return QString::fromStdString(table_.headers[static_cast<std::size_t>(section)]);
}

} // namespace Galley
