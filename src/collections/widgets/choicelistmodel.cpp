#include "collections/widgets/choicelistmodel.h"

#include "collections/choicelist.h"

namespace fenwork {

ChoiceListModel::ChoiceListModel(ChoiceList &list, QObject *parent)
    : QAbstractTableModel(parent)
    , m_list(list)
{
    connect(&list, &ChoiceList::aboutToAppend, this,
        [this](int first, int last) { beginInsertRows({}, first, last); });
    connect(&list, &ChoiceList::appended, this, [this] { endInsertRows(); });
    connect(&list, &ChoiceList::aboutToRemove, this, [this](int row) { beginRemoveRows({}, row, row); });
    connect(&list, &ChoiceList::removed, this, [this] { endRemoveRows(); });
    connect(&list, &ChoiceList::aboutToReset, this, [this] { beginResetModel(); });
    connect(&list, &ChoiceList::reset, this, [this] { endResetModel(); });
    connect(&list, &ChoiceList::aboutToMove, this, [this](int from, int to) {
        // The destination counts the row being moved when it goes down.
        beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
    });
    connect(&list, &ChoiceList::moved, this, [this] { endMoveRows(); });
    connect(&list, &ChoiceList::itemChanged, this,
        [this](int row) { emit dataChanged(index(row, 0), index(row, 1)); });
}

int ChoiceListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_list.count();
}

int ChoiceListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant ChoiceListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_list.count())
        return {};
    const ChoiceItem &item = m_list.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == 0 ? QVariant(item.caption) : QVariant(QString::number(item.repetitions));
    case Qt::DecorationRole:
        return index.column() == 0 ? QVariant(m_icon) : QVariant();
    case KeyRole:
        return item.key;
    default:
        return {};
    }
}

} // namespace fenwork
