#include "strutil.h"

namespace fenwork {

QString trimLeftBlanks(const QString &text)
{
    qsizetype start = 0;
    while (start < text.size() && text.at(start) == u' ')
        ++start;
    return start == 0 ? text : text.mid(start);
}

QString trimRightBlanks(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1) == u' ')
        --end;
    return end == text.size() ? text : text.left(end);
}

QString trimBlanks(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text.at(start) == u' ')
        ++start;
    while (end > start && text.at(end - 1) == u' ')
        --end;
    if (start == 0 && end == text.size())
        return text;
    return text.mid(start, end - start);
}

QString replaceAll(const QString &text, QStringView before, QStringView after)
{
    if (before.isEmpty())
        return text;
    qsizetype at = QStringView(text).indexOf(before);
    if (at < 0)
        return text;
    QString out;
    out.reserve(after.size() > before.size() ? text.size() + text.size() / 8 : text.size());
    qsizetype from = 0;
    while (at >= 0) {
        out.append(QStringView(text).mid(from, at - from));
        out.append(after);
        from = at + before.size();
        at = QStringView(text).indexOf(before, from);
    }
    out.append(QStringView(text).mid(from));
    return out;
}

QString crlfLines(const QString &text)
{
    QString lf = replaceAll(text, u"\r\n", u"\n");
    lf.replace(QChar::ParagraphSeparator, u'\n');
    lf.replace(QChar::LineSeparator, u'\n');
    return replaceAll(lf, u"\n", u"\r\n");
}

double leadingNumber(QStringView text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i) == u' ')
        ++i;
    const qsizetype start = i;
    if (i < text.size() && (text.at(i) == u'-' || text.at(i) == u'+'))
        ++i;
    bool point = false;
    while (i < text.size() && (text.at(i).isDigit() || (text.at(i) == u'.' && !point))) {
        point = point || text.at(i) == u'.';
        ++i;
    }
    bool ok = false;
    const double value = text.mid(start, i - start).toDouble(&ok);
    return ok ? value : 0;
}

QString withoutAccelerator(QString text)
{
    text.replace(QStringLiteral("&&"), QStringLiteral("\x01"));
    text.remove(u'&');
    text.replace(u'\x01', u'&');
    return text;
}

} // namespace fenwork
