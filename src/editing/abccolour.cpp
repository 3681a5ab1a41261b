#include "editing/abccolour.h"

#include "frame/regexp.h"

namespace fenwork {

namespace {

// The order of the alternatives decides: the field line first, the longer bars before the plain
// "|", and the comment to the line's end last.
const char16_t *const kPattern
    = u"^[a-zA-Z]:.*$|\\[1|\\[2|\\|1|:\\|2|::|:\\|\\|:|:\\|:|\\|:|:\\||\\[\\||\\|\\]|\\||~|\\[\\D.*?\\]"
      u"|{.*?}|\".*?\"|\\([2-8]|^%%.*$|\\\\$|%.*$";

// Compiled once for the run; the painter runs on every keystroke.
RegExp &colourExpression()
{
    static RegExp re;
    if (re.Pattern.isEmpty()) {
        re.Global = true;
        re.MultiLine = true;
        re.Pattern = QString::fromUtf16(kPattern);
    }
    return re;
}

class RangeList
{
public:
    explicit RangeList(QVector<AbcColourRange> &out)
        : m_out(out)
    { }
    void add(qsizetype start, qsizetype length, AbcStyle style)
    {
        if (length <= 0)
            return;
        const AbcStyleFormat f = abcStyleFormat(style);
        m_out.append(AbcColourRange { start, length, style, f.colour, f.bold, f.italic });
    }

private:
    QVector<AbcColourRange> &m_out;
};

void classify(RangeList &ranges, qsizetype start, QStringView match)
{
    const qsizetype length = match.size();
    const QChar c1 = match.at(0);
    const QChar c2 = length > 1 ? match.at(1) : QChar();

    if (c2 == u':' && c1 != u'|') {
        // A field line; "::" lands here as well.
        if (c1 == u'r' || c1 == u'P') {
            ranges.add(start, 2, AbcStyle::FieldLetter);
            ranges.add(start + 2, length - 2, c1 == u'r' ? AbcStyle::Remark : AbcStyle::Part);
            return;
        }
        const qsizetype percent = match.indexOf(u'%');
        const qsizetype valueEnd = percent < 0 ? length : percent;
        ranges.add(start, qMin<qsizetype>(2, valueEnd), AbcStyle::FieldLetter);
        ranges.add(start + 2, valueEnd - 2, AbcStyle::FieldValue);
        if (percent >= 0)
            ranges.add(start + percent, length - percent, AbcStyle::Comment);
        return;
    }
    if (c1 == u'|' || c1 == u':' || c1 == u'(') {
        ranges.add(start, length, AbcStyle::Bar);
    } else if (c1 == u'[') {
        const bool bar = c2 == u'|' || c2 == u'1' || c2 == u'2';
        ranges.add(start, length, bar ? AbcStyle::Bar : AbcStyle::InlineField);
    } else if (c1 == u'"') {
        ranges.add(start, length, AbcStyle::Quoted);
    } else if (c1 == u'~' || c1 == u'{') {
        ranges.add(start, length, AbcStyle::Decoration);
    } else if (c1 == u'%' && c2 == u'%') {
        ranges.add(start, length, AbcStyle::Directive);
    } else if (c1 == u'%') {
        ranges.add(start, length, AbcStyle::Comment);
    } else if (match.back() == u'\\') {
        ranges.add(start, length, AbcStyle::Continuation);
    }
}

} // namespace

AbcStyleFormat abcStyleFormat(AbcStyle style)
{
    switch (style) {
    case AbcStyle::Default:
        return { 0x0000FF, false, false };
    case AbcStyle::Bar:
        return { 0x910000, true, false };
    case AbcStyle::InlineField:
        return { 0xDC6464, false, false };
    case AbcStyle::Quoted:
        return { 0xFF00FF, false, false };
    case AbcStyle::Decoration:
        return { 0x969696, false, false };
    case AbcStyle::Directive:
        return { 0x005000, false, false };
    case AbcStyle::Comment:
        return { 0x009600, false, true };
    case AbcStyle::Continuation:
        return { 0xF5DCC8, true, true };
    case AbcStyle::FieldLetter:
        return { 0x960000, true, false };
    case AbcStyle::FieldValue:
        return { 0x500096, false, false };
    case AbcStyle::Remark:
        return { 0x009600, false, true };
    case AbcStyle::Part:
        return { 0xC3C501, true, false };
    }
    return { 0x0000FF, false, false };
}

QVector<AbcColourRange> abcColourRanges(const QString &piece, qsizetype base)
{
    QVector<AbcColourRange> out;
    const QVector<RegExpMatch> matches = colourExpression().Execute(piece);
    out.reserve(matches.size() + matches.size() / 4);
    RangeList ranges(out);
    for (const RegExpMatch &m : matches) {
        if (m.length > 0)
            classify(ranges, base + m.firstIndex, QStringView(piece).mid(m.firstIndex, m.length));
    }
    return out;
}

TextRegion caretLineRegion(const QString &text, qsizetype caret)
{
    caret = qBound<qsizetype>(0, caret, text.size());
    const qsizetype start = caret == 0 ? 0 : text.lastIndexOf(u'\n', caret - 1) + 1;
    const qsizetype lf = text.indexOf(u'\n', start);
    const qsizetype end = lf < 0 ? text.size() : lf + 1;
    return { start, end - start };
}

QVector<AbcColourRange> abcColourCaretLine(const QString &text, qsizetype caret, TextRegion *region)
{
    const TextRegion line = caretLineRegion(text, caret);
    if (region)
        *region = line;
    return abcColourRanges(text.mid(line.start, line.length), line.start);
}

} // namespace fenwork
