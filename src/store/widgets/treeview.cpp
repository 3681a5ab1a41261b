#include "store/widgets/treeview.h"

#include "store/treeops.h"
#include "store/tuneops.h"
#include "store/widgets/treemodel.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHeaderView>
#include <QIcon>
#include <QMimeData>
#include <QUrl>

namespace fenwork {

namespace {

QStringList localFiles(const QMimeData *mime)
{
    QStringList files;
    if (!mime || !mime->hasUrls())
        return files;
    for (const QUrl &url : mime->urls())
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    return files;
}

// A tune dragged inside the tree carries its key under this type.
const QString kTuneMime = QStringLiteral("application/x-fennelworks-tune");

constexpr Qt::KeyboardModifiers kChordModifiers
    = Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

} // namespace

TreeView::TreeView(WorkspaceTree &tree, TreeModel *model, QWidget *parent)
    : QTreeView(parent)
    , m_tree(tree)
    , m_model(model)
{
    setObjectName(QStringLiteral("tr_ABC"));
    setModel(model);
    setHeaderHidden(true);
    // Rows of one height and no animation keep files of tens of thousands of lines fast.
    setUniformRowHeights(true);
    setAnimated(false);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTextElideMode(Qt::ElideRight);
    // Files from the file manager land on the viewport.
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDropIndicatorShown(false);
    header()->setStretchLastSection(true);

    connect(model, &QAbstractItemModel::rowsInserted, this, &TreeView::openAsFlagged);
    connect(model, &QAbstractItemModel::modelReset, this,
        [this] { openAsFlagged({}, 0, m_model->rowCount() - 1); });
    connect(
        model, &QAbstractItemModel::dataChanged, this, [this](const QModelIndex &from, const QModelIndex &) {
            if (Node *node = m_model->nodeAt(from); node && node->Expanded && !isExpanded(from))
                setExpanded(from, true);
        });
    // A node opened shows its children as their flags say. Done here, one level at a time, so that
    // a file of ten thousand closed tunes costs one look at each tune's flag and nothing more.
    connect(this, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        Node *node = m_model->nodeAt(index);
        if (!node)
            return;
        node->Expanded = true;
        const int rows = m_tree.visibleChildCount(node);
        for (int row = 0; row < rows; ++row)
            if (const Node *child = node->child(row); child->Expanded && !child->children().isEmpty())
                setExpanded(m_model->index(row, 0, index), true);
    });
    connect(this, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        if (Node *node = m_model->nodeAt(index))
            node->Expanded = false;
    });
    openAsFlagged({}, 0, model->rowCount() - 1);
}

void TreeView::openAsFlagged(const QModelIndex &parent, int first, int last)
{
    for (int row = first; row <= last; ++row) {
        const QModelIndex index = m_model->index(row, 0, parent);
        if (const Node *node = m_model->nodeAt(index); node && node->Expanded && !isExpanded(index))
            setExpanded(index, true);
    }
}

QString TreeView::currentKey() const
{
    const Node *node = m_model->nodeAt(currentIndex());
    return node ? node->Key : QString();
}

void TreeView::selectKey(const QString &key, bool reveal)
{
    const Node *node = key.isEmpty() ? nullptr : m_tree.find(key);
    if (!node || m_tree.isUnderConstruction(node))
        return;
    const QModelIndex index = m_model->indexOf(node);
    if (reveal) {
        for (QModelIndex up = index.parent(); up.isValid(); up = up.parent())
            if (!isExpanded(up))
                expand(up);
    }
    if (currentIndex() != index || !selectionModel()->isSelected(index))
        setCurrentIndex(index);
    if (reveal)
        scrollTo(index);
    m_clicked = key;
}

void TreeView::expandKey(const QString &key)
{
    if (const Node *node = key.isEmpty() ? nullptr : m_tree.find(key); node && !m_tree.isUnderConstruction(node))
        expand(m_model->indexOf(node));
}

QString TreeView::keyAt(const QPoint &viewportPos) const
{
    const QModelIndex index = indexAt(viewportPos);
    // The branch sign beside a node opens or closes it; only the node itself is a click on it.
    if (!index.isValid() || !visualRect(index).contains(viewportPos))
        return {};
    const Node *node = m_model->nodeAt(index);
    return node ? node->Key : QString();
}

void TreeView::click(const QString &key)
{
    m_clicked = key;
    emit nodeClicked(key);
}

void TreeView::mousePressEvent(QMouseEvent *event)
{
    const QPoint pos = event->position().toPoint();
    const QString key = keyAt(pos);
    if (event->button() == Qt::LeftButton && (event->modifiers() & Qt::ControlModifier)) {
        // Marking leaves the selection as it is.
        if (!key.isEmpty())
            emit markRequested(key, event->modifiers() & Qt::AltModifier);
        event->accept();
        return;
    }
    QTreeView::mousePressEvent(event);
    m_dragKey.clear();
    if (key.isEmpty())
        return;
    if (event->button() == Qt::LeftButton && isDraggableTune(key)) {
        m_dragKey = key;
        m_dragAsPart = event->modifiers() & Qt::AltModifier;
        m_pressAt = pos;
    }
    if (event->button() == Qt::RightButton)
        setCurrentIndex(indexAt(pos));
    click(key);
}

void TreeView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const QString key = keyAt(event->position().toPoint());
    QTreeView::mouseDoubleClickEvent(event);
    if (!key.isEmpty() && event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ControlModifier))
        emit nodeDoubleClicked(key);
}

void TreeView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_dragKey.isEmpty() || !(event->buttons() & Qt::LeftButton)
        || (event->position().toPoint() - m_pressAt).manhattanLength() < QApplication::startDragDistance()) {
        QTreeView::mouseMoveEvent(event);
        return;
    }
    auto *drag = new QDrag(this);
    auto *data = new QMimeData;
    data->setData(kTuneMime, m_dragKey.toUtf8());
    drag->setMimeData(data);
    drag->setPixmap(QIcon::fromTheme(QStringLiteral("audio-x-generic")).pixmap(24));
    drag->exec(Qt::MoveAction);
    m_dragKey.clear();
}

void TreeView::keyReleaseEvent(QKeyEvent *event)
{
    QTreeView::keyReleaseEvent(event);
    if (event->isAutoRepeat() || (event->modifiers() & kChordModifiers))
        return;
    const QString key = currentKey();
    if (key.isEmpty())
        return;
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
        click(key);
        break;
    default:
        // Home, End, the page keys, typing a caption's first letters: a move is a click too.
        if (key != m_clicked)
            click(key);
        break;
    }
}

void TreeView::contextMenuEvent(QContextMenuEvent *event)
{
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const QString key = byMouse ? keyAt(event->pos()) : currentKey();
    if (key.isEmpty()) {
        event->ignore();
        return;
    }
    if (key != m_clicked)
        click(key);
    const QPoint at
        = byMouse ? event->globalPos() : viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    emit contextMenuRequested(key, at);
    event->accept();
}

void TreeView::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasFormat(kTuneMime) || !localFiles(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
        return;
    }
    QTreeView::dragEnterEvent(event);
}

void TreeView::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->mimeData()->hasFormat(kTuneMime)) {
        // No drop on the root or on a file header: the pointer says so.
        const QString target = keyAt(event->position().toPoint());
        if (target.isEmpty() || target == key::Root || target.contains(key::HdrFile))
            event->ignore();
        else
            event->acceptProposedAction();
        return;
    }
    if (!localFiles(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
        return;
    }
    QTreeView::dragMoveEvent(event);
}

void TreeView::dropEvent(QDropEvent *event)
{
    if (event->mimeData()->hasFormat(kTuneMime)) {
        const QString dragged = QString::fromUtf8(event->mimeData()->data(kTuneMime));
        const QString target = keyAt(event->position().toPoint());
        event->acceptProposedAction();
        if (!target.isEmpty())
            emit tuneDropped(dragged, target, m_dragAsPart);
        return;
    }
    const QStringList files = localFiles(event->mimeData());
    if (files.isEmpty()) {
        QTreeView::dropEvent(event);
        return;
    }
    event->acceptProposedAction();
    emit filesDropped(files);
}

} // namespace fenwork
