#pragma once
#include <QPlainTextEdit>

namespace fenwork {

// The ABC text `txt_ABC`, with a margin of line numbers `pic_Lignes` that an edit session shows:
// the caret's line in red, so that a line named by a tool's message is found at a glance.
class AbcEditor : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit AbcEditor(QWidget *parent = nullptr);

    void setLineNumbersVisible(bool visible);
    bool lineNumbersVisible() const;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class LineNumberMargin;
    int marginWidth() const;
    void updateMargin();
    void paintMargin(QPaintEvent *event);
    void updateMarginLine(int blockNumber);

    QWidget *m_margin;
    int m_caretBlock = 0; // the line shown in red
};

} // namespace fenwork
