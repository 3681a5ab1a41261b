// Tune after tune in simulated time: a fake player advances 600 music-time units every 100 ms
// tick, and the pause timer is stood in for by the same clock. Each run is written as a timeline
// of plays ("B@1000", "Cx1@..." for one repeat) and stops.
#include "testmain.h"

#include "collections/choicelist.h"
#include "playback/playsequence.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QTest>

using namespace fenwork;

namespace {

constexpr int kTick = 100;
constexpr int kStep = 600; // music time per tick
constexpr int kLimit = 8000;

const QString kFile = QStringLiteral("F1");

// Tunes are written "A B- C!": '-' greyed out by the filter, '!' refused by the player.
class Sim
{
public:
    Sim(const QString &tunes, int length)
        : m_length(length)
    {
        Node *root = tree.add(nullptr, WorkspaceTree::Place::Child, key::Root, QString(), Pic::AbcRoot);
        Node *body = tree.addChild(root, kFile + key::BdyFile, QString(), Pic::BdyFile);
        for (QString name : tunes.split(u' ', Qt::SkipEmptyParts)) {
            const bool grey = name.endsWith(u'-');
            if (name.endsWith(u'!'))
                m_refused.append(name.chopped(1));
            if (grey || name.endsWith(u'!'))
                name.chop(1);
            Node *node = tree.addChild(body, name, name, Pic::Tune);
            if (grey)
                node->ForeColor = 0xDCDCDC;
        }
        PlaySequenceHost host;
        host.select = [this](const QString &key) {
            m_selected = key;
            // Events run while a tune is selected: the last tune still stands at its end.
            sequence->positionMoved();
        };
        host.play = [this] { play(); };
        host.stop = [this] { stop(); };
        host.loaded = [this] { return m_loaded; };
        host.position = [this] {
            return m_played >= m_length * (m_repeats + 1) ? m_length : m_played % m_length;
        };
        host.length = [this] { return m_length; };
        sequence = std::make_unique<PlaySequence>(tree, host);
    }

    // Runs the clock: the user stops at `stopAt`, `removed` leaves the tree and the list at `removeAt`.
    void run(int stopAt, const QString &removed, int removeAt)
    {
        for (m_time = 0; m_time < kLimit;) {
            m_time += kTick;
            if (m_time == removeAt) {
                if (Node *node = tree.find(removed))
                    tree.remove(node);
                if (const int row = list.indexOf(removed); row >= 0)
                    list.removeAt(row);
            }
            if (m_time == stopAt)
                stop();
            const auto state = sequence->state();
            if (state == PlaySequence::State::Pausing || state == PlaySequence::State::Closing) {
                m_paused += kTick;
                if (m_paused >= PlaySequence::kPauseMs) {
                    m_paused = 0;
                    sequence->pauseOver();
                }
            } else if (m_loaded) {
                m_played += kStep;
                sequence->positionMoved();
            }
        }
    }

    WorkspaceTree tree;
    ChoiceList list;
    std::unique_ptr<PlaySequence> sequence;
    QStringList log;

private:
    void play()
    {
        m_repeats = sequence->repetitions();
        log.append(m_selected + (m_repeats > 0 ? QStringLiteral("x%1").arg(m_repeats) : QString())
            + QStringLiteral("@%1").arg(m_time));
        if (m_refused.contains(m_selected)) {
            stop();
            return;
        }
        m_loaded = true;
        m_played = 0;
    }
    void stop()
    {
        log.append(QStringLiteral("stop@%1").arg(m_time));
        m_loaded = false;
        sequence->playerStopped();
    }

    int m_length;
    QStringList m_refused;
    QString m_selected;
    bool m_loaded = false;
    int m_played = 0;
    int m_repeats = 0;
    int m_time = 0;
    int m_paused = 0;
};

} // namespace

class TestPlaySequence : public QObject
{
    Q_OBJECT

private slots:
    // A tune of 3000 lasts 500 ms; with the pause, tunes start a second apart.
    void timeline_data()
    {
        QTest::addColumn<QString>("mode"); // all, filtered, scan or a list "A Cx2" (x: repetitions)
        QTest::addColumn<QString>("tunes");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("current");
        QTest::addColumn<int>("nbRepeat");
        QTest::addColumn<int>("stopAt");
        QTest::addColumn<QString>("removed");
        QTest::addColumn<int>("removeAt");
        QTest::addColumn<QString>("expected");

        QTest::newRow("all: from the current tune, round the file")
            << "all" << "A B C" << 3000 << "B" << 1 << 3200 << "" << -1
            << "B@0 C@1000 A@2000 B@3000 stop@3200";
        QTest::newRow("all: current tune not in the file, from the first")
            << "all" << "A B C" << 3000 << "Z" << 1 << 2200 << "" << -1 << "A@0 B@1000 C@2000 stop@2200";
        QTest::newRow("all: the repeat setting")
            << "all" << "A B" << 3000 << "A" << 2 << 1700 << "" << -1 << "Ax1@0 Bx1@1500 stop@1700";
        QTest::newRow("filtered: grey tunes passed over, round the file")
            << "filtered" << "A B- C" << 3000 << "C" << 1 << 2100 << "" << -1 << "C@0 A@1000 C@2000 stop@2100";
        QTest::newRow("filtered: a grey current tune starts at the next")
            << "filtered" << "A B- C" << 3000 << "B" << 1 << 1100 << "" << -1 << "C@0 A@1000 stop@1100";
        QTest::newRow("filtered: every tune grey, nothing plays")
            << "filtered" << "A- B-" << 3000 << "A" << 1 << -1 << "" << -1 << "";
        QTest::newRow("scan: the start of each, repeat setting ignored")
            << "scan" << "A B" << 20000 << "A" << 3 << 3300 << "" << -1 << "A@0 B@1600 A@3200 stop@3300";
        QTest::newRow("scan: a short tune plays to its end")
            << "scan" << "A B" << 3000 << "A" << 1 << 1100 << "" << -1 << "A@0 B@1000 stop@1100";
        QTest::newRow("stop in a tune") << "all" << "A B" << 3000 << "A" << 1 << 300 << "" << -1 << "A@0 stop@300";
        QTest::newRow("stop in the pause") << "all" << "A B" << 3000 << "A" << 1 << 700 << "" << -1 << "A@0 stop@700";
        QTest::newRow("a tune the player refuses ends the run")
            << "all" << "A B! C" << 3000 << "A" << 1 << -1 << "" << -1 << "A@0 B@1000 stop@1000";
        QTest::newRow("the playing tune leaves the file: the run ends")
            << "all" << "A B" << 3000 << "A" << 1 << -1 << "A" << 300 << "A@0";
        QTest::newRow("the next tune leaves the file: passed over")
            << "all" << "A B C" << 3000 << "A" << 1 << 2200 << "B" << 300 << "A@0 C@1000 A@2000 stop@2200";

        QTest::newRow("list: in order, each with its repetitions, stop a pause after the last")
            << "A Cx2 B" << "" << 3000 << "" << 1 << -1 << "" << -1 << "A@0 Cx1@1000 B@2500 stop@4000";
        QTest::newRow("list: empty") << "" << "" << 3000 << "" << 1 << -1 << "" << -1 << "stop@500";
        QTest::newRow("list: the playing item removed, the run ends")
            << "A B C" << "" << 3000 << "" << 1 << -1 << "A" << 300 << "A@0 stop@1500";
        QTest::newRow("list: the next item removed, passed over")
            << "A B C" << "" << 3000 << "" << 1 << -1 << "B" << 300 << "A@0 C@1000 stop@2500";
        QTest::newRow("list: stop in the middle")
            << "A B C" << "" << 3000 << "" << 1 << 1200 << "" << -1 << "A@0 B@1000 stop@1200";
    }

    void timeline()
    {
        QFETCH(QString, mode);
        QFETCH(QString, tunes);
        QFETCH(int, length);
        QFETCH(QString, current);
        QFETCH(int, nbRepeat);
        QFETCH(int, stopAt);
        QFETCH(QString, removed);
        QFETCH(int, removeAt);
        QFETCH(QString, expected);

        Sim sim(tunes, length);
        const QStringList fileModes { QStringLiteral("all"), QStringLiteral("filtered"), QStringLiteral("scan") };
        if (const int index = fileModes.indexOf(mode); index >= 0) {
            QVERIFY(sim.sequence->playFile(PlaySequence::FileMode(index), kFile, current, nbRepeat));
        } else {
            for (const QString &item : mode.split(u' ', Qt::SkipEmptyParts)) {
                const QStringList parts = item.split(u'x');
                sim.list.add(parts.first(), parts.first());
                if (parts.size() > 1)
                    sim.list.setRepetitions(sim.list.count() - 1, parts.last().toInt());
            }
            sim.sequence->playList(sim.list);
        }
        sim.run(stopAt, removed, removeAt);
        QCOMPARE(sim.log.join(u' '), expected);
        QVERIFY(!sim.sequence->isRunning());
        QCOMPARE(sim.sequence->repetitions(), 0);
    }

    void fileWithoutTunes()
    {
        Sim sim(QString(), 3000);
        QVERIFY(!sim.sequence->playFile(PlaySequence::FileMode::All, kFile, QString(), 1));
        QVERIFY(!sim.sequence->playFile(PlaySequence::FileMode::All, QStringLiteral("F9"), QString(), 1));
        QVERIFY(!sim.sequence->isRunning());
    }
};

FENWORK_TEST(TestPlaySequence)
#include "tst_playsequence.moc"
