#include "editing/templates.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QDir>
#include <QFileInfo>

namespace fenwork {

namespace {

const QString kExtension = QStringLiteral(".txt");

QString msg(const AppContext &app, const char *key)
{
    return app.text(QStringLiteral("Msg"), QString::fromLatin1(key));
}

} // namespace

QString templateFolder(const AppContext &app)
{
    return app.paths().userFolder() + QStringLiteral("/tmpl");
}

QStringList templateNames(const AppContext &app)
{
    QStringList names;
    for (const QString &file : QDir(templateFolder(app)).entryList({ QStringLiteral("*") + kExtension }, QDir::Files,
             QDir::Name | QDir::IgnoreCase))
        names << file.chopped(kExtension.size());
    return names;
}

QString readTemplate(const AppContext &app, const QString &name, bool forInsertion)
{
    if (!isPlainFileName(name + kExtension))
        return {};
    const TextFileResult read = readTextFile(QDir(templateFolder(app)).filePath(name + kExtension));
    if (!read.ok) {
        app.ui().contextError(QStringLiteral("OpenTemplate"), read.error);
        return {};
    }
    if (!forInsertion)
        return read.text;
    QString text = read.text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return trimBlanks(text.split(u'\n').join(CRLF));
}

QString saveTemplate(AppContext &app, const QString &text)
{
    const QString folder = templateFolder(app);
    QDir().mkpath(folder);
    const QString proposal = uniqueName(QStringLiteral("Template"), QStringLiteral("txt"), folder);
    const QString name = trimBlanks(app.ui().inputText(msg(app, "<chooseTmplName>"), msg(app, "<saveTmpl>"), proposal));
    if (name.isEmpty())
        return {};
    // A name taken by a file of any extension would make two templates look alike in the list.
    const bool taken = !QDir(folder).entryList({ name + QStringLiteral(".*") }, QDir::Files).isEmpty()
        || QFileInfo::exists(QDir(folder).filePath(name));
    if (taken || !isPlainFileName(name + kExtension)) {
        app.ui().message(msg(app, "<tmplExist>"), UserDialogs::Icon::Warning);
        return {};
    }
    QString error;
    if (!writeTextFile(QDir(folder).filePath(name + kExtension), trimBlanks(text), TextEncoding::Utf8, &error)) {
        app.ui().contextError(QStringLiteral("SaveTemplate"), error);
        return {};
    }
    return name;
}

} // namespace fenwork
