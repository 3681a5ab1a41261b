#include "tools/notetokens.h"

#include "frame/regexp.h"
#include "frame/strutil.h"

#include <QHash>

namespace fenwork {

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
    QString out = notes;
    for (const QChar letter : accidentalLetters) {
        const QString upper(letter.toUpper());
        const QString lower(letter.toLower());
        out = replaceAll(out, upper, upper + sign);
        out = replaceAll(out, lower, lower + sign);
    }
    if (!sign.isEmpty())
        out = replaceAll(out, QString(sign + QLatin1Char('=')), u"");
    return out;
}

QString normaliseKey(const QString &keyValue)
{
    struct Rule
    {
        const char *pattern;
        const char *mode;
    };
    static const Rule rules[] = {
        {" *dor\\w*\\b", "dor"},
        {" *mix\\w*\\b| *myx\\w*\\b", "mix"},
        {" *phr\\w*\\b", "phr"},
        {" *lyd\\w*\\b| *lid\\w*\\b", "lyd"},
        {" *loc\\w*\\b", "loc"},
        {" *maj\\w*\\b| *ion\\w*\\b", "maj"},
        {" *min\\w*\\b| *aeo\\w*\\b| *m\\b", "min"},
    };
    // Only the first match of each pattern is rewritten: "A dor clef=alto" keeps its tail.
    RegExp re;
    re.IgnoreCase = true;
    re.Pattern = QStringLiteral(" +");
    QString key = re.Replace(keyValue, QStringLiteral(" "));
    for (const Rule &rule : rules) {
        re.Pattern = QLatin1String(rule.pattern);
        key = re.Replace(key, QLatin1String(rule.mode));
    }
    key += QLatin1Char(' ');
    // A tonic standing alone ("G ", "Bb ") is major.
    if ((key.size() > 1 && key.at(1) == QLatin1Char(' ')) || (key.size() > 2 && key.at(2) == QLatin1Char(' ')))
        key.replace(key.indexOf(QLatin1Char(' ')), 1, QStringLiteral("maj "));
    return trimBlanks(key);
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
            {"FCGDAEB", "C#maj", "A#min", "G#mix", "D#dor", "E#phr", "F#lyd", "B#loc"},
            {"FCGDAE", "F#maj", "D#min", "C#mix", "G#dor", "A#phr", "Blyd", "E#loc"},
            {"FCGDA", "Bmaj", "G#min", "F#mix", "C#dor", "D#phr", "Elyd", "A#loc"},
            {"FCGD", "Emaj", "C#min", "Bmix", "F#dor", "G#phr", "Alyd", "D#loc"},
            {"FCG", "Amaj", "F#min", "Emix", "Bdor", "C#phr", "Dlyd", "G#loc"},
            {"FC", "Dmaj", "Bmin", "Amix", "Edor", "F#phr", "Glyd", "C#loc"},
            {"F", "Gmaj", "Emin", "Dmix", "Ador", "Bphr", "Clyd", "F#loc"},
            {"", "Cmaj", "Amin", "Gmix", "Ddor", "Ephr", "Flyd", "Bloc"},
            {"B", "Fmaj", "Dmin", "Cmix", "Gdor", "Aphr", "Bblyd", "Eloc"},
            {"BE", "Bbmaj", "Gmin", "Fmix", "Cdor", "Dphr", "Eblyd", "Aloc"},
            {"BEA", "Ebmaj", "Cmin", "Bbmix", "Fdor", "Gphr", "Ablyd", "Dloc"},
            {"BEAD", "Abmaj", "Fmin", "Ebmix", "Bbdor", "Cphr", "Dblyd", "Gloc"},
            {"BEADG", "Dbmaj", "Bbmin", "Abmix", "Ebdor", "Fphr", "Gblyd", "Cloc"},
            {"BEADGC", "Gbmaj", "Ebmin", "Dbmix", "Abdor", "Bbphr", "Cblyd", "Floc"},
            {"BEADGCF", "Cbmaj", "Abmin", "Gbmix", "Dbdor", "Ebphr", "Fblyd", "Bbloc"},
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
