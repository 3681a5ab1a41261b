#include "editing/widgets/abceditor.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextBlock>
#include <QtMath>

namespace fenwork {

class LineNumberMargin : public QWidget
{
public:
    explicit LineNumberMargin(AbcEditor *editor)
        : QWidget(editor)
        , m_editor(editor)
    {
        setObjectName(QStringLiteral("pic_Lignes"));
    }
    QSize sizeHint() const override { return { m_editor->marginWidth(), 0 }; }

protected:
    void paintEvent(QPaintEvent *event) override { m_editor->paintMargin(event); }

private:
    AbcEditor *m_editor;
};

AbcEditor::AbcEditor(QWidget *parent)
    : QPlainTextEdit(parent)
    , m_margin(new LineNumberMargin(this))
{
    m_margin->hide();
    // Repainted with the text, not on a timer: scrolling and typing move the numbers at once.
    connect(this, &QPlainTextEdit::blockCountChanged, this, &AbcEditor::updateMargin);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect &rect, int dy) {
        if (!m_margin->isVisible())
            return;
        if (dy != 0)
            m_margin->scroll(0, dy);
        else
            m_margin->update(0, rect.y(), m_margin->width(), rect.height());
    });
    // Only the old and the new caret line change colour: repainting the whole margin on every
    // caret move made each keystroke slower.
    connect(this, &QPlainTextEdit::cursorPositionChanged, this, [this] {
        const int caret = textCursor().blockNumber();
        if (caret == m_caretBlock)
            return;
        updateMarginLine(m_caretBlock);
        updateMarginLine(caret);
        m_caretBlock = caret;
    });
}

void AbcEditor::updateMarginLine(int blockNumber)
{
    if (!m_margin->isVisible())
        return;
    const QTextBlock block = document()->findBlockByNumber(blockNumber);
    if (!block.isValid() || !block.isVisible())
        return;
    const QRectF line = blockBoundingGeometry(block).translated(contentOffset());
    if (line.bottom() < 0 || line.top() > m_margin->height())
        return;
    m_margin->update(0, qFloor(line.top()), m_margin->width(), qCeil(line.height()) + 1);
}

void AbcEditor::setLineNumbersVisible(bool visible)
{
    m_margin->setVisible(visible);
    updateMargin();
}

bool AbcEditor::lineNumbersVisible() const
{
    return !m_margin->isHidden();
}

int AbcEditor::marginWidth() const
{
    int digits = 2;
    for (int n = qMax(1, blockCount()); n >= 100; n /= 10)
        ++digits;
    return 8 + fontMetrics().horizontalAdvance(QLatin1Char('9')) * digits;
}

void AbcEditor::updateMargin()
{
    const bool shown = !m_margin->isHidden();
    setViewportMargins(shown ? marginWidth() : 0, 0, 0, 0);
    const QRect inside = contentsRect();
    m_margin->setGeometry(inside.left(), inside.top(), shown ? marginWidth() : 0, inside.height());
}

void AbcEditor::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    updateMargin();
}

void AbcEditor::paintMargin(QPaintEvent *event)
{
    QPainter painter(m_margin);
    painter.fillRect(event->rect(), palette().color(QPalette::Window));
    painter.setFont(font());
    const int caretBlock = m_caretBlock = textCursor().blockNumber();
    QTextBlock block = firstVisibleBlock();
    int top = qRound(blockBoundingGeometry(block).translated(contentOffset()).top());
    const int lineHeight = fontMetrics().height();
    while (block.isValid() && top <= event->rect().bottom()) {
        const int height = qRound(blockBoundingRect(block).height());
        if (block.isVisible() && top + height >= event->rect().top()) {
            painter.setPen(block.blockNumber() == caretBlock ? QColor(Qt::red) : palette().color(QPalette::WindowText));
            painter.drawText(0, top, m_margin->width() - 4, lineHeight, Qt::AlignRight,
                QString::number(block.blockNumber() + 1));
        }
        top += height;
        block = block.next();
    }
}

} // namespace fenwork
