// The main window's publishing commands reach the exports with the current tune and file.
#include "publishworld.h"
#include "testmain.h"

#include "app/widgets/mainwindow.h"
#include "publishing/widgets/printer.h"

#include <QAction>
#include <QApplication>
#include <QPrinter>
#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

class TestPublishCommands : public QObject
{
    Q_OBJECT
private slots:
    void cleanup() { setPrintDialogHook({}); }

    void commands_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QStringList>("written");
        QTest::newRow("file to MIDI") << "mnu_exportFichVersMIDI" << "b.mid" << QStringList { "b1.mid", "b2.mid" };
        QTest::newRow("tune to MIDI, button") << "tomidi" << "one.mid" << QStringList { "one.mid" };
        QTest::newRow("tune's text printed") << "mnu_printAbcTune" << "" << QStringList { "printed.pdf" };
    }
    void commands()
    {
        QFETCH(QString, command);
        QFETCH(QString, target);
        QFETCH(QStringList, written);
        TestEnv env;
        const auto window = loadedMainWindow(env);
        const QString book = env.writeFile(QStringLiteral("book.abc"), tuneBook(2, 1));
        QVERIFY(!window->openPath(book).isEmpty());
        window->NodeClick(env.app().selection().fileKey() + QStringLiteral("_tune1"));
        QVERIFY(!env.app().selection().tuneKey().isEmpty());
        const QString out = env.path(QStringLiteral("out/"));
        QDir().mkpath(out);
        if (!target.isEmpty())
            env.ui().pushFileName(out + target);
        setPrintDialogHook([out](QPrinter &printer, QWidget *) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(out + QStringLiteral("printed.pdf"));
            return true;
        });
        QAction *action = window->findChild<QAction *>(command);
        QVERIFY(action && action->isEnabled());
        action->trigger();
        QApplication::processEvents();
        QCOMPARE(QDir(out).entryList(QDir::Files, QDir::Name), written);
        QCOMPARE(env.ui().messages(), QStringList());
    }
};

FENWORK_TEST(TestPublishCommands)
#include "tst_publishcommands.moc"
