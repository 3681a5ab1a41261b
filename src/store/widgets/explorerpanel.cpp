#include "store/widgets/explorerpanel.h"

#include "frame/language.h"
#include "store/widgets/treemodel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QSplitter>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace fenwork {

namespace {

// The list's commands on its own tool bar: name, freedesktop icon, text key in "Menus".
struct ListCommand
{
    const char *name;
    const char *icon;
    const char *textKey;
};
const ListCommand kListCommands[] = {
    { "lstPlayLst", "media-playback-start", "<lstPlayLst>" },
    { "lstSupTune", "list-remove", "<lstSupTune>" },
    { "emptyLst", "edit-clear-all", "<emptyLst>" },
    { "lstToSet", "view-list-tree", "<lstToSet>" },
    { "lstToAbc", "document-save-as", "<lstToAbc>" },
};

QString withoutAccelerator(QString text)
{
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(u'&');
    text.replace(u'\x01', u'&');
    return text;
}

} // namespace

ExplorerPanel::ExplorerPanel(WorkspaceTree &tree, TreeModel *model, QWidget *parent)
    : QWidget(parent)
    , m_tree(new TreeView(tree, model))
    , m_split(new QSplitter(Qt::Vertical, this))
    , m_listCaption(new QLabel)
    , m_listBar(new QToolBar)
    , m_list(new QTreeWidget)
    , m_workspace(tree)
{
    setObjectName(QStringLiteral("pic_explor"));
    m_split->setObjectName(QStringLiteral("spl_explor"));
    m_split->setChildrenCollapsible(false);

    auto *listPanel = new QWidget;
    listPanel->setObjectName(QStringLiteral("pic_lstSet"));
    m_listCaption->setObjectName(QStringLiteral("lab_lstSet"));
    QFont bold = m_listCaption->font();
    bold.setBold(true);
    m_listCaption->setFont(bold);
    m_listBar->setObjectName(QStringLiteral("tb_lstSet"));
    m_listBar->setIconSize(QSize(16, 16));
    m_listBar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const ListCommand &command : kListCommands) {
        QAction *action
            = m_listBar->addAction(QIcon::fromTheme(QString::fromLatin1(command.icon)), QString());
        action->setObjectName(QString::fromLatin1(command.name));
        // The choice list's commands come with the list itself.
        action->setEnabled(false);
    }

    m_list->setObjectName(QStringLiteral("lst_set"));
    m_list->setColumnCount(2);
    m_list->setHeaderHidden(true);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);

    auto *heading = new QHBoxLayout;
    heading->setContentsMargins(4, 0, 0, 0);
    heading->setSpacing(4);
    heading->addWidget(m_listCaption, 1);
    heading->addWidget(m_listBar);
    auto *listLayout = new QVBoxLayout(listPanel);
    listLayout->setContentsMargins(0, 2, 0, 0);
    listLayout->setSpacing(2);
    listLayout->addLayout(heading);
    listLayout->addWidget(m_list, 1);

    m_split->addWidget(m_tree);
    m_split->addWidget(listPanel);
    m_split->setStretchFactor(0, 4);
    m_split->setStretchFactor(1, 1);
    listPanel->setMinimumHeight(m_listBar->sizeHint().height() + 40);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_split);
    setFocusProxy(m_tree);
}

QStringList ExplorerPanel::choiceListKeys() const
{
    QStringList keys;
    for (int i = 0; i < m_list->topLevelItemCount(); ++i)
        keys.append(m_list->topLevelItem(i)->data(0, TreeModel::KeyRole).toString());
    return keys;
}

bool ExplorerPanel::AddTunetolst(const QString &key, const QString &caption)
{
    for (int i = 0; i < m_list->topLevelItemCount(); ++i)
        if (m_list->topLevelItem(i)->data(0, TreeModel::KeyRole).toString() == key)
            return false;
    auto *item = new QTreeWidgetItem(m_list, { caption, QStringLiteral("1") });
    item->setData(0, TreeModel::KeyRole, key);
    item->setIcon(0, m_tuneIcon);
    return true;
}

void ExplorerPanel::clearChoiceList()
{
    m_list->clear();
}

void ExplorerPanel::EpurerListeChoix()
{
    for (int i = m_list->topLevelItemCount() - 1; i >= 0; --i)
        if (!m_workspace.find(m_list->topLevelItem(i)->data(0, TreeModel::KeyRole).toString()))
            delete m_list->takeTopLevelItem(i);
    CompterTunesInLst();
}

void ExplorerPanel::CompterTunesInLst()
{
    m_listCaption->setText(m_listCaptionText + QStringLiteral(" (") + QString::number(m_list->topLevelItemCount())
        + QStringLiteral(") "));
}

void ExplorerPanel::loadLang(const Language &lang)
{
    m_listCaptionText = lang.text(QStringLiteral("MainForm"), QStringLiteral("<lstTunes>"));
    CompterTunesInLst();
    const QString menus = QStringLiteral("Menus");
    for (const ListCommand &command : kListCommands)
        if (QAction *action = m_listBar->findChild<QAction *>(QString::fromLatin1(command.name)))
            action->setToolTip(withoutAccelerator(lang.text(menus, QString::fromLatin1(command.textKey))));
}

} // namespace fenwork
