// Export to MIDI with the real abc2midi.
#include "publishworld.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/toolrunner.h"
#include "collections/choicelist.h"
#include "publishing/exportcommon.h"
#include "publishing/midiexport.h"

#include <QTest>

using namespace fenwork;
using namespace fenwork::test;

class TestMidiExport : public QObject
{
    Q_OBJECT
private slots:
    void tempoLine_data()
    {
        QTest::addColumn<QString>("tune");
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("expected");
        QTest::newRow("own tempo kept") << "X:1\r\nQ:1/4=90\r\nK:G\r\n" << "Q:1/4=140\r\n" << "X:1\r\nQ:1/4=90\r\nK:G\r\n";
        QTest::newRow("header's after the first line") << "X:1\r\nT:A\r\nK:G\r\n" << "%abc\r\nQ:1/4=140\r\n"
                                                        << "X:1\r\nQ:140\r\nT:A\r\nK:G\r\n";
        QTest::newRow("a commented Q: is none") << "X:1\r\n%Q:1/4=60\r\nK:G\r\n" << ""
                                                << "X:1\r\nQ:100\r\n%Q:1/4=60\r\nK:G\r\n";
        QTest::newRow("header without =") << "X:1\r\nK:G\r\n" << "Q:132\r\n" << "X:1\r\nQ:132\r\nK:G\r\n";
    }
    void tempoLine()
    {
        QFETCH(QString, tune);
        QFETCH(QString, header);
        QFETCH(QString, expected);
        QCOMPARE(midiTuneText(tune, header, QStringLiteral("100")), expected);
    }

    // A file gives one MIDI file a tune, named after the target with the tune's number; tunes
    // that share a number overwrite each other, and the status line says so.
    void oneFileATune_data()
    {
        QTest::addColumn<QByteArray>("book");
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("told");
        QTest::newRow("three tunes") << tuneBook(3, 1) << QStringList { "set1.mid", "set2.mid", "set3.mid" } << false;
        QByteArray shared = tuneBook(3, 1);
        shared.replace("X:3", "X:2");
        QTest::newRow("shared number") << shared << QStringList { "set1.mid", "set2.mid" } << true;
    }
    void oneFileATune()
    {
        QFETCH(QByteArray, book);
        QFETCH(QStringList, files);
        QFETCH(bool, told);
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("book.abc"), book);
        MidiExporter exporter(env.app());
        QString target = env.path(QStringLiteral("out/set.mid"));
        QDir().mkpath(env.path(QStringLiteral("out")));
        QCOMPARE(exporter.ExportToMidi(kFile, target), QString());
        QCOMPARE(QDir(env.path(QStringLiteral("out"))).entryList(QDir::Files, QDir::Name), files);
        for (const QString &file : files)
            QVERIFY(readBytes(env.path(QStringLiteral("out/") + file)).startsWith("MThd"));
        const bool statusSaid = !env.ui().texts(ScriptedDialogs::Kind::Status).filter(QStringLiteral("X:")).isEmpty();
        QCOMPARE(statusSaid, told);
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(readBytes(env.path(QStringLiteral("book.abc"))), book);
    }

    // A tune goes to the name asked for, with the file header's tempo.
    void tuneWithAskedName()
    {
        TestEnv env;
        const QString kFile
            = openBook(env, QStringLiteral("t.abc"), "Q:1/4=140\r\n\r\nX:5\r\nT:Reel: A/B\r\nM:4/4\r\nL:1/8\r\nK:G\r\nGABc|\r\n");
        env.ui().pushFileName(env.path(QStringLiteral("mine.mid")));
        MidiExporter exporter(env.app());
        QString target;
        QCOMPARE(exporter.ExportToMidi(tuneKeyAt(env, kFile, 0), target), QString());
        QCOMPARE(target, env.path(QStringLiteral("mine.mid")));
        QVERIFY(readBytes(target).startsWith("MThd"));
        QCOMPARE(QFileInfo(env.ui().shown.first().text).fileName(), QStringLiteral("Reel_ A_B.mid"));
        QVERIFY(readAll(env.app().tools().inCache(QStringLiteral("tmp_mid.abc"))).contains(QStringLiteral("X:5\r\nQ:140\r\n")));
    }

    // The list's tunes are numbered from 1 in list order, whatever their X:.
    void listNumbersFromOne()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"), "X:7\r\nT:Seven\r\nK:G\r\nG|\r\n\r\nX:3\r\nT:Three\r\nK:G\r\nA|\r\n");
        ChoiceList list;
        list.add(tuneKeyAt(env, kFile, 1), QStringLiteral("Three"));
        list.add(tuneKeyAt(env, kFile, 0), QStringLiteral("Seven"));
        const QString text = choiceListText(env.app(), list);
        QVERIFY2(text.indexOf(QStringLiteral("X:1\r\nT:Three")) >= 0 && text.indexOf(QStringLiteral("X:2\r\nT:Seven")) > 0, qPrintable(text));
        MidiExporter exporter(env.app());
        QString target = env.path(QStringLiteral("set.mid"));
        QCOMPARE(exporter.ExportToMidi(text, target), QString());
        QCOMPARE(exporter.written().size(), 2);
    }

    void missingTool()
    {
        TestEnv env;
        const QString kFile = openBook(env, QStringLiteral("t.abc"), tuneBook(2, 1));
        env.app().ini().set(keys::Tool2midi, env.writeFile(QStringLiteral("abc2midi"), "not a program"));
        MidiExporter exporter(env.app());
        QString target = env.path(QStringLiteral("out.mid"));
        QVERIFY(exporter.ExportToMidi(kFile, target).contains(QStringLiteral("not found: abc2midi")));
        QVERIFY(env.ui().messages().join(u'|').contains(QStringLiteral("Context: ExportToMidi")));
        QVERIFY(!QFileInfo::exists(env.path(QStringLiteral("out1.mid"))));
    }
};

FENWORK_TEST(TestMidiExport)
#include "tst_midiexport.moc"
