#pragma once
#include <QIcon>
#include <QWidget>

class QLabel;
class QSplitter;
class QToolBar;
class QTreeWidget;

namespace fenwork {

class Language;
class TreeModel;
class TreeView;
class WorkspaceTree;

// The tab `files` (`pic_explor`): the workspace tree `tr_ABC` over the choice list `lst_set` with
// its tool bar `tb_lstSet`.
class ExplorerPanel : public QWidget
{
    Q_OBJECT
public:
    ExplorerPanel(WorkspaceTree &tree, TreeModel *model, QWidget *parent = nullptr);

    TreeView *tree() const { return m_tree; }
    QTreeWidget *choiceList() const { return m_list; }
    QToolBar *choiceListToolBar() const { return m_listBar; }
    QSplitter *splitter() const { return m_split; }

    // The keys of the choice list's tunes, in list order.
    QStringList choiceListKeys() const;

    // The choice list: an item per tune key with the caption it had when added and its
    // repetitions ("1" at first). Returns false when the key is listed already.
    bool AddTunetolst(const QString &key, const QString &caption);
    void clearChoiceList();
    // Drops the items whose tune is no longer in the tree.
    void EpurerListeChoix();
    // The caption "<lstTunes> (n) ".
    void CompterTunesInLst();
    void setTuneIcon(const QIcon &icon) { m_tuneIcon = icon; }
    // The list's caption with its count, and the tool tips, in the current language.
    void loadLang(const Language &lang);

private:
    TreeView *m_tree;
    QSplitter *m_split;
    QLabel *m_listCaption;
    QToolBar *m_listBar;
    QTreeWidget *m_list;
    WorkspaceTree &m_workspace;
    QIcon m_tuneIcon;
    QString m_listCaptionText;
};

} // namespace fenwork
