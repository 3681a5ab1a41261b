#include "store/workspacetree.h"

#include <QCoreApplication>

namespace fenwork {

WorkspaceTree::WorkspaceTree() = default;

WorkspaceTree::~WorkspaceTree()
{
    m_observer = nullptr;
    clear();
}

void WorkspaceTree::clear()
{
    if (m_observer)
        m_observer->aboutToReset();
    if (m_root) {
        unregisterSubtree(m_root);
        m_root = nullptr;
    }
    m_byKey.clear();
    m_keyless = 0;
    m_building.clear();
    if (m_observer)
        m_observer->resetDone();
}

bool WorkspaceTree::isUnderConstruction(const Node *node) const
{
    if (m_building.isEmpty())
        return false;
    for (const Node *up = node ? node->parent() : nullptr; up; up = up->parent())
        if (m_building.contains(up))
            return true;
    return false;
}

// Changes to the children of `parent` are told unless `parent` itself or one of its ancestors
// is under construction.
bool WorkspaceTree::notifies(const Node *parent) const
{
    if (!m_observer)
        return false;
    if (m_building.isEmpty())
        return true;
    return !m_building.contains(parent) && !isUnderConstruction(parent);
}

Node *WorkspaceTree::add(Node *relative, Place place, const QString &key, const QString &text, Pic image,
                         QString *error)
{
    if (!key.isEmpty() && m_byKey.contains(key)) {
        if (error)
            *error = QStringLiteral("Key is not unique in collection: ") + key;
        return nullptr;
    }
    Node *parent = nullptr;
    int row = 0;
    if (!relative) {
        if (m_root) {
            if (error)
                *error = QStringLiteral("The tree has a root already");
            return nullptr;
        }
    } else {
        switch (place) {
        case Place::Child:
            parent = relative;
            row = relative->childCount();
            break;
        case Place::First:
        case Place::Last:
        case Place::Next:
        case Place::Previous:
            parent = relative->parent();
            if (!parent) {
                if (error)
                    *error = QStringLiteral("The root has no siblings");
                return nullptr;
            }
            row = place == Place::First ? 0
                : place == Place::Last  ? parent->childCount()
                : place == Place::Next  ? relative->row() + 1
                                        : relative->row();
            break;
        }
    }

    auto *node = new Node;
    node->Key = key;
    node->Text = text;
    node->Image = image;
    if (!parent) {
        if (m_observer)
            m_observer->nodesAboutToBeInserted(nullptr, 0, 0);
        m_root = node;
        if (m_observer)
            m_observer->nodesInserted();
    } else {
        const bool tell = notifies(parent);
        if (tell)
            m_observer->nodesAboutToBeInserted(parent, row, row);
        node->m_parent = parent;
        if (row == parent->m_children.size()) {
            node->m_row = row;
            parent->m_children.append(node);
        } else {
            parent->m_children.insert(row, node);
            parent->m_rowsValid = false;
        }
        if (tell)
            m_observer->nodesInserted();
    }
    if (key.isEmpty())
        ++m_keyless;
    else
        m_byKey.insert(key, node);
    return node;
}

void WorkspaceTree::unregisterSubtree(Node *node)
{
    for (Node *child : std::as_const(node->m_children))
        unregisterSubtree(child);
    if (node->Key.isEmpty())
        --m_keyless;
    else
        m_byKey.remove(node->Key);
    m_building.remove(node);
    delete node;
}

void WorkspaceTree::remove(Node *node)
{
    if (!node)
        return;
    Node *parent = node->parent();
    if (!parent) {
        clear();
        return;
    }
    const int row = node->row();
    const bool tell = notifies(parent);
    if (tell)
        m_observer->nodeAboutToBeRemoved(parent, row);
    parent->m_children.removeAt(row);
    if (row != parent->m_children.size())
        parent->m_rowsValid = false;
    unregisterSubtree(node);
    if (tell)
        m_observer->nodeRemoved();
}

void WorkspaceTree::removeChildren(Node *node)
{
    while (node && node->childCount() > 0)
        remove(node->lastChild());
}

bool WorkspaceTree::setKey(Node *node, const QString &key)
{
    if (!node)
        return false;
    if (node->Key == key)
        return true;
    if (!key.isEmpty() && m_byKey.contains(key))
        return false;
    if (node->Key.isEmpty())
        --m_keyless;
    else
        m_byKey.remove(node->Key);
    node->Key = key;
    if (key.isEmpty())
        ++m_keyless;
    else
        m_byKey.insert(key, node);
    return true;
}

void WorkspaceTree::changed(Node *node)
{
    if (node && m_observer && node->parent() && notifies(node->parent()))
        m_observer->nodeChanged(node);
    else if (node && m_observer && node == m_root)
        m_observer->nodeChanged(node);
}

void WorkspaceTree::setText(Node *node, const QString &text)
{
    if (node && node->Text != text) {
        node->Text = text;
        changed(node);
    }
}

void WorkspaceTree::setImage(Node *node, Pic image)
{
    if (node && node->Image != image) {
        node->Image = image;
        changed(node);
    }
}

void WorkspaceTree::setForeColor(Node *node, int color)
{
    if (node && node->ForeColor != color) {
        node->ForeColor = color;
        changed(node);
    }
}

void WorkspaceTree::setBackColor(Node *node, int color)
{
    if (node && node->BackColor != color) {
        node->BackColor = color;
        changed(node);
    }
}

void WorkspaceTree::beginBuild(Node *node)
{
    if (node && !m_building.contains(node))
        m_building.insert(node, node->childCount());
}

void WorkspaceTree::endBuild(Node *node)
{
    const auto it = m_building.constFind(node);
    if (it == m_building.constEnd())
        return;
    const int base = it.value();
    const bool tell = m_observer && node->childCount() > base && !isUnderConstruction(node);
    if (tell)
        m_observer->nodesAboutToBeInserted(node, base, node->childCount() - 1);
    m_building.remove(node);
    if (tell)
        m_observer->nodesInserted();
}

void WorkspaceTree::walk(Node *from, const std::function<bool(Node *)> &visit) const
{
    if (!from)
        return;
    // Iterative pre-order, so that deep or wide trees cost no recursion.
    QVector<std::pair<Node *, int>> stack;
    if (!visit(from))
        return;
    stack.append({from, 0});
    while (!stack.isEmpty()) {
        auto &[node, next] = stack.last();
        if (next >= node->childCount()) {
            stack.removeLast();
            continue;
        }
        Node *child = node->child(next++);
        if (!visit(child))
            return;
        if (child->childCount() > 0)
            stack.append({child, 0});
    }
}

} // namespace fenwork
