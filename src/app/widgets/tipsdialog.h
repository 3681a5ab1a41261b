#pragma once
#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

namespace fenwork {

class AppContext;

// f_tips: one tip at a time from the language's "Tips" section, starting at a random one.
class TipsDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TipsDialog(AppContext &ctx, QWidget *parent = nullptr);

    int tipCount() const { return m_count; }
    int currentTip() const { return m_current; } // 1-based; 0 when there are none
    void showTip(int number);
    void nextTip();

private:
    QString tipText(int number) const;

    AppContext &m_ctx;
    QLabel *m_heading;
    QLabel *m_tip;
    QPushButton *m_next;
    QCheckBox *m_showAtStart;
    int m_count = 0;
    int m_current = 0;
};

} // namespace fenwork
