#pragma once
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QVBoxLayout;

namespace fenwork {

class AbcEditor;
class AbcHighlighter;
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

    QPlainTextEdit *editor() const;
    AbcEditor *abcEditor() const { return m_text; }

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
    // Marks the selection with a background colour, keeping the marks already made.
    void highlightRTB(const QColor &colour);

    // Colours the whole text again (after a tool rewrote it); typing colours its own line.
    void ColorerABC();
    AbcHighlighter *highlighter() const { return m_highlighter; }

    // Locked: read-only on a grey ground; unlocked: editable on white, for an edit session.
    void setLocked(bool locked);
    bool isLocked() const { return m_locked; }
    // Puts the edit session's tool bar between the caption and the text.
    void setEditBar(QWidget *bar);
    // The strip `pic_Warning` under the tool bar that tells an edit session runs; empty hides it.
    void setWarning(const QString &text);
    bool isWarningShown() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyLockedLook();

    QLabel *m_caption;
    QLabel *m_warning;
    AbcEditor *m_text;
    AbcHighlighter *m_highlighter;
    QVBoxLayout *m_layout = nullptr;
    bool m_locked = true;
};

} // namespace fenwork
