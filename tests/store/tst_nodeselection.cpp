// A click on a node: the save command it enables, the file information block, and the marks of a
// Ctrl+click.
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
    // "@" stands for the file's key.
    QString key(QString what) { return what.replace(u'@', file); }

    test::TestEnv env;
    QString path;
    QString file;
};

} // namespace

class TestNodeSelection : public QObject
{
    Q_OBJECT

private slots:

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
            QCOMPARE(app.selection().tuneKey(), w.file + QStringLiteral("_tune1"));
        }
        QVERIFY(app.commands().isEnabled(QStringLiteral("mnu_save1")));
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

    // The file's block and its backup's: the values go when the file goes, a new file has none.
    void fileInformationBlock()
    {
        World w;
        AppContext &app = w.env.app();
        const auto texts = [&](const QString &fileKey) {
            QStringList out;
            for (const InfoLine &line : fileInformation(app, fileKey))
                out.append(line.text);
            return out;
        };
        const QString size = QStringLiteral(" Size     : %1 Bytes").arg(kFile.size());
        QStringList lines = texts(w.file);
        QVERIFY(lines.contains(QStringLiteral(" Alias    : Jigs")));
        QCOMPARE(lines.count(size), 1);
        QVERIFY(lines.contains(QStringLiteral("  (none)"))); // no backup yet

        QFile::copy(w.path, w.path + QStringLiteral(".BAK"));
        QFile::remove(w.path);
        lines = texts(w.file);
        QCOMPARE(lines.count(size), 1); // the backup's
        QVERIFY(lines.contains(QStringLiteral(" Path     : ") + w.path + QStringLiteral(".BAK")));

        lines = texts(app.store().createNewFile());
        QVERIFY(lines.contains(QStringLiteral(" Path     : <new>")));
        QVERIFY(lines.contains(QStringLiteral(" Size     : ")));
    }

    // Marks: "g" a grey (left out) tune, "b" a black one; the result after one Ctrl+click.
    void marks_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<bool>("alt");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("tune black to grey") << "@_tune2" << false << "bbb" << "bgb";
        QTest::newRow("file: the first black greys all") << "@" << false << "bgb" << "ggg";
        QTest::newRow("body: the first grey blacks all") << "@_bdyFile" << false << "gbg" << "bbb";
        QTest::newRow("file with Alt: each by itself") << "@" << true << "gbb" << "bgg";
        QTest::newRow("tune header: nothing") << "@_tune1_hdrTune" << false << "bbb" << "bbb";
    }
    void marks()
    {
        QFETCH(QString, clicked);
        QFETCH(bool, alt);
        QFETCH(QString, before);
        QFETCH(QString, after);
        World w;
        AppContext &app = w.env.app();
        const Node *body = app.tree().find(w.file + key::BdyFile);
        for (int i = 0; i < body->childCount(); ++i)
            app.tree().setForeColor(body->child(i), before.at(i) == u'g' ? color::TuneLeftOut : 0);
        app.commands().setEnabled(QStringLiteral("mnu_saveTunesFltr"), false);
        toggleTuneMarks(app, w.key(clicked), alt);
        QString colours;
        for (const Node *tune : body->children())
            colours += tune->ForeColor == color::TuneLeftOut ? u'g' : tune->ForeColor == 0 ? u'b' : u'?';
        QCOMPARE(colours, after);
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
