#include "playback/playprep.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/regexp.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"

#include <QDir>
#include <QFile>

namespace fenwork {

namespace {

// A tempo of 120 shows as "120", not "120.0".
QString numberText(double value)
{
    return QString::number(value, 'g', 15);
}

qsizetype lineEndFrom(const QString &text, qsizetype from)
{
    const qsizetype end = text.indexOf(CRLF, from);
    return end < 0 ? text.size() : end;
}

// The first line of `text` that begins with "K:", without its line end.
QString firstKeyLine(const QString &text)
{
    qsizetype start = 0;
    while (start <= text.size()) {
        const qsizetype end = lineEndFrom(text, start);
        if (QStringView(text).mid(start, 2) == u"K:")
            return text.mid(start, end - start);
        if (end >= text.size())
            break;
        start = end + 2;
    }
    return QStringLiteral("K:C");
}

// The first "Q:" of the tune that is not directly behind a "%"; only that one character counts,
// so "% Q:" is a tempo.
qsizetype tuneTempoPos(const QString &text)
{
    qsizetype at = text.indexOf(u"Q:");
    while (at > 0 && text.at(at - 1) == u'%')
        at = text.indexOf(u"Q:", at + 2);
    return at;
}

// Cuts every match of `pattern`: the matches are blanked with NUL while the list is walked, then
// every NUL goes, so that the positions of the list stay valid.
QString cutMatches(const QString &text, const QString &pattern)
{
    RegExp re;
    re.Global = true;
    re.MultiLine = true;
    re.Pattern = pattern;
    const QVector<RegExpMatch> matches = re.Execute(text);
    if (matches.isEmpty())
        return text;
    QString out = text;
    QChar *data = out.data();
    for (const RegExpMatch &m : matches)
        std::fill(data + m.firstIndex, data + m.firstIndex + m.length, QChar(0));
    out.removeIf([](QChar c) { return c.unicode() == 0; });
    return out;
}

QString replaceFirst(const QString &text, QStringView before, const QString &after)
{
    const qsizetype at = text.indexOf(before);
    if (at < 0)
        return text;
    QString out = text;
    out.replace(at, before.size(), after);
    return out;
}

} // namespace

QStringList GetM(const QString &text)
{
    QStringList meters;
    const QStringList lines = text.split(CRLF);
    for (const QString &line : lines) {
        if (line.startsWith(u"M:"))
            meters.append(line);
    }
    return meters;
}

double tempoNumber(QStringView text)
{
    QString digits;
    bool point = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == u' ' || c == u'\t' || c == u'\n')
            continue;
        if ((c == u'-' || c == u'+') && digits.isEmpty()) {
            digits += c;
        } else if (c >= u'0' && c <= u'9') {
            digits += c;
        } else if (c == u'.' && !point) {
            point = true;
            digits += c;
        } else {
            break;
        }
    }
    bool ok = false;
    const double value = digits.toDouble(&ok);
    return ok ? value : 0.0;
}

QString midiProgramBlock(int program)
{
    static const QString fixedLines = [] {
        QString lines;
        for (int p = 1; p <= 127; ++p)
            lines += QStringLiteral("%%MIDI program ") + QString::number(p) + CRLF;
        return lines;
    }();
    return fixedLines + QStringLiteral("%%MIDI program ") + QString::number(program);
}

PlayText preparePlayText(const PlayInput &input, const PlayOptions &options)
{
    PlayText out;
    const QString &abc = input.text;

    // A tune with exactly one "V:" is refused. A plain substring count: a "V:" in a lyric or a
    // comment counts too.
    const qsizetype voice = abc.indexOf(u"V:");
    if (voice >= 0 && abc.indexOf(u"V:", voice + 2) < 0) {
        out.oneVoiceRefused = true;
        out.voicePos = voice;
        out.voiceLineEnd = lineEndFrom(abc, voice);
        return out;
    }

    QString tempoToInsert;
    bool insertTempo = false;
    const qsizetype q = tuneTempoPos(abc);
    if (q >= 0) {
        // The tune keeps its own Q: line. Without "=" the number is read from the line at the
        // field's position in the whole tune, which lies beyond a short line: a bare "Q:120"
        // shows 0 while "Q:1/4=120" shows 120.
        const QString lineText = abc.mid(q + 2, lineEndFrom(abc, q) - q - 2);
        const qsizetype eq = lineText.indexOf(u'=');
        const double tempo = eq >= 0 ? tempoNumber(QStringView(lineText).mid(eq + 1))
                                     : tempoNumber(QStringView(lineText).mid(qMin(q + 2, lineText.size())));
        out.nominalTempo = numberText(tempo);
        out.tempoTo100 = true;
    } else {
        QString header = input.fileHeader;
        const qsizetype hq = header.indexOf(u"Q:");
        if (hq < 0) {
            tempoToInsert = input.tempoDef;
            insertTempo = true;
            out.nominalTempo = input.tempoDef;
        } else {
            const qsizetype cut = header.indexOf(CRLF, hq);
            if (cut >= 0)
                header.truncate(cut + 2);
            // The "=" is looked for in the header up to that line, not in the line itself.
            const qsizetype eq = header.indexOf(u'=');
            const double tempo = eq >= 0 ? tempoNumber(QStringView(header).mid(eq + 1))
                                         : tempoNumber(QStringView(header).mid(hq + 2));
            tempoToInsert = numberText(tempo);
            insertTempo = true;
            out.nominalTempo = tempoToInsert;
            out.tempoTo100 = true;
        }
    }

    QString text;
    if (input.selection.isEmpty() && !options.oneLine) {
        text = abc;
    } else if (!input.selection.isEmpty()) {
        text = QStringLiteral("X:1") + CRLF + firstKeyLine(abc) + CRLF + input.selection + CRLF;
    } else {
        text = input.currentLineTune;
    }

    if (options.noChords && options.noGrace)
        text = cutMatches(text, QStringLiteral("\".*?\"|{.*?}|~"));
    else if (options.noChords)
        text = cutMatches(text, QStringLiteral("\".*?\""));
    else if (options.noGrace)
        text = cutMatches(text, QStringLiteral("{.*?}|~"));

    if (options.noRepeats) {
        // First endings before the plain signs: ":|2" must not lose only its ":|".
        static const char16_t *const signs[] = { u":|2", u"|1", u":|", u"|:", u"::" };
        for (const char16_t *sign : signs)
            text = replaceAll(text, QStringView(sign), u"|");
    }

    if (insertTempo)
        text = replaceFirst(text, CRLF, CRLF + QStringLiteral("Q:") + tempoToInsert + CRLF);
    text = replaceFirst(text, CRLF, CRLF + midiProgramBlock(options.gmProgram) + CRLF);

    out.text = text;
    return out;
}

QString convertToMidi(AppContext &app, const QString &text)
{
    const QString cache = app.paths().cacheFolder();
    QDir().mkpath(cache);
    const QString abcPath = QDir(cache).filePath(QStringLiteral("tmp.abc"));
    const QString midPath = QDir(cache).filePath(QStringLiteral("tmp.mid"));

    // A file left by an earlier run would be taken for this run's output, and a tune that
    // abc2midi rejects would then play the previous one.
    QFile::remove(midPath);

    QFile file(abcPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return file.errorString();
    const QByteArray bytes = (text + CRLF).toUtf8();
    if (file.write(bytes) != bytes.size()) {
        const QString error = file.errorString();
        file.close();
        return error;
    }
    file.close();

    ToolRunner &tools = app.tools();
    QString error;
    if (!tools.startCommand(commandAbc2midi(app, abcPath, midPath), 0, &error))
        return error.isEmpty() ? QStringLiteral("abc2midi") : error;
    return tools.WaitForDispo(midPath, 6000);
}

} // namespace fenwork
