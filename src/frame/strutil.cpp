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

} // namespace fenwork
