#include "editing/widgets/abchighlighter.h"

#include "frame/widgets/colours.h"

#include "editing/abccolour.h"

#include <QTextCharFormat>

namespace fenwork {

namespace {

QTextCharFormat formatOf(int colour, bool bold, bool italic)
{
    QTextCharFormat format;
    format.setForeground(bgrColour(colour));
    format.setFontWeight(bold ? QFont::Bold : QFont::Normal);
    format.setFontItalic(italic);
    return format;
}

} // namespace

AbcHighlighter::AbcHighlighter(QTextDocument *document)
    : QSyntaxHighlighter(document)
{ }

void AbcHighlighter::setColouring(bool on)
{
    if (m_on == on)
        return;
    m_on = on;
    rehighlight();
}

void AbcHighlighter::highlightBlock(const QString &text)
{
    if (!m_on)
        return;
    const AbcStyleFormat plain = abcStyleFormat(AbcStyle::Default);
    setFormat(0, int(text.size()), formatOf(plain.colour, plain.bold, plain.italic));
    for (const AbcColourRange &range : abcColourRanges(text))
        setFormat(int(range.start), int(range.length), formatOf(range.colour, range.bold, range.italic));
}

} // namespace fenwork
