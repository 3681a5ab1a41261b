#include "store/treedimmer.h"

#include "store/treeops.h"
#include "store/workspacetree.h"

namespace fenwork {

void TreeDimmer::ToggleEnabledTree(bool disable, const QString &editedKey)
{
    if (disable == m_dimmed || !m_tree.root())
        return;
    m_dimmed = disable;
    if (disable) {
        m_saved.clear();
        m_saved.reserve(m_tree.count());
        m_tree.walk(m_tree.root(), [this](Node *node) {
            m_saved.append(node->ForeColor);
            m_tree.setForeColor(node, color::TuneLeftOut);
            return true;
        });
        if (Node *edited = m_tree.find(editedKey)) {
            m_tree.walk(edited, [this, edited](Node *node) {
                m_tree.setForeColor(node, node == edited ? EditedNode : EditedLine);
                return true;
            });
        }
        return;
    }
    qsizetype at = 0;
    m_tree.walk(m_tree.root(), [this, &at](Node *node) {
        if (at >= m_saved.size())
            return false;
        m_tree.setForeColor(node, m_saved.at(at++));
        return true;
    });
    m_saved = QList<int>();
}

} // namespace fenwork
