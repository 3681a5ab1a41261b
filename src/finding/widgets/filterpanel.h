#pragma once
#include "finding/tunefilter.h"

#include <QVector>
#include <QWidget>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;

namespace fenwork {

class PresetNameBox;

class AppContext;
class MelodySimilar;

// The search panel `pic_search`: 33 field rows, the anywhere and melody boxes, the options and
// the saved masks. Its handlers read the controls, call the filter and the mask store, and
// write back; the window connects the signals and hands it the tune display's text.
class FilterPanel : public QWidget
{
    Q_OBJECT
public:
    FilterPanel(AppContext &app, QWidget *parent = nullptr);
    ~FilterPanel() override;

    // Captions, tool tips and the two lists from the language (sections MainForm and TTText);
    // the lists go back to their first row.
    void LoadLang();
    // Refills lst_Msk from the mask folder and gives its box a free "NewMask" name.
    void loadMasks();

    // The filter: its flag, its pattern, and where the choice list plugs in its hooks.
    TuneFilter &filter() { return *m_filter; }
    bool isFilterActive() const { return m_filter->isActive(); }
    // The boxes as they stand.
    FilterConditions conditions() const;
    // What to mark in the text of the tune now shown; nothing while the filter is off.
    QVector<HighlightRange> ColorerFind(const QString &tuneText);

public slots:
    void bt_Search_Click();
    // The search in similar-melody mode: the tunes whose melody best holds the fragment, in
    // any key and with a note wrong, fill the choice list best first; the others are greyed.
    void searchSimilar();
    void bt_SupprFltr_Click();
    void lst_Msk_Click(int row);
    void bt_memMask_Click();
    void bt_delMask_Click();
    void bt_mskClear_Click();

signals:
    // A search or a removal changed the tunes' colours; `active` is the filter flag (the tab's
    // picture is "filter" while it is set, else "filter0").
    void treeFilterChanged(bool active);
    // The tree should come forward (the `files` tab).
    void showTreeRequested();
    // A node should be selected as a click would; after a search this is the root, so that the
    // editor no longer shows a tune marked for the old conditions.
    void selectNodeRequested(const QString &key);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildRows(QWidget *frame);
    void setMaskConditions(const FilterConditions &conditions);
    void maskNameEdited(const QString &text);
    void markFilled(QLineEdit *box);
    void filterSettled(bool searched);
    void similarToggled(bool on);

    AppContext &m_app;
    std::unique_ptr<TuneFilter> m_filter;
    std::unique_ptr<MelodySimilar> m_similarSearch;

    QLabel *m_title = nullptr;
    QLabel *m_info = nullptr;           // lab_infoFind
    QLabel *m_musLabel = nullptr;
    QLineEdit *m_mus = nullptr;         // txt_mus
    QCheckBox *m_startOnly = nullptr;   // chk_startOnly
    QCheckBox *m_similar = nullptr;     // chk_similar: the melody box ranks tunes by similarity
    QCheckBox *m_rhythm = nullptr;      // chk_rhythm
    QLabel *m_anywhereLabel = nullptr;
    QLineEdit *m_anywhere = nullptr;    // txt_anywhere
    QLabel *m_fieldsLabel = nullptr;
    QScrollArea *m_pattern = nullptr;   // pic_pattern holding fr_pattern
    QVector<QLabel *> m_chp;            // lab_chp
    QVector<QLabel *> m_chpDescr;       // lab_ChpDescr
    QVector<QLineEdit *> m_chpText;     // txt_Chp
    QCheckBox *m_noCaseSens = nullptr;  // chk_noCaseSens
    QCheckBox *m_invSearch = nullptr;   // chk_invSearch
    QComboBox *m_domain = nullptr;      // lst_domaineFind
    QComboBox *m_results = nullptr;     // lst_resFind
    PresetNameBox *m_msk = nullptr;         // lst_Msk
    QPushButton *m_memMask = nullptr;   // bt_memMask
    QPushButton *m_delMask = nullptr;   // bt_delMask
    QPushButton *m_mskClear = nullptr;  // bt_mskClear
    QPushButton *m_search = nullptr;    // bt_Search
    QPushButton *m_supprFltr = nullptr; // bt_SupprFltr
};

} // namespace fenwork
