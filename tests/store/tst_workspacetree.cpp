#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "store/treeops.h"
#include "store/widgets/treemodel.h"
#include "store/workspacetree.h"

#include <QAbstractItemModelTester>
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
