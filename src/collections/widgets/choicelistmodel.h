#pragma once
#include <QAbstractTableModel>
#include <QIcon>

namespace fenwork {

class ChoiceList;

// Two columns over the core list, the caption and the repetitions, following its notices.
class ChoiceListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Roles { KeyRole = Qt::UserRole + 1 };

    explicit ChoiceListModel(ChoiceList &list, QObject *parent = nullptr);
    void setTuneIcon(const QIcon &icon) { m_icon = icon; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    ChoiceList &m_list;
    QIcon m_icon;
};

} // namespace fenwork
