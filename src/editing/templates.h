#pragma once
// Tune skeletons kept as text files in the user's template folder, to start a tune without
// typing its fields.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

QString templateFolder(const AppContext &app);
// The templates by name (no extension), sorted regardless of case.
QStringList templateNames(const AppContext &app);
// A template's text. `forInsertion` joins its lines with CR LF and trims the blanks at both ends,
// as it goes in place of a selection; otherwise the file stands as it is.
QString readTemplate(const AppContext &app, const QString &name, bool forInsertion);
// Asks for a name (a free "TemplateN" proposed) and saves `text`, trimmed, as that template.
// Returns the new name, or empty when the user gave none or the name is taken with any extension.
QString saveTemplate(AppContext &app, const QString &text);
// Writes the changed text of an existing template as it stands.
bool writeTemplate(AppContext &app, const QString &name, const QString &text);
// Gives a template another name; a name taken with any extension is refused with "<tmplExist>".
bool renameTemplate(AppContext &app, const QString &name, const QString &newName);
// Asks "<delTmpl>", then deletes the template. False when kept.
bool deleteTemplate(AppContext &app, const QString &name);

} // namespace fenwork
