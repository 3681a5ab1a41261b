// A click on a node: the current keys and the text it gives, the commands it enables, the file
// information block, the line marked, and the marks of Ctrl and a click.
#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "store/nodeselection.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFile>
#include <QTest>

using namespace fenwork;

namespace {

const QByteArray kFile
    = "%abc\n%%abc-alias Jigs\nX:1\nT:First\nK:G\nabc|abc|\nabc|\n\nX:2\nT:Second\nK:D\ndef|\n\n"
      "X:3\nT:Third\nK:A\nABC|\n";

// One file open, the trash box with one tune in it.
class World
{
public:
    World()
    {
        createWorkspaceRoot(env.app());
        env.app().ini().set(keys::Ask4alias, QStringLiteral("0"));
        env.app().ini().set(keys::FichBak, QStringLiteral("0"));
        path = env.writeFile(QStringLiteral("jigs.abc"), kFile);
        file = env.app().store().FichierOuvrir(path, false, true, false);
        env.app().store().FichierOuvrir(
            env.writeFile(QStringLiteral("trash.abc"), "X:7\nT:Thrown\nK:C\nC|\n"), true, true, false);
    }
    WorkspaceTree &tree() { return env.app().tree(); }
    // The key of the first node below `parent` whose text is `text`.
    QString lineKey(const QString &parent, const QString &text)
    {
        QString found;
        tree().walk(tree().find(parent), [&](Node *node) {
            if (node->Text == text)
                found = node->Key;
            return found.isEmpty();
        });
        return found;
    }
    QString key(const QString &what)
    {
        if (what.startsWith(u'='))
            return lineKey(file, what.mid(1));
        QString k = what;
        return k.replace(u'@', file);
    }

    test::TestEnv env;
    QString path;
    QString file;
};

QStringList enabledNames(const QList<CommandSwitch> &switches)
{
    QStringList names;
    for (const CommandSwitch &s : switches)
        if (s.enabled)
            names.append(s.name);
    names.sort();
    return names;
}

} // namespace

class TestNodeSelection : public QObject
{
    Q_OBJECT

private slots:
    // "@" stands for the file's key, "=text" for the line of that text.
    void clickTellsKeysAndText_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("tune");
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("content");
        QTest::addColumn<QString>("textStart");
        QTest::addColumn<bool>("selectLine");
        QTest::addColumn<QString>("caption");

        const int tune = int(SelectionColumn::Tune);
        const int text = int(PanelContent::Text);
        QTest::newRow("tune") << "@_tune2" << tune << "@_tune2"
                              << "@" << text << "X:2\r\nT:Second" << false << "[2]  Second";
        QTest::newRow("title line") << "=T:First" << tune << "@_tune1"
                                    << "@" << text << "X:1\r\nT:First" << true << "[1]  First";
        QTest::newRow("music line") << "=ABC|" << tune << "@_tune3"
                                    << "@" << text << "X:3" << true << "[3]  Third";
        QTest::newRow("tune header") << "@_tune1_hdrTune" << tune << "@_tune1"
                                     << "@" << text << "X:1" << true << "[1]  First";
        QTest::newRow("file header line") << "=%%abc-alias Jigs" << int(SelectionColumn::FileHeader) << ""
                                          << "@" << text << "%abc\r\n"
                                          << true << "Fennelworks";
        QTest::newRow("file body") << "@_bdyFile" << int(SelectionColumn::File) << ""
                                   << "@" << int(PanelContent::Empty) << "" << false << "Fennelworks";
        QTest::newRow("file") << "@" << int(SelectionColumn::File) << ""
                              << "@" << int(PanelContent::FileInformation) << "" << false << "Fennelworks";
        QTest::newRow("trash header") << "_file0_hdrFile" << int(SelectionColumn::Trash) << ""
                                      << "_file0" << int(PanelContent::Empty) << "" << false << "Fennelworks";
        QTest::newRow("tune in the trash")
            << "_file0_tune1" << int(SelectionColumn::Trash) << ""
            << "_file0" << int(PanelContent::Empty) << "" << false << "Fennelworks";
        QTest::newRow("root") << "abc" << int(SelectionColumn::Root) << ""
                              << "" << int(PanelContent::Empty) << "" << false << "Fennelworks";
    }
    void clickTellsKeysAndText()
    {
        QFETCH(QString, clicked);
        QFETCH(int, column);
        QFETCH(QString, tune);
        QFETCH(QString, file);
        QFETCH(int, content);
        QFETCH(QString, textStart);
        QFETCH(bool, selectLine);
        QFETCH(QString, caption);
        World w;
        const QString key = w.key(clicked);
        QVERIFY2(!key.isEmpty(), qPrintable(clicked));
        const NodeSelection s = describeNodeClick(w.env.app(), key);
        QCOMPARE(int(s.column), column);
        QCOMPARE(s.tuneKey, w.key(tune));
        QCOMPARE(s.fileKey, w.key(file));
        QCOMPARE(int(s.content), content);
        if (textStart.isEmpty())
            QVERIFY2(s.text.isEmpty(), qPrintable(s.text));
        else
            QVERIFY2(s.text.startsWith(textStart), qPrintable(s.text));
        QCOMPARE(s.selectLine, selectLine);
        QCOMPARE(s.caption, caption);
        QCOMPARE(s.trashPanel, clicked == u"_file0_tune1");
    }

    // A key of no kind, or of no node, leaves everything as it was.
    void unknownKeyChangesNothing()
    {
        World w;
        AppContext &app = w.env.app();
        applyNodeClick(app, describeNodeClick(app, w.file + QStringLiteral("_tune1")));
        app.commands().setEnabled(QStringLiteral("mnu_save1"), true);
        for (const QString &key : { QStringLiteral("nothing"), QStringLiteral("_file9_tune1"), QString() }) {
            const NodeSelection s = describeNodeClick(app, key);
            QCOMPARE(int(s.column), int(SelectionColumn::None));
            applyNodeClick(app, s);
            QCOMPARE(app.currentTuneKey, w.file + QStringLiteral("_tune1"));
            QCOMPARE(app.currentFileKey, w.file);
        }
        QVERIFY(app.commands().isEnabled(QStringLiteral("mnu_save1")));
    }

    void enablingByColumn_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<bool>("changed");
        QTest::addColumn<bool>("trashFull");
        QTest::addColumn<bool>("pending");
        QTest::addColumn<QStringList>("enabled");

        const QStringList inFile = { "mnu_doNew1", "mnu_Outils", "mnu_closeFile", "mnu_ExportFile",
            "mnu_playTunes", "mnu_saveSelTunes", "newtune", "toolsf", "closeabc", "print", "printfile",
            "topdf", "topdffile", "playfile", "mnu_save1" };
        const QStringList tuneOnly
            = { "mnu_Morceau", "tunecut", "tunecopy", "tunedel", "tomidi", "printtune", "topdftune" };
        const QStringList editable = { "abcedit", "bt_Midi1" };
        const auto sorted = [](QStringList list) {
            list.sort();
            return list;
        };
        QTest::newRow("tune, unchanged")
            << int(SelectionColumn::Tune) << false << false << false << sorted(inFile + tuneOnly + editable);
        QTest::newRow("tune, changed, tune pending")
            << int(SelectionColumn::Tune) << true << false << true
            << sorted(inFile + tuneOnly + editable + QStringList { "mnu_save0", "save", "tunepaste" });
        QTest::newRow("file header, changed")
            << int(SelectionColumn::FileHeader) << true << false << true
            << sorted(inFile + editable + QStringList { "mnu_save0", "save" });
        QTest::newRow("file") << int(SelectionColumn::File) << false << true << true << sorted(inFile);
        QTest::newRow("trash, empty")
            << int(SelectionColumn::Trash) << true << false << true << QStringList { "mnu_save1" };
        QTest::newRow("trash, holding a tune") << int(SelectionColumn::Trash) << false << true << false
                                               << sorted({ "mnu_save0", "mnu_save1", "save" });
        QTest::newRow("root") << int(SelectionColumn::Root) << true << true << true << QStringList();
    }
    void enablingByColumn()
    {
        QFETCH(int, column);
        QFETCH(bool, changed);
        QFETCH(bool, trashFull);
        QFETCH(bool, pending);
        QFETCH(QStringList, enabled);
        SelectionFacts facts;
        facts.fileChanged = changed;
        facts.trashHoldsTune = trashFull;
        facts.tunePending = pending;
        const QList<CommandSwitch> switches = selectionCommands(SelectionColumn(column), facts);
        QCOMPARE(enabledNames(switches), enabled);
        // Every column sets the same commands, so that no state survives from the last click.
        QCOMPARE(switches.size(), selectionCommands(SelectionColumn::Root, facts).size());
        QVERIFY(selectionCommands(SelectionColumn::None, facts).isEmpty());
    }

    // The save command follows the file's picture and the trash box's content.
    void saveFollowsTheFileState()
    {
        World w;
        AppContext &app = w.env.app();
        const auto saveAfterClick = [&](const QString &key) {
            applyNodeClick(app, describeNodeClick(app, key));
            return app.commands().isEnabled(QStringLiteral("save"));
        };
        QVERIFY(!saveAfterClick(w.file + QStringLiteral("_tune1")));
        app.store().SetFlagModifFile(w.file);
        QVERIFY(saveAfterClick(w.file + QStringLiteral("_tune1")));
        QVERIFY(saveAfterClick(w.file));
        QVERIFY(saveAfterClick(key::TrashHeader));
        app.tree().removeChildren(app.tree().find(key::TrashBody));
        QVERIFY(!saveAfterClick(key::TrashHeader));
        QVERIFY(!saveAfterClick(key::Root));
    }

    void fileInformationBlock()
    {
        World w;
        AppContext &app = w.env.app();
        QList<InfoLine> lines = fileInformation(app, w.file);
        QStringList texts;
        for (const InfoLine &line : lines)
            texts.append(line.text);
        QCOMPARE(texts.value(0), QString());
        QCOMPARE(texts.value(1), QStringLiteral(" ------ ABC FILE -------"));
        QCOMPARE(texts.value(2), QStringLiteral(" Alias    : Jigs"));
        QCOMPARE(texts.value(3), QStringLiteral(" Path     : ") + w.path);
        QCOMPARE(texts.value(4), QStringLiteral(" Size     : %1 Bytes").arg(kFile.size()));
        QVERIFY(texts.value(5).startsWith(QStringLiteral(" Modified : 2")));
        QCOMPARE(texts.value(7), QStringLiteral(" --- ABC BACKUP FILE ---"));
        QCOMPARE(texts.value(8), QStringLiteral("  (none)"));
        QCOMPARE(lines.value(3).color, 0xFF0000);
        QCOMPARE(lines.value(8).color, 0x969696);

        // With a backup beside it, the grey block tells its size; with the file gone, the blue one
        // keeps its labels and loses the values.
        QFile::copy(w.path, w.path + QStringLiteral(".BAK"));
        QFile::remove(w.path);
        lines = fileInformation(app, w.file);
        QCOMPARE(lines.value(4).text, QStringLiteral(" Size     : "));
        QCOMPARE(lines.value(5).text, QStringLiteral(" Modified : "));
        QCOMPARE(lines.value(8).text, QStringLiteral(" Path     : ") + w.path + QStringLiteral(".BAK"));
        QCOMPARE(lines.value(9).text, QStringLiteral(" Size     : %1 Bytes").arg(kFile.size()));
    }

    void newFileInformation()
    {
        World w;
        const QString fresh = w.env.app().store().createNewFile();
        const QList<InfoLine> lines = fileInformation(w.env.app(), fresh);
        QCOMPARE(lines.value(3).text, QStringLiteral(" Path     : <new>"));
        QCOMPARE(lines.value(4).text, QStringLiteral(" Size     : "));
        QCOMPARE(lines.last().text, QStringLiteral("  (none)"));
    }

    void lineSelection_data()
    {
        QTest::addColumn<QString>("panel");
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("start");
        QTest::newRow("second line") << "X:1\nT:A\nK:G\n"
                                     << "T:A" << 4;
        QTest::newRow("a repeated line marks its first copy") << "X:1\nabc|\nK:G\nabc|\n"
                                                              << "abc|" << 4;
        QTest::newRow("absent") << "X:1\nK:G\n"
                                << "T:B" << -1;
        QTest::newRow("empty line") << "X:1\n\nK:G\n"
                                    << "" << -1;
    }
    void lineSelection()
    {
        QFETCH(QString, panel);
        QFETCH(QString, line);
        QFETCH(int, start);
        QCOMPARE(int(lineSelectionStart(panel, line)), start);
    }

    // Marks: "g" a grey (left out) tune, "b" a black one; the result after one Ctrl+click.
    void marks_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<bool>("alt");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("tune black to grey") << "@_tune2" << false << "bbb"
                                            << "bgb";
        QTest::newRow("tune grey to black") << "@_tune2" << false << "ggg"
                                            << "gbg";
        QTest::newRow("file: the first black greys all") << "@" << false << "bgb"
                                                         << "ggg";
        QTest::newRow("body: the first grey blacks all") << "@_bdyFile" << false << "gbg"
                                                         << "bbb";
        QTest::newRow("file with Alt: each by itself") << "@" << true << "gbb"
                                                       << "bgg";
        QTest::newRow("tune header: nothing") << "@_tune1_hdrTune" << false << "bbb"
                                              << "bbb";
        QTest::newRow("file header: nothing") << "@_hdrFile" << false << "bgb"
                                              << "bgb";
        QTest::newRow("root: nothing") << "abc" << false << "bbb"
                                       << "bbb";
    }
    void marks()
    {
        QFETCH(QString, clicked);
        QFETCH(bool, alt);
        QFETCH(QString, before);
        QFETCH(QString, after);
        World w;
        AppContext &app = w.env.app();
        const auto colours = [&] {
            QString text;
            for (const Node *tune : app.tree().find(w.file + key::BdyFile)->children())
                text += tune->ForeColor == color::TuneLeftOut ? u'g' : tune->ForeColor == 0 ? u'b' : u'?';
            return text;
        };
        const Node *body = app.tree().find(w.file + key::BdyFile);
        for (int i = 0; i < body->childCount(); ++i)
            app.tree().setForeColor(body->child(i), before.at(i) == u'g' ? color::TuneLeftOut : 0);
        app.commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), false);
        toggleTuneMarks(app, w.key(clicked), alt);
        QCOMPARE(colours(), after);
        QVERIFY(app.commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")));
    }

    void trashTuneKeepsItsColour()
    {
        World w;
        Node *thrown = w.tree().find(QStringLiteral("_file0_tune1"));
        QVERIFY(thrown);
        const int colour = thrown->ForeColor;
        toggleTuneMarks(w.env.app(), thrown->Key, false);
        toggleTuneMarks(w.env.app(), key::Trash, true);
        QCOMPARE(thrown->ForeColor, colour);
    }
};

FENWORK_TEST(TestNodeSelection)
#include "tst_nodeselection.moc"
