#include "collections/widgets/choicelistpanel.h"

#include "collections/choicelist.h"
#include "collections/widgets/choicelistmodel.h"
#include "frame/language.h"
#include "frame/strutil.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QToolBar>
#include <QTreeView>
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

} // namespace

ChoiceListPanel::ChoiceListPanel(ChoiceList &list, QWidget *parent)
    : QWidget(parent)
    , m_list(list)
    , m_model(new ChoiceListModel(list, this))
    , m_caption(new QLabel)
    , m_bar(new QToolBar)
    , m_view(new QTreeView)
{
    setObjectName(QStringLiteral("pic_lstSet"));
    m_caption->setObjectName(QStringLiteral("lab_lstSet"));
    QFont bold = m_caption->font();
    bold.setBold(true);
    m_caption->setFont(bold);
    m_bar->setObjectName(QStringLiteral("tb_lstSet"));
    m_bar->setIconSize(QSize(16, 16));
    m_bar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    for (const ListCommand &command : kListCommands) {
        QAction *action = m_bar->addAction(QIcon::fromTheme(QString::fromLatin1(command.icon)), QString());
        action->setObjectName(QString::fromLatin1(command.name));
        // The list's commands come with the list's own issue of work; until then they show greyed.
        action->setEnabled(false);
    }

    m_view->setObjectName(QStringLiteral("lst_set"));
    m_view->setModel(m_model);
    m_view->setHeaderHidden(true);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_view->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    connect(m_view, &QTreeView::activated, this, [this](const QModelIndex &index) {
        emit itemActivated(index.data(ChoiceListModel::KeyRole).toString());
    });
    connect(m_view, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        emit itemActivated(index.data(ChoiceListModel::KeyRole).toString());
    });
    connect(&list, &ChoiceList::countChanged, this, &ChoiceListPanel::CompterTunesInLst);

    auto *heading = new QHBoxLayout;
    heading->setContentsMargins(4, 0, 0, 0);
    heading->setSpacing(4);
    heading->addWidget(m_caption, 1);
    heading->addWidget(m_bar);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 0);
    layout->setSpacing(2);
    layout->addLayout(heading);
    layout->addWidget(m_view, 1);
    setMinimumHeight(m_bar->sizeHint().height() + 40);
}

void ChoiceListPanel::setTuneIcon(const QIcon &icon)
{
    m_model->setTuneIcon(icon);
}

bool ChoiceListPanel::AddTunetolst(const QString &key, const QString &caption)
{
    const int listed = m_list.indexOf(key);
    if (listed >= 0) {
        setCurrentRow(listed);
        return false;
    }
    m_list.add(key, caption);
    return true;
}

void ChoiceListPanel::setCurrentRow(int row)
{
    if (row < 0 || row >= m_list.count()) {
        m_view->setCurrentIndex({});
        return;
    }
    const QModelIndex index = m_model->index(row, 0);
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
}

int ChoiceListPanel::currentRow() const
{
    const QModelIndex index = m_view->currentIndex();
    return index.isValid() ? index.row() : -1;
}

void ChoiceListPanel::CompterTunesInLst()
{
    m_caption->setText(m_captionText + QStringLiteral(" (") + QString::number(m_list.count()) + QStringLiteral(") "));
}

void ChoiceListPanel::loadLang(const Language &lang)
{
    m_captionText = lang.text(QStringLiteral("MainForm"), QStringLiteral("<lstTunes>"));
    CompterTunesInLst();
    const QString menus = QStringLiteral("Menus");
    for (const ListCommand &command : kListCommands)
        if (QAction *action = m_bar->findChild<QAction *>(QString::fromLatin1(command.name)))
            action->setToolTip(withoutAccelerator(lang.text(menus, QString::fromLatin1(command.textKey))));
}

} // namespace fenwork
