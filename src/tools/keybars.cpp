#include "tools/keybars.h"

#include "frame/regexp.h"
#include "frame/strutil.h"
#include "tools/notetokens.h"

#include <QHash>

namespace fenwork {

namespace {

const QLatin1Char blank(' ');

bool isAsciiLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z');
}

bool isNoteLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'A' && u <= 'G') || (u >= 'a' && u <= 'g');
}

// Removes every match of `re` from `text` except those `keep` accepts.
template <typename Keep> QString deleteMatches(RegExp &re, const QString &text, Keep keep)
{
    QString out;
    out.reserve(text.size());
    qsizetype from = 0;
    for (const RegExpMatch &m : re.Execute(text)) {
        if (keep(m.value))
            continue;
        out += QStringView(text).mid(from, m.firstIndex - from);
        from = m.firstIndex + m.length;
    }
    out += QStringView(text).mid(from);
    return out;
}

RegExp &globalRegExp(const char *pattern, bool ignoreCase = false)
{
    // The handful of fixed patterns are compiled once for the whole run.
    static QHash<const char *, RegExp *> cache;
    RegExp *&re = cache[pattern];
    if (!re) {
        re = new RegExp;
        re->Global = true;
        re->IgnoreCase = ignoreCase;
        re->Pattern = QLatin1String(pattern);
    }
    return *re;
}

// The character at a 1-based position, or NUL beyond the line.
QChar at1(const QString &line, int pos)
{
    return pos >= 1 && pos <= line.size() ? line.at(pos - 1) : QChar();
}

int stepOverBarLine(const QString &line, int pos)
{
    ++pos;
    while (at1(line, pos) == QLatin1Char('|') || at1(line, pos) == QLatin1Char(':'))
        ++pos;
    return pos;
}

QStringList words(const QString &text)
{
    return text.isEmpty() ? QStringList() : text.split(blank);
}

// The length of one note word in unit notes, read digit by digit: "/" with an optional digit, a
// digit, or "(" and a digit (a tuplet). Returns how many of the words that follow belong to the
// tuplet and count nothing.
int addLength(const QString &word, const QString &key, float &total)
{
    bool matched = false;
    int skip = 0;
    const qsizetype n = word.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = word.at(i);
        const bool digitNext = i + 1 < n && word.at(i + 1).isDigit();
        if (c == QLatin1Char('/')) {
            matched = true;
            if (!digitNext) {
                total += 0.5f;
                continue;
            }
            const int d = word.at(++i).digitValue();
            if (d != 0) // "/0" would divide by zero: it adds nothing
                total += 1.0f / float(d);
        } else if (c.isDigit()) {
            matched = true;
            total += float(c.digitValue());
        } else if (c == QLatin1Char('(') && digitNext) {
            matched = true;
            const int d = word.at(++i).digitValue();
            if (d == 2 || d == 4 || d == 8)
                total += 3.0f;
            else if (d == 3 || d == 6)
                total += 2.0f;
            else if (d == 5 || d == 7 || d == 9)
                total += key.contains(QLatin1String("/8")) ? 3.0f : 2.0f;
            skip += d;
        }
    }
    if (!matched)
        total += 1.0f;
    return skip;
}

// The end (0-based, exclusive) of the first match in `subject` of the words joined by "any text
// but a line feed", as a lazy regular expression would find it; -1 when there is none.
qsizetype matchWordsInOrder(const QStringList &words, QStringView subject)
{
    for (qsizetype start = subject.indexOf(words.first()); start >= 0;
         start = subject.indexOf(words.first(), start + 1)) {
        qsizetype end = start + words.first().size();
        bool found = true;
        for (qsizetype k = 1; k < words.size() && found; ++k) {
            const qsizetype at = subject.indexOf(words.at(k), end);
            found = at >= 0 && !subject.mid(end, at - end).contains(QLatin1Char('\n'));
            end = at + words.at(k).size();
        }
        if (found)
            return end;
    }
    return -1;
}

// Where the second chord of a bar goes: right behind the first half's notes as found in the line
// from the bar's chord position on. Of the matches found there, the one ending first wins.
int middlePosition(const QString &line, int chordPos, const QString &firstHalf)
{
    if (firstHalf.isEmpty())
        return 0;
    const QStringList parts = firstHalf.split(blank);
    QStringView subject = QStringView(line).mid(qMin(qsizetype(chordPos - 1), line.size()));
    qsizetype end = -1;
    for (qsizetype found; (found = matchWordsInOrder(parts, subject)) >= 0;) {
        end = found;
        if (found == 0)
            break;
        subject = subject.left(found - 1);
    }
    return end < 0 ? 0 : chordPos + int(end);
}

void fillPitchFields(BarRecord &bar, const QString &barText, const QString &accidentals)
{
    const QStringList tokens = words(bar.pitches);
    // First and last token, lowest and highest by height.
    bar.firstNote = tokens.first();
    bar.lastNote = tokens.last();
    int low = pitchHeight(tokens.first()), high = low;
    bar.lowest = bar.highest = tokens.first();
    QHash<QString, int> counts;
    int most = 0;
    for (const QString &t : tokens) {
        const int h = pitchHeight(t);
        if (h < low) {
            low = h;
            bar.lowest = t;
        }
        if (h > high) {
            high = h;
            bar.highest = t;
        }
        most = qMax(most, ++counts[t]);
    }
    QStringList frequent;
    for (const QString &t : tokens)
        if (counts.value(t) == most && !frequent.contains(t))
            frequent << t;
    bar.frequent = frequent.join(blank);

    // The first note of every group, tuplet marks and bracketed or quoted text out of the way.
    QString groups = barText;
    groups = globalRegExp("\\(\\d").Replace(groups, QStringLiteral("xxx"));
    groups = globalRegExp("~|\\[.*?\\]|{.*?}|\".*?\"|\\+.*?\\+|!.*?!").Replace(groups, QStringLiteral(" "));
    QStringList starts;
    for (const QString &group : groups.split(blank, Qt::SkipEmptyParts)) {
        qsizetype i = 0;
        while (i < group.size() && !isNoteLetter(group.at(i)))
            ++i;
        if (i == group.size())
            continue;
        qsizetype from = i, to = i + 1;
        while (from > 0 && QStringView(u"^_=").contains(group.at(from - 1)))
            --from;
        while (to < group.size() && (group.at(to) == QLatin1Char(',') || group.at(to) == QLatin1Char('\'')))
            ++to;
        starts << group.mid(from, to - from);
    }
    bar.groupStarts = starts.join(blank);

    bar.pitchesInKey = ApplyKeySignature(bar.pitches, accidentals);
    bar.firstNoteInKey = ApplyKeySignature(bar.firstNote, accidentals);
    bar.lastNoteInKey = ApplyKeySignature(bar.lastNote, accidentals);
    bar.lowestInKey = ApplyKeySignature(bar.lowest, accidentals);
    bar.highestInKey = ApplyKeySignature(bar.highest, accidentals);
    bar.frequentInKey = ApplyKeySignature(bar.frequent, accidentals);
    bar.groupStartsInKey = ApplyKeySignature(bar.groupStarts, accidentals);
}

// The working copy of a line that is split into bars: comment, doubled and closing bar lines,
// ties and line continuations gone, repeat marks in one spelling.
QString cleanLine(const QString &line, bool &pendingRepeatStart)
{
    QString w = line;
    const qsizetype comment = w.indexOf(QLatin1Char('%'));
    if (comment >= 0)
        w.truncate(comment);
    w = trimBlanks(w);
    w = globalRegExp("\\| *?\\|", true).Replace(w, QStringLiteral("||"));
    static const char16_t *const replacements[][2] = {
        { u"::", u":|:" },
        { u":||:", u":|:" },
        { u"[|", u"|" },
        { u"|]", u"|" },
        { u"||", u"|" },
        { u"\\", u"" },
        { u"*", u"" },
        { u"-", u"" },
    };
    for (const auto &r : replacements)
        w = replaceAll(w, QStringView(r[0]), QStringView(r[1]));
    w = trimBlanks(w);
    if (pendingRepeatStart)
        w = w.startsWith(QLatin1Char('|')) ? QLatin1Char(':') + trimBlanks(w.mid(1)) : QLatin1Char(':') + w;
    pendingRepeatStart = w.endsWith(QLatin1String(":|:"));
    if (pendingRepeatStart)
        w.chop(1);
    if (w.startsWith(QLatin1Char('|')))
        w = trimBlanks(w.mid(1));
    if (w.endsWith(QLatin1Char('|'))) {
        w.chop(1);
        w = trimBlanks(w);
    }
    return w;
}

} // namespace

QString ClassifyAbcLine(const QString &line, QString &key, QString &meter, QString &unit)
{
    if (line.isEmpty())
        return {};
    if (line.startsWith(QLatin1String("%%")))
        return QStringLiteral("extField");
    if (line.startsWith(QLatin1Char('%')))
        return QStringLiteral("rem");
    if (line.startsWith(QLatin1String("r:")))
        return QStringLiteral("remField");
    const QString rest = trimBlanks(line.mid(2));
    if (line.startsWith(QLatin1String("K:"))) {
        key = rest;
        return QStringLiteral("key");
    }
    if (line.startsWith(QLatin1String("L:"))) {
        unit = rest;
        return QStringLiteral("L");
    }
    if (line.startsWith(QLatin1String("M:"))) {
        meter = rest;
        return QStringLiteral("meter");
    }
    if (line.size() < 2 || line.at(1) != QLatin1Char(':'))
        return QStringLiteral("mus");
    if (line.at(0) == QLatin1Char('P') && rest.size() < 2)
        return QStringLiteral("partField");
    if (line.at(0) == QLatin1Char('V'))
        return QStringLiteral("voice");
    if (isAsciiLetter(line.at(0)))
        return QStringLiteral("propField");
    return QStringLiteral("mus");
}

QVector<BarRecord> AnalyseBars(
    const QString &line, const QString &key, const QString &meter, bool withDegrees, bool &pendingRepeatStart)
{
    Q_UNUSED(withDegrees)
    const QString trimmed = trimBlanks(line);
    if (trimmed.isEmpty() || trimmed == QLatin1String("|"))
        return { BarRecord() };

    const QStringList pieces = cleanLine(trimmed, pendingRepeatStart).split(QLatin1Char('|'));

    // The same for every bar of the line.
    QString barMeter = meter;
    barMeter.replace(QLatin1String("C|"), QLatin1String("2/2"));
    barMeter.replace(QLatin1Char('C'), QLatin1String("4/4"));
    const QString barKey = normaliseKey(key);
    const QString accidentals = keyAccidentals(keyNameOf(barKey));

    static const char *const notePattern
        = "~|\\[.*?\\]\\d?|{.*?}|\".*?\"|\\+.*?\\+|!.*?!|\\(\\d|\\[H-Yh-y]\\d?|\\W";
    static const char *const pitchPattern = "~|\\[.*?\\]|{.*?}|\".*?\"|\\+.*?\\+|!.*?!|[Zz]|\\W|\\d";

    QVector<BarRecord> bars;
    bars.reserve(pieces.size());
    float firstLength = 0;
    for (int i = 0; i < pieces.size(); ++i) {
        bars.append(BarRecord());
        BarRecord &bar = bars.last();
        QString text = trimBlanks(pieces.at(i));
        bar.rawText = text;
        if (text.startsWith(QLatin1Char(':'))) {
            bar.repeatStart = true;
            text = trimBlanks(text.mid(1));
        }
        if (text.endsWith(QLatin1Char(':'))) {
            bar.repeatEnd = true;
            text.chop(1);
            text = trimBlanks(text);
        }
        bar.meter = barMeter;
        bar.key = barKey;
        if (text.startsWith(QLatin1Char('1')))
            bar.firstEnding = true;
        else if (text.startsWith(QLatin1Char('2')))
            bar.secondEnding = true;

        // Where the chord goes: behind the bar line (and an ending number) in the line itself.
        if (i == 0) {
            bar.chordPos = line.startsWith(QLatin1Char('|')) ? stepOverBarLine(line, 1) : 1;
        } else {
            const int from = bars.at(i - 1).chordPos;
            int pos = int(line.indexOf(QLatin1Char('|'), from - 1)) + 1;
            const int colon = int(line.indexOf(QLatin1Char(':'), from - 1)) + 1;
            // A "::" makes two bars of the copy with no "|" between them in the line: its colon
            // stands for the bar line; with neither left, the chord goes at the line's end.
            if (colon > 0 && (colon < pos || pos == 0))
                pos = colon;
            if (pos == 0)
                pos = int(line.size()) + 1;
            pos = stepOverBarLine(line, pos);
            if (at1(line, pos).isDigit() && at1(line, pos) != QLatin1Char('0'))
                ++pos;
            bar.chordPos = pos;
        }

        // Notes with their lengths: ornaments, brackets, grace notes, decorations and signs out.
        const QString kept = deleteMatches(globalRegExp(notePattern), text, [](const QString &v) {
            return v == QLatin1String(",") || v == QLatin1String("'") || v == QLatin1String("^")
                || v == QLatin1String("_") || v == QLatin1String("=") || v == QLatin1String("/")
                || v.startsWith(QLatin1Char('('));
        });
        QString notes = TokeniseNotes(kept);
        if (notes.startsWith(QLatin1Char('1')) || notes.startsWith(QLatin1Char('2')))
            notes = trimBlanks(notes.mid(1));
        QStringList noteWords = words(notes);
        if (noteWords.size() == 1)
            bar.pickup = true;

        // Running lengths, then a "*" before the first word that ends beyond the middle.
        float total = 0;
        QVector<float> ends(noteWords.size(), -1.0f);
        for (int j = 0; j < noteWords.size(); ++j) {
            const int skip = addLength(noteWords.at(j), barKey, total);
            ends[j] = total;
            j += skip;
        }
        for (int j = 0; j < noteWords.size(); ++j) {
            if (ends.at(j) >= 0 && ends.at(j) > total / 2) {
                noteWords.insert(j, QStringLiteral("*"));
                break;
            }
        }
        bar.notes = noteWords.join(blank);

        if (i == 0)
            firstLength = total;
        else if (i == 1 && firstLength + 2 < total)
            bars[0].pickup = true;

        // A chord of notes in brackets: the bar is left without a chord.
        bool chordOfNotes = false;
        for (const RegExpMatch &m : globalRegExp("\\[.*?\\]", true).Execute(text))
            if (m.value.size() < 3 || m.value.at(2) != QLatin1Char(':'))
                chordOfNotes = true;
        if (chordOfNotes) {
            bar.notes.clear();
            continue;
        }
        bar.notesInKey = ApplyKeySignature(bar.notes, accidentals);

        const qsizetype star = bar.notes.indexOf(QLatin1Char('*'));
        bar.midPos
            = middlePosition(line, bar.chordPos, trimBlanks(star < 0 ? QString() : bar.notes.left(star)));

        bar.pitches = TokeniseNotes(deleteMatches(globalRegExp(pitchPattern), text, [](const QString &v) {
            return v == QLatin1String(",") || v == QLatin1String("'") || v == QLatin1String("^")
                || v == QLatin1String("_") || v == QLatin1String("=");
        }));
        if (bar.pitches.isEmpty()) { // rests only
            bar.notes.clear();
            continue;
        }
        fillPitchFields(bar, text, accidentals);
    }
    return bars;
}

} // namespace fenwork
