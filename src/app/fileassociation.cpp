#include "app/fileassociation.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/userdialogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

namespace fenwork {

namespace {

const QString kEntryName = QStringLiteral("fennelworks.desktop");
const QString kPackageName = QStringLiteral("fennelworks-abc.xml");
const QString kMimeType = QStringLiteral("text/vnd.abc");

// $XDG_DATA_HOME, or ~/.local/share.
QString dataHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

// A quoted argument of Exec: the entry format wants `"`, `` ` ``, `$` and `\` escaped inside the
// quotes, then every backslash doubled as in any string value, and `%` doubled.
QString execArgument(const QString &path)
{
    QString quoted;
    for (const QChar c : path) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        quoted += c;
    }
    quoted.replace(u'\\', QStringLiteral("\\\\"));
    quoted.replace(u'%', QStringLiteral("%%"));
    return u'"' + quoted + u'"';
}

// Writes `text` unless the file already holds it; false on a failed write.
bool writeIfChanged(const QString &path, const QString &text, bool *changed)
{
    const QByteArray bytes = text.toUtf8();
    QFile existing(path);
    if (existing.open(QIODevice::ReadOnly) && existing.readAll() == bytes) {
        *changed = false;
        return true;
    }
    existing.close();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    *changed = true;
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

// Runs a program to its end; its output, or the reason it failed.
bool run(const QString &program, const QStringList &arguments, QString *output)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0) {
        *output = program + u' ' + arguments.join(u' ') + QStringLiteral("\r\n")
            + QString::fromLocal8Bit(process.readAllStandardError()) + process.errorString();
        return false;
    }
    *output = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
    return true;
}

} // namespace

QString desktopEntryText(const QString &programPath)
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Fennelworks\n"
                          "GenericName=ABC music librarian\n"
                          "Comment=Keep, edit, play and print music in ABC notation\n"
                          "Exec=")
        + execArgument(programPath)
        + QStringLiteral(" %f\n"
                         "Terminal=false\n"
                         "Categories=AudioVideo;Audio;Music;\n"
                         "MimeType=text/vnd.abc;\n");
}

QString abcMimePackageText()
{
    return QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
                          "  <mime-type type=\"text/vnd.abc\">\n"
                          "    <comment>ABC music notation</comment>\n"
                          "    <sub-class-of type=\"text/plain\"/>\n"
                          "    <glob pattern=\"*.abc\"/>\n"
                          "  </mime-type>\n"
                          "</mime-info>\n");
}

bool AssociateAbc(AppContext &app, const QString &programPath)
{
    const auto fail = [&app](const QString &why) {
        app.ui().contextError(QStringLiteral("AssociateAbc"), why);
        return false;
    };
    const QString xdgMime = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (xdgMime.isEmpty())
        return fail(QStringLiteral("xdg-mime cannot be found: install xdg-utils."));

    const QString applications = dataHome() + QStringLiteral("/applications");
    bool changed = false;
    if (!writeIfChanged(applications + u'/' + kEntryName, desktopEntryText(programPath), &changed))
        return fail(QStringLiteral("Can't write ") + applications + u'/' + kEntryName);
    if (changed) {
        // Menus and openers read the folder's cache where there is one.
        const QString update = QStandardPaths::findExecutable(QStringLiteral("update-desktop-database"));
        QString ignored;
        if (!update.isEmpty())
            run(update, { applications }, &ignored);
    }

    // The package is installed from a copy of its own name; installed once, it is left alone.
    const QString installed = dataHome() + QStringLiteral("/mime/packages/") + kPackageName;
    QFile current(installed);
    if (!current.open(QIODevice::ReadOnly) || current.readAll() != abcMimePackageText().toUtf8()) {
        const QString source = app.paths().cacheFolder() + u'/' + kPackageName;
        QString output;
        if (!writeIfChanged(source, abcMimePackageText(), &changed))
            return fail(QStringLiteral("Can't write ") + source);
        const bool ok = run(xdgMime,
            { QStringLiteral("install"), QStringLiteral("--mode"), QStringLiteral("user"), source }, &output);
        QFile::remove(source);
        if (!ok)
            return fail(output);
    }

    QString output;
    if (run(xdgMime, { QStringLiteral("query"), QStringLiteral("default"), kMimeType }, &output)
        && output == kEntryName)
        return true;
    if (!run(xdgMime, { QStringLiteral("default"), kEntryName, kMimeType }, &output))
        return fail(output);
    return true;
}

} // namespace fenwork
