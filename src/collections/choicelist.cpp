#include "collections/choicelist.h"

#include "frame/strutil.h"

#include <QSet>

namespace fenwork {

QStringList ChoiceList::keys() const
{
    QStringList keys;
    keys.reserve(m_items.size());
    for (const ChoiceItem &item : m_items)
        keys.append(item.key);
    return keys;
}

bool ChoiceList::add(const QString &key, const QString &caption)
{
    if (key.isEmpty() || m_rows.contains(key))
        return false;
    const int row = count();
    emit aboutToAppend(row, row);
    m_items.append({ key, caption, 1 });
    m_rows.insert(key, row);
    emit appended(row, row);
    emit countChanged(count());
    return true;
}

int ChoiceList::addAll(const QVector<ChoiceItem> &items)
{
    // Settle what goes in first, so that a view hears of the rows before they exist.
    QVector<ChoiceItem> fresh;
    QSet<QString> seen;
    for (const ChoiceItem &item : items)
        if (!item.key.isEmpty() && !m_rows.contains(item.key) && !seen.contains(item.key)) {
            seen.insert(item.key);
            fresh.append({ item.key, item.caption, qMax(1, item.repetitions) });
        }
    if (fresh.isEmpty())
        return 0;
    const int first = count();
    emit aboutToAppend(first, first + int(fresh.size()) - 1);
    for (ChoiceItem &item : fresh) {
        m_rows.insert(item.key, count());
        m_items.append(std::move(item));
    }
    emit appended(first, count() - 1);
    emit countChanged(count());
    return int(fresh.size());
}

void ChoiceList::removeAt(int row)
{
    if (row < 0 || row >= count())
        return;
    emit aboutToRemove(row);
    m_rows.remove(m_items.at(row).key);
    m_items.removeAt(row);
    reindexFrom(row);
    emit removed(row);
    emit countChanged(count());
}

void ChoiceList::clear()
{
    if (m_items.isEmpty())
        return;
    emit aboutToReset();
    m_items.clear();
    m_rows.clear();
    emit reset();
    emit countChanged(0);
}

void ChoiceList::setRepetitions(int row, int repetitions)
{
    if (row < 0 || row >= count() || m_items.at(row).repetitions == repetitions)
        return;
    m_items[row].repetitions = repetitions;
    emit itemChanged(row);
}

void ChoiceList::setCaption(int row, const QString &caption)
{
    if (row < 0 || row >= count() || m_items.at(row).caption == caption)
        return;
    m_items[row].caption = caption;
    emit itemChanged(row);
}

void ChoiceList::move(int from, int to)
{
    if (from < 0 || from >= count() || to < 0 || to >= count() || from == to)
        return;
    emit aboutToMove(from, to);
    m_items.move(from, to);
    reindexFrom(qMin(from, to));
    emit moved(from, to);
}

void ChoiceList::prune(const std::function<bool(const QString &key)> &exists)
{
    QVector<ChoiceItem> kept;
    kept.reserve(m_items.size());
    for (const ChoiceItem &item : std::as_const(m_items))
        if (exists(item.key))
            kept.append(item);
    if (kept.size() == m_items.size())
        return;
    emit aboutToReset();
    m_items = std::move(kept);
    m_rows.clear();
    reindexFrom(0);
    emit reset();
    emit countChanged(count());
}

void ChoiceList::reindexFrom(int row)
{
    for (int i = row; i < count(); ++i)
        m_rows.insert(m_items.at(i).key, i);
}

int repetitionsFromText(const QString &text)
{
    bool ok = false;
    const int value = trimBlanks(text).toInt(&ok);
    return ok && value >= 1 && value <= 999 ? value : 0;
}

} // namespace fenwork
