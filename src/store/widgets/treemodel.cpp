#include "store/widgets/treemodel.h"

#include "frame/widgets/colours.h"

#include <QColor>
#include <QFont>

namespace fenwork {


TreeModel::TreeModel(WorkspaceTree &tree, QObject *parent) : QAbstractItemModel(parent), m_tree(tree)
{
    m_tree.setObserver(this);
}

TreeModel::~TreeModel()
{
    m_tree.setObserver(nullptr);
}

Node *TreeModel::nodeAt(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<Node *>(index.internalPointer()) : nullptr;
}

QModelIndex TreeModel::indexOf(const Node *node) const
{
    if (!node)
        return {};
    return createIndex(node->row(), 0, const_cast<Node *>(node));
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0 || row < 0)
        return {};
    if (!parent.isValid())
        return row == 0 && m_tree.root() ? createIndex(0, 0, m_tree.root()) : QModelIndex();
    Node *node = nodeAt(parent);
    if (row >= m_tree.visibleChildCount(node))
        return {};
    return createIndex(row, 0, node->child(row));
}

QModelIndex TreeModel::parent(const QModelIndex &child) const
{
    Node *node = nodeAt(child);
    if (!node || !node->parent())
        return {};
    return indexOf(node->parent());
}

int TreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return m_tree.root() ? 1 : 0;
    if (parent.column() != 0)
        return 0;
    return m_tree.visibleChildCount(nodeAt(parent));
}

int TreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool TreeModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QVariant TreeModel::data(const QModelIndex &index, int role) const
{
    const Node *node = nodeAt(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return node->Text;
    case Qt::DecorationRole:
        return m_icons ? QVariant(m_icons(node->Image)) : QVariant();
    case Qt::ForegroundRole:
        return node->ForeColor == kDefaultColor ? QVariant() : QVariant(bgrColour(node->ForeColor));
    case Qt::BackgroundRole:
        return node->BackColor == kDefaultColor ? QVariant() : QVariant(bgrColour(node->BackColor));
    case Qt::FontRole:
        if (node->Bold) {
            QFont font;
            font.setBold(true);
            return font;
        }
        return {};
    case KeyRole:
        return node->Key;
    case ImageNameRole:
        return node->imageName();
    case ExpandedRole:
        return node->Expanded;
    case TagRole:
        return node->Tag;
    default:
        return {};
    }
}

void TreeModel::nodesAboutToBeInserted(Node *parent, int first, int last)
{
    beginInsertRows(indexOf(parent), first, last);
}

void TreeModel::nodesInserted()
{
    endInsertRows();
}

void TreeModel::nodeAboutToBeRemoved(Node *parent, int row)
{
    beginRemoveRows(indexOf(parent), row, row);
}

void TreeModel::nodeRemoved()
{
    endRemoveRows();
}

void TreeModel::nodeChanged(Node *node)
{
    const QModelIndex index = indexOf(node);
    emit dataChanged(index, index);
}

void TreeModel::aboutToReset()
{
    beginResetModel();
}

void TreeModel::resetDone()
{
    endResetModel();
}

} // namespace fenwork
