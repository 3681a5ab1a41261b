// Timings of the tune store on large files made from the corpus collections: opening into the
// tree, saving, the duplicate X: search, a filter that every tune passes and the same filter
// filling the working list, with the peak memory of each size measured in a process of its own.
//
//   fenwork_bench                  all sizes, a table on standard output
//   fenwork_bench --make N PATH    writes a file of N tunes (for other timings)
//   fenwork_bench --measure PATH   one child run: prints "tunes open save dupx filter list peakKiB"
#include "collections/choicelist.h"
#include "store/duplicates.h"
#include "finding/tunefilter.h"
#include "frame/appcontext.h"
#include "frame/clidialogs.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>
#include <cstdio>

using namespace fenwork;

namespace {

const int kSizes[] = { 1000, 10000, 50000 };

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

QString corpusDir()
{
    const QByteArray env = qgetenv("FENWORK_CORPUS_DIR");
    return env.isEmpty() ? QStringLiteral(FENWORK_CORPUS_DIR) : QString::fromLocal8Bit(env);
}

// Peak resident memory of this process in KiB.
qint64 peakMemoryKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    return -1;
}

// A file of `count` tunes: the corpus collections one after the other, as often as needed, cut
// before the tune that would be one too many. X: numbers repeat, as in real merged files.
bool makeFile(int count, const QString &path)
{
    QStringList files;
    QDirIterator it(corpusDir(), { QStringLiteral("*.abc") }, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    QStringList collections;
    for (const QString &file : files) {
        const TextFileResult read = readTextFile(file);
        if (read.ok && read.text.contains(QStringLiteral("X:")))
            collections.append(read.text);
    }
    if (collections.isEmpty())
        return false;

    QString text;
    int tunes = 0;
    while (tunes < count) {
        for (const QString &collection : std::as_const(collections)) {
            for (const QString &line : collection.split(u'\n')) {
                if (trimBlanks(line).startsWith(QStringLiteral("X:")) && ++tunes > count)
                    break;
                text += line;
                text += u'\n';
            }
            if (tunes >= count)
                break;
            text += u'\n';
        }
    }
    return writeTextFile(path, text, TextEncoding::Utf8);
}

// One size, in this fresh process.
int measure(const QString &path)
{
    QTemporaryDir root;
    const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    CliDialogs dialogs;
    AppContext app(paths, &dialogs);
    app.lang().setName(QStringLiteral("English"));
    app.buildStartupTexts();
    createWorkspaceRoot(app);

    QElapsedTimer timer;
    timer.start();
    const QString kFile = app.store().FichierOuvrir(path, false, true, false);
    const qint64 openMs = timer.elapsed();
    if (kFile.isEmpty())
        return 1;
    const int tunes = app.tree().find(kFile + key::BdyFile)->childCount();

    timer.restart();
    if (!app.store().FichierSaveFromKey(kFile, root.filePath(QStringLiteral("saved.abc")), QString()))
        return 1;
    const qint64 saveMs = timer.elapsed();

    timer.restart();
    int doubled = 0;
    ShowDoublonsX(app, kFile, true, doubled);
    const qint64 dupxMs = timer.elapsed();

    // Every tune has a K: line: the filter keeps them all, then lists them all.
    TuneFilter filter(app);
    ChoiceList list;
    filter.setChoiceList(&list);
    FilterConditions every;
    every.anywhere = QStringLiteral("K:");
    timer.restart();
    filter.search(every, FilterDomain::AllTunes, FilterResults::LeaveList);
    const qint64 filterMs = timer.elapsed();
    timer.restart();
    filter.search(every, FilterDomain::AllTunes, FilterResults::ReplaceList);
    const qint64 listMs = timer.elapsed() - filterMs;
    if (list.count() != tunes)
        return 1;

    out() << tunes << ' ' << openMs << ' ' << saveMs << ' ' << dupxMs << ' ' << filterMs << ' ' << listMs << ' '
          << peakMemoryKiB() << Qt::endl;
    return 0;
}

int runAll()
{
    if (!QFileInfo(corpusDir()).isDir()) {
        out() << "bench_store: no corpus at " << corpusDir() << " (set FENWORK_CORPUS_DIR): skipped"
              << Qt::endl;
        return 0;
    }
    QTemporaryDir work;
    out() << "Tune store on files built from " << QDir(corpusDir()).canonicalPath() << Qt::endl << Qt::endl;
    out() << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
                 .arg(QStringLiteral("tunes"), 8)
                 .arg(QStringLiteral("file KiB"), 9)
                 .arg(QStringLiteral("open ms"), 9)
                 .arg(QStringLiteral("save ms"), 9)
                 .arg(QStringLiteral("dupX ms"), 9)
                 .arg(QStringLiteral("filter ms"), 10)
                 .arg(QStringLiteral("+list ms"), 9)
                 .arg(QStringLiteral("peak MiB"), 9)
          << Qt::endl;
    int status = 0;
    for (const int size : kSizes) {
        const QString path = work.filePath(QStringLiteral("bench%1.abc").arg(size));
        if (!makeFile(size, path)) {
            out() << "bench_store: cannot build the file of " << size << " tunes" << Qt::endl;
            return 1;
        }
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(), { QStringLiteral("--measure"), path });
        if (!child.waitForFinished(-1) || child.exitCode() != 0) {
            out() << "bench_store: the run of " << size << " tunes failed" << Qt::endl;
            status = 1;
            continue;
        }
        const QList<QByteArray> f = child.readAllStandardOutput().trimmed().split(' ');
        if (f.size() != 7) {
            status = 1;
            continue;
        }
        out() << QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8")
                     .arg(QString::fromLatin1(f.at(0)), 8)
                     .arg(QFileInfo(path).size() / 1024, 9)
                     .arg(QString::fromLatin1(f.at(1)), 9)
                     .arg(QString::fromLatin1(f.at(2)), 9)
                     .arg(QString::fromLatin1(f.at(3)), 9)
                     .arg(QString::fromLatin1(f.at(4)), 10)
                     .arg(QString::fromLatin1(f.at(5)), 9)
                     .arg(f.at(6).toDouble() / 1024.0, 9, 'f', 1)
              << Qt::endl;
    }
    out() << Qt::endl
          << "open: FichierOuvrir with its backup copy; save: FichierSaveFromKey; "
          << "dupX: ShowDoublonsX forced; filter: a search every tune passes, leaving the working list; "
          << "+list: what the same search costs beyond that when it fills the working list; "
          << "peak: VmHWM of a process that did all of these." << Qt::endl;
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication qapp(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() == 3 && args.at(1) == u"--measure")
        return measure(args.at(2));
    if (args.size() == 4 && args.at(1) == u"--make") {
        if (!QFileInfo(corpusDir()).isDir()) {
            std::fprintf(stderr, "bench_store: no corpus: skipped\n");
            return 3;
        }
        return makeFile(args.at(2).toInt(), args.at(3)) ? 0 : 1;
    }
    if (args.size() != 1) {
        std::fprintf(stderr, "usage: fenwork_bench [--make N PATH | --measure PATH]\n");
        return 2;
    }
    return runAll();
}
