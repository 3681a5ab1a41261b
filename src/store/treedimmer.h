#pragma once
// The tree closed off while a tune or a file header is edited: every node pale grey, what is
// edited standing out, and the colours from before (a search's greying among them) put back.
#include <QList>
#include <QString>

namespace fenwork {

class WorkspaceTree;

class TreeDimmer
{
public:
    // Stands out while the rest is grey: the edited node itself and the lines below it.
    static constexpr int EditedNode = 200; // red 200 (0xBBGGRR)
    static constexpr int EditedLine = 130 << 8; // green 130

    explicit TreeDimmer(WorkspaceTree &tree)
        : m_tree(tree)
    { }

    // disable: keeps every node's colour in tree order, greys them all, then colours the subtree
    // of `editedKey`. Enable: puts the kept colours back. The tree must keep its nodes and their
    // order in between, so enable before anything is rebuilt. A repeated call does nothing.
    void ToggleEnabledTree(bool disable, const QString &editedKey = QString());
    bool isDimmed() const { return m_dimmed; }

private:
    WorkspaceTree &m_tree;
    QList<int> m_saved;
    bool m_dimmed = false;
};

} // namespace fenwork
