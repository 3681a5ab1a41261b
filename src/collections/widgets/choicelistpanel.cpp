#include "collections/widgets/choicelistpanel.h"

#include "collections/choicelist.h"
#include "collections/widgets/choicelistmodel.h"
#include "frame/language.h"
#include "frame/strutil.h"

#include <QAction>
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QToolBar>
#include <QTreeView>
#include <QUrl>
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

// What a drag from the tree carries (its tune's key), and what a row dragged in the list carries.
const QString kTuneMime = QStringLiteral("application/x-fennelworks-tune");
const QString kRowMime = QStringLiteral("application/x-fennelworks-listrow");

QStringList localFiles(const QMimeData *mime)
{
    QStringList paths;
    if (mime && mime->hasUrls())
        for (const QUrl &url : mime->urls())
            if (url.isLocalFile())
                paths.append(url.toLocalFile());
    return paths;
}

// The list view: rows dragged within it move, tunes from the tree are taken in, files pass on.
class ChoiceListView : public QTreeView
{
public:
    ChoiceListView(ChoiceList &list, ChoiceListPanel *panel)
        : m_list(list)
        , m_panel(panel)
    {
        setAcceptDrops(true);
        viewport()->setAcceptDrops(true);
        setDropIndicatorShown(true);
    }

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        m_pressAt = event->position().toPoint();
        m_pressRow = event->button() == Qt::LeftButton ? indexAt(m_pressAt).row() : -1;
        QTreeView::mousePressEvent(event);
    }
    void mouseMoveEvent(QMouseEvent *event) override
    {
        if (m_pressRow < 0 || !(event->buttons() & Qt::LeftButton)
            || (event->position().toPoint() - m_pressAt).manhattanLength()
                < QApplication::startDragDistance()) {
            QTreeView::mouseMoveEvent(event);
            return;
        }
        auto *drag = new QDrag(this);
        auto *data = new QMimeData;
        data->setData(kRowMime, QByteArray::number(m_pressRow));
        drag->setMimeData(data);
        m_pressRow = -1;
        drag->exec(Qt::MoveAction);
    }
    void dragEnterEvent(QDragEnterEvent *event) override
    {
        const QMimeData *mime = event->mimeData();
        if (mime->hasFormat(kRowMime) || mime->hasFormat(kTuneMime) || !localFiles(mime).isEmpty())
            event->acceptProposedAction();
        else
            event->ignore();
    }
    void dragMoveEvent(QDragMoveEvent *event) override { event->acceptProposedAction(); }
    void dropEvent(QDropEvent *event) override
    {
        const QMimeData *mime = event->mimeData();
        if (mime->hasFormat(kRowMime)) {
            const int from = mime->data(kRowMime).toInt();
            const QModelIndex at = indexAt(event->position().toPoint());
            // Below the last row means the end of the list.
            const int to = at.isValid() ? at.row() : m_list.count() - 1;
            m_list.move(from, to);
            m_panel->setCurrentRow(to);
        } else if (mime->hasFormat(kTuneMime)) {
            emit m_panel->tuneDropped(QString::fromUtf8(mime->data(kTuneMime)));
        } else {
            emit m_panel->filesDropped(localFiles(mime));
        }
        event->acceptProposedAction();
    }
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier) {
            emit m_panel->deleteRequested();
            return;
        }
        QTreeView::keyPressEvent(event);
    }

private:
    ChoiceList &m_list;
    ChoiceListPanel *m_panel;
    QPoint m_pressAt;
    int m_pressRow = -1;
};

} // namespace

ChoiceListPanel::ChoiceListPanel(ChoiceList &list, QWidget *parent)
    : QWidget(parent)
    , m_list(list)
    , m_model(new ChoiceListModel(list, this))
    , m_caption(new QLabel)
    , m_bar(new QToolBar)
    , m_view(new ChoiceListView(list, this))
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
        // Greyed until the window gives the button its command.
        action->setEnabled(false);
    }

    m_view->setObjectName(QStringLiteral("lst_set"));
    m_view->setModel(m_model);
    m_view->setHeaderHidden(true);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setExpandsOnDoubleClick(false);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    // A fixed column for the repetitions (three digits at most): measuring it to its contents
    // would visit thousands of rows at every change of a long list.
    m_view->header()->setSectionResizeMode(1, QHeaderView::Fixed);
    m_view->header()->resizeSection(1, m_view->fontMetrics().horizontalAdvance(QStringLiteral("0000")) + 8);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    m_bar->setContextMenuPolicy(Qt::CustomContextMenu);
    const auto keyOf
        = [](const QModelIndex &index) { return index.data(ChoiceListModel::KeyRole).toString(); };
    connect(m_view, &QTreeView::activated, this,
        [this, keyOf](const QModelIndex &index) { emit itemActivated(keyOf(index)); });
    connect(m_view, &QTreeView::clicked, this,
        [this, keyOf](const QModelIndex &index) { emit itemActivated(keyOf(index)); });
    connect(m_view, &QTreeView::doubleClicked, this,
        [this, keyOf](const QModelIndex &index) { emit itemDoubleClicked(keyOf(index)); });
    connect(m_view, &QWidget::customContextMenuRequested, this, [this](const QPoint &at) {
        // The item under the pointer is the one the commands will work on.
        const QModelIndex index = m_view->indexAt(at);
        if (index.isValid()) {
            setCurrentRow(index.row());
            emit itemActivated(index.data(ChoiceListModel::KeyRole).toString());
        }
        emit contextMenuRequested(m_view->viewport()->mapToGlobal(at));
    });
    connect(m_bar, &QWidget::customContextMenuRequested, this,
        [this](const QPoint &at) { emit contextMenuRequested(m_bar->mapToGlobal(at)); });
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

QAction *ChoiceListPanel::toolAction(const QString &name) const
{
    return m_bar->findChild<QAction *>(name);
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
    m_caption->setText(
        m_captionText + QStringLiteral(" (") + QString::number(m_list.count()) + QStringLiteral(") "));
}

void ChoiceListPanel::loadLang(const Language &lang)
{
    m_captionText = lang.text(QStringLiteral("MainForm"), QStringLiteral("<lstTunes>"));
    CompterTunesInLst();
    const QString menus = QStringLiteral("Menus");
    for (const ListCommand &command : kListCommands)
        if (QAction *action = toolAction(QString::fromLatin1(command.name)))
            action->setToolTip(withoutAccelerator(lang.text(menus, QString::fromLatin1(command.textKey))));
}

} // namespace fenwork
