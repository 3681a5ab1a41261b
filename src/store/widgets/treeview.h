#pragma once
#include <QTreeView>

namespace fenwork {

class TreeModel;
class WorkspaceTree;

// The workspace tree `tr_ABC`. It keeps each node's Expanded flag in step with the view, both ways,
// and turns the user's gestures into signals by node key: a click, a Ctrl+click that marks tunes,
// a context menu, a double click, files dropped from the file manager. Browsing with the keys
// selects on key release, so that a held key moves the selection without working on every row.
class TreeView : public QTreeView
{
    Q_OBJECT
public:
    TreeView(WorkspaceTree &tree, TreeModel *model, QWidget *parent = nullptr);
    TreeModel *treeModel() const { return m_model; }

    // The key of the current node, or empty.
    QString currentKey() const;
    // Makes the node current and selected; with `reveal` its ancestors open and it scrolls into view.
    void selectKey(const QString &key, bool reveal);
    // Opens the node so that its children show.
    void expandKey(const QString &key);

signals:
    void nodeClicked(const QString &key);
    void markRequested(const QString &key, bool eachOnItsOwn);
    void contextMenuRequested(const QString &key, const QPoint &globalPos);
    void nodeDoubleClicked(const QString &key);
    void filesDropped(const QStringList &paths);
    // A tune dragged onto a node; `asPart` when Alt was held as the drag began.
    void tuneDropped(const QString &draggedKey, const QString &targetKey, bool asPart);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QString keyAt(const QPoint &viewportPos) const;
    void click(const QString &key);
    void openAsFlagged(const QModelIndex &parent, int first, int last);

    WorkspaceTree &m_tree;
    TreeModel *m_model;
    QString m_clicked; // the key of the last click, so that keys that moved nowhere work nothing
    QString m_dragKey; // the tune a press may start dragging
    bool m_dragAsPart = false;
    QPoint m_pressAt;
};

} // namespace fenwork
