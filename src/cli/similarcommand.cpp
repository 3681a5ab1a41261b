#include "cli/similarcommand.h"

#include "cli/readingcontext.h"
#include "finding/melodyreader.h"
#include "finding/melodysimilar.h"
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/textfile.h"
#include "store/treeops.h"
#include "store/tunestore.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextStream>
#include <ctime>

namespace fenwork {

namespace {

enum { Ok = 0, Failed = 1, Usage = 2 };

int usage(QTextStream &err, const QString &text)
{
    err << "fenwork-cli similar: " << text << "\n" << similarCommandHelp();
    err.flush();
    return Usage;
}

// Processor time of the process in milliseconds: on a busy machine the clock on the wall says
// more about the neighbours than about the search.
double cpuMs()
{
    return 1000.0 * double(std::clock()) / CLOCKS_PER_SEC;
}

QString scoreText(double ratio)
{
    return QString::number(100.0 * ratio, 'f', 1);
}

} // namespace

QString similarCommandHelp()
{
    return QStringLiteral(
        "Usage: fenwork-cli similar FILE FRAGMENT [--key K] [--unit L] [--rhythm] [--top N]\n"
        "       fenwork-cli similar FILE --queries QFILE [--top N]\n"
        "Ranks the tunes of FILE by how well their melody holds FRAGMENT, ABC notes in any key\n"
        "and octave, with a note wrong, missing or added. K is the fragment's key (C when not\n"
        "given), L its unit length (1/8); --rhythm counts the note lengths too. Prints the N best\n"
        "(10), best first: SCORE<TAB>POSITION<TAB>CAPTION, SCORE 100 for a match note for note,\n"
        "POSITION the tune's place in FILE from 1. With --queries, QFILE holds one KEY<TAB>FRAGMENT\n"
        "a line; each gives a line of POSITION:SCORE pairs, and the time spent searching goes to\n"
        "standard error.\n");
}

int runSimilarCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList positional;
    SimilarQuery query;
    QString queries;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        const auto value = [&](QString *target) {
            if (i + 1 >= arguments.size())
                return false;
            *target = arguments.at(++i);
            return true;
        };
        if (arg == u"--key") {
            if (!value(&query.key))
                return usage(err, QStringLiteral("--key takes a key"));
        } else if (arg == u"--unit") {
            if (!value(&query.unit))
                return usage(err, QStringLiteral("--unit takes a length such as 1/8"));
        } else if (arg == u"--queries") {
            if (!value(&queries))
                return usage(err, QStringLiteral("--queries takes a file"));
        } else if (arg == u"--rhythm") {
            query.options.rhythm = true;
        } else if (arg == u"--top") {
            QString top;
            bool ok = false;
            if (value(&top))
                query.options.top = top.toInt(&ok);
            if (!ok || query.options.top < 1)
                return usage(err, QStringLiteral("--top takes a number from 1"));
        } else if (arg.startsWith(QStringLiteral("--"))) {
            return usage(err, QStringLiteral("unknown option '%1'").arg(arg));
        } else {
            positional.append(arg);
        }
    }
    if (positional.isEmpty())
        return usage(err, QStringLiteral("FILE is missing"));
    if (queries.isEmpty() ? positional.size() != 2 : positional.size() != 1)
        return usage(err,
            queries.isEmpty() ? QStringLiteral("FILE and FRAGMENT are needed")
                              : QStringLiteral("--queries takes the place of FRAGMENT"));
    query.fragment = positional.value(1);

    ReadingContext context("similar", err);
    if (!context.ok())
        return Failed;
    AppContext &app = context.app();

    QStringList queryLines;
    if (!queries.isEmpty()) {
        const TextFileResult read = readTextFile(queries);
        if (!read.ok) {
            err << "fenwork-cli similar: cannot read " << queries << "\n";
            err.flush();
            return Failed;
        }
        queryLines = read.text.split(u'\n');
        while (!queryLines.isEmpty() && queryLines.last().trimmed().isEmpty())
            queryLines.removeLast();
    }
    if (app.store()
            .FichierOuvrir(QFileInfo(positional.at(0)).absoluteFilePath(), false, true, true)
            .isEmpty())
        return Failed;

    MelodySimilar similar(app);
    QElapsedTimer clock;
    clock.start();
    double cpu = cpuMs();
    similar.refresh();
    const double buildMs = double(clock.nsecsElapsed()) / 1e6;
    const double buildCpuMs = cpuMs() - cpu;

    if (queries.isEmpty()) {
        if (!MelodySimilar::isSearchable(query)) {
            err << app.text(QStringLiteral("Msg"), QStringLiteral("<similarTooFew>")) << "\n";
            err.flush();
            return Failed;
        }
        for (const SimilarTune &tune : similar.search(query))
            out << scoreText(tune.ratio) << '\t' << tune.position << '\t' << tune.caption << '\n';
        out.flush();
        return Ok;
    }

    clock.restart();
    cpu = cpuMs();
    for (QString line : std::as_const(queryLines)) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        const qsizetype tab = line.indexOf(u'\t');
        const Melody melody
            = readMelodyFragment(tab < 0 ? line : line.mid(tab + 1), tab < 0 ? QString() : line.left(tab));
        QStringList best;
        for (const SimilarTune &tune : similar.searchIndexed(melody, query.options))
            best.append(QString::number(tune.position) + u':' + scoreText(tune.ratio));
        out << best.join(u' ') << '\n';
    }
    out.flush();
    const double searchMs = double(clock.nsecsElapsed()) / 1e6;
    const double searchCpuMs = cpuMs() - cpu;
    const qsizetype n = queryLines.size();
    const auto perQuery = [n](double ms) { return QString::number(n ? ms / double(n) : 0.0, 'f', 2); };
    err << QStringLiteral("%1 queries over %2 tunes in %3 ms (%4 ms a query, %5 ms of processor); "
                          "index built in %6 ms (%7 ms of processor), %8 MB\n")
               .arg(n)
               .arg(similar.index().size())
               .arg(searchMs, 0, 'f', 1)
               .arg(perQuery(searchMs), perQuery(searchCpuMs))
               .arg(buildMs, 0, 'f', 0)
               .arg(buildCpuMs, 0, 'f', 0)
               .arg(double(similar.index().memoryBytes()) / (1024.0 * 1024.0), 0, 'f', 1);
    err.flush();
    return Ok;
}

} // namespace fenwork
