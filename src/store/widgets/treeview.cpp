#include "store/widgets/treeview.h"

#include "store/widgets/treemodel.h"
#include "store/workspacetree.h"

#include <QHeaderView>

namespace fenwork {

TreeView::TreeView(WorkspaceTree &tree, TreeModel *model, QWidget *parent)
    : QTreeView(parent), m_tree(tree), m_model(model)
{
    setObjectName(QStringLiteral("tr_ABC"));
    setModel(model);
    setHeaderHidden(true);
    setUniformRowHeights(true); // keeps scrolling fast with tens of thousands of lines
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    header()->setStretchLastSection(true);

    connect(model, &QAbstractItemModel::rowsInserted, this, &TreeView::applyExpanded);
    connect(model, &QAbstractItemModel::modelReset, this, [this] {
        applyExpanded({}, 0, m_model->rowCount() - 1);
    });
    connect(model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from, const QModelIndex &) {
        if (Node *node = m_model->nodeAt(from); node && isExpanded(from) != node->Expanded)
            setExpanded(from, node->Expanded);
    });
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        if (Node *node = m_model->nodeAt(index))
            node->Expanded = true;
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        if (Node *node = m_model->nodeAt(index))
            node->Expanded = false;
    });
    applyExpanded({}, 0, model->rowCount() - 1);
}

// New rows open as their nodes say, down through their subtrees.
void TreeView::applyExpanded(const QModelIndex &parent, int first, int last)
{
    QVector<QModelIndex> pending;
    for (int row = first; row <= last; ++row)
        pending.append(m_model->index(row, 0, parent));
    while (!pending.isEmpty()) {
        const QModelIndex index = pending.takeLast();
        Node *node = m_model->nodeAt(index);
        if (!node || !node->Expanded)
            continue;
        setExpanded(index, true);
        const int rows = m_model->rowCount(index);
        for (int row = 0; row < rows; ++row)
            if (Node *child = node->child(row); child && child->Expanded && child->childCount() > 0)
                pending.append(m_model->index(row, 0, index));
    }
}

} // namespace fenwork
