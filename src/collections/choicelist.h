#pragma once
// The working list of tunes gathered across the open files: references by key, never copies. It
// changes no file by itself; a tune that leaves the tree leaves the list at the next prune.
#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

namespace fenwork {

struct ChoiceItem
{
    QString key;
    QString caption;
    int repetitions = 1;
};

class ChoiceList : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    int count() const { return int(m_items.size()); }
    bool isEmpty() const { return m_items.isEmpty(); }
    const ChoiceItem &at(int row) const { return m_items.at(row); }
    const QVector<ChoiceItem> &items() const { return m_items; }
    QStringList keys() const;
    // The row of a listed key, -1 when it is not listed. Constant time.
    int indexOf(const QString &key) const { return m_rows.value(key, -1); }
    bool contains(const QString &key) const { return m_rows.contains(key); }

    // Appends a tune once with one repetition; false (and nothing changes) when it is listed.
    bool add(const QString &key, const QString &caption);
    // Appends many at once with a single notice: how a filter fills the list.
    int addAll(const QVector<ChoiceItem> &items);
    void removeAt(int row);
    void clear();
    void setRepetitions(int row, int repetitions);
    void setCaption(int row, const QString &caption);
    // Moves the item at `from` so that it stands at `to`: the order is what a set and a play follow.
    void move(int from, int to);
    // Drops every item whose key `exists` rejects, keeping the order of the others.
    void prune(const std::function<bool(const QString &key)> &exists);

signals:
    // Rows first..last are about to be appended, and were.
    void aboutToAppend(int first, int last);
    void appended(int first, int last);
    void aboutToRemove(int row);
    void removed(int row);
    // The list changed as a whole (clear, prune, a batch): views read it again.
    void aboutToReset();
    void reset();
    void itemChanged(int row);
    // Row `from` is about to stand at `to`, and does.
    void aboutToMove(int from, int to);
    void moved(int from, int to);
    // After every change of the number of items.
    void countChanged(int count);

private:
    void reindexFrom(int row);

    QVector<ChoiceItem> m_items;
    QHash<QString, int> m_rows; // key -> row
};

// The repetitions a typed text asks for: a whole number from 1 to 999, else 0 (leave them as
// they are), so that neither "-2" nor "2.5" nor a slip of the finger reaches the player.
int repetitionsFromText(const QString &text);

} // namespace fenwork
