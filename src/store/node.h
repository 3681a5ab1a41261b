#pragma once
#include <QString>
#include <QVector>

namespace fenwork {

// The small pictures of the tree. The picture also carries state: a changed file is FileAbcM,
// a changed tune TuneM.
enum class Pic : quint8 {
    None, AbcRoot, Poub, HdrFile, BdyFile, FileAbc, FileAbcM, FileRo, FileRoM, Tune, TuneM,
    HdrTune, BdyTune, Include, ChpEtend, Rem, Part, Propr, Voix, Mus, NoAbc
};
QString picName(Pic pic);          // "fileabcm", "tune", ...
Pic picFromName(const QString &name);

constexpr int kDefaultColor = -1;  // ForeColor / BackColor left to the view

// One node of the workspace tree: a line of a file, or a tune, header, body or file grouping.
class Node
{
public:
    QString Key;
    QString Text;
    QString Tag;        // full path on file nodes
    Pic Image = Pic::None;
    bool Bold = false;
    bool Expanded = false;
    int ForeColor = kDefaultColor; // 0xBBGGRR
    int BackColor = kDefaultColor;

    Node *parent() const { return m_parent; }
    const QVector<Node *> &children() const { return m_children; }
    int childCount() const { return int(m_children.size()); }
    Node *child(int i) const { return (i >= 0 && i < m_children.size()) ? m_children.at(i) : nullptr; }
    Node *firstChild() const { return m_children.isEmpty() ? nullptr : m_children.first(); }
    Node *lastChild() const { return m_children.isEmpty() ? nullptr : m_children.last(); }
    int row() const;    // place among its siblings
    Node *nextSibling() const;
    Node *previousSibling() const;
    QString imageName() const { return picName(Image); }

private:
    friend class WorkspaceTree;
    Node *m_parent = nullptr;
    QVector<Node *> m_children;
    mutable int m_row = 0;
    mutable bool m_rowsValid = true; // on a parent: the m_row of its children are current
};

} // namespace fenwork
