#include "cli/toolscommand.h"

#include "cli/clicommands.h"
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/toolrunner.h"
#include "store/tunestore.h"
#include "tools/cleaning.h"
#include "tools/fieldtools.h"
#include "tools/fileanalysis.h"
#include "tools/filetools.h"
#include "tools/reindexsort.h"

#include <QFileInfo>

namespace fenwork {

namespace {

using cli::writeErr;
using cli::writeOut;

int usage(const QString &text)
{
    writeErr(QStringLiteral("fenwork-cli: ") + text + QStringLiteral("\nTry 'fenwork-cli --help'.\n"));
    return cli::Usage;
}

int failed(const QString &text)
{
    writeErr(QStringLiteral("fenwork-cli: ") + text + u'\n');
    return cli::Failed;
}

// Opens IN as the open command does. The backup copy is made, per the settings, only when the
// result is to be written over IN itself: a result written elsewhere leaves IN's folder as it was.
QString openIn(AppContext &app, const QString &argument, const QString &out = {})
{
    const QFileInfo info(argument);
    if (!info.isFile()) {
        failed(QStringLiteral("cannot read ") + argument);
        return {};
    }
    const QFileInfo target(out);
    app.store().backupOnOpen = !out.isEmpty() && target.exists()
        && target.canonicalFilePath() == info.canonicalFilePath();
    return app.store().FichierOuvrir(info.absoluteFilePath(), false, true, !info.isWritable());
}

int save(AppContext &app, const QString &kFile, const QString &out)
{
    const QString path = QFileInfo(out).absoluteFilePath();
    QString why;
    if (!app.store().FichierSaveFromKey(kFile, path, QString(), &why))
        return failed(QStringLiteral("cannot write ") + path + QStringLiteral(": ") + why);
    return cli::Ok;
}

// A whole number, or false.
bool number(const QString &text, int *value)
{
    bool ok = false;
    *value = text.toInt(&ok);
    return ok;
}

int clean(AppContext &app, const QStringList &args)
{
    if (args.size() < 3)
        return usage(QStringLiteral("clean takes IN, OUT and at least one option"));
    unsigned options = 0;
    for (const QString &name : args.mid(2)) {
        const int option = cleanOptionFromName(name);
        if (option < 0)
            return usage(QStringLiteral("clean: unknown option '") + name + u'\'');
        options |= 1u << option;
    }
    QString kFile = openIn(app, args.at(0), args.at(1));
    if (kFile.isEmpty())
        return cli::Failed;
    ToolsBackup backup;
    if (!cleanFile(app, kFile, options, backup))
        writeErr(app.msg("<noCleanedFile>") + u'\n');
    return save(app, kFile, args.at(1));
}

int field(AppContext &app, const QStringList &args)
{
    static const QStringList actions = { QStringLiteral("--add"), QStringLiteral("--first"),
        QStringLiteral("--last"), QStringLiteral("--all") };
    QStringList plain;
    QString from, to, line;
    int action = -1;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        const bool takesValue = actions.contains(arg) || arg == u"--from" || arg == u"--to";
        if (takesValue && i + 1 >= args.size())
            return usage(QStringLiteral("field: ") + arg + QStringLiteral(" needs a value"));
        if (actions.contains(arg)) {
            if (action >= 0)
                return usage(QStringLiteral("field takes one of --add, --first, --last, --all"));
            action = int(actions.indexOf(arg));
            line = args.at(++i);
        } else if (arg == u"--from") {
            from = args.at(++i);
        } else if (arg == u"--to") {
            to = args.at(++i);
        } else {
            plain.append(arg);
        }
    }
    if (plain.size() != 2 || action < 0)
        return usage(
            QStringLiteral("field takes IN, OUT and one of --add, --first, --last, --all with a line"));
    QString kFile = openIn(app, plain.at(0), plain.at(1));
    if (kFile.isEmpty())
        return cli::Failed;
    ToolsBackup backup;
    switch (applyFieldToFile(app, kFile, line, FieldAction(action), from, to, backup)) {
    case FieldResult::Done:
        return save(app, kFile, plain.at(1));
    case FieldResult::Invalid:
        return failed(app.msg("<chpInval>"));
    case FieldResult::CommentStop:
        return failed(app.msg("<chpCmtAddOnly>"));
    case FieldResult::NoTunes:
        return failed(app.msg("<noTunesInFile>"));
    case FieldResult::NoFromTune:
        return failed(app.msg("<noFromTune>"));
    }
    return cli::Failed;
}

int reindex(AppContext &app, const QStringList &args)
{
    int start = 0;
    if (args.size() != 3 || !number(args.at(2), &start) || start == 0)
        return usage(QStringLiteral("reindex takes IN, OUT and a first number other than 0"));
    const QString kFile = openIn(app, args.at(0), args.at(1));
    if (kFile.isEmpty())
        return cli::Failed;
    ToolsBackup backup;
    if (!reindexFile(app, kFile, start, backup))
        return failed(app.msg("<noTunesInFile>"));
    return save(app, kFile, args.at(1));
}

bool isSortCode(const QString &code)
{
    const QList<SortField> &fields = sortFields();
    return std::any_of(fields.cbegin(), fields.cend(), [&code](const SortField &f) {
        return code.compare(QLatin1String(f.code, 2), Qt::CaseInsensitive) == 0;
    });
}

int sort(AppContext &app, const QStringList &args)
{
    if (args.size() < 3 || args.size() > 4)
        return usage(QStringLiteral("sort takes IN, OUT, KEY1 and an optional KEY2"));
    const QString code1 = args.at(2).toUpper();
    const QString code2 = args.size() > 3 ? args.at(3).toUpper() : QString();
    if (!isSortCode(code1) || (!code2.isEmpty() && !isSortCode(code2)))
        return usage(QStringLiteral("sort keys are field codes: X: T: A: B: C: D: G: K: M: O: Q: R: S: Z:"));
    QString kFile = openIn(app, args.at(0), args.at(1));
    if (kFile.isEmpty())
        return cli::Failed;
    ToolsBackup backup;
    if (!sortFile(app, kFile, code1, code2, backup))
        return failed(app.msg("<noTunesInFile>"));
    return save(app, kFile, args.at(1));
}

int analyse(AppContext &app, const QStringList &args)
{
    if (args.size() != 1)
        return usage(QStringLiteral("analyse takes one file"));
    const QString kFile = openIn(app, args.at(0));
    if (kFile.isEmpty())
        return cli::Failed;
    if (tuneCount(app, kFile) == 0)
        return failed(app.msg("<noTunesInFile>"));
    FileAnalysis analysis(app);
    const FileAnalysis::Result result = analysis.run(kFile);
    if (!result.error.isEmpty())
        return failed(result.error);
    QString out;
    for (const QString &label : result.badTunes)
        out += label + u'\n';
    if (result.badTunes.isEmpty())
        out = app.text(QStringLiteral("Tools"), QStringLiteral("<analyseOk>")) + u'\n';
    writeOut(out);
    return cli::Ok;
}

} // namespace

bool isToolsCommand(const QString &command)
{
    static const QStringList names = { QStringLiteral("clean"), QStringLiteral("field"),
        QStringLiteral("reindex"), QStringLiteral("sort"), QStringLiteral("analyse") };
    return names.contains(command);
}

int runToolsCommand(AppContext &app, const QString &command, const QStringList &args)
{
    if (command == u"clean")
        return clean(app, args);
    if (command == u"field")
        return field(app, args);
    if (command == u"reindex")
        return reindex(app, args);
    if (command == u"sort")
        return sort(app, args);
    if (command == u"analyse")
        return analyse(app, args);
    return usage(QStringLiteral("unknown command '") + command + u'\'');
}

QString toolsCommandHelp()
{
    return QStringLiteral(
        "File tools (IN is opened as the program opens a file, IN.BAK written per the settings; the\n"
        "result is saved to OUT, which may be IN, as the program saves):\n"
        "  clean IN OUT OPTION...   Clean the whole file. Options, run in a fixed order:\n"
        "                      --join-lines --tabs --comments --remarks --entities --field-blank\n"
        "                      --bang-decorations --plus-decorations --line-end-stars --bar-blanks\n"
        "                      --rolls --grace-notes --quoted --blanks\n"
        "  field IN OUT --add|--first|--last|--all LINE [--from N] [--to N]\n"
        "                      Add the field line to each tune, or put it in place of the first, the\n"
        "                      last or every line of its field; --from and --to name tunes by number.\n"
        "  reindex IN OUT START Number the tunes from START on, in file order.\n"
        "  sort IN OUT KEY1 [KEY2]  Order the tunes by field codes such as T: or X:.\n"
        "  analyse IN          Print the caption of each tune abcm2ps cannot typeset, one a line,\n"
        "                      or a line saying that every tune can be.\n");
}

} // namespace fenwork
