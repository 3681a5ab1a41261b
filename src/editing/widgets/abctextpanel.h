#pragma once
#include <QWidget>

class QLabel;
class QPlainTextEdit;

namespace fenwork {

struct HighlightRange;
struct InfoLine;

// The text panel: the tune's caption `lab_ttr` over the ABC text `txt_ABC`. While nothing is
// edited the text is locked: it can be read, selected and copied, not changed, and its tinted
// background says so.
class AbcTextPanel : public QWidget
{
    Q_OBJECT
public:
    explicit AbcTextPanel(QWidget *parent = nullptr);

    QPlainTextEdit *editor() const { return m_text; }

    void setCaption(const QString &caption);
    QString caption() const;
    // The editor's font: a fixed-pitch family and a size in points.
    void setTextFont(const QString &family, int pointSize);

    // Shows ABC text (CR LF lines), caret at the start.
    void showText(const QString &text);
    // Shows coloured lines (0xBBGGRR) such as a file's information block.
    void showLines(const QList<InfoLine> &lines);
    void clearText();
    // The panel's text as the editor holds it (lines end with LF).
    QString text() const;
    // Selects `length` characters from `start`, scrolled into view.
    void selectRange(qsizetype start, qsizetype length);
    void clearSelection();
    // Marks ranges of the panel's text with a background colour, until the text changes.
    void highlight(const QVector<HighlightRange> &ranges, const QColor &colour);

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyLockedLook();

    QLabel *m_caption;
    QPlainTextEdit *m_text;
};

} // namespace fenwork
