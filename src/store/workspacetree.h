#pragma once
#include "store/node.h"

#include <QHash>
#include <QString>
#include <functional>

namespace fenwork {

// Told of every change, so that a view can follow. Inserts below a node under construction
// (beginBuild .. endBuild) are not told one by one: the built node's children arrive as one
// insertion at endBuild.
class TreeObserver
{
public:
    virtual ~TreeObserver() = default;
    virtual void nodesAboutToBeInserted(Node *parent, int first, int last) = 0;
    virtual void nodesInserted() = 0;
    virtual void nodeAboutToBeRemoved(Node *parent, int row) = 0;
    virtual void nodeRemoved() = 0;
    virtual void nodeChanged(Node *node) = 0;
    virtual void aboutToReset() = 0;
    virtual void resetDone() = 0;
};

// The document: every open file as a subtree of one root, addressed by unique string keys.
// Lookups by key are constant time.
class WorkspaceTree
{
public:
    enum class Place { First, Last, Next, Previous, Child };

    WorkspaceTree();
    ~WorkspaceTree();
    WorkspaceTree(const WorkspaceTree &) = delete;
    WorkspaceTree &operator=(const WorkspaceTree &) = delete;

    void setObserver(TreeObserver *observer) { m_observer = observer; }

    // Removes everything, the root included.
    void clear();

    // The first node added without a relative is the root.
    Node *root() const { return m_root; }
    Node *find(const QString &key) const { return m_byKey.value(key, nullptr); }
    bool contains(const QString &key) const { return m_byKey.contains(key); }
    int count() const { return int(m_byKey.size()) + m_keyless; }

    // Adds a node placed relative to `relative` (Child: as its last child; First/Last: first or
    // last sibling; Next/Previous: right after or before it). `relative` null makes the root.
    // A non-empty key already in use makes the add fail: returns null and sets `error`.
    Node *add(Node *relative, Place place, const QString &key, const QString &text, Pic image,
              QString *error = nullptr);
    Node *addChild(Node *parent, const QString &key, const QString &text, Pic image, QString *error = nullptr)
    {
        return add(parent, Place::Child, key, text, image, error);
    }
    // Removes the node with its whole subtree.
    void remove(Node *node);
    void removeChildren(Node *node);
    // Gives a node a new key; fails (false) when the key is in use by another node.
    bool setKey(Node *node, const QString &key);
    // Tells the observer that a node's text, picture or colours changed.
    void changed(Node *node);
    // Setters that notify.
    void setText(Node *node, const QString &text);
    void setImage(Node *node, Pic image);
    void setForeColor(Node *node, int color);
    void setBackColor(Node *node, int color);

    // Children added below `node` between these calls reach the observer as one insertion.
    void beginBuild(Node *node);
    void endBuild(Node *node);
    bool isBuilding(const Node *node) const { return m_building.contains(node); }
    // The children of `node` that the observer knows of: while `node` is being built, only those
    // it had before.
    int visibleChildCount(const Node *node) const { return m_building.value(node, node->childCount()); }
    // Whether `node` is hidden from the observer because an ancestor is under construction.
    bool isUnderConstruction(const Node *node) const;

    // Visits the subtree in tree order (pre-order); stop by returning false.
    void walk(Node *from, const std::function<bool(Node *)> &visit) const;

private:
    void unregisterSubtree(Node *node);
    bool notifies(const Node *parent) const;

    Node *m_root = nullptr;
    QHash<QString, Node *> m_byKey;
    int m_keyless = 0;
    QHash<const Node *, int> m_building; // node -> child count when its build began
    TreeObserver *m_observer = nullptr;
};

// Keeps the notices of a node under construction together, whatever path the build ends by.
class BuildScope
{
public:
    BuildScope(WorkspaceTree &tree, Node *node) : m_tree(tree), m_node(node) { m_tree.beginBuild(node); }
    ~BuildScope() { m_tree.endBuild(m_node); }
    BuildScope(const BuildScope &) = delete;
    BuildScope &operator=(const BuildScope &) = delete;

private:
    WorkspaceTree &m_tree;
    Node *m_node;
};

} // namespace fenwork
