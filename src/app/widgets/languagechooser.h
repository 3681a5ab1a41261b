#pragma once
#include <QDialog>

class QListWidget;

namespace fenwork {

class AppContext;

// f_lg: the list of installed languages, shown when no language is set. A double click or
// Return takes the row: it becomes General/lang and the current language.
class LanguageChooser : public QDialog
{
    Q_OBJECT
public:
    explicit LanguageChooser(AppContext &ctx, QWidget *parent = nullptr);

    // The language taken, empty when the window was closed without one.
    QString chosen() const { return m_chosen; }

    // Shows the chooser modally; returns the language taken or empty.
    static QString choose(AppContext &ctx, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void takeCurrentRow();

    AppContext &m_ctx;
    QListWidget *m_list;
    QString m_chosen;
};

} // namespace fenwork
