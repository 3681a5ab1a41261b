#include "playback/widgets/playerpanel.h"

#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "frame/widgets/colours.h"
#include "playback/midiplayer.h"
#include "playback/playerlogic.h"
#include "playback/playsequence.h"
#include "playback/synthengine.h"
#include "playback/synthmidiout.h"
#include "playback/widgets/mixerpanel.h"
#include "playback/widgets/updown.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QSlider>
#include <QSplitter>
#include <QTextBlock>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <numeric>

namespace fenwork {

namespace {

const QString kTT = QStringLiteral("TTText");
const QString kMainForm = QStringLiteral("MainForm");


// The place in an LF text of a place in the same text with CR LF line ends.
qsizetype lfPosition(const QString &crlfText, qsizetype position)
{
    const qsizetype end = qMin(position, crlfText.size());
    qsizetype crs = 0;
    for (qsizetype i = 0; i < end; ++i)
        if (crlfText.at(i) == u'\r')
            ++crs;
    return position - crs;
}

} // namespace

PlayerHost PlayerHost::forEditor(QPlainTextEdit *editor)
{
    PlayerHost host;
    host.text = [editor] { return crlfLines(editor->toPlainText()); };
    host.selectedText = [editor] { return crlfLines(editor->textCursor().selectedText()); };
    host.caret = [editor] {
        const QTextCursor cursor = editor->textCursor();
        // Every line before the caret's gains a CR.
        return qsizetype(cursor.position() + cursor.block().blockNumber());
    };
    host.select = [editor](qsizetype start, qsizetype length) {
        const QString text = crlfLines(editor->toPlainText());
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(int(lfPosition(text, start)));
        cursor.setPosition(int(lfPosition(text, start + length)), QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
        editor->ensureCursorVisible();
    };
    return host;
}

PlayerPanel::PlayerPanel(AppContext &app, SynthEngine *engine, QWidget *parent)
    : QFrame(parent)
    , m_app(app)
    , m_engine(engine)
{
    setObjectName(QStringLiteral("pic_Player"));
    setFrameShape(QFrame::StyledPanel);
    setFocusPolicy(Qt::StrongFocus);
    if (!m_engine) {
        m_ownEngine = std::make_unique<SynthEngine>();
        m_engine = m_ownEngine.get();
    }
    m_engine->setSoundFontSetting(app.ini().get(keys::SoundFont));
    m_player = std::make_unique<MidiPlayer>(*m_engine);
    m_midiOut = std::make_unique<SynthMidiOut>(*m_engine);

    m_tmMidi = new QTimer(this);
    m_tmMidi->setObjectName(QStringLiteral("tm_Midi"));
    m_tmMidi->setInterval(100);
    connect(m_tmMidi, &QTimer::timeout, this, &PlayerPanel::tm_Midi_Timer);
    m_tmDelay = new QTimer(this);
    m_tmDelay->setObjectName(QStringLiteral("tm_Delay"));
    m_tmDelay->setInterval(1000);
    connect(m_tmDelay, &QTimer::timeout, this, &PlayerPanel::tm_Delay_Timer);

    buildControls();
    makeSequence();
    // Play is enabled where the selection allows it, while nothing plays.
    connect(&app.commands(), &CommandState::enabledChanged, this, [this](const QString &name, bool enabled) {
        if (name == u"bt_Midi1" && !m_performance)
            m_buttons[1]->setEnabled(enabled || !m_externalMidi.isEmpty());
    });
    m_buttons[1]->setEnabled(app.commands().isEnabled(QStringLiteral("bt_Midi1")));
    LoadLang();
    m_gm->setCurrentIndex(qBound(0, app.ini().getInt(keys::DefaultGM), 127));
    growToContents();

    // The synthesiser is made at the first Play (or drone, or keyboard note): with its samples
    // read as instruments are chosen, that takes a tenth of a second even for a large font, and
    // a run that never plays neither loads the font nor shares the start-up's two cores with
    // it. A missing sound device is told at that Play.
}

PlayerPanel::~PlayerPanel()
{
    m_sequence.reset();
    m_tmMidi->stop();
    m_tmDelay->stop();
    if (m_busy)
        m_app.ui().setBusy(false);
    // The drone sounds through our output: it goes while the output and the synthesiser stand.
    delete m_drone;
    m_drone = nullptr;
    m_midiOut.reset();
    m_player.reset();
}

MidiOut &PlayerPanel::midiOut() const
{
    return *m_midiOut;
}

void PlayerPanel::setHost(const PlayerHost &host)
{
    const PlayerHost old = m_host;
    m_host = host;
    // Parts left out keep what they were.
    if (!m_host.text)
        m_host.text = old.text;
    if (!m_host.selectedText)
        m_host.selectedText = old.selectedText;
    if (!m_host.caret)
        m_host.caret = old.caret;
    if (!m_host.select)
        m_host.select = old.select;
}

QToolButton *PlayerPanel::toggle(const QString &name, const QString &text, const QString &icon)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setCheckable(true);
    button->setAutoRaise(true);
    if (!icon.isEmpty() && QIcon::hasThemeIcon(icon))
        button->setIcon(QIcon::fromTheme(icon));
    else
        button->setText(text);
    return button;
}

void PlayerPanel::buildControls()
{
    m_column = new QVBoxLayout(this);
    m_column->setContentsMargins(4, 4, 4, 4);
    m_column->setSpacing(3);

    // Transport, previous and next, and the progress.
    auto *transport = new QHBoxLayout;
    transport->setSpacing(1);
    const char *icons[4]
        = { "media-skip-backward", "media-playback-start", "media-playback-stop", "media-playback-pause" };
    const char *glyphs[4] = { "|<", ">", "[]", "||" };
    for (int i = 0; i < 4; ++i) {
        m_buttons[i] = toggle(QStringLiteral("bt_Midi%1").arg(i), QString::fromLatin1(glyphs[i]),
            QString::fromLatin1(icons[i]));
        m_buttons[i]->setEnabled(false);
        connect(m_buttons[i], &QToolButton::toggled, this, [this, i](bool down) { bt_Midi_Click(i, down); });
        transport->addWidget(m_buttons[i]);
    }
    transport->addSpacing(4);
    const char *steps[2] = { "media-seek-backward", "media-seek-forward" };
    for (int i = 0; i < 2; ++i) {
        m_prevNext[i] = new QToolButton;
        m_prevNext[i]->setObjectName(QStringLiteral("bt_playNextPrev%1").arg(i));
        m_prevNext[i]->setAutoRaise(true);
        m_prevNext[i]->setIcon(QIcon::fromTheme(QString::fromLatin1(steps[i])));
        if (m_prevNext[i]->icon().isNull())
            m_prevNext[i]->setText(i == 0 ? QStringLiteral("<<") : QStringLiteral(">>"));
        connect(m_prevNext[i], &QToolButton::clicked, this, [this, i] { bt_playNextPrev_Click(i); });
        transport->addWidget(m_prevNext[i]);
    }
    transport->addSpacing(4);
    m_progress = new QSlider(Qt::Horizontal);
    m_progress->setObjectName(QStringLiteral("scr_Progr"));
    m_progress->setRange(0, 100);
    m_progress->setEnabled(false);
    m_progress->setFocusPolicy(Qt::StrongFocus);
    connect(m_progress, &QSlider::valueChanged, this, [this] {
        if (!m_progress->isSliderDown())
            scr_Progr_Change();
    });
    connect(m_progress, &QSlider::sliderReleased, this, [this] { scr_Progr_Change(); });
    transport->addWidget(m_progress, 1);
    m_column->addLayout(transport);

    // What plays.
    auto *caption = new QHBoxLayout;
    m_midiExt = new QLabel;
    m_midiExt->setObjectName(QStringLiteral("img_midiExt"));
    m_midiExt->setPixmap(QIcon::fromTheme(QStringLiteral("audio-midi")).pixmap(16, 16));
    m_midiExt->setVisible(false);
    caption->addWidget(m_midiExt);
    m_tunePlay = new QLabel(QStringLiteral("..."));
    m_tunePlay->setObjectName(QStringLiteral("lab_tunePlay"));
    m_tunePlay->setMinimumWidth(40);
    m_tunePlay->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    caption->addWidget(m_tunePlay, 1);
    m_column->addLayout(caption);

    // Tempo and volume, each a slider with its box.
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(1);
    m_tempoID = new QLabel;
    m_tempoID->setObjectName(QStringLiteral("lab_tempoID"));
    m_tempoID->setCursor(Qt::PointingHandCursor);
    m_tempoID->installEventFilter(this);
    m_volumeCaption = new QLabel;
    const int ranges[2][3] = { { 25, 300, 100 }, { 0, 100, 75 } };
    for (int i = 0; i < 2; ++i) {
        m_sliders[i] = new QSlider(Qt::Horizontal);
        m_sliders[i]->setObjectName(QStringLiteral("scr_Midi%1").arg(i));
        m_sliders[i]->setRange(ranges[i][0], ranges[i][1]);
        m_sliders[i]->setValue(ranges[i][2]);
        m_sliders[i]->setPageStep(10);
        connect(m_sliders[i], &QSlider::valueChanged, this, [this, i] { scr_Midi_Change(i); });
        m_boxes[i] = new QLineEdit(QString::number(ranges[i][2]));
        m_boxes[i]->setObjectName(QStringLiteral("txt_midi%1").arg(i));
        m_boxes[i]->setFixedWidth(m_boxes[i]->fontMetrics().horizontalAdvance(QStringLiteral("00000")) + 12);
        m_boxes[i]->setAlignment(Qt::AlignRight);
        connect(m_boxes[i], &QLineEdit::textEdited, this,
            [this, i](const QString &text) { txt_midi_Change(i, text); });
        grid->addWidget(i == 0 ? m_tempoID : m_volumeCaption, i, 0);
        grid->addWidget(m_sliders[i], i, 1);
        grid->addWidget(m_boxes[i], i, 2);
    }
    grid->setColumnStretch(1, 1);
    m_column->addLayout(grid);

    // Loop, count-down, transposition.
    auto *row = new QHBoxLayout;
    row->setSpacing(3);
    m_loop
        = toggle(QStringLiteral("chk_Loop"), QStringLiteral("Loop"), QStringLiteral("media-playlist-repeat"));
    connect(m_loop, &QToolButton::clicked, this, &PlayerPanel::chk_Loop_Click);
    row->addWidget(m_loop);
    row->addSpacing(6);
    m_delayCaption = new QLabel;
    row->addWidget(m_delayCaption);
    m_delay = new QLabel(QStringLiteral("0"));
    m_delay->setObjectName(QStringLiteral("lab_delay"));
    m_delay->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_delay->setMinimumWidth(m_delay->fontMetrics().horizontalAdvance(QStringLiteral("000")));
    QFont bold = m_delay->font();
    bold.setBold(true);
    m_delay->setFont(bold);
    setDelayColour(player::kCountedColour);
    row->addWidget(m_delay);
    m_delayUpDown = new UpDown;
    m_delayUpDown->setObjectName(QStringLiteral("ud_Delay"));
    m_delayUpDown->setRange(0, 99);
    connect(m_delayUpDown, &UpDown::changed, this, [this](int value, bool byUser) {
        m_delay->setText(QString::number(value));
        if (byUser)
            m_delayTag = value;
    });
    row->addWidget(m_delayUpDown);
    m_keepDelay = new QCheckBox(QStringLiteral("\u21BB"));
    m_keepDelay->setObjectName(QStringLiteral("chk_keepDelay"));
    connect(m_keepDelay, &QCheckBox::toggled, this, [this](bool on) {
        QPalette palette = m_keepDelay->palette();
        palette.setColor(
            QPalette::WindowText, on ? QColor(Qt::red) : this->palette().color(QPalette::WindowText));
        m_keepDelay->setPalette(palette);
    });
    row->addWidget(m_keepDelay);
    row->addStretch(1);
    m_pitch = new QLineEdit(QStringLiteral("0"));
    m_pitch->setObjectName(QStringLiteral("txt_pitchMain"));
    m_pitch->setFixedWidth(m_pitch->fontMetrics().horizontalAdvance(QStringLiteral("-000")) + 12);
    m_pitch->setAlignment(Qt::AlignRight);
    connect(m_pitch, &QLineEdit::textChanged, this, &PlayerPanel::txt_pitchMain_Change);
    row->addWidget(m_pitch);
    m_pitchUpDown = new UpDown;
    m_pitchUpDown->setObjectName(QStringLiteral("upd_pitchMain"));
    m_pitchUpDown->setRange(-1000, 1000);
    connect(m_pitchUpDown, &UpDown::stepped, this,
        [this](int step) { m_pitch->setText(QString::number(player::clampPitch(m_pitch->text()) + step)); });
    row->addWidget(m_pitchUpDown);
    m_column->addLayout(row);

    // The instrument.
    auto *instrument = new QHBoxLayout;
    instrument->setSpacing(2);
    m_gm = new QComboBox;
    m_gm->setObjectName(QStringLiteral("lst_GMplayer"));
    m_gm->setMaxVisibleItems(20);
    m_gm->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_gm->setMinimumContentsLength(10);
    connect(m_gm, &QComboBox::activated, this, &PlayerPanel::lst_GMplayer_Click);
    instrument->addWidget(m_gm, 1);
    m_gmDef = new QToolButton;
    m_gmDef->setObjectName(QStringLiteral("bt_gmDef"));
    m_gmDef->setAutoRaise(true);
    m_gmDef->setIcon(QIcon::fromTheme(QStringLiteral("edit-undo")));
    if (m_gmDef->icon().isNull())
        m_gmDef->setText(QStringLiteral("GM"));
    m_gmDef->installEventFilter(this);
    instrument->addWidget(m_gmDef);
    m_column->addLayout(instrument);

    // Listening options and the panels below.
    auto *options = new QHBoxLayout;
    options->setSpacing(1);
    m_noChords = toggle(QStringLiteral("chk_noChords"), QStringLiteral("\"C\""));
    m_noGrace = toggle(QStringLiteral("chk_noGrace"), QStringLiteral("{g}"));
    m_noRepeats = toggle(QStringLiteral("chk_noRepeats"), QStringLiteral("|: :|"));
    m_oneLine = toggle(
        QStringLiteral("chk_OneLine1"), QStringLiteral("1 line"), QStringLiteral("format-justify-left"));
    for (QToolButton *button : { m_noChords, m_noGrace, m_noRepeats, m_oneLine })
        options->addWidget(button);
    connect(m_noChords, &QToolButton::toggled, this, [this] { LoadLang(); });
    connect(m_noGrace, &QToolButton::toggled, this, [this] { LoadLang(); });
    options->addStretch(1);
    m_seeMix = toggle(QStringLiteral("chk_seeMix"), QString());
    m_seeMix->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_seeMix->setIcon(QIcon::fromTheme(QStringLiteral("audio-volume-high")));
    connect(m_seeMix, &QToolButton::toggled, this, &PlayerPanel::chk_seeMix_Click);
    options->addWidget(m_seeMix);
    m_column->addLayout(options);

    m_mixer = new MixerPanel;
    m_mixer->setVisible(false);
    connect(m_mixer, &MixerPanel::volumeChanged, this, &PlayerPanel::scr_Mix_Change);
    m_column->addWidget(m_mixer);
    m_column->addStretch(1);
}

void PlayerPanel::setDronePanel(QWidget *panel)
{
    if (!panel || m_drone)
        return;
    m_drone = panel;
    m_drone->setVisible(false);
    m_column->insertWidget(m_column->indexOf(m_mixer) + 1, m_drone);
    m_seeDrone = toggle(QStringLiteral("chk_seeDrone"), QString());
    m_seeDrone->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_seeDrone->setIcon(QIcon::fromTheme(QStringLiteral("audio-speakers")));
    if (auto *options
        = qobject_cast<QHBoxLayout *>(m_column->itemAt(m_column->indexOf(m_mixer) - 1)->layout()))
        options->addWidget(m_seeDrone);
    connect(m_seeDrone, &QToolButton::toggled, this, [this](bool shown) {
        m_drone->setVisible(shown);
        if (shown)
            m_drone->raise();
        setFocus();
        growToContents();
    });
    // A drone that refuses to start clears the box that shows it.
    if (panel->metaObject()->indexOfSignal("seeDroneCleared()") >= 0)
        connect(panel, SIGNAL(seeDroneCleared()), m_seeDrone, SLOT(toggle()));
    LoadLang();
}

void PlayerPanel::LoadLang()
{
    const Language &lang = m_app.lang();
    const auto tt = [&lang](const char *key) { return lang.text(kTT, QString::fromLatin1(key)); };
    const char *tips[4] = { "<rewind>", "<play>", "<stop>", "<pause>" };
    for (int i = 0; i < 4; ++i)
        m_buttons[i]->setToolTip(tt(tips[i]));
    m_prevNext[0]->setToolTip(lang.text(kMainForm, QStringLiteral("<prevTune>")));
    m_prevNext[1]->setToolTip(lang.text(kMainForm, QStringLiteral("<nextTune>")));
    m_tempoID->setText(lang.text(kMainForm, QStringLiteral("<tempo>")));
    m_volumeCaption->setText(lang.text(kMainForm, QStringLiteral("<volume>")));
    m_delayCaption->setText(lang.text(kMainForm, QStringLiteral("<delay>")));
    m_loop->setToolTip(tt("<loopPlaying>"));
    m_delay->setToolTip(tt("<delay>"));
    m_delayUpDown->setToolTip(tt("<delay>"));
    m_keepDelay->setToolTip(tt("<keepDelay>"));
    m_noChords->setToolTip(tt(m_noChords->isChecked() ? "<noChords>" : "<contChord>"));
    m_noGrace->setToolTip(tt(m_noGrace->isChecked() ? "<noGrace>" : "<contGrace>"));
    m_noRepeats->setToolTip(tt("<noRepeats>"));
    m_oneLine->setToolTip(tt("<playOneLine>"));
    m_gmDef->setToolTip(tt("<gmDef>"));
    m_gm->setToolTip(tt("<gmDef>"));
    m_seeMix->setText(lang.text(kMainForm, QStringLiteral("<voiceMixer>")));
    m_seeMix->setToolTip(tt("<seeWinVol>"));
    if (m_seeDrone) {
        m_seeDrone->setText(lang.text(kMainForm, QStringLiteral("<droneGen>")));
        m_seeDrone->setToolTip(tt("<seeDrone>"));
    }
    const int index = m_gm->currentIndex();
    const QStringList names = player::gmInstrumentNames(lang);
    m_gm->clear();
    for (int i = 0; i < names.size(); ++i)
        m_gm->addItem(QStringLiteral("%1 %2").arg(i, 3).arg(names.at(i)));
    m_gm->setCurrentIndex(qMax(0, index));
}

void PlayerPanel::growToContents()
{
    const int wanted = sizeHint().height();
    setMaximumHeight(m_mixer->isVisible() || (m_drone && m_drone->isVisible()) ? QWIDGETSIZE_MAX : wanted);
    auto *splitter = qobject_cast<QSplitter *>(parentWidget());
    if (!splitter)
        return;
    const int at = splitter->indexOf(this);
    QList<int> sizes = splitter->sizes();
    if (at < 0 || at >= sizes.size() || sizes.at(at) == wanted)
        return;
    const int total = std::accumulate(sizes.begin(), sizes.end(), 0);
    sizes[at] = qMin(wanted, total - 100);
    int others = 0;
    for (int i = 0; i < sizes.size(); ++i)
        if (i != at)
            ++others;
    const int left = total - sizes.at(at);
    for (int i = 0; i < sizes.size(); ++i)
        if (i != at)
            sizes[i] = left / qMax(1, others);
    splitter->setSizes(sizes);
}

bool PlayerPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (watched == m_tempoID) {
            if (m_sliders[0]->value() == 100)
                scr_Midi_Change(0);
            else
                m_sliders[0]->setValue(100);
            return true;
        }
        if (watched == m_gmDef && m_gmDef->rect().contains(mouse->position().toPoint())) {
            bt_gmDef_Click(mouse->button() == Qt::RightButton);
            m_gmDef->setDown(false);
            return true;
        }
    }
    return QFrame::eventFilter(watched, event);
}

void PlayerPanel::setNextPrevEnabled(bool enabled)
{
    for (QToolButton *button : m_prevNext)
        button->setEnabled(enabled);
}

void PlayerPanel::setOneLineShown(bool shown)
{
    m_oneLine->setChecked(false);
    m_oneLine->setVisible(shown);
}

} // namespace fenwork
