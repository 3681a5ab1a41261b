// The working list at size: filled by a filter of 10,000 tunes, pruned after its file closes,
// written as an ABC file of 1,000 to 50,000 tunes, and a set of 26 tunes made in the window.
// Usage: bench_list
#include "app/widgets/mainwindow.h"
#include "collections/choicelist.h"
#include "collections/choicesets.h"
#include "collections/listtoabc.h"
#include "collections/widgets/choicelistpanel.h"
#include "finding/tunefilter.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/selection.h"
#include "frame/settings.h"
#include "frame/textfile.h"
#include "scripteddialogs.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>

using namespace fenwork;

namespace {

class PumpingDialogs : public ScriptedDialogs
{
public:
    void processEvents() override { QCoreApplication::processEvents(); }
};

// `count` tunes of our own, two lines of music each, an accented title now and then.
QString tunes(int count)
{
    QString text;
    for (int i = 1; i <= count; ++i)
        text += QStringLiteral(
            "X:%1\nT:%2 %1\nR:reel\nM:4/4\nL:1/8\nK:D\n|:DFAF dFAF|GBdB AFEF:|\n|:fdfa gefg|fdec d2 d2:|\n\n")
                    .arg(i)
                    .arg(i % 7 ? QStringLiteral("Reel") : QStringLiteral("Réel"));
    return text;
}

double ms(const QElapsedTimer &clock)
{
    return clock.nsecsElapsed() / 1e6;
}

struct Bench
{
    Bench()
    {
        qputenv("FENNELWORKS_ROOT", root.path().toUtf8());
        const Paths paths(root.path(), QStringLiteral(FENWORK_DATA_DIR));
        QDir().mkpath(paths.cacheFolder());
        const IniFile ini(paths.settingsFile());
        ini.set(keys::Lang, QStringLiteral("English"));
        ini.set(keys::Ask4alias, QStringLiteral("0"));
        ini.set(keys::FichBak, QStringLiteral("0"));
        app = std::make_unique<AppContext>(paths, &dialogs);
        app->buildStartupTexts();
    }
    QString open(int count)
    {
        const QString path = root.filePath(QStringLiteral("tunes%1.abc").arg(count));
        if (!QFile::exists(path))
            writeTextFile(path, tunes(count), TextEncoding::Utf8);
        return app->store().FichierOuvrir(path, false, true, false);
    }
    QTemporaryDir root;
    PumpingDialogs dialogs;
    std::unique_ptr<AppContext> app;
};

void fillAndPrune()
{
    Bench b;
    MainWindow window(*b.app);
    window.MainLoad();
    window.resize(1280, 800);
    window.show();
    QApplication::processEvents();
    const QString kFile = b.open(10000);
    TuneFilter filter(*b.app);
    filter.setChoiceList(&window.choiceList());
    FilterConditions all;
    all.fields[filterRowOfCaption(QStringLiteral("T:"))] = QStringLiteral("*"); // every tune has a title
    QElapsedTimer clock;
    clock.start();
    filter.search(all, FilterDomain::AllTunes, FilterResults::LeaveList);
    const double alone = ms(clock);
    clock.restart();
    filter.search(all, FilterDomain::AllTunes, FilterResults::ReplaceList);
    QApplication::processEvents();
    const double filling = ms(clock);
    std::printf(
        "list: filter of 10,000 tunes %.1f ms, with the list filled %.1f ms (%d items): %.1f ms more\n",
        alone, filling, window.choiceList().count(), filling - alone);

    b.app->tree().remove(b.app->tree().find(kFile));
    QApplication::processEvents(); // the tree's own update of the close, not the list's
    clock.restart();
    window.EpurerListeChoix();
    QApplication::processEvents();
    std::printf("list: EpurerListeChoix after closing the file of 10,000 tunes %.1f ms (%d left)\n",
        ms(clock), window.choiceList().count());
    window.choiceList().clear();
}

void listFiles()
{
    for (const int count : { 1000, 10000, 50000 }) {
        Bench b;
        const QString kFile = b.open(count);
        ChoiceList list;
        QVector<ChoiceItem> items;
        for (const Node *tune : b.app->tree().find(kFile + key::BdyFile)->children())
            items.append({ tune->Key, tune->Text, 1 });
        list.addAll(items);
        for (const bool escapes : { false, true }) {
            QElapsedTimer clock;
            clock.start();
            const QString text = listAbcFile(*b.app, listAbcBody(*b.app, list, escapes));
            writeTextFile(b.root.filePath(QStringLiteral("list.abc")), text, TextEncoding::Utf8);
            std::printf(
                "list: mnu_lstToAbc of %d tunes%s %.0f ms\n", count, escapes ? ", escapes" : "", ms(clock));
        }
    }
}

void setOf26Alone()
{
    Bench b;
    createWorkspaceRoot(*b.app);
    const QString kFile = b.open(10000);
    const Node *body = b.app->tree().find(kFile + key::BdyFile);
    QVector<ChoiceItem> items;
    for (int i = 0; i < 26; ++i)
        items.append({ body->child(i * 371)->Key, QString(), 1 });
    QElapsedTimer clock;
    clock.start();
    makeSet(*b.app, kFile, items);
    std::printf("list: a set of 26 tunes in a file of 10,000, without a window %.0f ms\n", ms(clock));
}

void setOf26()
{
    Bench b;
    MainWindow window(*b.app);
    window.MainLoad();
    window.resize(1280, 800);
    window.show();
    const QString kFile = b.open(10000);
    window.SimulerNodeClick(kFile);
    const Node *body = b.app->tree().find(kFile + key::BdyFile);
    for (int i = 0; i < 26; ++i) {
        const Node *tune = body->child(i * 371);
        window.choiceList().add(tune->Key, tune->Text);
    }
    QApplication::processEvents();
    QElapsedTimer clock;
    clock.start();
    const QString kNew = mnu_lstToSet(*b.app, window.choiceList());
    window.repaint();
    QApplication::processEvents();
    std::printf("list: a set of 26 tunes in a file of 10,000, its score drawn %.0f ms (%s)\n", ms(clock),
        b.app->selection().tuneKey() == kNew ? "selected" : "NOT selected");
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    fillAndPrune();
    listFiles();
    setOf26Alone();
    setOf26();
    return 0;
}
