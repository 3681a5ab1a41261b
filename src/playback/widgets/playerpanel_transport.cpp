// The player panel's transport: the press of Play down to the first note, pause, stop, the
// progress, seeking, and the sequences (a whole file, the choice list, an outside MIDI file).
#include "playback/widgets/playerpanel.h"

#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"
#include "frame/userdialogs.h"
#include "playback/midiplayer.h"
#include "playback/playerlogic.h"
#include "playback/playprep.h"
#include "playback/playsequence.h"
#include "playback/synthengine.h"
#include "playback/widgets/mixerpanel.h"
#include "playback/widgets/updown.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "collections/choicelist.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>
#include <QThread>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace fenwork {

namespace {

const QString kMsg = QStringLiteral("Msg");
const QString kContext = QStringLiteral("BtMidiClick");

} // namespace

void PlayerPanel::setButtonQuietly(int index, bool down)
{
    const QSignalBlocker block(m_buttons[index]);
    m_buttons[index]->setChecked(down);
}

void PlayerPanel::pressPlay()
{
    m_tmMidi->stop();
    // Play may be down already (the next tune of a sequence): the event is raised all the same.
    setButtonQuietly(1, true);
    bt_Midi_Click(1, true);
}

void PlayerPanel::pressStop()
{
    if (m_buttons[2]->isChecked())
        bt_Midi_Click(2, true);
    else
        m_buttons[2]->setChecked(true);
}

void PlayerPanel::setBusy(bool busy)
{
    if (busy == m_busy)
        return;
    m_busy = busy;
    m_app.ui().setBusy(busy);
}

// Lets events run for a while, so that the timers and the Stop button work during the waits.
// Events and short sleeps rather than a local event loop: a local loop returns at once, and the
// wait would spin, once the application has been told to quit.
void PlayerPanel::waitEvents(int ms)
{
    QDeadlineTimer deadline(ms);
    do {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QThread::msleep(ulong(std::clamp<qint64>(deadline.remainingTime(), 0, 5)));
    } while (!deadline.hasExpired());
}

void PlayerPanel::bt_Midi_Click(int index, bool value)
{
    switch (index) {
    case 0:
        if (!value)
            return;
        setButtonQuietly(0, false);
        m_buttons[1]->setChecked(true);
        m_progress->setFocus();
        {
            const QSignalBlocker block(m_progress);
            m_progress->setValue(m_progress->minimum());
        }
        scr_Progr_Change(true);
        return;
    case 1:
        if (value && !m_guardProgramPress) {
            m_guardProgramPress = false;
            m_guardStopped = false;
            runPlay();
        } else if (!value && !m_guardStopped) {
            // Only Stop ends playing: a release of Play is undone.
            m_guardProgramPress = true;
            m_buttons[1]->setChecked(true);
        } else if (value) {
            m_guardProgramPress = false;
        }
        return;
    case 2:
        if (value)
            doStop();
        return;
    case 3:
        pause(value);
        return;
    default:
        return;
    }
}

void PlayerPanel::pause(bool down)
{
    if (down) {
        if (!m_player->isLoaded())
            return;
        m_player->stop();
        m_pausePosition = m_player->position();
        m_paused = true;
        m_tmMidi->stop();
    } else if (!m_guardStopped) {
        m_player->setStartPoint(m_pausePosition);
        m_player->play();
        m_paused = false;
        m_tmMidi->start();
    }
}

void PlayerPanel::doStop()
{
    emit stopped();
    m_paused = false;
    for (QToolButton *option : { m_noGrace, m_noChords, m_noRepeats })
        option->setEnabled(true);
    m_mixer->setSlidersEnabled(false);
    m_player->unload();
    m_performance = false;
    if (m_soundFontPending) {
        m_soundFontPending = false;
        m_engine->reloadSoundFont();
    }
    m_progress->setEnabled(false);
    m_tmMidi->stop();
    {
        const QSignalBlocker block(m_progress);
        m_progress->setValue(m_progress->minimum());
    }
    const QDir cache(m_app.paths().cacheFolder());
    QFile::remove(cache.filePath(QStringLiteral("tmp.abc")));
    QFile::remove(cache.filePath(QStringLiteral("tmp.mid")));
    for (int i : { 0, 2, 3 })
        m_buttons[i]->setEnabled(false);
    m_buttons[1]->setEnabled(m_app.commands().isEnabled(QStringLiteral("bt_Midi1")));
    m_guardStopped = true;
    if (m_buttons[3]->isChecked())
        m_buttons[3]->setChecked(false);
    m_buttons[1]->setChecked(false);
    m_tunePlay->setText(QStringLiteral("..."));
    m_midiExt->setVisible(false);
    m_externalMidi.clear();
    m_nominalTempo = QStringLiteral("100");
    m_notPlaying.invalidate();
    setBusy(false);
    ++m_stops;
    m_sequence->playerStopped();
}

void PlayerPanel::prepareCountDown()
{
    if (m_delay->text() != u"0") {
        m_tmDelay->start();
        setDelayColour(player::kCountingColour);
    } else if (m_keepDelay->isChecked()) {
        if (m_delayTag != 0) {
            m_delayUpDown->setValue(m_delayTag);
            m_delay->setText(QString::number(m_delayTag));
            m_tmDelay->start();
            setDelayColour(player::kCountingColour);
        }
    } else {
        setBusy(true);
    }
}

void PlayerPanel::runPlay()
{
    const quint64 stops = m_stops;
    // Stop stays down from the last stop until a new play; the options hold during the run.
    setButtonQuietly(2, false);
    m_buttons[2]->setEnabled(true);
    for (QToolButton *option : { m_noGrace, m_noChords, m_noRepeats })
        option->setEnabled(false);
    m_mixer->setSlidersEnabled(true);

    const QString cache = m_app.paths().cacheFolder();
    QString midiPath;
    for (int attempt = 1;; ++attempt) {
        QString answer;
        if (!m_externalMidi.isEmpty()) {
            // An outside MIDI file skips every listening option.
            midiPath = m_externalMidi;
            m_nominalTempo = QString::number(m_app.ini().getInt(keys::TempoDef));
            m_tunePlay->setText(QStringLiteral("  ") + QFileInfo(midiPath).fileName());
            m_player->unload();
            m_performance = true;
            answer = m_app.tools().WaitForDispo(midiPath, 6000);
        } else {
            prepareCountDown();
            const Node *tune = m_app.tree().find(m_app.selection().tuneKey());
            m_tunePlay->setText(tune ? tune->Text : QString());

            PlayInput input;
            input.text = m_host.text ? m_host.text() : QString();
            const QString selectedKey
                = m_host.selectedNodeKey ? m_host.selectedNodeKey() : m_app.selection().tuneKey();
            if (!selectedKey.contains(u"hdrTune") && m_host.selectedText)
                input.selection = m_host.selectedText();
            if (m_oneLine->isChecked())
                input.currentLineTune = m_host.currentLineTune
                    ? m_host.currentLineTune()
                    : player::currentLineAsTune(input.text, m_host.caret ? m_host.caret() : 0);
            if (!m_app.selection().fileKey().isEmpty())
                input.fileHeader = m_app.store().GetStringHdrFile(m_app.selection().fileKey(), false);
            input.tempoDef = m_app.ini().get(keys::TempoDef);
            PlayOptions options;
            options.noChords = m_noChords->isChecked();
            options.noGrace = m_noGrace->isChecked();
            options.noRepeats = m_noRepeats->isChecked();
            options.oneLine = m_oneLine->isChecked();
            options.gmProgram = m_gm->currentIndex();
            const PlayText prepared = preparePlayText(input, options);
            if (prepared.oneVoiceRefused) {
                setBusy(false);
                if (m_host.select && prepared.voicePos >= 0)
                    m_host.select(
                        prepared.voicePos, qMax<qsizetype>(0, prepared.voiceLineEnd - prepared.voicePos));
                m_app.ui().message(
                    m_app.text(kMsg, QStringLiteral("<oneVfield>")), UserDialogs::Icon::Warning);
                pressStop();
                return;
            }
            if (!prepared.nominalTempo.isEmpty())
                m_nominalTempo = prepared.nominalTempo;
            if (prepared.tempoTo100)
                m_sliders[0]->setValue(100);
            midiPath = QDir(cache).filePath(QStringLiteral("tmp.mid"));
            // Setting up the run: the last tune goes before the next is made.
            m_player->unload();
            m_performance = true;
            if (const QString missing = missingToolText(m_app, Tool::Abc2midi); !missing.isEmpty()) {
                // Nothing in the tune's text can mend a missing converter: no retry, no "check it".
                m_app.ui().message(missing, UserDialogs::Icon::Warning);
                setBusy(false);
                pressStop();
                return;
            }
            answer = convertToMidi(m_app, prepared.text);
        }
        if (m_stops != stops)
            return; // Stop was pressed while the tune was being made
        if (answer.isEmpty())
            break;
        if (attempt >= 2) {
            m_app.ui().message(answer + CRLF + CRLF + m_app.text(kMsg, QStringLiteral("<playError>")),
                UserDialogs::Icon::Warning);
            setBusy(false);
            pressStop();
            m_app.ui().processEvents();
            return;
        }
    }
    startPlaying(midiPath, stops);
}

bool PlayerPanel::startPlaying(const QString &midiPath, quint64 stops)
{
    QString error;
    if (!m_player->load(midiPath, &error)) {
        setBusy(false);
        const bool noSound = !m_engine->isStarted();
        m_app.ui().contextError(kContext,
            m_app.text(kMsg, noSound ? QStringLiteral("<noSoundFont>") : QStringLiteral("<badMidi>")) + CRLF
                + error);
        pressStop();
        return false;
    }
    reportOutputOnce();
    m_player->setRepeats(m_loop->isChecked() ? -1 : m_sequence->repetitions());
    m_player->programChange(0, m_gm->currentIndex());
    scr_Midi_Change(0);
    scr_Midi_Change(1);
    txt_pitchMain_Change();

    // The count-down holds the start.
    while (m_delay->text() != u"0") {
        waitEvents(20);
        if (m_stops != stops)
            break;
    }
    if (m_stops != stops)
        return false;

    if (!m_player->play()) {
        setBusy(false);
        m_app.ui().contextError(kContext, SynthEngine::lastLibraryError());
        pressStop();
        return false;
    }
    setBusy(false);
    m_pausePosition = 0;
    for (int i : { 0, 2, 3 })
        m_buttons[i]->setEnabled(true);
    m_progress->setEnabled(true);
    {
        const QSignalBlocker block(m_progress);
        m_progress->setMaximum(qMax(1, player::progressMaximum(m_player->length())));
    }
    m_notPlaying.invalidate();
    m_tmMidi->start();
    return true;
}

void PlayerPanel::reportOutputOnce()
{
    if (m_outputReported || !m_engine->isStarted())
        return;
    m_outputReported = true;
    if (!m_engine->soundFontNote().isEmpty())
        m_app.ui().statusMessage(m_engine->soundFontNote());
    if (m_engine->silentOutput())
        m_app.ui().statusMessage(m_app.text(kMsg, QStringLiteral("<noAudio>")));
}

void PlayerPanel::tm_Midi_Timer()
{
    m_sequence->positionMoved();
    // The position is not drawn while the user holds the slider.
    if (m_progress->isSliderDown() || m_progress->hasFocus() || !m_player->isLoaded())
        return;
    {
        const QSignalBlocker block(m_progress);
        m_progress->setValue(
            player::progressValue(m_player->position(), m_player->length(), m_progress->maximum()));
    }
    // The end of a tune is told by this timer alone, with half a second's grace; between the
    // tunes of a sequence the sequence moves on or stops by itself.
    const PlaySequence::State step = m_sequence->state();
    if (m_player->isPlaying() || step == PlaySequence::State::Pausing || step == PlaySequence::State::Closing) {
        m_notPlaying.invalidate();
    } else if (!m_notPlaying.isValid()) {
        m_notPlaying.start();
    } else if (m_notPlaying.elapsed() >= 500) {
        m_notPlaying.invalidate();
        pressStop();
    }
}

void PlayerPanel::scr_Progr_Change(bool always)
{
    // Only the user's moves seek: the timer's are not.
    if ((!always && !m_progress->hasFocus()) || !m_player->isLoaded())
        return;
    const int target = player::seekPosition(m_progress->value(), m_progress->maximum(), m_player->length());
    if (m_paused) {
        m_pausePosition = target;
    } else {
        m_player->setStartPoint(target);
        m_player->play();
        m_notPlaying.invalidate();
    }
    setFocus();
}

// The window closing ends every wait of the panel, so that the quit is not held up by a tune.
void PlayerPanel::hideEvent(QHideEvent *event)
{
    QFrame::hideEvent(event);
    if (!event->spontaneous() && !window()->isVisible() && (m_performance || m_busy))
        pressStop();
}

void PlayerPanel::mnu_playTune()
{
    {
        const QSignalBlocker block(m_progress);
        m_progress->setValue(m_progress->minimum());
    }
    if (!m_performance)
        pressPlay();
    else
        pressStop();
}

void PlayerPanel::bt_playNextPrev_Click(int index)
{
    setFocus();
    if (m_app.selection().tuneKey().isEmpty())
        return;
    pressStop();
    const Node *tune = m_app.tree().find(m_app.selection().tuneKey());
    const Node *sibling = tune ? (index == 0 ? tune->previousSibling() : tune->nextSibling()) : nullptr;
    if (!sibling || !m_host.selectNode)
        return;
    m_host.selectNode(sibling->Key);
    QCoreApplication::processEvents();
    mnu_playTune();
}

void PlayerPanel::makeSequence()
{
    PlaySequenceHost host;
    host.begin = [this] {
        const QSignalBlocker block(m_loop);
        m_loop->setChecked(false);
    };
    host.select = [this](const QString &key) {
        if (m_host.selectNode)
            m_host.selectNode(key);
        QCoreApplication::processEvents();
        const QSignalBlocker block(m_progress);
        m_progress->setValue(m_progress->minimum());
    };
    host.showRow = [this](int row) {
        if (m_host.showChoiceRow)
            m_host.showChoiceRow(row);
    };
    host.play = [this] { pressPlay(); };
    host.stop = [this] { pressStop(); };
    host.loaded = [this] { return m_player->isLoaded(); };
    host.position = [this] { return m_player->position(); };
    host.length = [this] { return m_player->length(); };
    m_sequence = std::make_unique<PlaySequence>(m_app.tree(), std::move(host));
}

void PlayerPanel::mnu_PlayFile(int index)
{
    if (!m_host.selectNode)
        return;
    m_sequence->playFile(PlaySequence::FileMode(std::clamp(index, 0, 2)), m_app.selection().fileKey(),
        m_app.selection().tuneKey(), m_app.ini().getInt(keys::NbRepeat));
}

void PlayerPanel::bt_playLst_Click()
{
    if (!m_host.choiceList || m_host.choiceList->isEmpty()) {
        m_app.ui().message(
            m_app.text(kMsg, QStringLiteral("<emptyChoiceLst>")), UserDialogs::Icon::Information);
        return;
    }
    mnu_playLst();
}

void PlayerPanel::mnu_playLst()
{
    if (m_host.choiceList)
        m_sequence->playList(*m_host.choiceList);
}

void PlayerPanel::mnu_midiExt()
{
    const QString path = m_app.ui().openFileName(m_app.text(kMsg, QStringLiteral("<openMidiFile>")),
        m_app.ini().get(keys::DirDef),
        { m_app.text(kMsg, QStringLiteral("<midiFile>")) + QStringLiteral(" (*.mid *.midi)") });
    if (!path.isEmpty())
        playMidiFile(path);
}

void PlayerPanel::playMidiFile(const QString &path)
{
    m_externalMidi = path;
    m_midiExt->setVisible(true);
    m_midiExt->setToolTip(path);
    m_buttons[1]->setEnabled(true);
    {
        const QSignalBlocker block(m_progress);
        m_progress->setValue(m_progress->minimum());
    }
    pressPlay();
}

} // namespace fenwork
