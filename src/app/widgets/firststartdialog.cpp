#include "app/widgets/firststartdialog.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/version.h"
#include "app/widgets/splashwindow.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace fenwork {

namespace {

class EmblemView : public QWidget
{
public:
    explicit EmblemView(QWidget *parent)
        : QWidget(parent)
    {
        setFixedSize(56, 56);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        paintEmblem(p, QRectF(rect()));
    }
};

} // namespace

FirstStartDialog::FirstStartDialog(AppContext &ctx, QWidget *parent)
    : QDialog(parent)
    , m_ctx(ctx)
    , m_bak(new QCheckBox(this))
{
    setObjectName(QStringLiteral("f_firststart"));
    setWindowTitle(QStringLiteral("Fennelworks ") + versionText());

    m_bak->setObjectName(QStringLiteral("chk_Bak"));
    m_bak->setText(ctx.text(QStringLiteral("Options"), QStringLiteral("<saveBak>")));
    // Backups are on unless the user turns them off.
    m_bak->setChecked(ctx.ini().get(keys::FichBak) != QLatin1String("0"));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->setObjectName(QStringLiteral("bt_ok"));
    connect(buttons, &QDialogButtonBox::accepted, this, &FirstStartDialog::okClicked);

    auto *top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(new EmblemView(this), 0, Qt::AlignTop);
    top->addWidget(m_bak, 1, Qt::AlignVCenter);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(18, 18, 18, 12);
    layout->setSpacing(14);
    layout->addLayout(top);
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

void FirstStartDialog::keepChoice()
{
    m_ctx.ini().set(keys::FichBak, m_bak->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
}

void FirstStartDialog::okClicked()
{
    keepChoice();
    accept();
}

void FirstStartDialog::reject()
{
    keepChoice();
    QDialog::reject();
}

} // namespace fenwork
