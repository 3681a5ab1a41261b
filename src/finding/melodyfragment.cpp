#include "finding/melodyfragment.h"

#include "frame/strutil.h"

namespace fenwork {

namespace {

// Walks the fragment with the inside-brackets flag: inside a class every character goes bare,
// since the class stands for one position; outside, `between` follows each character.
QString spreadFragment(const QString &fragment, QStringView between)
{
    QString compact = trimBlanks(fragment);
    compact.remove(u' ');
    QString out;
    out.reserve(compact.size() * (1 + between.size()));
    bool inBrackets = false;
    for (const QChar c : std::as_const(compact)) {
        if (c == u'[')
            inBrackets = true;
        else if (c == u']')
            inBrackets = false;
        out += c;
        if (!inBrackets)
            out += between;
    }
    out.replace(u'?', QStringLiteral(".?"));
    return out;
}

} // namespace

QString melodySearchText(const QString &fragment)
{
    return spreadFragment(fragment, u" *");
}

QString melodySearchAlternative(const QString &fragment, bool startOnly)
{
    const QString text = melodySearchText(fragment);
    if (text.isEmpty())
        return {};
    return (startOnly ? QStringLiteral("^") : QStringLiteral("^.*")) + text + QStringLiteral(".*$|");
}

QString melodyHighlightPattern(const QString &fragment)
{
    return spreadFragment(fragment, u"[ /|\\d]*");
}

} // namespace fenwork
