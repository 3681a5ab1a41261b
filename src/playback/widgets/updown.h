#pragma once
#include <QWidget>

class QToolButton;

namespace fenwork {

// A pair of small arrow buttons that steps a number up and down, the read-out being another
// control (the count-down's label, the pitch box). Changes made by the arrows say so.
class UpDown : public QWidget
{
    Q_OBJECT
public:
    explicit UpDown(QWidget *parent = nullptr);

    int value() const { return m_value; }
    // Sets the value as the program does: `changed` is emitted with byUser false.
    void setValue(int value);
    void setRange(int minimum, int maximum);
    int minimum() const { return m_minimum; }
    int maximum() const { return m_maximum; }
    QToolButton *upButton() const { return m_up; }
    QToolButton *downButton() const { return m_down; }

signals:
    void changed(int value, bool byUser);
    // An arrow was pressed, whatever the range: for read-outs that keep their own value.
    void stepped(int step);

private:
    void step(int delta);

    QToolButton *m_up;
    QToolButton *m_down;
    int m_value = 0;
    int m_minimum = 0;
    int m_maximum = 99;
};

} // namespace fenwork
