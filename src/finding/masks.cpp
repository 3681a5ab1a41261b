#include "finding/masks.h"

#include "finding/tunefilter.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

namespace {

constexpr int kIgnoreCaseLine = 35;
constexpr int kInvertLine = 36;

// The lines of a text, with CR LF, LF or a lone CR as line end; a final line end closes the
// last line rather than opening an empty one.
QStringList splitLines(const QString &text)
{
    QStringList lines;
    qsizetype start = 0;
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (c != u'\r' && c != u'\n')
            continue;
        lines.append(text.mid(start, i - start));
        if (c == u'\r' && i + 1 < n && text.at(i + 1) == u'\n')
            ++i;
        start = i + 1;
    }
    if (start < n)
        lines.append(text.mid(start));
    return lines;
}

// The number at the start of a line, blanks skipped, as the check box lines are read: " 1 " is
// 1, "" is 0. `clean` tells whether the line was exactly a number and blanks.
double leadingNumber(const QString &line, bool *clean)
{
    const QString t = trimBlanks(line);
    qsizetype i = 0;
    if (i < t.size() && (t.at(i) == u'-' || t.at(i) == u'+'))
        ++i;
    while (i < t.size() && (t.at(i).isDigit() || t.at(i) == u'.'))
        ++i;
    bool ok = false;
    const double value = t.left(i).toDouble(&ok);
    *clean = t.isEmpty() || (ok && i == t.size());
    return ok ? value : 0.0;
}

} // namespace

QString maskFolder(const Paths &paths)
{
    return paths.inUser(QStringLiteral("msk"));
}

QStringList maskNames(const Paths &paths)
{
    return fileNamesIn(maskFolder(paths));
}

QString freeMaskName(const Paths &paths)
{
    return uniqueName(QStringLiteral("NewMask"), QString(), maskFolder(paths));
}

bool maskExists(const Paths &paths, const QString &name)
{
    return namedFileExists(maskFolder(paths), name);
}

QString maskText(const FilterConditions &conditions)
{
    QString text;
    text += conditions.melody + CRLF;
    for (int row = 0; row < kFilterRowCount; ++row)
        text += conditions.field(row) + CRLF;
    text += (conditions.ignoreCase ? QStringLiteral(" 1 ") : QStringLiteral(" 0 ")) + CRLF;
    text += (conditions.invert ? QStringLiteral(" 1 ") : QStringLiteral(" 0 ")) + CRLF;
    text += conditions.anywhere + CRLF;
    return text;
}

QStringList applyMaskText(const QString &text, FilterConditions &conditions)
{
    QStringList problems;
    const QStringList lines = splitLines(text);
    const int count = int(lines.size());
    if (count == 0)
        problems.append(QStringLiteral("The mask is empty."));
    else if (count < kMaskLineCount)
        problems.append(QStringLiteral("The mask ends after line %1 of %2.").arg(count).arg(kMaskLineCount));
    else if (count > kMaskLineCount)
        problems.append(QStringLiteral("The mask has %1 lines instead of %2; the lines after line %2 were ignored.")
                            .arg(count).arg(kMaskLineCount));

    if (count >= 1)
        conditions.melody = lines.at(0);
    if (conditions.fields.size() < kFilterRowCount)
        conditions.fields.resize(kFilterRowCount);
    for (int row = 0; row < kFilterRowCount && row + 1 < count; ++row)
        conditions.fields[row] = lines.at(row + 1);

    const auto checkLine = [&](int lineNumber) {
        if (lineNumber > count)
            return false;
        bool clean = true;
        const double value = leadingNumber(lines.at(lineNumber - 1), &clean);
        if (!clean || (value != 0.0 && value != 1.0))
            problems.append(QStringLiteral("Line %1 should be 0 or 1, not \"%2\".")
                                .arg(lineNumber).arg(trimBlanks(lines.at(lineNumber - 1))));
        return value != 0.0;
    };
    conditions.ignoreCase = checkLine(kIgnoreCaseLine);
    conditions.invert = checkLine(kInvertLine);
    conditions.anywhere = count >= kMaskLineCount ? lines.at(kMaskLineCount - 1) : QString();
    return problems;
}

MaskLoad loadMask(const Paths &paths, const QString &name, FilterConditions &conditions)
{
    MaskLoad load;
    if (!isPlainFileName(name)) {
        load.error = QStringLiteral("Not a mask name: \"%1\"").arg(name);
        return load;
    }
    const QString path = QDir(maskFolder(paths)).filePath(name);
    if (!QFileInfo(path).isFile()) {
        load.error = QStringLiteral("File not found: ") + path;
        return load;
    }
    const TextFileResult read = readTextFile(path);
    if (!read.ok) {
        load.error = read.error;
        return load;
    }
    load.opened = true;
    load.problems = applyMaskText(read.text, conditions);
    return load;
}

bool saveMask(const Paths &paths, const QString &name, const FilterConditions &conditions, QString *error)
{
    if (!isPlainFileName(name)) {
        if (error)
            *error = QStringLiteral("A mask name can't be empty, \".\", \"..\" or hold \"/\": \"%1\"").arg(name);
        return false;
    }
    const QString folder = maskFolder(paths);
    if (!QDir().mkpath(folder)) {
        if (error)
            *error = QStringLiteral("Can't create the folder ") + folder;
        return false;
    }
    return writeTextFile(QDir(folder).filePath(name), maskText(conditions), TextEncoding::Utf8, error);
}

void deleteMask(const Paths &paths, const QString &name)
{
    if (isPlainFileName(name))
        QFile::remove(QDir(maskFolder(paths)).filePath(name));
}

} // namespace fenwork
