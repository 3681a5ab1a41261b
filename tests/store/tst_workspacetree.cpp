#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "store/treeops.h"
#include "store/widgets/treemodel.h"
#include "store/workspacetree.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace fenwork;

class TestWorkspaceTree : public QObject
{
    Q_OBJECT

private slots:
    void keyFunctions_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("kFile");
        QTest::addColumn<QString>("kTune");
        QTest::addColumn<int>("kind");
        QTest::newRow("body line") << "_file3_tune5_bdyTune_lg2" << "_file3" << "_file3_tune5" << int(KeyKind::TuneBody);
        QTest::newRow("included line") << "_file1_tune1_hdrTune_lg2_inclg3" << "_file1" << "_file1_tune1" << int(KeyKind::TuneHeader);
        QTest::newRow("file header") << "_file2_hdrFile_lgalias" << "_file2" << "" << int(KeyKind::FileHeader);
        QTest::newRow("trash tune") << "_file0_tune3_bdyTune_lg1" << "_file0" << "" << int(KeyKind::TrashTune);
        QTest::newRow("file 10 is no trash") << "_file10_tune1" << "_file10" << "_file10_tune1" << int(KeyKind::Tune);
        QTest::newRow("root") << "abc" << "abc" << "" << int(KeyKind::Root);
    }
    void keyFunctions()
    {
        QFETCH(QString, key);
        QFETCH(QString, kFile);
        QFETCH(QString, kTune);
        QFETCH(int, kind);
        QCOMPARE(GetKFile(key), kFile);
        QCOMPARE(GetKtune(key), kTune);
        QCOMPARE(int(keyKind(key)), kind);
    }

    void removeSubtreeForgetsKeys()
    {
        WorkspaceTree tree;
        Node *root = tree.add(nullptr, WorkspaceTree::Place::Child, "abc", "", Pic::AbcRoot);
        Node *file = tree.addChild(root, "_file1", "", Pic::FileAbc);
        Node *hdr = tree.addChild(file, "_file1_hdrFile", "", Pic::HdrFile);
        tree.addChild(hdr, "_file1_hdrFile_lg1", "", Pic::Rem);
        tree.addChild(hdr, "", "keyless", Pic::Rem);
        QCOMPARE(tree.count(), 5);
        tree.remove(file);
        QCOMPARE(tree.count(), 1);
        QVERIFY(!tree.contains("_file1_hdrFile_lg1"));
        QVERIFY(tree.addChild(root, "_file1_hdrFile_lg1", "", Pic::Rem));
    }

    void captions_data()
    {
        QTest::addColumn<int>("tunes");
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<bool>("trashBold");
        QTest::newRow("none") << 0 << "(<empty>)" << false;
        QTest::newRow("two") << 2 << "(2 <tunes>)" << true;
    }
    void captions()
    {
        QFETCH(int, tunes);
        QFETCH(QString, suffix);
        QFETCH(bool, trashBold);
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        WorkspaceTree &tree = app.tree();
        Node *file = tree.addChild(tree.root(), "_file1", "[a.abc]", Pic::FileAbc);
        tree.addChild(file, "_file1_hdrFile", "", Pic::HdrFile);
        Node *body = tree.addChild(file, "_file1_bdyFile", "", Pic::BdyFile);
        for (int i = 1; i <= tunes; ++i) {
            tree.addChild(body, "_file1_tune" + QString::number(i), "", Pic::Tune);
            tree.addChild(tree.find("_file0_bdyFile"), "_file0_tune" + QString::number(i), "", Pic::Tune);
        }
        const auto expand = [&](QString text) {
            for (const char *k : {"<empty>", "<tune>", "<tunes>"})
                text.replace(QString::fromLatin1(k), app.text("Mainform", QString::fromLatin1(k)));
            return text;
        };
        CompterTunesDansFichier(app, "_file1");
        QCOMPARE(body->Text, app.text("MainForm", "<fileBody>") + " " + expand(suffix));
        CompterTunesDansFichier(app, "_file0");
        QCOMPARE(tree.find("_file0")->Text, app.text("Mainform", "<trashbox>") + " " + expand(suffix));
        QCOMPARE(tree.find("_file0")->Bold, trashBold);
    }

    // The view sees a consistent model through inserts, builds, removals and resets.
    void modelFollowsTree()
    {
        WorkspaceTree tree;
        TreeModel model(tree);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        Node *root = tree.add(nullptr, WorkspaceTree::Place::Child, "abc", "root", Pic::AbcRoot);
        QCOMPARE(model.rowCount(), 1);
        Node *file = tree.addChild(root, "_file1", "f", Pic::FileAbc);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        tree.beginBuild(file);
        Node *body = tree.addChild(file, "_file1_bdyFile", "b", Pic::BdyFile);
        for (int i = 0; i < 100; ++i)
            tree.addChild(body, "_file1_tune" + QString::number(i), "t", Pic::Tune);
        QCOMPARE(model.rowCount(model.indexOf(file)), 0);
        tree.endBuild(file);
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(model.rowCount(model.indexOf(body)), 100);
        tree.add(tree.find("_file1_tune50"), WorkspaceTree::Place::Previous, "x", "x", Pic::Tune);
        QCOMPARE(model.indexOf(tree.find("_file1_tune50")).row(), 51);
        tree.setText(tree.find("x"), "changed");
        QCOMPARE(model.data(model.indexOf(tree.find("x"))).toString(), QString("changed"));
        tree.removeChildren(body);
        tree.remove(file);
        QCOMPARE(model.rowCount(model.indexOf(root)), 0);
        tree.clear();
        QCOMPARE(model.rowCount(), 0);
    }

};

FENWORK_TEST(TestWorkspaceTree)
#include "tst_workspacetree.moc"
