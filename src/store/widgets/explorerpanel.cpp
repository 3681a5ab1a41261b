#include "store/widgets/explorerpanel.h"

#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"

#include <QSplitter>
#include <QVBoxLayout>

namespace fenwork {

ExplorerPanel::ExplorerPanel(WorkspaceTree &tree, TreeModel *model, QWidget *parent)
    : QWidget(parent)
    , m_tree(new TreeView(tree, model))
    , m_split(new QSplitter(Qt::Vertical, this))
{
    setObjectName(QStringLiteral("pic_explor"));
    m_split->setObjectName(QStringLiteral("spl_explor"));
    m_split->setChildrenCollapsible(false);
    m_split->addWidget(m_tree);
    m_split->setStretchFactor(0, 4);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_split);
    setFocusProxy(m_tree);
}

void ExplorerPanel::setLowerPanel(QWidget *panel)
{
    m_split->addWidget(panel);
    m_split->setStretchFactor(m_split->indexOf(panel), 1);
}

} // namespace fenwork
