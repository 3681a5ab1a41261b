#pragma once
#include "store/workspacetree.h"

#include <QAbstractItemModel>
#include <QIcon>
#include <functional>

namespace fenwork {

// Shows the workspace tree to a QTreeView. The tree stays the document: this adapter only
// translates, following the tree's change notices (a loaded file arrives as one insertion).
class TreeModel : public QAbstractItemModel, private TreeObserver
{
    Q_OBJECT
public:
    enum Roles { KeyRole = Qt::UserRole + 1, ImageNameRole, ExpandedRole, TagRole };
    using IconProvider = std::function<QIcon(Pic)>;

    explicit TreeModel(WorkspaceTree &tree, QObject *parent = nullptr);
    ~TreeModel() override;

    void setIconProvider(IconProvider provider) { m_icons = std::move(provider); }

    Node *nodeAt(const QModelIndex &index) const;
    QModelIndex indexOf(const Node *node) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    void nodesAboutToBeInserted(Node *parent, int first, int last) override;
    void nodesInserted() override;
    void nodeAboutToBeRemoved(Node *parent, int row) override;
    void nodeRemoved() override;
    void nodeChanged(Node *node) override;
    void aboutToReset() override;
    void resetDone() override;

    WorkspaceTree &m_tree;
    IconProvider m_icons;
};


} // namespace fenwork
