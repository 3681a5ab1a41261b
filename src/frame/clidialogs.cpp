#include "frame/clidialogs.h"

#include <QTextStream>

#include <cstdio>
#include <cstdlib>

namespace fenwork {

namespace {

// Texts are built with CR LF for the boxes; a terminal wants plain line feeds.
void writeLine(const QString &prefix, const QString &text)
{
    QString out = prefix + text;
    out.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    while (out.endsWith(QLatin1Char('\n')))
        out.chop(1);
    out.append(QLatin1Char('\n'));
    const QByteArray bytes = out.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

} // namespace

void CliDialogs::message(const QString &text, Icon icon, const QString &)
{
    switch (icon) {
    case Icon::Warning:
        writeLine(QStringLiteral("Warning: "), text);
        break;
    case Icon::Critical:
        writeLine(QStringLiteral("Error: "), text);
        break;
    case Icon::Information:
        writeLine(QString(), text);
        break;
    }
}

UserDialogs::Answer CliDialogs::question(const QString &, bool, const QString &)
{
    return Answer::No;
}

QString CliDialogs::inputText(const QString &, const QString &, const QString &)
{
    return {};
}

QString CliDialogs::openFileName(const QString &, const QString &, const QStringList &)
{
    return {};
}

QStringList CliDialogs::openFileNames(const QString &, const QString &, const QStringList &)
{
    return {};
}

QString CliDialogs::saveFileName(const QString &, const QString &, const QStringList &, int *)
{
    return {};
}

QString CliDialogs::folderName(const QString &, const QString &)
{
    return {};
}

void CliDialogs::statusMessage(const QString &text)
{
    // Status texts come with a leading line end and blank meant for the strip.
    QString shown = text;
    while (shown.startsWith(QLatin1String("\r\n")) || shown.startsWith(QLatin1Char(' ')))
        shown.remove(0, shown.startsWith(QLatin1Char(' ')) ? 1 : 2);
    if (!shown.isEmpty())
        writeLine(QString(), shown);
}

void CliDialogs::terminate(int exitCode)
{
    std::fflush(stdout);
    std::fflush(stderr);
    std::exit(exitCode);
}

void StreamDialogs::message(const QString &text, Icon, const QString &)
{
    m_err << QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")) << '\n';
    m_err.flush();
}

} // namespace fenwork
