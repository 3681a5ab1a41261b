#pragma once
#include "editing/autoinsert.h"

#include <QDialog>
#include <functional>

class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

namespace fenwork {

class AppContext;

// The window `fp_inser` that keeps the automatic insertions: the codes in `lst_code`, the chosen
// one's code in `txt_code` and its text in `txt_remp`, both changed in place. Every change
// rewrites the file at once.
class InsertionDialog : public QDialog
{
    Q_OBJECT
public:
    explicit InsertionDialog(AppContext &app, QWidget *parent = nullptr);
    ~InsertionDialog() override;

    // Puts a text in at the editor's caret; false when the editor is locked.
    std::function<bool(const QString &text)> insertText;

    const QList<InsertionEntry> &entries() const { return m_entries; }

public slots:
    // Sets the texts again, after a change of language.
    void LoadLang();
    void lst_code_Click(int row);
    void bt_new_Click();
    void bt_sup_Click();
    void bt_suptout_Click();
    void bt_Inser_Click();

private:
    void txt_code_Change(const QString &code);
    void txt_remp_Change();
    void fillList(int row);
    void save();

    AppContext &m_app;
    QList<InsertionEntry> m_entries;
    QListWidget *m_codes; // lst_code
    QLineEdit *m_code; // txt_code
    QPlainTextEdit *m_text; // txt_remp
    QPushButton *m_delete;
    QPushButton *m_insert;
    struct Caption
    {
        QWidget *widget;
        QString section;
        QString key;
    };
    QList<Caption> m_captions;
    bool m_showing = false; // the fields are being filled, not typed into
};

} // namespace fenwork
