#include "cli/findcommand.h"

#include "cli/readingcontext.h"
#include "finding/tunefilter.h"
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>

namespace fenwork {

namespace {

enum { Ok = 0, Failed = 1, Usage = 2 };

int usage(QTextStream &err, const QString &text)
{
    err << "fenwork-cli find: " << text << "\n" << findCommandHelp();
    err.flush();
    return Usage;
}

} // namespace

QString findCommandHelp()
{
    return QStringLiteral(
        "Usage: fenwork-cli find FILE [--field MARKER TEXT]... [--anywhere TEXT]\n"
        "                        [--melody FRAGMENT] [--start-only] [--ignore-case] [--invert]\n"
        "Prints the caption of each tune of FILE that passes the tune filter, in file order.\n"
        "MARKER is a field row's label: %, A: to Z:, m:, r:, s:, u:, w: or %%MIDI; TEXT is what\n"
        "its box would hold (* any text, ? one character or none, other characters as in a\n"
        "regular expression). In FRAGMENT, * is taken as ?, as the melody box does.\n");
}

int runFindCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    FilterConditions conditions;
    QString file;
    QList<bool> rowGiven(kFilterRowCount, false);
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        const auto value = [&](QString *target) {
            if (i + 1 >= arguments.size())
                return false;
            *target = arguments.at(++i);
            return true;
        };
        if (optionsEnded || !arg.startsWith(u'-') || arg == u"-") {
            if (!file.isEmpty())
                return usage(err, QStringLiteral("one FILE only, '%1' is one too many").arg(arg));
            file = arg;
        } else if (arg == u"--") {
            optionsEnded = true;
        } else if (arg == u"--field") {
            if (i + 2 >= arguments.size())
                return usage(err, QStringLiteral("--field takes a MARKER and a TEXT"));
            const QString marker = arguments.at(++i);
            const int row = filterRowOfCaption(marker);
            if (row < 0)
                return usage(err, QStringLiteral("unknown field marker '%1'").arg(marker));
            if (rowGiven.at(row))
                return usage(err, QStringLiteral("field marker '%1' given twice").arg(marker));
            rowGiven[row] = true;
            conditions.fields[row] = arguments.at(++i);
        } else if (arg == u"--anywhere") {
            if (!value(&conditions.anywhere))
                return usage(err, QStringLiteral("--anywhere takes a TEXT"));
        } else if (arg == u"--melody") {
            if (!value(&conditions.melody))
                return usage(err, QStringLiteral("--melody takes a FRAGMENT"));
            conditions.melody.replace(u'*', u'?');
        } else if (arg == u"--start-only") {
            conditions.startOnly = true;
        } else if (arg == u"--ignore-case") {
            conditions.ignoreCase = true;
        } else if (arg == u"--invert") {
            conditions.invert = true;
        } else {
            return usage(err, QStringLiteral("unknown option '%1'").arg(arg));
        }
    }
    if (file.isEmpty())
        return usage(err, QStringLiteral("FILE is missing"));

    ReadingContext context("find", err);
    if (!context.ok())
        return Failed;
    AppContext &app = context.app();

    const QString path = QFileInfo(file).absoluteFilePath();
    const QString kFile = app.store().FichierOuvrir(path, false, true, true);
    if (kFile.isEmpty())
        return Failed;

    TuneFilter filter(app);
    const FilterOutcome outcome = filter.search(conditions, FilterDomain::AllTunes, FilterResults::LeaveList);
    if (outcome.status == FilterOutcome::Status::InvalidPattern || outcome.status == FilterOutcome::Status::Failed)
        return Failed;
    for (const QString &caption : outcome.captions)
        out << caption << '\n';
    out.flush();
    return Ok;
}

} // namespace fenwork
