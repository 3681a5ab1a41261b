#pragma once
#include <QWidget>

class QSplitter;

namespace fenwork {

class TreeModel;
class TreeView;
class WorkspaceTree;

// The tab `files` (`pic_explor`): the workspace tree `tr_ABC` over the panel the window gives it
// below (the working list).
class ExplorerPanel : public QWidget
{
    Q_OBJECT
public:
    ExplorerPanel(WorkspaceTree &tree, TreeModel *model, QWidget *parent = nullptr);

    TreeView *tree() const { return m_tree; }
    QSplitter *splitter() const { return m_split; }
    // Puts `panel` under the tree, taking a fifth of the height at first.
    void setLowerPanel(QWidget *panel);

private:
    TreeView *m_tree;
    QSplitter *m_split;
};

} // namespace fenwork
