#include "tools/notetokens.h"

#include "frame/regexp.h"
#include "frame/strutil.h"

#include <QHash>

namespace fenwork {

namespace {

bool isNoteLetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'A' && u <= 'G') || (u >= 'a' && u <= 'g');
}

} // namespace

QString TokeniseNotes(const QString &text)
{
    QString out;
    out.reserve(text.size() * 2);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const char16_t u = c.unicode();
        if ((u >= 'A' && u <= 'G') || (u >= 'a' && u <= 'g') || u == 'Z' || u == 'z') {
            out += QLatin1Char(' ');
            out += c;
        } else if (u == '^' || u == '_' || u == '=' || u == '(') {
            out += QLatin1Char(' ');
            out += c;
            if (i + 1 < text.size())
                out += text.at(++i);
        } else if ((u >= 'H' && u <= 'Y') || (u >= 'h' && u <= 'y')) {
            continue;
        } else {
            out += c;
        }
    }
    return trimBlanks(out);
}

QString keySign(const QString &accidentalLetters)
{
    if (accidentalLetters.startsWith(QLatin1Char('F')))
        return QStringLiteral("^");
    if (accidentalLetters.startsWith(QLatin1Char('B')))
        return QStringLiteral("_");
    return {};
}

QString ApplyKeySignature(const QString &notes, const QString &accidentalLetters)
{
    const QString sign = keySign(accidentalLetters);
    if (sign.isEmpty())
        return notes;
    // The sign is no letter, so writing it behind every altered letter in one pass is the same as
    // going through the letters one by one.
    QString out;
    out.reserve(notes.size() * 2);
    for (const QChar c : notes) {
        out += c;
        if (isNoteLetter(c) && accidentalLetters.contains(c.toUpper()))
            out += sign;
    }
    return replaceAll(out, QString(sign + QLatin1Char('=')), u"");
}

QString normaliseKey(const QString &keyValue)
{
    // A tune has few keys and a file repeats them: each value is worked out once.
    static QHash<QString, QString> known;
    if (const auto it = known.constFind(keyValue); it != known.constEnd())
        return *it;

    struct Rule
    {
        const char *pattern;
        const char *mode;
    };
    static const Rule rules[] = {
        { " *dor\\w*\\b", "dor" },
        { " *mix\\w*\\b| *myx\\w*\\b", "mix" },
        { " *phr\\w*\\b", "phr" },
        { " *lyd\\w*\\b| *lid\\w*\\b", "lyd" },
        { " *loc\\w*\\b", "loc" },
        { " *maj\\w*\\b| *ion\\w*\\b", "maj" },
        { " *min\\w*\\b| *aeo\\w*\\b| *m\\b", "min" },
    };
    // Only the first match of each pattern is rewritten: "A dor clef=alto" keeps its tail.
    static RegExp blanks, modeRes[std::size(rules)];
    if (blanks.Pattern.isEmpty()) {
        blanks.IgnoreCase = true;
        blanks.Pattern = QStringLiteral(" +");
        for (size_t i = 0; i < std::size(rules); ++i) {
            modeRes[i].IgnoreCase = true;
            modeRes[i].Pattern = QLatin1String(rules[i].pattern);
        }
    }
    QString key = blanks.Replace(keyValue, QStringLiteral(" "));
    for (size_t i = 0; i < std::size(rules); ++i)
        key = modeRes[i].Replace(key, QLatin1String(rules[i].mode));
    key += QLatin1Char(' ');
    // A tonic standing alone ("G ", "Bb ") is major.
    if ((key.size() > 1 && key.at(1) == QLatin1Char(' '))
        || (key.size() > 2 && key.at(2) == QLatin1Char(' ')))
        key.replace(key.indexOf(QLatin1Char(' ')), 1, QStringLiteral("maj "));
    key = trimBlanks(key);
    if (known.size() < 1000)
        known.insert(keyValue, key);
    return key;
}

QString keyNameOf(const QString &normalisedKey)
{
    const QString key = trimBlanks(normalisedKey);
    const qsizetype blank = key.indexOf(QLatin1Char(' '));
    return blank < 0 ? key : key.left(blank);
}

QString keyAccidentals(const QString &keyName, bool *known)
{
    static const QHash<QString, QString> table = [] {
        // Each row: the altered letters, then the key names with that signature.
        static const char *const rows[][8] = {
            { "FCGDAEB", "C#maj", "A#min", "G#mix", "D#dor", "E#phr", "F#lyd", "B#loc" },
            { "FCGDAE", "F#maj", "D#min", "C#mix", "G#dor", "A#phr", "Blyd", "E#loc" },
            { "FCGDA", "Bmaj", "G#min", "F#mix", "C#dor", "D#phr", "Elyd", "A#loc" },
            { "FCGD", "Emaj", "C#min", "Bmix", "F#dor", "G#phr", "Alyd", "D#loc" },
            { "FCG", "Amaj", "F#min", "Emix", "Bdor", "C#phr", "Dlyd", "G#loc" },
            { "FC", "Dmaj", "Bmin", "Amix", "Edor", "F#phr", "Glyd", "C#loc" },
            { "F", "Gmaj", "Emin", "Dmix", "Ador", "Bphr", "Clyd", "F#loc" },
            { "", "Cmaj", "Amin", "Gmix", "Ddor", "Ephr", "Flyd", "Bloc" },
            { "B", "Fmaj", "Dmin", "Cmix", "Gdor", "Aphr", "Bblyd", "Eloc" },
            { "BE", "Bbmaj", "Gmin", "Fmix", "Cdor", "Dphr", "Eblyd", "Aloc" },
            { "BEA", "Ebmaj", "Cmin", "Bbmix", "Fdor", "Gphr", "Ablyd", "Dloc" },
            { "BEAD", "Abmaj", "Fmin", "Ebmix", "Bbdor", "Cphr", "Dblyd", "Gloc" },
            { "BEADG", "Dbmaj", "Bbmin", "Abmix", "Ebdor", "Fphr", "Gblyd", "Cloc" },
            { "BEADGC", "Gbmaj", "Ebmin", "Dbmix", "Abdor", "Bbphr", "Cblyd", "Floc" },
            { "BEADGCF", "Cbmaj", "Abmin", "Gbmix", "Dbdor", "Ebphr", "Fblyd", "Bbloc" },
        };
        QHash<QString, QString> byName;
        for (const auto &row : rows)
            for (int k = 1; k < 8; ++k)
                byName.insert(QLatin1String(row[k]), QLatin1String(row[0]));
        return byName;
    }();
    const auto it = table.constFind(keyName);
    if (known)
        *known = it != table.constEnd();
    return it != table.constEnd() ? *it : QString();
}

int pitchHeight(const QString &token)
{
    if (token.isEmpty())
        return 0;
    int height = token.at(0).unicode();
    if (token.size() > 1) {
        const int octaves = 10 * int(token.size() - 1);
        if (token.at(1) == QLatin1Char('\''))
            height += octaves;
        else if (token.at(1) == QLatin1Char(','))
            height -= octaves;
    }
    return height;
}

} // namespace fenwork
