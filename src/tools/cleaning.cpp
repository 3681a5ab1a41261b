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

bool isAsciiLetter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// The blanks behind the colon of a field at a line's start, a line being what follows CR LF or
// the start of the text. Replacing CR LF, letter, ":", blank by CR LF, letter, ":" for each letter
// until none is left comes to this, in one pass instead of one per letter and round.
bool fieldBlanks(QString &text)
{
    const qsizetype n = text.size();
    QString out;
    qsizetype copied = 0;
    for (qsizetype line = 0; line >= 0;) {
        if (line + 2 < n && isAsciiLetter(text.at(line)) && text.at(line + 1) == u':'
            && text.at(line + 2) == u' ') {
            const qsizetype colon = line + 2;
            qsizetype skip = colon;
            while (skip < n && text.at(skip) == u' ')
                ++skip;
            if (out.isNull())
                out.reserve(n);
            out += QStringView(text).mid(copied, colon - copied);
            copied = skip;
        }
        line = text.indexOf(CRLF, line);
        if (line >= 0)
            line += 2;
    }
    if (out.isNull())
        return false;
    out += QStringView(text).mid(copied);
    text = out;
    return true;
}

// The runs of blanks right behind each `token` (or right in front of it) removed: what replacing
// "token " by "token" (or " token" by "token") until none is left gives, in one pass.
bool dropBlanksNear(QString &text, QStringView token, bool behind)
{
    qsizetype at = text.indexOf(token);
    if (at < 0)
        return false;
    QString out;
    out.reserve(text.size());
    qsizetype copied = 0;
    bool found = false;
    while (at >= 0) {
        const qsizetype end = at + token.size();
        if (behind) {
            out += QStringView(text).mid(copied, end - copied);
            qsizetype skip = end;
            while (skip < text.size() && text.at(skip) == u' ')
                ++skip;
            found |= skip > end;
            copied = skip;
        } else {
            out += QStringView(text).mid(copied, at - copied);
            qsizetype keep = out.size();
            while (keep > 0 && out.at(keep - 1) == u' ')
                --keep;
            found |= keep < out.size();
            out.truncate(keep);
            out += token;
            copied = end;
        }
        at = text.indexOf(token, copied);
    }
    if (found) {
        out += QStringView(text).mid(copied);
        text = out;
    }
    return found;
}

bool barBlanks(QString &text)
{
    // In this order: "| ", " |", "|: ", " :|", " ::", ":: ".
    bool found = dropBlanksNear(text, u"|", true);
    found |= dropBlanksNear(text, u"|", false);
    found |= dropBlanksNear(text, u"|:", true);
    found |= dropBlanksNear(text, u":|", false);
    found |= dropBlanksNear(text, u"::", false);
    found |= dropBlanksNear(text, u"::", true);
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
        QStringLiteral("--join-lines"),
        QStringLiteral("--blanks"),
        QStringLiteral("--tabs"),
        QStringLiteral("--comments"),
        QStringLiteral("--entities"),
        QStringLiteral("--field-blank"),
        QStringLiteral("--bang-decorations"),
        QStringLiteral("--plus-decorations"),
        QStringLiteral("--line-end-stars"),
        QStringLiteral("--bar-blanks"),
        QStringLiteral("--rolls"),
        QStringLiteral("--grace-notes"),
        QStringLiteral("--remarks"),
        QStringLiteral("--quoted"),
    };
    return names;
}

int cleanOptionFromName(const QString &name)
{
    return int(cleanOptionNames().indexOf(name));
}

} // namespace fenwork
