#include "playback/widgets/dronepanel.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/strutil.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/userdialogs.h"
#include "frame/widgets/presetnamebox.h"
#include "frame/widgets/icons.h"
#include "playback/drone.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>
#include <QVBoxLayout>

namespace fenwork {

namespace {

const QString kMainForm = QStringLiteral("MainForm");
const QString kTTText = QStringLiteral("TTText");
const QString kMsg = QStringLiteral("Msg");
constexpr int kGmCount = 128;

QString voiceName(const char *base, int voice)
{
    return QString::fromLatin1(base) + QString::number(voice);
}

} // namespace

DronePanel::DronePanel(AppContext &app, MidiOut &out, QWidget *parent)
    : QWidget(parent)
    , m_app(app)
    , m_drone(std::make_unique<Drone>(app, out))
{
    setObjectName(QStringLiteral("pic_drone"));
    const QString programFolder = app.paths().programFolder();
    auto *whole = new QVBoxLayout(this);
    whole->setContentsMargins(4, 4, 4, 4);
    whole->setSpacing(4);

    // Switch and master volume.
    auto *top = new QHBoxLayout;
    m_bourdon = new QCheckBox(this);
    m_bourdon->setObjectName(QStringLiteral("chk_Bourdon"));
    connect(m_bourdon, &QCheckBox::toggled, this, &DronePanel::chk_Bourdon_Click);
    top->addWidget(m_bourdon);
    m_droneVol = new QSlider(Qt::Horizontal, this);
    m_droneVol->setObjectName(QStringLiteral("sl_droneVol"));
    m_droneVol->setRange(0, 100);
    m_droneVol->setValue(100);
    connect(m_droneVol, &QSlider::valueChanged, this, [this](int percent) {
        if (!m_showing)
            m_drone->setMasterVolume(percent);
    });
    top->addWidget(m_droneVol, 1);
    whole->addLayout(top);

    // Pitch box with its arrows, the lowering box and the link box.
    auto *pitchRow = new QHBoxLayout;
    pitchRow->setSpacing(2);
    m_pitchDrone = new QLineEdit(QStringLiteral("0"), this);
    m_pitchDrone->setObjectName(QStringLiteral("txt_pitchDrone"));
    m_pitchDrone->setAlignment(Qt::AlignRight);
    m_pitchDrone->setMaximumWidth(m_pitchDrone->fontMetrics().horizontalAdvance(QStringLiteral("-000")) + 12);
    connect(m_pitchDrone, &QLineEdit::textChanged, this, &DronePanel::pitchTextChanged);
    pitchRow->addWidget(m_pitchDrone);
    m_updPitch = new QWidget(this);
    m_updPitch->setObjectName(QStringLiteral("upd_pitchDrone"));
    auto *arrows = new QVBoxLayout(m_updPitch);
    arrows->setContentsMargins(0, 0, 0, 0);
    arrows->setSpacing(0);
    m_pitchUp = new QToolButton(m_updPitch);
    m_pitchUp->setArrowType(Qt::UpArrow);
    m_pitchDown = new QToolButton(m_updPitch);
    m_pitchDown->setArrowType(Qt::DownArrow);
    const int arrowHeight = m_pitchDrone->sizeHint().height() / 2;
    for (QToolButton *arrow : { m_pitchUp, m_pitchDown }) {
        arrow->setAutoRepeat(true);
        arrow->setFixedSize(arrowHeight + 4, arrowHeight);
        arrows->addWidget(arrow);
    }
    connect(m_pitchUp, &QToolButton::clicked, this, [this] { stepPitch(1); });
    connect(m_pitchDown, &QToolButton::clicked, this, [this] { stepPitch(-1); });
    pitchRow->addWidget(m_updPitch);
    pitchRow->addSpacing(6);
    // The only caption a number can give: what the box does to the pitch.
    m_pitch = new QCheckBox(QStringLiteral("-2"), this);
    m_pitch->setObjectName(QStringLiteral("chk_pitch"));
    connect(m_pitch, &QCheckBox::clicked, this, [this](bool lowered) {
        m_drone->setLowered(lowered);
        showState();
    });
    pitchRow->addWidget(m_pitch);
    pitchRow->addSpacing(6);
    m_linkDrone = new QCheckBox(this);
    m_linkDrone->setObjectName(QStringLiteral("chk_linkDrone"));
    connect(m_linkDrone, &QCheckBox::toggled, this, [this](bool linked) { m_drone->setLinked(linked); });
    pitchRow->addWidget(m_linkDrone, 1);
    whole->addLayout(pitchRow);

    // The three voices.
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(2);
    const QStringList notes = droneNoteNames();
    for (int voice = 0; voice < kDroneVoiceCount; ++voice) {
        buildVoiceRow(voice, grid, voice);
        m_note[voice]->addItems(notes);
    }
    grid->setColumnStretch(1, 1);
    whole->addLayout(grid);

    // Saved drones: name box, save, delete.
    auto *saved = new QHBoxLayout;
    saved->setSpacing(4);
    m_names = new PresetNameBox(QStringLiteral("lst_droneNames"), this);
    connect(m_names, &PresetNameBox::returnPressed, this, [this] {
        if (m_memDrone->isEnabled())
            bt_memDrone_Click();
    });
    connect(m_names, &PresetNameBox::nameEdited, this, &DronePanel::droneNameEdited);
    connect(m_names, &QComboBox::activated, this, &DronePanel::lst_droneNames_Click);
    saved->addWidget(m_names, 1);
    m_memDrone = new QPushButton(
        themeIcon(QStringLiteral("document-save"), QStringLiteral("save"), programFolder), QString(), this);
    m_memDrone->setObjectName(QStringLiteral("bt_memDrone"));
    m_delDrone = new QPushButton(
        themeIcon(QStringLiteral("edit-delete"), QStringLiteral("tunedel"), programFolder), QString(), this);
    m_delDrone->setObjectName(QStringLiteral("bt_delDrone"));
    for (QPushButton *button : { m_memDrone, m_delDrone }) {
        button->setAutoDefault(false);
        saved->addWidget(button);
    }
    connect(m_memDrone, &QPushButton::clicked, this, &DronePanel::bt_memDrone_Click);
    connect(m_delDrone, &QPushButton::clicked, this, &DronePanel::bt_delDrone_Click);
    whole->addLayout(saved);
    whole->addStretch(1);

    m_drone->setInitialLowered(app.ini().getBool(keys::DronePitch));
    m_drone->setRefusedHandler([this] {
        showState();
        emit seeDroneCleared();
    });

    LoadLang();
    showState();
    loadDrones();
}

DronePanel::~DronePanel() = default;

void DronePanel::buildVoiceRow(int voice, QGridLayout *grid, int row)
{
    auto *on = new QCheckBox(this);
    on->setObjectName(voiceName("chk_drone", voice));
    connect(on, &QCheckBox::clicked, this, [this, voice](bool active) { chk_drone_Click(voice, active); });
    grid->addWidget(on, row, 0);
    m_voiceOn[voice] = on;

    auto *gm = new QComboBox(this);
    gm->setObjectName(voiceName("lst_GMdrone", voice));
    gm->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    gm->setMinimumContentsLength(8);
    gm->setMaxVisibleItems(20);
    connect(
        gm, &QComboBox::activated, this, [this, voice](int program) { lst_GMdrone_Click(voice, program); });
    grid->addWidget(gm, row, 1);
    m_gm[voice] = gm;

    auto *note = new QComboBox(this);
    note->setObjectName(voiceName("lst_droneNote", voice));
    // The list pads notes without an accidental with a blank, so that the letters line up.
    note->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    note->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    note->setMaxVisibleItems(20);
    connect(
        note, &QComboBox::activated, this, [this, voice](int index) { lst_droneNote_Click(voice, index); });
    grid->addWidget(note, row, 2);
    m_note[voice] = note;

    auto *volume = new QSlider(Qt::Horizontal, this);
    volume->setObjectName(voiceName("scr_drone", voice));
    volume->setRange(0, 127);
    volume->setFixedWidth(64);
    connect(
        volume, &QSlider::valueChanged, this, [this, voice](int value) { scr_drone_Change(voice, value); });
    grid->addWidget(volume, row, 3);
    m_volume[voice] = volume;
}

void DronePanel::setKeyboardCheck(std::function<bool()> keyboardShown)
{
    m_drone->setKeyboardBusy(std::move(keyboardShown));
}

void DronePanel::LoadLang()
{
    const Language &lang = m_app.lang();
    const auto mainForm = [&lang](const char *key) { return lang.text(kMainForm, QString::fromLatin1(key)); };
    const auto tip = [&lang](const char *key) { return lang.text(kTTText, QString::fromLatin1(key)); };

    m_bourdon->setText(mainForm("<droneGen>"));
    m_linkDrone->setText(mainForm("<linkDrone>"));
    const QString volume = mainForm("<volume>");
    m_droneVol->setToolTip(volume);
    m_droneVol->setAccessibleName(volume);
    m_pitch->setToolTip(tip("<pitch>"));
    const QString pitchTip = tip("<pitchDrone>");
    m_pitchDrone->setToolTip(pitchTip);
    m_pitchDrone->setAccessibleName(pitchTip);
    m_updPitch->setToolTip(pitchTip);
    m_memDrone->setText(mainForm("<memDrone>"));
    m_memDrone->setToolTip(tip("<memMskDrone>"));
    m_delDrone->setToolTip(tip("<delDrone>"));
    m_delDrone->setAccessibleName(tip("<delDrone>"));
    m_names->setToolTip(tip("<lstMskDrone>"));
    m_names->lineEdit()->setPlaceholderText(tip("<lstMskDrone>"));

    QStringList instruments;
    instruments.reserve(kGmCount);
    for (int n = 0; n < kGmCount; ++n)
        instruments.append(lang.text(QStringLiteral("GM"), QStringLiteral("<gm%1>").arg(n)));
    for (int voice = 0; voice < kDroneVoiceCount; ++voice) {
        m_volume[voice]->setToolTip(volume);
        const QSignalBlocker block(m_gm[voice]);
        m_gm[voice]->clear();
        m_gm[voice]->addItems(instruments);
        m_gm[voice]->setCurrentIndex(m_drone->voice(voice).program);
    }
}

void DronePanel::loadDrones()
{
    m_names->clear();
    m_names->addItems(droneNames(m_app.paths()));
    m_names->setCurrentIndex(-1);
    m_names->setEditText(freeDroneName(m_app.paths()));
    droneNameEdited(m_names->currentText());
}

bool DronePanel::lowered() const
{
    return m_pitch->isChecked();
}

void DronePanel::showState()
{
    m_showing = true;
    const Drone &d = *m_drone;
    {
        const QSignalBlocker block(m_bourdon);
        m_bourdon->setChecked(d.isOn());
    }
    m_pitch->setChecked(d.lowered());
    m_linkDrone->setChecked(d.linked());
    m_droneVol->setValue(d.masterVolume());
    for (int voice = 0; voice < kDroneVoiceCount; ++voice) {
        const DroneVoice &v = d.voice(voice);
        m_voiceOn[voice]->setChecked(v.active);
        m_gm[voice]->setCurrentIndex(v.program);
        m_note[voice]->setCurrentIndex(v.note);
        m_volume[voice]->setValue(v.volume);
    }
    m_showing = false;
}

void DronePanel::stopDrone()
{
    m_bourdon->setChecked(false);
}

void DronePanel::followTransposition()
{
    // Only a drone that sounds follows: a transposition must not start one.
    if (!m_pitch->isChecked() || !m_drone->isOn())
        return;
    m_drone->restart();
    showState();
}

void DronePanel::chk_Bourdon_Click(bool on)
{
    if (m_showing)
        return;
    if (on)
        m_drone->switchOn();
    else
        m_drone->switchOff();
    showState();
}

void DronePanel::chk_drone_Click(int voice, bool active)
{
    m_drone->voiceClicked(voice, active);
    // The voice's state is part of what a saved drone holds.
    m_memDrone->setEnabled(!m_names->currentText().isEmpty());
    showState();
}

void DronePanel::lst_GMdrone_Click(int voice, int program)
{
    if (program < 0)
        return;
    m_drone->programChosen(voice, program);
    m_memDrone->setEnabled(true);
    showState();
}

void DronePanel::lst_droneNote_Click(int voice, int index)
{
    if (index < 0)
        return;
    if (m_drone->noteChosen(voice, index))
        m_memDrone->setEnabled(true);
    showState();
}

void DronePanel::scr_drone_Change(int voice, int volume)
{
    if (m_showing)
        return;
    m_drone->setVoiceVolume(voice, volume);
    m_memDrone->setEnabled(true);
}

void DronePanel::pitchTextChanged(const QString &text)
{
    m_drone->setPitch(int(qBound(-1e9, leadingNumber(text), 1e9)));
    showState();
}

void DronePanel::stepPitch(int step)
{
    m_pitchDrone->setText(QString::number(int(qBound(-1e9, leadingNumber(m_pitchDrone->text()), 1e9)) + step));
}

void DronePanel::droneNameEdited(const QString &text)
{
    m_delDrone->setEnabled(false);
    m_memDrone->setEnabled(!text.isEmpty());
}

void DronePanel::lst_droneNames_Click(int row)
{
    // The box's own confirmation of a typed name that happens to be listed is no choice.
    if (row < 0 || m_names->confirmingTypedName())
        return;
    m_delDrone->setEnabled(true);
    m_memDrone->setEnabled(false);
    m_drone->chooseSaved(m_names->itemText(row));
    showState();
}

void DronePanel::bt_memDrone_Click()
{
    const QString name = m_names->currentText();
    const Paths &paths = m_app.paths();
    if (droneExists(paths, name)
        && m_app.ui().question(m_app.text(kMsg, QStringLiteral("<mskExist>"))) != UserDialogs::Answer::Yes)
        return;
    QString error;
    if (!saveDrone(paths, name, m_drone->voices(), &error)) {
        m_app.ui().contextError(QStringLiteral("bt_memDrone_Click"), error);
        return;
    }
    // Listed again even when it replaced a file: the list is read afresh at the next start.
    m_names->addItem(name);
    m_names->setEditText(name);
    m_memDrone->setEnabled(false);
}

void DronePanel::bt_delDrone_Click()
{
    const QString name = m_names->currentText();
    const QString question
        = m_app.text(kMsg, QStringLiteral("<confKillMsk>")) + QStringLiteral(" '") + name + u'\'';
    if (m_app.ui().question(question) != UserDialogs::Answer::Yes)
        return;
    deleteDrone(m_app.paths(), name);
    int row = m_names->currentIndex();
    if (row < 0 || m_names->itemText(row) != name)
        row = m_names->findText(name, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (row >= 0)
        m_names->removeItem(row);
    m_delDrone->setEnabled(false);
    m_names->setCurrentIndex(-1);
    m_names->setEditText(QStringLiteral("NewDrone"));
    droneNameEdited(m_names->currentText());
}

} // namespace fenwork
