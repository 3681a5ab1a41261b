#include "tools/chords.h"

#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/regexp.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "tools/keybars.h"
#include "tools/notetokens.h"

#include <QHash>

#include <exception>

namespace fenwork {

namespace {

struct Mode
{
    const char *name;
    int steps[7];
    const char *suffixes[7];
};

const Mode modes[] = {
    { "maj", { 0, 2, 4, 5, 7, 9, 11 }, { "", "m", "m", "", "", "m", "mdim" } },
    { "min", { 0, 2, 3, 5, 7, 8, 10 }, { "m", "dim", "", "m", "m", "", "" } },
    { "mix", { 0, 2, 4, 5, 7, 9, 10 }, { "", "m", "mdim", "", "7", "m", "" } },
    { "dor", { 0, 2, 3, 5, 7, 9, 10 }, { "m", "m", "", "", "m", "mdim", "" } },
    { "phr", { 0, 1, 3, 5, 7, 8, 10 }, { "m", "", "", "m", "m", "", "m" } },
    { "lyd", { 0, 2, 4, 6, 7, 9, 11 }, { "", "m", "m", "m", "", "m", "m" } },
    { "loc", { 0, 1, 3, 5, 6, 8, 10 }, { "m", "", "m", "m", "", "", "m" } },
};

const Mode *findMode(QStringView name)
{
    for (const Mode &mode : modes)
        if (name == QLatin1String(mode.name))
            return &mode;
    return nullptr;
}

// Holds the text judged and answers whether the letters of some degrees all occur in it.
struct Judge
{
    const QStringList &letters;
    const QString &text;
    bool has(int a) const { return text.contains(letters.at(a)); }
    bool has(int a, int b) const { return has(a) && has(b); }
    bool has(int a, int b, int c) const { return has(a) && has(b) && has(c); }
    // The first character of the text's first word.
    QString first() const
    {
        const QString t = text.startsWith(QLatin1Char(' ')) ? QString() : text;
        return t.left(1);
    }
    bool firstIs(int degree) const { return !text.isEmpty() && first() == letters.at(degree); }
};

QString none(bool diagnostic)
{
    return diagnostic ? QStringLiteral("xxx") : QString();
}

QString insertChord(const QString &line, int pos, const QString &chord)
{
    const qsizetype at = qBound(qsizetype(0), qsizetype(pos - 1), line.size());
    return line.left(at) + QLatin1String(" \"") + chord + QLatin1String("\" ") + line.mid(at);
}

QString singleBlanks(QString line)
{
    while (line.contains(QLatin1String("  ")))
        line = replaceAll(line, u"  ", u" ");
    return line;
}

// A tune ending its last music line in ":|:" hands the repeat start on to the next tune chorded.
bool pendingRepeatStart = false;

} // namespace

DegreeTable degreeTable(const QString &keyName)
{
    // Every bar asks again for the same few keys.
    static QHash<QString, DegreeTable> made;
    if (const auto it = made.constFind(keyName); it != made.constEnd())
        return *it;
    DegreeTable table;
    if (keyName.size() < 4)
        return table;
    const Mode *mode = findMode(QStringView(keyName).right(3));
    bool known = false;
    keyAccidentals(keyName, &known);
    if (!mode || !known)
        return table;
    static const QString names = QStringLiteral("CDEFGAB");
    static const int naturals[7] = { 0, 2, 4, 5, 7, 9, 11 };
    const int tonicLetter = int(names.indexOf(keyName.at(0)));
    int tonicPitch = naturals[tonicLetter];
    if (keyName.at(1) == QLatin1Char('#'))
        ++tonicPitch;
    else if (keyName.at(1) == QLatin1Char('b'))
        --tonicPitch;
    for (int k = 0; k < 7; ++k) {
        // Each letter once, altered to reach the mode's step: E# and B#, Cb and Fb where needed.
        const int letter = (tonicLetter + k) % 7;
        int alter = ((tonicPitch + mode->steps[k] - naturals[letter]) % 12 + 12) % 12;
        if (alter > 6)
            alter -= 12;
        QString name(names.at(letter));
        table.letters << name;
        name += QString(qAbs(alter), alter > 0 ? QLatin1Char('#') : QLatin1Char('b'));
        // D# dorian writes its sixth degree without the diminished suffix.
        const bool plain = keyName == QLatin1String("D#dor") && k == 5;
        table.chords << name + (plain ? QString() : QLatin1String(mode->suffixes[k]));
    }
    made.insert(keyName, table);
    return table;
}

// One rule a line reads as the table it is.
// clang-format off
QString ChordRulesMajor(const QStringList &letters, const QStringList &chords, const QString &notes, bool diagnostic)
{
    const Judge j{letters, notes};
    if (j.has(0, 2, 5)) return chords[5];
    if (j.has(0, 2)) return chords[0];
    if (j.has(0, 4)) return chords[0];
    if (j.has(1, 3, 5)) return chords[1];
    if (j.has(3) || j.has(5)) return chords[3];
    if (j.has(1, 4, 6)) return chords[4];
    if (j.has(1, 6)) return chords[4];
    if (j.has(1, 4)) return chords[4];
    if (j.has(2, 4, 6)) return chords[2];
    if (j.has(4)) return chords[0];
    if (j.has(0)) return chords[0];
    if (j.has(6)) return chords[6];
    if (j.has(2)) return chords[2];
    if (j.has(1)) return chords[1];
    return none(diagnostic);
}

QString ChordRulesDorian(const QStringList &letters, const QStringList &chords, const QString &notes, bool diagnostic)
{
    if (notes.isEmpty())
        return {};
    const Judge j{letters, notes};
    if (j.has(0, 2, 5)) return chords[5];
    if (j.has(0, 2)) return chords[0];
    if (j.has(0, 4)) return chords[0];
    if (j.has(1, 3, 5)) return chords[1];
    if (j.has(2, 4, 6)) return chords[2];
    if (j.has(0, 3, 5)) return chords[3];
    if (j.has(4, 6)) return chords[4];
    if (j.has(1, 3, 6)) return chords[6];
    if (j.firstIs(1) || j.firstIs(3) || j.firstIs(5)) return chords[1];
    if (j.has(4)) return chords[0];
    if (j.has(0)) return chords[0];
    if (j.has(3, 6)) return chords[3];
    return none(diagnostic);
}

QString ChordRulesMixolydian(const QStringList &letters, const QStringList &chords, const QString &notes,
                             const QString &previous, bool diagnostic)
{
    const Judge j{letters, notes};
    if (j.has(0, 2, 5)) return chords[5];
    if (j.has(0, 2)) return previous == chords[6] ? chords[6] : chords[0];
    if (j.has(0, 4)) return chords[0];
    if (j.has(1, 3, 5)) return chords[1];
    if (j.has(2, 4, 6)) return chords[2];
    if (j.has(3, 5)) return chords[3];
    if (j.has(1, 4, 6)) return chords[4];
    if (j.has(1, 3)) return previous == chords[3] ? chords[4] : chords[6];
    if (j.has(1, 6)) return chords[6];
    if (j.has(4)) return chords[0];
    if (j.has(0)) return chords[0];
    if (j.has(6)) return chords[6];
    if (j.has(5)) return chords[5];
    if (j.has(3)) return chords[3];
    if (j.has(2)) return chords[2];
    if (j.has(1)) return chords[1];
    return none(diagnostic);
}

QString ChordRulesCommon(const QStringList &letters, const QStringList &chords, const QString &notes,
                         const QString &previous, bool diagnostic)
{
    const Judge j{letters, notes};
    if (j.has(0, 2, 5)) return chords[5];
    if (j.has(1, 6)) return j.firstIs(0) ? chords[0] : previous == chords[6] ? chords[4] : chords[6];
    if (j.has(0, 2)) return previous == chords[6] ? chords[6] : chords[0];
    if (j.has(0, 4)) return chords[0];
    if (j.has(1, 3, 5)) return chords[1];
    if (j.has(2, 4, 6)) return chords[2];
    if (j.has(3, 4, 5)) return chords[4];
    if (j.has(3, 5)) return chords[3];
    if (j.has(1, 4, 6)) return chords[4];
    if (j.has(1, 3)) return previous == chords[3] ? chords[4] : chords[6];
    if (j.has(2, 4)) return chords[4];
    if (j.has(4)) return previous == chords[4] ? chords[4] : chords[0];
    if (j.has(0, 6)) return chords[4];
    if (j.has(0)) return chords[0];
    if (j.has(6)) return chords[6];
    if (j.has(2, 3)) return chords[3];
    if (j.has(2)) return chords[2];
    if (j.has(3)) return previous == chords[4] ? chords[4] : chords[3];
    if (j.has(5)) return chords[5];
    if (j.has(1)) return chords[1];
    return none(diagnostic);
}
// clang-format on

bool isRefusedLine(const QVector<QStringList> &choice)
{
    return choice.size() == 1 && choice.first().size() == 1 && choice.first().first() == QLatin1String("*");
}

QVector<QStringList> ChooseChords(const QVector<BarRecord> &bars, bool twoPerBar, bool diagnostic)
{
    const int slotCount = twoPerBar ? 2 : 1;
    QVector<QStringList> result(slotCount, QStringList());
    for (QStringList &slot : result)
        for (int i = 0; i < bars.size(); ++i)
            slot << QString();
    QString current;
    for (int i = 0; i < bars.size(); ++i) {
        const BarRecord &bar = bars.at(i);
        if (bar.notes.isEmpty() || bar.pickup) {
            current.clear();
            continue;
        }
        const QString keyName = keyNameOf(bar.key);
        const QString mode = keyName.right(3);
        QStringList texts;
        const QString upper = bar.notes.toUpper();
        if (twoPerBar) {
            const qsizetype star = upper.indexOf(QLatin1Char('*'));
            texts << trimBlanks(star < 0 ? upper : upper.left(star))
                  << (star < 0 ? QString() : trimBlanks(upper.mid(star + 1)));
        } else {
            texts << upper;
        }
        for (int h = 0; h < slotCount; ++h) {
            QString text = texts.at(h);
            // A first half left empty by a note crossing the middle is judged on the second.
            if (text.isEmpty() && h + 1 < texts.size())
                text = texts.at(h + 1);
            if (!findMode(mode))
                return { QStringList { QStringLiteral("*") } };
            const DegreeTable table = degreeTable(keyName);
            if (table.letters.isEmpty()) { // a tonic no table has: no chord, and no message
                result[h][i] = current;
                continue;
            }
            const QString previous = current;
            QString chord;
            if (mode == QLatin1String("maj"))
                chord = ChordRulesMajor(table.letters, table.chords, text, diagnostic);
            else if (mode == QLatin1String("dor"))
                chord = ChordRulesDorian(table.letters, table.chords, text, diagnostic);
            else if (mode == QLatin1String("mix"))
                chord = ChordRulesMixolydian(table.letters, table.chords, text, previous, diagnostic);
            else
                chord = ChordRulesCommon(table.letters, table.chords, text, previous, diagnostic);
            result[h][i] = chord;
            current = chord;
        }
    }
    return result;
}

QString AddChords(const AppContext &app, const QString &text, bool twoPerBar, bool diagnostic,
    const std::function<void(bool)> &setOwnerVisible)
{
    try {
        QStringList lines = text.split(CRLF);
        QString key = QStringLiteral("C"), meter = QStringLiteral("none"), unit = QStringLiteral("1/8");
        bool refused = false;
        static RegExp quoted;
        quoted.Global = true;
        quoted.Pattern = QStringLiteral("\".*?\"");
        for (QString &line : lines) {
            line = trimBlanks(line);
            if (ClassifyAbcLine(line, key, meter, unit) != QLatin1String("mus"))
                continue;
            // Chords and annotations already there give way to the new ones.
            line = singleBlanks(quoted.Replace(line, QString()));
            const QVector<BarRecord> bars = AnalyseBars(line, key, meter, false, pendingRepeatStart);
            const QVector<QStringList> choice = ChooseChords(bars, twoPerBar, diagnostic);
            if (isRefusedLine(choice)) {
                refused = true;
                continue;
            }
            // From the last bar to the first, so that the positions still to use stay valid.
            for (qsizetype i = bars.size() - 1; i >= 0; --i) {
                const BarRecord &bar = bars.at(i);
                if (twoPerBar && !choice.at(1).at(i).isEmpty() && bar.midPos != 0)
                    line = insertChord(line, bar.midPos, choice.at(1).at(i));
                if (!choice.at(0).at(i).isEmpty())
                    line = insertChord(line, bar.chordPos, choice.at(0).at(i));
                line = singleBlanks(line);
            }
        }
        if (refused) {
            if (diagnostic) {
                app.ui().message(QStringLiteral("Some lines show a key which may not be possible"),
                    UserDialogs::Icon::Information);
            } else {
                if (setOwnerVisible)
                    setOwnerVisible(false);
                app.ui().message(app.text(QStringLiteral("Tools"), QStringLiteral("<keyNotHdl>")),
                    UserDialogs::Icon::Warning);
                if (setOwnerVisible)
                    setOwnerVisible(true);
            }
        }
        return lines.join(CRLF);
    } catch (const std::exception &e) {
        app.ui().contextError(QStringLiteral("AddChords"), QString::fromLocal8Bit(e.what()));
    }
    return {};
}

} // namespace fenwork
