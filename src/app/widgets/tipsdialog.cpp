#include "app/widgets/tipsdialog.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QRandomGenerator>
#include <QVBoxLayout>

namespace fenwork {

namespace {
const QString kSection = QStringLiteral("Tips");
}

TipsDialog::TipsDialog(AppContext &ctx, QWidget *parent)
    : QDialog(parent)
    , m_ctx(ctx)
    , m_heading(new QLabel(this))
    , m_tip(new QLabel(this))
    , m_next(new QPushButton(this))
    , m_showAtStart(new QCheckBox(this))
{
    setObjectName(QStringLiteral("f_tips"));
    setWindowTitle(ctx.text(kSection, QStringLiteral("<daytip>")));

    m_heading->setObjectName(QStringLiteral("lab_doYouKnow"));
    m_heading->setTextFormat(Qt::PlainText);
    m_heading->setText(ctx.text(kSection, QStringLiteral("<doYouKnow>")));
    QFont headingFont = m_heading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.2);
    m_heading->setFont(headingFont);

    auto *bulb = new QLabel(this);
    bulb->setPixmap(QIcon::fromTheme(QStringLiteral("help-hint")).pixmap(22, 22));

    m_tip->setObjectName(QStringLiteral("lab_tip"));
    m_tip->setTextFormat(Qt::PlainText);
    m_tip->setWordWrap(true);
    m_tip->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_tip->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_tip->setMinimumHeight(110);

    // The tip sits on a paper-coloured card so that it reads as the content of the window.
    auto *card = new QFrame(this);
    card->setFrameShape(QFrame::StyledPanel);
    card->setBackgroundRole(QPalette::Base);
    card->setAutoFillBackground(true);
    auto *cardLayout = new QVBoxLayout(card);
    cardLayout->setContentsMargins(14, 12, 14, 12);
    cardLayout->addWidget(m_tip);

    m_next->setObjectName(QStringLiteral("bt_nextTip"));
    m_next->setText(ctx.text(kSection, QStringLiteral("<nextTip>")));
    connect(m_next, &QPushButton::clicked, this, &TipsDialog::nextTip);

    m_showAtStart->setObjectName(QStringLiteral("chk_showTips"));
    m_showAtStart->setText(ctx.text(kSection, QStringLiteral("<displAtStart>")));
    m_showAtStart->setChecked(ctx.ini().getBool(keys::ShowTips));
    connect(m_showAtStart, &QCheckBox::toggled, this,
        [this](bool on) { m_ctx.ini().setBool(keys::ShowTips, on); });

    auto *close = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *head = new QHBoxLayout;
    head->addWidget(bulb);
    head->addWidget(m_heading, 1);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_showAtStart, 1);
    bottom->addWidget(m_next);
    bottom->addWidget(close);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 14, 16, 12);
    layout->addLayout(head);
    layout->addWidget(card, 1);
    layout->addLayout(bottom);
    setMinimumSize(460, 260);

    m_count = qMax(0, trimBlanks(ctx.text(kSection, QStringLiteral("<count>"))).toInt());
    m_next->setEnabled(m_count > 1);
    if (m_count > 0)
        showTip(1 + int(QRandomGenerator::global()->bounded(m_count)));
}

QString TipsDialog::tipText(int number) const
{
    return m_ctx.text(kSection, QStringLiteral("<%1>").arg(number));
}

void TipsDialog::showTip(int number)
{
    if (number < 1 || number > m_count)
        return;
    m_current = number;
    m_tip->setText(tipText(number));
}

void TipsDialog::nextTip()
{
    if (m_count > 0)
        showTip(m_current >= m_count ? 1 : m_current + 1);
}

} // namespace fenwork
