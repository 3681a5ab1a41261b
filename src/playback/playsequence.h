#pragma once
// Playing one tune after another: every tune of a file, the tunes the filter left, the start of
// each (the quick scan), or the working list with each item's repetitions. A small state machine
// moved on by the player's position and a timer for the pause between tunes, never by a waiting
// loop, so that the window stays live and tests run it in simulated time.
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>

namespace fenwork {

class ChoiceList;
class WorkspaceTree;

// What the sequence asks of the player.
struct PlaySequenceHost
{
    std::function<void()> begin;                     // before the first tune: looping goes off
    std::function<void(const QString &key)> select;  // selects and shows a tune
    std::function<void(int row)> showRow;            // the list's item now playing; optional
    std::function<void()> play;                      // presses Play for the selected tune
    std::function<void()> stop;                      // presses Stop
    std::function<bool()> loaded;                    // a tune is loaded in the player
    std::function<int()> position;                   // music time
    std::function<int()> length;
};

class PlaySequence : public QObject
{
    Q_OBJECT
public:
    enum class FileMode { All, Filtered, QuickScan };
    // Starting: the tune is being selected and made; Closing: the last pause before the list's Stop.
    enum class State { Idle, Starting, Playing, Pausing, Closing };
    static constexpr int kPauseMs = 500; // the silence between two tunes

    PlaySequence(const WorkspaceTree &tree, PlaySequenceHost host, QObject *parent = nullptr);

    // Plays the tunes of `fileKey` round and round from `currentKey` (or the first when that is
    // not one of them) until Stop. `nbRepeat` is the repeat setting: each tune sounds that often,
    // but in the quick scan. False, and nothing happens, when the file has no tune.
    bool playFile(FileMode mode, const QString &fileKey, const QString &currentKey, int nbRepeat);
    // Plays the list from its first item to its last, then stops. Items removed meanwhile are
    // passed over; when the one just played has gone, the run ends there.
    void playList(const ChoiceList &list);

    State state() const { return m_state; }
    bool isRunning() const { return m_state != State::Idle; }
    // The repeats for the tune being started, after its first pass; 0 outside a sequence.
    int repetitions() const { return m_repetitions; }

public slots:
    // The player's position may have moved: looks for the end of the tune.
    void positionMoved();
    // Stop ran, whoever pressed it: the sequence ends.
    void playerStopped();
    // The pause between tunes is over (the pause timer's slot).
    void pauseOver();

private:
    enum class Source { File, List };
    void startFileTune(const QString &key);
    void startListItem(int row);
    void startTune(const QString &key);
    void close();
    void finish();

    const WorkspaceTree &m_tree;
    PlaySequenceHost m_host;
    QTimer m_pause;
    State m_state = State::Idle;
    Source m_source = Source::File;
    FileMode m_mode = FileMode::All;
    int m_nbRepeat = 1;
    QPointer<const ChoiceList> m_list;
    QString m_key; // the tune now playing
    int m_repetitions = 0;
};

} // namespace fenwork
