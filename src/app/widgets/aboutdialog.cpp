#include "app/widgets/aboutdialog.h"

#include "app/helplinks.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/version.h"
#include "frame/widgets/icons.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenwork {

AboutDialog::AboutDialog(AppContext &app, QWidget *parent)
    : QDialog(parent)
    , m_app(app)
    , m_contact(new QLabel(this))
{
    setObjectName(QStringLiteral("f_about"));
    auto *picture = new QLabel(this);
    picture->setPixmap(pictureIcon(QStringLiteral("tune"), app.paths().programFolder()).pixmap(64, 64));
    picture->setAlignment(Qt::AlignTop);

    auto *name = new QLabel(QStringLiteral("Fennelworks"), this);
    name->setObjectName(QStringLiteral("lab_name"));
    QFont big = name->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.6);
    name->setFont(big);
    auto *version = new QLabel(versionText(), this);
    version->setObjectName(QStringLiteral("lab_version"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *built = new QLabel(QStringLiteral("Qt ") + QString::fromLatin1(qVersion()), this);
    built->setEnabled(false);
    m_contact->setObjectName(QStringLiteral("lab_contact"));
    m_contact->setOpenExternalLinks(true);
    m_contact->setTextFormat(Qt::RichText);

    auto *texts = new QVBoxLayout;
    texts->addWidget(name);
    texts->addWidget(version);
    texts->addWidget(built);
    texts->addSpacing(10);
    texts->addWidget(m_contact);
    texts->addStretch(1);
    auto *row = new QHBoxLayout;
    row->addWidget(picture);
    row->addSpacing(12);
    row->addLayout(texts, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bt_ok"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(row);
    layout->addWidget(buttons);
    setMinimumWidth(380);
    LoadLang();
}

void AboutDialog::LoadLang()
{
    const QString section = QStringLiteral("About");
    setWindowTitle(m_app.text(section, QStringLiteral("<title>")));
    const QString address = m_app.ini().get(keys::ContactAddress);
    const QUrl mail = contactUrl(address);
    m_contact->setVisible(!mail.isEmpty());
    if (!mail.isEmpty())
        m_contact->setText(m_app.text(section, QStringLiteral("<contact>")) + QStringLiteral(": <a href=\"")
            + mail.toString(QUrl::FullyEncoded).toHtmlEscaped() + QStringLiteral("\">")
            + address.toHtmlEscaped() + QStringLiteral("</a>"));
}

} // namespace fenwork
