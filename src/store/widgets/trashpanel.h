#pragma once
#include <QFrame>

class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace fenwork {

class AppContext;

// The panel `pic_Rest` shown over the editor while a tune of the trash box is selected: where it
// came from, when it went, and where it may go back to.
class TrashPanel : public QFrame
{
    Q_OBJECT
public:
    explicit TrashPanel(AppContext &app, QWidget *parent = nullptr);

    // Fills the panel for the trash tune of `clickedKey` (any line of it) and shows it.
    void showTune(const QString &clickedKey);
    // The key of the trash tune shown (the panel's tag).
    QString tuneKey() const { return m_tuneKey; }
    void LoadLang();
    // The panel lies over `anchor` (the editor and score), following its place and size; its
    // parent must be an ancestor of `anchor`.
    void followWidget(QWidget *anchor);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void bt_Rest_Click();
    void bt_supprTunePoubelle_Click();
    void bt_emptyTrash_Click();

signals:
    // The box changed under the panel; the window selects the trash box again.
    void trashChanged();

private:
    void optionChosen();
    void fileChosen(int row);
    void placeOverAnchor();

    AppContext &m_app;
    QString m_tuneKey;
    QString m_origin;
    bool m_originExists = false;
    QLabel *m_title;
    QLabel *m_tune;
    QLabel *m_from;
    QLabel *m_when;
    QRadioButton *m_toOrigin;
    QRadioButton *m_toOther;
    QComboBox *m_files;
    QPushButton *m_restore;
    QPushButton *m_delete;
    QPushButton *m_empty;
    QWidget *m_anchor = nullptr;
};

} // namespace fenwork
