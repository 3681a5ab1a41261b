#include "publishing/formatmodel.h"

#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QFileInfo>
#include <QSaveFile>

namespace fenwork {

namespace {

const char *const kSpaceKeywords[FormatModel::kSlots] = { "topmargin ",   "botmargin ",     "leftmargin ",
                                                          "rightmargin ", "staffwidth ",    "vocalspace ",
                                                          "composerspace ", "partsspace " };
const char *const kFontKeywords[FormatModel::kSlots] = { "headerfont ",   "footerfont ", "wordsfont ",
                                                         "vocalfont ",    "composerfont ", "titlefont ",
                                                         "subtitlefont ", "voicefont " };

const QString kHandWritten = QStringLiteral("### HAND WRITTEN COMMANDS ###");

// A number as the boxes show it: "." as decimal sign, no trailing zeros.
QString numberText(double value)
{
    return QString::number(value, 'g', 10);
}

int slotOf(const char *const (&keywords)[FormatModel::kSlots], const QString &word)
{
    for (int i = 0; i < FormatModel::kSlots; ++i) {
        if (word + u' ' == QLatin1String(keywords[i]))
            return i;
    }
    return -1;
}

QString collapseBlanks(QString text)
{
    while (text.contains(QStringLiteral("  ")))
        text.replace(QStringLiteral("  "), QStringLiteral(" "));
    return text;
}

} // namespace

QString FormatModel::spaceKeyword(int slot)
{
    return QLatin1String(kSpaceKeywords[slot]);
}

QString FormatModel::fontKeyword(int slot)
{
    return QLatin1String(kFontKeywords[slot]);
}

const QStringList &FormatModel::fontNames()
{
    static const QStringList names = QStringLiteral(
        "Bookman-Demi Bookman-DemiItalic Bookman-Light Bookman-LightItalic Courier Courier-Oblique "
        "Courier-Bold Courier-BoldOblique AvantGarde-Book AvantGarde-BookOblique AvantGarde-Demi "
        "AvantGarde-DemiOblique Helvetica Helvetica-Oblique Helvetica-Bold Helvetica-BoldOblique "
        "Helvetica-Narrow Helvetica-Narrow-Oblique Helvetica-Narrow-Bold Helvetica-Narrow-BoldOblique "
        "Palatino-Roman Palatino-Italic Palatino-Bold Palatino-BoldItalic NewCenturySchlbk-Roman "
        "NewCenturySchlbk-Italic NewCenturySchlbk-Bold NewCenturySchlbk-BoldItalic Times-Roman "
        "Times-Italic Times-Bold Times-BoldItalic Symbol ZapfChancery-MediumItalic")
                                        .split(u' ');
    return names;
}

QString FormatModel::paperName() const
{
    static const char *const names[] = { "a4", "letter", "legal" };
    return QLatin1String(names[qBound(0, paper, 2)]);
}

void readFormatText(FormatModel &m, const QString &text)
{
    const QStringList lines = text.split(CRLF);
    for (qsizetype n = 0; n < lines.size(); ++n) {
        QString line = trimBlanks(lines.at(n));
        if (line.isEmpty() || line.startsWith(u'%') || line.startsWith(u'/'))
            continue;
        const bool headerLine = line.startsWith(QLatin1String("header "), Qt::CaseInsensitive)
            || line.startsWith(QLatin1String("footer "), Qt::CaseInsensitive);
        if (!headerLine)
            line = trimBlanks(QString(line).replace(u'\t', u' '));
        const QString plain = line; // what the hand-written box keeps of an unknown line
        line = collapseBlanks(line);
        const QStringList words = line.split(u' ');
        const QString &keyword = words.first();
        const QString value = words.value(1);
        const double number = leadingNumber(value);

        if (const int slot = slotOf(kSpaceKeywords, keyword); slot >= 0) {
            m.space[slot] = numberText(number);
            m.spaceSlider[slot] = qBound(0, qRound(number * 10), FormatModel::spaceMaximum(slot));
        } else if (const int fontSlot = slotOf(kFontKeywords, keyword); fontSlot >= 0) {
            // The list holds the names with "-": a name read back is added as a new entry, and
            // writing it turns its blanks into "-" again, so the line survives unchanged.
            m.font[fontSlot] = QString(value).replace(u'-', u' ');
            if (words.size() > 2) {
                const int size = int(leadingNumber(words.at(2)));
                if (size > 0)
                    m.fontSize[fontSlot] = size;
            }
        } else if (keyword == u"scale") {
            m.scale = qBound(FormatModel::kScaleMin, qRound(number * 100), FormatModel::kScaleMax);
        } else if (keyword == u"staffsep") {
            m.staffSep = numberText(number);
            m.staffSepSlider = qBound(FormatModel::kStaffSepMin, qRound(number), FormatModel::kStaffSepMax);
        } else if (keyword == u"pageheight") {
            if (qFuzzyCompare(number, 29.7))
                m.paper = 0;
            else if (qFuzzyCompare(number, 27.9))
                m.paper = 1;
            else if (qFuzzyCompare(number, 35.6))
                m.paper = 2;
        } else if (keyword == u"pagewidth") {
            // Follows from the paper.
        } else if (keyword == u"landscape") {
            if (number != 0)
                m.orientation = 0;
        } else if (keyword == u"header" || keyword == u"footer") {
            const QStringList parts = plain.split(u'\t');
            auto &target = keyword == u"header" ? m.header : m.footer;
            target[0] = parts.at(0).mid(7);
            target[1] = parts.value(1);
            target[2] = parts.value(2);
        } else if (keyword == u"oneperpage") {
            m.oneTunePg = number != 0;
        } else if (keyword == u"splittune") {
            m.splitTune = number != 0;
        } else if (keyword == u"printtempo") {
            m.prntTempo = number != 0;
        } else if (keyword == u"continueall") {
            m.continueAll = number != 0;
        } else if (keyword == u"withxrefs") {
            m.prntX = number != 0;
        } else if (keyword == u"printparts") {
            m.printP = number != 0;
        } else if (keyword == u"#addtablature") {
            m.addTabs = true;
            m.tabsRow = qMax(0, int(number));
        } else if (keyword == u"titleleft") {
            if (value == u"1")
                m.ttr = 0;
        } else if (keyword == u"aligncomposer") {
            m.composer = value == u"-1" ? 0 : value == u"0" ? 1 : 2;
        } else if (keyword == u"###") {
            // Everything below the mark is the user's own, kept line for line.
            for (qsizetype rest = n + 1; rest < lines.size(); ++rest) {
                if (rest == lines.size() - 1 && lines.at(rest).isEmpty())
                    break; // the file's last line end
                m.handWr += lines.at(rest) + CRLF;
            }
            break;
        } else {
            // "musiconly" lands here too: the dialog writes it but does not read it back.
            m.handWr += plain + CRLF;
        }
    }
}

bool ReadFormat(FormatModel &model, const QString &path, UserDialogs *ui)
{
    if (!QFileInfo(path).isFile())
        return true;
    const TextFileResult read = readTextFile(path);
    if (!read.ok) {
        if (ui)
            ui->contextError(QStringLiteral("ReadFormat"), read.error);
        return false;
    }
    readFormatText(model, read.text);
    return true;
}

QString buildFormatText(const FormatModel &m)
{
    QString out;
    const auto line = [&out](const QString &text) { out += text + CRLF; };
    const auto spaceLine = [&](int slot) {
        const QString value = trimBlanks(m.space[slot]);
        if (!value.isEmpty())
            line(FormatModel::spaceKeyword(slot) + value + QStringLiteral("cm"));
    };
    const auto fontLine = [&](int slot) {
        if (m.font[slot].isEmpty())
            return;
        QString text = FormatModel::fontKeyword(slot) + QString(m.font[slot]).replace(u' ', u'-');
        if (m.bold[slot])
            text += QStringLiteral("-Bold");
        if (m.italic[slot])
            text += QStringLiteral("-Italic");
        if (m.fontSize[slot] > 0)
            text += u' ' + QString::number(m.fontSize[slot]);
        line(text);
    };

    for (int slot = 0; slot < 4; ++slot)
        spaceLine(slot);
    line(QStringLiteral("scale ") + numberText(m.scale * 0.01));
    spaceLine(4);
    if (!trimBlanks(m.staffSep).isEmpty())
        line(QStringLiteral("staffsep ") + trimBlanks(m.staffSep) + QStringLiteral("pt"));

    static const char *const sizes[][2] = { { "21cm", "29.7cm" }, { "21.6cm", "27.9cm" }, { "21.6cm", "35.6cm" } };
    const int paper = qBound(0, m.paper, 2);
    line(QStringLiteral("pagewidth ") + QLatin1String(sizes[paper][0]));
    line(QStringLiteral("pageheight ") + QLatin1String(sizes[paper][1]));
    if (m.orientation == 0)
        line(QStringLiteral("landscape 1"));

    if (!(m.header[0] + m.header[1] + m.header[2]).isEmpty()) {
        const QString centre = m.header[1].isEmpty() ? QStringLiteral(" ") : m.header[1];
        line(QStringLiteral("header ") + m.header[0] + u'\t' + centre + u'\t' + m.header[2]);
    }
    fontLine(0);
    if (!(m.footer[0] + m.footer[1] + m.footer[2]).isEmpty())
        line(QStringLiteral("footer ") + m.footer[0] + u'\t' + m.footer[1] + u'\t' + m.footer[2]);
    fontLine(1);

    if (m.oneTunePg)
        line(QStringLiteral("oneperpage 1"));
    if (m.splitTune)
        line(QStringLiteral("splittune 1"));
    if (!m.prntTempo)
        line(QStringLiteral("printtempo 0"));
    if (m.continueAll)
        line(QStringLiteral("continueall 1"));
    if (m.addTabs)
        line(QStringLiteral("#addtablature ") + QString::number(m.tabsRow));

    if (m.ttr == 0)
        line(QStringLiteral("titleleft 1"));
    fontLine(5);
    fontLine(6);

    if (m.prntX)
        line(QStringLiteral("withxrefs 1"));
    line(QStringLiteral("aligncomposer ") + QString::number(qBound(0, m.composer, 2) - 1));
    fontLine(4);
    spaceLine(6);

    if (!m.printP)
        line(QStringLiteral("printparts 0"));
    spaceLine(7);
    fontLine(7);

    if (m.musicOnly)
        line(QStringLiteral("musiconly 1"));
    fontLine(2);
    spaceLine(5);
    fontLine(3);

    const QString hand = trimBlanks(m.handWr);
    if (!hand.isEmpty()) {
        line(kHandWritten);
        out += hand;
        if (!hand.endsWith(CRLF))
            out += CRLF;
    }
    return out;
}

QString BuildFormat(const FormatModel &model, const QString &path, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(buildFormatText(model).toUtf8()) < 0 || !file.commit()) {
        if (error)
            *error = file.errorString() + QStringLiteral(" (") + path + u')';
        return {};
    }
    return model.paperName();
}

} // namespace fenwork
