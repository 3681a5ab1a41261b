#pragma once
#include <QIcon>
#include <QWidget>

class QAction;
class QLabel;
class QToolBar;
class QTreeView;

namespace fenwork {

class ChoiceList;
class ChoiceListModel;
class Language;

// The working list as the user sees it: the caption `lab_lstSet` with its count, the tool bar
// `tb_lstSet` and the list `lst_set`, a view of the core ChoiceList. It takes tunes dragged from
// the tree, and its rows are dragged within it to change their order.
class ChoiceListPanel : public QWidget
{
    Q_OBJECT
public:
    explicit ChoiceListPanel(ChoiceList &list, QWidget *parent = nullptr);

    ChoiceList &list() const { return m_list; }
    QTreeView *view() const { return m_view; }
    QToolBar *toolBar() const { return m_bar; }
    // The tool bar's button for a command of the list ("lstPlayLst", "lstSupTune", "emptyLst",
    // "lstToSet", "lstToAbc").
    QAction *toolAction(const QString &name) const;
    void setTuneIcon(const QIcon &icon);

    // A listed key is selected and scrolled to; another is appended. False when it was listed.
    bool AddTunetolst(const QString &key, const QString &caption);
    // Selects and shows the item at `row` (-1: none).
    void setCurrentRow(int row);
    int currentRow() const;
    // The caption "<lstTunes> (n) ".
    void CompterTunesInLst();
    // The caption and the tool tips in the current language.
    void loadLang(const Language &lang);

signals:
    // A click or Enter on an item.
    void itemActivated(const QString &key);
    void itemDoubleClicked(const QString &key);
    // A tune of the tree dropped on the list; files dropped there.
    void tuneDropped(const QString &key);
    void filesDropped(const QStringList &paths);
    // The right button on the list or its tool bar.
    void contextMenuRequested(const QPoint &globalPos);
    // The Del key on the list.
    void deleteRequested();

private:
    ChoiceList &m_list;
    ChoiceListModel *m_model;
    QLabel *m_caption;
    QToolBar *m_bar;
    QTreeView *m_view;
    QString m_captionText;
};

} // namespace fenwork
