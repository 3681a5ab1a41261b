#pragma once
#include <QTreeView>

namespace fenwork {

class TreeModel;
class WorkspaceTree;

// The workspace tree `tr_ABC`: shows the model and keeps each node's Expanded flag in step with
// the view, both ways.
class TreeView : public QTreeView
{
    Q_OBJECT
public:
    TreeView(WorkspaceTree &tree, TreeModel *model, QWidget *parent = nullptr);
    TreeModel *treeModel() const { return m_model; }

private:
    void applyExpanded(const QModelIndex &parent, int first, int last);
    WorkspaceTree &m_tree;
    TreeModel *m_model;
};

} // namespace fenwork
