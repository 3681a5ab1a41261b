#include "tools/cleaning.h"

#include "frame/regexp.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"

namespace fenwork {

namespace {

constexpr QChar kNul = QChar(0);

// Deletes what `pattern` matches, in place: the matches are found on the unchanged text, each is
// overwritten with NULs, and the NULs go at the end, so that every position stays valid during the
// pass. `keepEnds` spares the first and last character of each match.
bool deleteMatches(QString &text, const QString &pattern, bool keepEnds, const CleanProgress &progress)
{
    RegExp re;
    re.Global = true;
    re.MultiLine = true;
    re.Pattern = pattern;
    const QVector<RegExpMatch> matches = re.Execute(text);
    if (matches.isEmpty())
        return false;
    QChar *data = text.data();
    const int total = int(matches.size());
    int done = 0;
    for (const RegExpMatch &m : matches) {
        qsizetype from = m.firstIndex;
        qsizetype to = m.firstIndex + m.length;
        if (keepEnds) {
            ++from;
            --to;
        }
        for (qsizetype i = from; i < to; ++i)
            data[i] = kNul;
        if (progress.matchDone)
            progress.matchDone(++done, total);
    }
    text.remove(kNul);
    return true;
}

// `before` replaced by `after` until none is left; true when there was one.
bool replaceRepeatedly(QString &text, QStringView before, QStringView after)
{
    if (!text.contains(before))
        return false;
    do
        text = replaceAll(text, before, after);
    while (text.contains(before));
    return true;
}

bool replaceOnce(QString &text, QStringView before, QStringView after)
{
    if (!text.contains(before))
        return false;
    text = replaceAll(text, before, after);
    return true;
}

bool replacePattern(QString &text, const QString &pattern)
{
    RegExp re;
    re.Global = true;
    re.MultiLine = true;
    re.Pattern = pattern;
    if (!re.Test(text))
        return false;
    text = re.Replace(text, QString());
    return true;
}

bool fieldBlanks(QString &text)
{
    // The line end in front lets a field on the very first line be found like any other.
    text.prepend(CRLF);
    bool found = false;
    const auto letters = [&](char16_t first, char16_t last) {
        for (char16_t c = first; c <= last; ++c) {
            const QString letter(QChar { c });
            found |= replaceRepeatedly(text, QString(CRLF + letter + QStringLiteral(": ")), QString(CRLF + letter + u':'));
        }
    };
    letters(u'A', u'Z');
    letters(u'a', u'z');
    text.remove(0, 2);
    return found;
}

bool barBlanks(QString &text)
{
    static const QStringView rules[][2] = {
        { u"| ", u"|" }, { u" |", u"|" }, { u"|: ", u"|:" }, { u" :|", u":|" }, { u" ::", u"::" }, { u":: ", u"::" },
    };
    bool found = false;
    for (const auto &rule : rules)
        found |= replaceRepeatedly(text, rule[0], rule[1]);
    return found;
}

} // namespace

QString cleanAbcText(const QString &input, unsigned options, bool *changed, const CleanProgress &progress)
{
    QString text = input;
    bool found = false;
    const auto on = [options](int option) { return (options >> option) & 1u; };
    int steps = 0;
    for (int option = 0; option < CleanOptionCount; ++option)
        steps += on(option) ? 1 : 0;
    int step = 0;
    for (int option : kCleanOrder) {
        if (!on(option))
            continue;
        // Both decoration rules run as one pass, under the first of them.
        if (option == CleanPlusDecorations && on(CleanBangDecorations)) {
            if (progress.stepStarted)
                progress.stepStarted(++step, steps);
            continue;
        }
        if (progress.stepStarted)
            progress.stepStarted(++step, steps);
        switch (option) {
        case CleanJoinLines:
            found |= replaceOnce(text, u"\\\r\n", u"");
            break;
        case CleanTabs:
            found |= replaceOnce(text, u"\t", u" ");
            break;
        case CleanComments:
            found |= deleteMatches(text, QStringLiteral("[^%]%[^%].*$"), true, progress);
            break;
        case CleanRemarks:
            found |= deleteMatches(text, QStringLiteral("\\[r:.*?\\]|^r:.*$"), false, progress);
            break;
        case CleanEntities: {
            const QString decoded = htmlEntityDecode(text);
            found |= decoded.compare(text, Qt::CaseInsensitive) != 0;
            text = decoded;
            break;
        }
        case CleanFieldBlank:
            found |= fieldBlanks(text);
            break;
        case CleanBangDecorations:
            found |= deleteMatches(text,
                on(CleanPlusDecorations) ? QStringLiteral("!.*?!|\\+.*?\\+") : QStringLiteral("!.*?!"), false,
                progress);
            break;
        case CleanPlusDecorations:
            found |= deleteMatches(text, QStringLiteral("\\+.*?\\+"), false, progress);
            break;
        case CleanLineEndStars:
            found |= replaceOnce(text, u"*\r\n", u"\r\n");
            break;
        case CleanBarBlanks:
            found |= barBlanks(text);
            break;
        case CleanRolls:
            found |= replaceOnce(text, u"~", u"");
            break;
        case CleanGraceNotes:
            found |= text.contains(u'{') && replacePattern(text, QStringLiteral("\\{.*?\\}"));
            break;
        case CleanQuoted:
            found |= text.contains(u'"') && replacePattern(text, QStringLiteral("\".*?\""));
            break;
        case CleanBlanks:
            found |= replaceRepeatedly(text, u"  ", u" ");
            break;
        default:
            break;
        }
    }
    if (changed)
        *changed = found;
    return text;
}

const QStringList &cleanOptionNames()
{
    static const QStringList names = {
        QStringLiteral("--join-lines"), QStringLiteral("--blanks"), QStringLiteral("--tabs"),
        QStringLiteral("--comments"), QStringLiteral("--entities"), QStringLiteral("--field-blank"),
        QStringLiteral("--bang-decorations"), QStringLiteral("--plus-decorations"),
        QStringLiteral("--line-end-stars"), QStringLiteral("--bar-blanks"), QStringLiteral("--rolls"),
        QStringLiteral("--grace-notes"), QStringLiteral("--remarks"), QStringLiteral("--quoted"),
    };
    return names;
}

int cleanOptionFromName(const QString &name)
{
    return int(cleanOptionNames().indexOf(name));
}

} // namespace fenwork
