#include "finding/melodyreader.h"

#include "frame/strutil.h"
#include "tools/notetokens.h"

#include <QHash>
#include <QStringView>
#include <cmath>

namespace fenwork {

namespace {

// Repeats are unfolded, but a tune full of them must not grow without end.
constexpr int kMaxNotes = 20000;

int letterIndex(QChar letter)
{
    switch (letter.toUpper().unicode()) {
    case 'C':
        return 0;
    case 'D':
        return 1;
    case 'E':
        return 2;
    case 'F':
        return 3;
    case 'G':
        return 4;
    case 'A':
        return 5;
    case 'B':
        return 6;
    default:
        return -1;
    }
}

constexpr int kSemitones[7] = { 0, 2, 4, 5, 7, 9, 11 };

// The letters a K: value alters and by how much: +1 or -1 per letter, C to B. A key the table
// does not know (none, the pipes' HP) leaves every letter natural.
void keyAlterations(const QString &keyValue, int (&alter)[7])
{
    // Normalising goes through regular expressions: a file holds few distinct keys, so each is
    // worked out once.
    static thread_local QHash<QString, QString> letters;
    auto it = letters.constFind(keyValue);
    if (it == letters.constEnd())
        it = letters.insert(keyValue, keyAccidentals(keyNameOf(normaliseKey(trimBlanks(keyValue)))));
    const int sign = keySign(*it) == u"_" ? -1 : 1;
    std::fill(std::begin(alter), std::end(alter), 0);
    for (QChar letter : *it)
        if (const int i = letterIndex(letter); i >= 0)
            alter[i] = sign;
}

// An L: value ("1/8", "1/16", "1") as a fraction of a whole note; 0 when unreadable.
double lengthValue(QStringView text)
{
    text = text.trimmed();
    const qsizetype slash = text.indexOf(u'/');
    bool ok = false;
    const double num = (slash < 0 ? text : text.left(slash)).trimmed().toDouble(&ok);
    if (!ok)
        return 0;
    if (slash < 0)
        return num;
    const double den = text.mid(slash + 1).trimmed().toDouble(&ok);
    return ok && den > 0 ? num / den : 0;
}

// The unit note a meter implies when no L: is given.
double unitOfMeter(QStringView meter)
{
    meter = meter.trimmed();
    if (meter == u"C" || meter == u"C|")
        return 0.125;
    const double value = lengthValue(meter);
    return value > 0 && value < 0.75 ? 0.0625 : 0.125;
}

class Reader
{
public:
    Melody out;

    Reader() { std::fill(std::begin(m_key), std::end(m_key), 0); }

    void line(QStringView text)
    {
        while (!text.isEmpty() && text.front() == u' ')
            text = text.mid(1);
        while (!text.isEmpty() && (text.back() == u' ' || text.back() == u'\r'))
            text.chop(1);
        if (text.isEmpty() || text.startsWith(u'%'))
            return;
        if (text.size() >= 2 && text.at(1) == u':' && text.at(0).isLetter() && text.at(0).unicode() < 128) {
            field(text.at(0), text.mid(2));
            return;
        }
        if (m_inBody)
            music(text);
    }

    void finish() { flushNotes(); }

private:
    void field(QChar name, QStringView value)
    {
        switch (name.unicode()) {
        case 'K':
            flushNotes();
            keyAlterations(value.toString(), m_key);
            m_inBody = true;
            break;
        case 'L':
            flushNotes();
            if (const double unit = lengthValue(value); unit > 0) {
                m_unit = unit;
                m_unitSet = true;
            }
            break;
        case 'M':
            if (!m_unitSet && !m_inBody)
                m_unit = unitOfMeter(value);
            break;
        case 'V': {
            flushNotes();
            const QString id = value.trimmed().split(u' ').value(0).toString();
            if (m_firstVoice.isEmpty())
                m_firstVoice = id;
            m_inFirstVoice = id == m_firstVoice;
            break;
        }
        default:
            break;
        }
    }

    void music(QStringView text)
    {
        const qsizetype n = text.size();
        for (qsizetype i = 0; i < n; ++i) {
            const QChar c = text.at(i);
            const auto skipTo = [&](char16_t end) {
                const qsizetype close = text.indexOf(QChar(end), i + 1);
                i = close < 0 ? n : close;
            };
            switch (c.unicode()) {
            case '%':
                return;
            case '"':
                skipTo(u'"');
                break;
            case '!':
            case '+':
                skipTo(c.unicode());
                break;
            case '{':
                skipTo(u'}');
                break;
            case '[': {
                const QChar next = i + 1 < n ? text.at(i + 1) : QChar();
                if (i + 2 < n && next.isLetter() && text.at(i + 2) == u':') {
                    const qsizetype close = text.indexOf(u']', i);
                    const qsizetype end = close < 0 ? n : close;
                    field(next, text.mid(i + 3, end - i - 3));
                    i = end;
                } else if (next.isDigit()) {
                    i = barLine(text, i + 1);
                } else if (next == u'|') {
                    i = barLine(text, i + 1);
                } else {
                    i = chord(text, i);
                }
                break;
            }
            case '|':
            case ':':
                i = barLine(text, i);
                break;
            case '(':
                if (i + 1 < n && text.at(i + 1).isDigit()) {
                    // A tuplet: "(p:q:r" is read as "(p", its ratio the usual one.
                    if (m_inFirstVoice && !m_skipToBar)
                        m_bar += text.mid(i, 2);
                    i += 1;
                    while (i + 1 < n && (text.at(i + 1) == u':' || text.at(i + 1).isDigit()))
                        ++i;
                } else if (m_inFirstVoice && !m_skipToBar) {
                    m_bar += c;
                }
                break;
            case '&':
                // A second voice overlaid on the bar: not the melody.
                m_skipToBar = true;
                break;
            case 'x':
                // An invisible rest: a rest all the same.
                if (m_inFirstVoice && !m_skipToBar)
                    m_bar += u'z';
                break;
            default:
                if (m_inFirstVoice && !m_skipToBar && kept(c))
                    m_bar += c;
                break;
            }
        }
    }

    static bool kept(QChar c)
    {
        const char16_t u = c.unicode();
        return (u >= 'A' && u <= 'G') || (u >= 'a' && u <= 'g') || u == 'z' || u == 'Z'
            || (u >= '0' && u <= '9') || u == '^' || u == '_' || u == '=' || u == ',' || u == '\'' || u == '/'
            || u == '(' || u == '-' || u == '<' || u == '>';
    }

    // A chord of notes: its highest note stands for it, with the length written behind it.
    qsizetype chord(QStringView text, qsizetype open)
    {
        const qsizetype close = text.indexOf(u']', open);
        if (close < 0)
            return text.size();
        const QString tokens = TokeniseNotes(text.mid(open + 1, close - open - 1).toString());
        QStringView best;
        int bestPitch = -1;
        for (QStringView token : QStringView(tokens).split(u' ', Qt::SkipEmptyParts)) {
            const int pitch = plainPitch(token);
            if (pitch > bestPitch) {
                bestPitch = pitch;
                best = token;
            }
        }
        if (m_inFirstVoice && !m_skipToBar && !best.isEmpty()) {
            m_bar += u' ';
            m_bar += best;
        }
        return close;
    }

    // A token's pitch from its own accidentals and the key alone.
    int plainPitch(QStringView token) const
    {
        int alter = 0;
        bool explicitSign = false;
        qsizetype i = 0;
        for (; i < token.size() && (token[i] == u'^' || token[i] == u'_' || token[i] == u'='); ++i) {
            explicitSign = true;
            alter += token[i] == u'^' ? 1 : token[i] == u'_' ? -1 : 0;
        }
        if (i >= token.size())
            return -1;
        const int letter = letterIndex(token[i]);
        if (letter < 0)
            return -1;
        return 60 + kSemitones[letter] + (token[i].isLower() ? 12 : 0) + octaveMarks(token.mid(i + 1))
            + (explicitSign ? alter : m_key[letter]);
    }

    static int octaveMarks(QStringView rest)
    {
        int shift = 0;
        for (QChar c : rest) {
            if (c == u'\'')
                shift += 12;
            else if (c == u',')
                shift -= 12;
            else
                break;
        }
        return shift;
    }

    // A bar line starting at `at` (with its repeat colons and ending number); returns the index
    // of its last character.
    qsizetype barLine(QStringView text, qsizetype at)
    {
        const qsizetype n = text.size();
        qsizetype i = at;
        QString symbol;
        while (i < n && (text.at(i) == u'|' || text.at(i) == u':' || text.at(i) == u']'))
            symbol += text.at(i++);
        if (i + 1 < n && text.at(i) == u'[' && text.at(i + 1).isDigit())
            ++i;
        int ending = 0;
        if (i < n && text.at(i).isDigit()) {
            ending = text.at(i).digitValue();
            while (i < n && (text.at(i).isDigit() || text.at(i) == u',' || text.at(i) == u'-'))
                ++i;
        }
        // A colon alone is no bar line.
        if (ending == 0 && !symbol.contains(u'|') && symbol != u"::")
            return i - 1;
        flushNotes();
        m_skipToBar = false;
        ++m_barNumber;
        if (m_inFirstVoice)
            repeats(symbol, ending);
        return i - 1;
    }

    void repeats(const QString &symbol, int ending)
    {
        if (symbol.startsWith(u':')) {
            // Back to the start of the section, without the first ending.
            const int end = m_endingStart >= 0 ? m_endingStart : out.size();
            for (int k = m_repeatStart; k < end && out.size() < kMaxNotes; ++k)
                out.append(out.pitches.at(k), out.lengths.at(k));
            m_endingStart = -1;
            m_repeatStart = out.size();
        }
        if (symbol.size() > 1 && symbol.endsWith(u':')) {
            m_repeatStart = out.size();
            m_endingStart = -1;
        }
        if (ending == 1)
            m_endingStart = out.size();
    }

    // The notes gathered since the last bar line or field, through the note tokens.
    void flushNotes()
    {
        if (m_bar.isEmpty())
            return;
        const QString tokens = TokeniseNotes(m_bar);
        m_bar.clear();
        for (qsizetype from = 0; from < tokens.size();) {
            qsizetype blank = tokens.indexOf(u' ', from);
            if (blank < 0)
                blank = tokens.size();
            if (blank > from)
                note(QStringView(tokens).mid(from, blank - from));
            from = blank + 1;
        }
    }

    void note(QStringView token)
    {
        if (token.startsWith(u'(')) {
            if (token.size() > 1 && token[1].isDigit()) {
                const int p = token[1].digitValue();
                const int q = (p == 2 || p == 4 || p == 8) ? 3 : 2;
                if (p >= 2) {
                    m_tupletLeft = p;
                    m_tupletFactor = double(q) / p;
                }
                return;
            }
            token = token.mid(1); // a slur's opening
        }
        // Signs alone: "^^F" comes as "^^" and "F", and a slur's "(" may have taken the sign.
        qsizetype i = 0;
        while (i < token.size() && (token[i] == u'^' || token[i] == u'_' || token[i] == u'='))
            ++i;
        m_pendingSign += token.left(i);
        if (i >= token.size())
            return;
        const QChar letter = token[i];
        QStringView rest = token.mid(i + 1);
        const QString sign = m_pendingSign;
        m_pendingSign.clear();

        // Length: digits, then slashes with an optional digit.
        qsizetype k = 0;
        while (k < rest.size() && (rest[k] == u'\'' || rest[k] == u','))
            ++k;
        const int octave = octaveMarks(rest);
        double length = 1;
        qsizetype d = k;
        while (d < rest.size() && rest[d].isDigit())
            ++d;
        if (d > k)
            length = rest.mid(k, d - k).toInt();
        while (d < rest.size() && rest[d] == u'/') {
            qsizetype e = d + 1;
            while (e < rest.size() && rest[e].isDigit())
                ++e;
            const int den = e > d + 1 ? rest.mid(d + 1, e - d - 1).toInt() : 2;
            if (den > 0)
                length /= den;
            d = e;
        }
        bool tie = false;
        int broken = 0; // > 0: this note dotted, the next short; < 0: the other way
        for (; d < rest.size(); ++d) {
            if (rest[d] == u'-')
                tie = true;
            else if (rest[d] == u'>')
                ++broken;
            else if (rest[d] == u'<')
                --broken;
        }
        length *= m_unit * m_nextFactor;
        m_nextFactor = 1;
        if (broken != 0) {
            const double shortPart = std::pow(0.5, std::abs(broken));
            length *= broken > 0 ? 2 - shortPart : shortPart;
            m_nextFactor = broken > 0 ? shortPart : 2 - shortPart;
        }
        if (m_tupletLeft > 0) {
            length *= m_tupletFactor;
            --m_tupletLeft;
        }

        const bool rest_ = letter == u'z' || letter == u'Z';
        if (rest_) {
            m_tieFrom = -1;
            return;
        }
        const int li = letterIndex(letter);
        if (li < 0)
            return;
        const int place
            = li * 16 + qBound(0, (letter.isLower() ? 8 : 4) + octave / 12, 15); // letter and octave
        int alter;
        if (!sign.isEmpty()) {
            alter = 0;
            for (QChar s : sign)
                alter += s == u'^' ? 1 : s == u'_' ? -1 : 0;
            m_barAlter[place] = { m_barNumber, alter };
        } else {
            alter = m_barAlter[place].bar == m_barNumber ? m_barAlter[place].alter : m_key[li];
        }
        const int pitch = 60 + kSemitones[li] + (letter.isLower() ? 12 : 0) + octave + alter;
        if (m_tieFrom == place && !out.isEmpty() && sign.isEmpty()) {
            // Tied to the note before: one note, held longer; its accidental holds across.
            out.lengths.last() += float(length);
        } else if (out.size() < kMaxNotes) {
            out.append(pitch, float(length));
        }
        m_tieFrom = tie ? place : -1;
    }

    int m_key[7];
    // The accidentals written in the bar, by letter and octave; those of earlier bars are stale.
    struct Written
    {
        int bar = -1;
        int alter = 0;
    };
    Written m_barAlter[7 * 16];
    int m_barNumber = 0;
    double m_unit = 0.125;
    bool m_unitSet = false;
    bool m_inBody = false;
    QString m_firstVoice;
    bool m_inFirstVoice = true;
    bool m_skipToBar = false;
    QString m_bar; // the notes since the last bar line, cleaned for the tokeniser
    QString m_pendingSign;
    int m_repeatStart = 0;
    int m_endingStart = -1;
    int m_tieFrom = -1;
    double m_nextFactor = 1;
    int m_tupletLeft = 0;
    double m_tupletFactor = 1;
};

void readLines(Reader &reader, const QString &text)
{
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0)
            end = text.size();
        reader.line(QStringView(text).mid(start, end - start));
        start = end + 1;
    }
}

} // namespace

Melody readTuneMelody(const QString &tuneText)
{
    Reader reader;
    readLines(reader, tuneText);
    reader.finish();
    return std::move(reader.out);
}

Melody readMelodyFragment(const QString &fragment, const QString &key, const QString &unit)
{
    Reader reader;
    reader.line(QStringLiteral("L:") + (trimBlanks(unit).isEmpty() ? QStringLiteral("1/8") : unit));
    reader.line(QStringLiteral("K:") + (trimBlanks(key).isEmpty() ? QStringLiteral("C") : key));
    readLines(reader, fragment);
    reader.finish();
    return std::move(reader.out);
}

} // namespace fenwork
