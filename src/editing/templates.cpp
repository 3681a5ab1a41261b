#include "editing/templates.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork {

namespace {

const QString kExtension = QStringLiteral(".txt");

QString templatePath(const AppContext &app, const QString &name)
{
    return QDir(templateFolder(app)).filePath(name + kExtension);
}

// A name taken by a file of any extension would make two templates look alike in the list.
bool nameTaken(const QString &folder, const QString &name)
{
    return !QDir(folder).entryList({ name + QStringLiteral(".*") }, QDir::Files).isEmpty()
        || QFileInfo::exists(QDir(folder).filePath(name));
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
    const QString name = trimBlanks(app.ui().inputText(app.msg("<chooseTmplName>"), app.msg("<saveTmpl>"), proposal));
    if (name.isEmpty())
        return {};
    if (nameTaken(folder, name) || !isPlainFileName(name + kExtension)) {
        app.ui().message(app.msg("<tmplExist>"), UserDialogs::Icon::Warning);
        return {};
    }
    QString error;
    if (!writeTextFile(QDir(folder).filePath(name + kExtension), trimBlanks(text), TextEncoding::Utf8, &error)) {
        app.ui().contextError(QStringLiteral("SaveTemplate"), error);
        return {};
    }
    return name;
}

bool writeTemplate(AppContext &app, const QString &name, const QString &text)
{
    if (!isPlainFileName(name + kExtension))
        return false;
    QString error;
    if (!writeTextFile(templatePath(app, name), text, TextEncoding::Utf8, &error)) {
        app.ui().contextError(QStringLiteral("SaveTemplate"), error);
        return false;
    }
    return true;
}

bool renameTemplate(AppContext &app, const QString &name, const QString &newName)
{
    const QString wanted = trimBlanks(newName);
    if (wanted.isEmpty() || wanted == name)
        return false;
    if (nameTaken(templateFolder(app), wanted) || !isPlainFileName(wanted + kExtension)) {
        app.ui().message(app.msg("<tmplExist>"), UserDialogs::Icon::Warning);
        return false;
    }
    if (!QFile::rename(templatePath(app, name), templatePath(app, wanted))) {
        app.ui().contextError(QStringLiteral("RenameTemplate"), templatePath(app, name));
        return false;
    }
    return true;
}

bool deleteTemplate(AppContext &app, const QString &name)
{
    if (!isPlainFileName(name + kExtension)
        || app.ui().question(app.msg("<delTmpl>") + CRLF + CRLF + name) != UserDialogs::Answer::Yes)
        return false;
    if (!QFile::remove(templatePath(app, name))) {
        app.ui().contextError(QStringLiteral("DeleteTemplate"), templatePath(app, name));
        return false;
    }
    return true;
}

} // namespace fenwork
