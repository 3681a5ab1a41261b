#pragma once
#include <QDialog>

class QCheckBox;

namespace fenwork {

class AppContext;

// f_firststart: asked once, on the first run, whether opened files get a .BAK copy.
class FirstStartDialog : public QDialog
{
    Q_OBJECT
public:
    explicit FirstStartDialog(AppContext &ctx, QWidget *parent = nullptr);

protected:
    // The title bar's X and Esc keep what the box shows, so that the question is not asked again.
    void reject() override;

private:
    void keepChoice();
    void okClicked();

    AppContext &m_ctx;
    QCheckBox *m_bak;
};

} // namespace fenwork
