#include "playback/widgets/tempodialog.h"

#include "frame/appcontext.h"
#include "frame/userdialogs.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMetaMethod>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

namespace fenwork {

namespace {
const QString kTempo = QStringLiteral("Tempo");
} // namespace

TempoDialog::TempoDialog(AppContext &app, QWidget *parent, TempoTapper::Clock clock)
    : QDialog(parent)
    , m_app(app)
    , m_tapper(std::move(clock))
{
    setObjectName(QStringLiteral("f_tempo"));
    auto *info = m_info = new QLabel(this);
    info->setObjectName(QStringLiteral("lab_info"));
    info->setWordWrap(true);

    QFont big = font();
    big.setPointSizeF(big.pointSizeF() * 2.2);
    big.setBold(true);
    m_tempo = new QLabel(this);
    m_tempo->setObjectName(QStringLiteral("lab_tempo"));
    m_tempoCumul = new QLabel(this);
    m_tempoCumul->setObjectName(QStringLiteral("lab_tempoCumul"));
    auto *values = new QGridLayout;
    int row = 0;
    for (auto [caption, label] : { std::pair { "<inst>", m_tempo }, std::pair { "<cumul>", m_tempoCumul } }) {
        label->setFont(big);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("0000")));
        auto *name = new QLabel(this);
        name->setProperty("langKey", QString::fromLatin1(caption));
        m_captions.append(name);
        name->setBuddy(label);
        values->addWidget(name, row, 0);
        values->addWidget(label, row, 1);
        ++row;
    }
    values->setColumnStretch(0, 1);

    m_prg = new QProgressBar(this);
    m_prg->setObjectName(QStringLiteral("prg"));
    m_prg->setRange(0, TempoTapper::kDefaultPeriod);
    m_prg->setFormat(QStringLiteral("%v / %m s"));

    m_echantil = new QSlider(Qt::Horizontal, this);
    m_echantil->setObjectName(QStringLiteral("sld_echantil"));
    m_echantil->setRange(TempoTapper::kMinPeriod, TempoTapper::kMaxPeriod);
    m_echantil->setSingleStep(TempoTapper::kPeriodStep);
    m_echantil->setPageStep(TempoTapper::kPeriodStep);
    m_echantil->setTickInterval(TempoTapper::kPeriodStep);
    m_echantil->setTickPosition(QSlider::TicksBelow);
    m_echantil->setValue(TempoTapper::kDefaultPeriod);
    m_periodValue = new QLabel(this);
    m_periodValue->setMinimumWidth(m_periodValue->fontMetrics().horizontalAdvance(QStringLiteral("00 s")));
    auto *periodRow = new QHBoxLayout;
    auto *periodLabel = m_periodLabel = new QLabel(this);
    periodLabel->setBuddy(m_echantil);
    periodRow->addWidget(periodLabel);
    periodRow->addWidget(m_echantil, 1);
    periodRow->addWidget(m_periodValue);
    connect(m_echantil, &QSlider::valueChanged, this, [this](int value) {
        // Dragging may stop between the steps: snap to the nearest one.
        const int snapped
            = (value + TempoTapper::kPeriodStep / 2) / TempoTapper::kPeriodStep * TempoTapper::kPeriodStep;
        if (snapped != value) {
            m_echantil->setValue(snapped);
            return;
        }
        m_tapper.setPeriod(value);
        m_prg->setMaximum(value);
        m_periodValue->setText(QStringLiteral("%1 s").arg(value));
    });
    m_periodValue->setText(QStringLiteral("%1 s").arg(m_echantil->value()));

    m_stop = new QPushButton(this);
    m_stop->setObjectName(QStringLiteral("bt_stop"));
    auto *help = m_help = new QPushButton(this);
    help->setObjectName(QStringLiteral("bt_hlp"));
    connect(m_stop, &QPushButton::clicked, this, &TempoDialog::bt_stop_Click);
    connect(help, &QPushButton::clicked, this, &TempoDialog::helpRequested);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_stop);
    buttons->addStretch(1);
    buttons->addWidget(help);

    m_cumul = new QTimer(this);
    m_cumul->setObjectName(QStringLiteral("tm_cumul"));
    m_cumul->setInterval(1000);
    connect(m_cumul, &QTimer::timeout, this, &TempoDialog::tm_cumul_Timer);

    // The space bar belongs to the window: no child may take it as a click.
    for (QWidget *child :
        { static_cast<QWidget *>(m_echantil), static_cast<QWidget *>(m_stop), static_cast<QWidget *>(help) })
        child->setFocusPolicy(Qt::NoFocus);
    for (QPushButton *button : { m_stop, help })
        button->setAutoDefault(false);
    setFocusPolicy(Qt::StrongFocus);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(info);
    layout->addLayout(values);
    layout->addWidget(m_prg);
    layout->addLayout(periodRow);
    layout->addLayout(buttons);
    setMinimumWidth(320);

    LoadLang();
    showState();
}

TempoDialog::~TempoDialog() = default;

void TempoDialog::LoadLang()
{
    const auto text = [this](const char *key) { return m_app.text(kTempo, QString::fromLatin1(key)); };
    setWindowTitle(text("<tempoMtr>"));
    m_info->setText(text("<info>"));
    for (QLabel *caption : std::as_const(m_captions))
        caption->setText(m_app.text(kTempo, caption->property("langKey").toString()));
    m_echantil->setToolTip(text("<period>"));
    m_periodLabel->setText(text("<period>"));
    m_stop->setText(m_app.text(QStringLiteral("TTText"), QStringLiteral("<stop>")));
    m_help->setText(text("<hlp>"));
}

void TempoDialog::showEvent(QShowEvent *event)
{
    // A help button that opens nothing would only puzzle: it shows once a page is there to open.
    m_help->setVisible(isSignalConnected(QMetaMethod::fromSignal(&TempoDialog::helpRequested)));
    QDialog::showEvent(event);
}

void TempoDialog::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space) {
        // Holding the bar down is not a beat.
        if (!event->isAutoRepeat())
            tapKey();
        event->accept();
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        close();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void TempoDialog::tapKey()
{
    const bool wasRunning = m_tapper.isRunning();
    const TempoTapper::Tap result = m_tapper.tap();
    if (!wasRunning)
        m_cumul->start();
    showState();
    if (result == TempoTapper::Tap::DivisionByZero)
        m_app.ui().contextError(QStringLiteral("f_tempo"), QStringLiteral("Division by zero"));
}

void TempoDialog::tm_cumul_Timer()
{
    m_tapper.tick();
    showState();
}

void TempoDialog::bt_stop_Click()
{
    m_cumul->stop();
    m_tapper.stop();
    showState();
}

void TempoDialog::showState()
{
    m_tempo->setText(m_tapper.instantText());
    m_tempoCumul->setText(m_tapper.meanText());
    m_prg->setValue(m_tapper.elapsed());
    m_echantil->setEnabled(!m_tapper.isRunning());
    m_stop->setEnabled(m_tapper.isRunning());
}

} // namespace fenwork
