#include "app/optionsapply.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/settingsnotice.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace fenwork {

const QList<const SettingKey *> &optionToolKeys()
{
    static const QList<const SettingKey *> list = { &keys::VisuBitmap, &keys::VisuPdf, &keys::Tool2ps,
        &keys::Tool2midi, &keys::Tool2abc, &keys::ToolMidi2abc, &keys::FmtFile };
    return list;
}

const QList<const SettingKey *> &optionCommandKeys()
{
    static const QList<const SettingKey *> list
        = { &keys::Cmd2ps, &keys::Cmd2midi, &keys::Cmd2abc, &keys::CmdMidi2abc };
    return list;
}

QString paddedOptions(const QString &options)
{
    return u' ' + trimBlanks(options) + u' ';
}

QString atLeast(const QString &typed, int floor)
{
    bool number = false;
    const int value = typed.toInt(&number);
    return number && value >= floor ? QString::number(value) : QString::number(floor);
}

QString ghostscriptFontMap(const QString &root)
{
    QStringList versions = QDir(root).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCollator numeric;
    numeric.setNumericMode(true);
    std::sort(versions.begin(), versions.end(),
        [&](const QString &a, const QString &b) { return numeric.compare(a, b) > 0; });
    for (const QString &version : std::as_const(versions)) {
        const QString path = root + u'/' + version + QStringLiteral("/Resource/Init/Fontmap.GS");
        if (QFileInfo(path).isFile())
            return path;
    }
    return {};
}

OptionsOutcome applyOptions(AppContext &app, const OptionValues &values)
{
    OptionsOutcome outcome;
    IniFile &ini = app.ini();

    if (!values.language.isEmpty() && values.language != app.lang().name()) {
        app.lang().setName(values.language);
        ini.set(keys::Lang, values.language);
        outcome.languageChanged = true;
    }

    ini.set(keys::ModeleDef, values.defaultTemplate);
    for (int i = 0; i < values.progKeys.size(); ++i)
        ini.writeValue(QString::fromLatin1(keys::ToucheProgr.section), keys::ToucheProgr.keyName(i),
            values.progKeys.at(i));
    for (const auto &[key, value] : values.plain)
        ini.set(*key, value);
    app.tempoDef = ini.getInt(keys::TempoDef);

    // A viewer left empty is the desktop's; a converter must exist, else it is put back to the
    // one found on this machine, with the default options.
    const QList<const SettingKey *> &toolKeys = optionToolKeys();
    const QList<const SettingKey *> &commandKeys = optionCommandKeys();
    outcome.toolPaths = values.toolPaths;
    outcome.toolOptions = values.toolOptions;
    for (int i = 0; i < toolKeys.size() && i < values.toolPaths.size(); ++i) {
        const SettingKey &key = *toolKeys.at(i);
        const QString path = trimBlanks(values.toolPaths.at(i));
        const bool viewer = i < 2;
        // The format file is the score's business: only an empty one falls back.
        if (&key == &keys::FmtFile) {
            outcome.toolPaths[i] = path.isEmpty() ? computedDefault(key, app.paths()) : path;
            ini.set(key, outcome.toolPaths.at(i));
            continue;
        }
        const bool found = viewer ? path.isEmpty() || QFileInfo::exists(path) : QFileInfo(path).isFile();
        QString kept = path;
        if (!found) {
            app.ui().message(
                app.text(QStringLiteral("Msg"), QStringLiteral("<toolNotExist>")) + CRLF + CRLF + path);
            outcome.ok = false;
            kept = viewer ? QString() : computedDefault(key, app.paths());
            const int command = i - 2;
            if (command >= 0 && command < commandKeys.size() && command < outcome.toolOptions.size())
                outcome.toolOptions[command] = commandKeys.at(command)->defaultValue();
        }
        outcome.toolPaths[i] = kept;
        ini.set(key, kept);
    }
    for (int i = 0; i < commandKeys.size() && i < outcome.toolOptions.size(); ++i) {
        outcome.toolOptions[i] = paddedOptions(outcome.toolOptions.at(i));
        ini.set(*commandKeys.at(i), outcome.toolOptions.at(i));
    }

    emit app.settingsNotice().changed(outcome.languageChanged);
    return outcome;
}

} // namespace fenwork
