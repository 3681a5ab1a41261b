#include "editing/widgets/abctextpanel.h"

#include "editing/widgets/abceditor.h"
#include "editing/widgets/abchighlighter.h"

#include "finding/tunefilter.h"
#include "store/nodeselection.h"

#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QVBoxLayout>

namespace fenwork {

namespace {

const QColor kLockedGround(0xEF, 0xEF, 0xEF);
const QColor kSessionGround(0xFF, 0xFF, 0xFF);

} // namespace

AbcTextPanel::AbcTextPanel(QWidget *parent)
    : QWidget(parent)
    , m_caption(new QLabel(this))
    , m_warning(new QLabel(this))
    , m_text(new AbcEditor(this))
    , m_highlighter(new AbcHighlighter(m_text->document()))
{
    setObjectName(QStringLiteral("pic_ABC"));
    m_caption->setObjectName(QStringLiteral("lab_ttr"));
    m_caption->setTextFormat(Qt::PlainText);
    m_caption->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    QFont captionFont = m_caption->font();
    captionFont.setBold(true);
    captionFont.setPointSizeF(captionFont.pointSizeF() * 1.15);
    m_caption->setFont(captionFont);
    m_caption->setContentsMargins(4, 2, 4, 2);

    m_warning->setObjectName(QStringLiteral("pic_Warning"));
    m_warning->setTextFormat(Qt::PlainText);
    m_warning->setWordWrap(true);
    m_warning->setContentsMargins(6, 3, 6, 3);
    // Light amber with dark text: noticed at once, yet readable in both light and dark themes.
    m_warning->setStyleSheet(QStringLiteral("QLabel { background: #fff3c4; color: #5a4300; border: 1px solid #e0c060; }"));
    m_warning->hide();

    m_text->setObjectName(QStringLiteral("txt_ABC"));
    m_text->setReadOnly(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_text->setUndoRedoEnabled(false);
    m_text->document()->setDocumentMargin(6);
    // A read-only editor still lets the keyboard move, select and copy.
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTextFont(QFontDatabase::systemFont(QFontDatabase::FixedFont).family(), 10);

    m_layout = new QVBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(2);
    m_layout->addWidget(m_caption);
    m_layout->addWidget(m_warning);
    m_layout->addWidget(m_text, 1);
    applyLockedLook();
}

QPlainTextEdit *AbcTextPanel::editor() const
{
    return m_text;
}

void AbcTextPanel::setCaption(const QString &caption)
{
    m_caption->setText(caption);
    m_caption->setToolTip(caption);
}

QString AbcTextPanel::caption() const
{
    return m_caption->text();
}

void AbcTextPanel::setTextFont(const QString &family, int pointSize)
{
    QFont font(family);
    // A family that isn't installed must still give a fixed-pitch face: ABC lines are read in columns.
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPointSize(qBound(6, pointSize, 48));
    m_text->setFont(font);
    m_text->setTabStopDistance(QFontMetricsF(font).horizontalAdvance(QLatin1Char(' ')) * 4);
}

void AbcTextPanel::showText(const QString &text)
{
    m_text->setExtraSelections({});
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (plain.endsWith(u'\n'))
        plain.chop(1);
    m_highlighter->setColouring(true);
    m_text->setPlainText(plain);
}

void AbcTextPanel::showLines(const QList<InfoLine> &lines)
{
    m_text->setExtraSelections({});
    m_highlighter->setColouring(false);
    m_text->clear();
    QTextCursor cursor(m_text->document());
    QTextCharFormat format;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const int bgr = lines.at(i).color;
        format.setForeground(QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF));
        if (i > 0)
            cursor.insertBlock();
        cursor.insertText(lines.at(i).text, format);
    }
    m_text->moveCursor(QTextCursor::Start);
}

void AbcTextPanel::clearText()
{
    m_text->setExtraSelections({});
    m_text->clear();
}

QString AbcTextPanel::text() const
{
    return m_text->toPlainText();
}

void AbcTextPanel::selectRange(qsizetype start, qsizetype length)
{
    QTextCursor cursor(m_text->document());
    cursor.setPosition(int(start));
    cursor.setPosition(int(start + length), QTextCursor::KeepAnchor);
    m_text->setTextCursor(cursor);
    m_text->ensureCursorVisible();
}

void AbcTextPanel::clearSelection()
{
    QTextCursor cursor = m_text->textCursor();
    cursor.clearSelection();
    m_text->setTextCursor(cursor);
}

void AbcTextPanel::highlight(const QVector<HighlightRange> &ranges, const QColor &colour)
{
    QList<QTextEdit::ExtraSelection> marks;
    for (const HighlightRange &range : ranges) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(m_text->document());
        mark.cursor.setPosition(int(range.start));
        mark.cursor.setPosition(int(range.start + range.length), QTextCursor::KeepAnchor);
        mark.format.setBackground(colour);
        marks.append(mark);
    }
    m_text->setExtraSelections(marks);
}

void AbcTextPanel::highlightRTB(const QColor &colour)
{
    const QTextCursor selected = m_text->textCursor();
    if (!selected.hasSelection())
        return;
    QList<QTextEdit::ExtraSelection> marks = m_text->extraSelections();
    QTextEdit::ExtraSelection mark;
    mark.cursor = QTextCursor(m_text->document());
    mark.cursor.setPosition(selected.selectionStart());
    mark.cursor.setPosition(selected.selectionEnd(), QTextCursor::KeepAnchor);
    mark.format.setBackground(colour);
    marks.append(mark);
    m_text->setExtraSelections(marks);
}

void AbcTextPanel::ColorerABC()
{
    m_highlighter->setColouring(true);
    m_highlighter->rehighlight();
}

void AbcTextPanel::setLocked(bool locked)
{
    m_locked = locked;
    m_text->setReadOnly(locked);
    m_text->setTextInteractionFlags(
        locked ? Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard : Qt::TextEditorInteraction);
    applyLockedLook();
}

void AbcTextPanel::setEditBar(QWidget *bar)
{
    m_layout->insertWidget(1, bar);
}

void AbcTextPanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        applyLockedLook();
}

// Grey while the text is locked, white during an edit session.
void AbcTextPanel::applyLockedLook()
{
    QPalette pal = palette();
    const QColor ground = m_locked ? kLockedGround : kSessionGround;
    for (const auto group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled })
        pal.setColor(group, QPalette::Base, ground);
    // The styles above are painted for a light ground: keep the plain text dark on it.
    pal.setColor(QPalette::Text, Qt::black);
    // The marked line must stay visible while the tree has the focus.
    pal.setColor(QPalette::Inactive, QPalette::Highlight, pal.color(QPalette::Active, QPalette::Highlight));
    pal.setColor(QPalette::Inactive, QPalette::HighlightedText,
        pal.color(QPalette::Active, QPalette::HighlightedText));
    if (m_text->palette() != pal)
        m_text->setPalette(pal);
}

void AbcTextPanel::setWarning(const QString &text)
{
    m_warning->setText(text);
    m_warning->setVisible(!text.isEmpty());
}

bool AbcTextPanel::isWarningShown() const
{
    return !m_warning->isHidden();
}

} // namespace fenwork
