#include "app/widgets/helpwindow.h"

#include "app/helplinks.h"
#include "frame/appcontext.h"
#include "frame/language.h"
#include "frame/strutil.h"

#include <QAction>
#include <QDesktopServices>
#include <QLineEdit>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

namespace fenwork {

HelpWindow::HelpWindow(AppContext &app, QWidget *parent)
    : QWidget(parent, Qt::Window)
    , m_app(app)
    , m_browser(new QTextBrowser(this))
    , m_find(new QLineEdit(this))
{
    setObjectName(QStringLiteral("f_help"));
    resize(760, 620);
    auto *bar = new QToolBar(this);
    bar->setIconSize(QSize(20, 20));
    m_back = bar->addAction(
        QIcon::fromTheme(QStringLiteral("go-previous")), QString(), m_browser, &QTextBrowser::backward);
    m_back->setObjectName(QStringLiteral("bt_back"));
    m_forward = bar->addAction(
        QIcon::fromTheme(QStringLiteral("go-next")), QString(), m_browser, &QTextBrowser::forward);
    m_forward->setObjectName(QStringLiteral("bt_forward"));
    m_home = bar->addAction(
        QIcon::fromTheme(QStringLiteral("go-home")), QString(), this, [this] { openHelp(0); });
    m_home->setObjectName(QStringLiteral("bt_home"));
    bar->addSeparator();
    m_find->setObjectName(QStringLiteral("txt_findHelp"));
    m_find->setClearButtonEnabled(true);
    m_find->setMaximumWidth(260);
    bar->addWidget(m_find);
    connect(m_find, &QLineEdit::returnPressed, this, &HelpWindow::findNext);
    m_back->setEnabled(false);
    m_forward->setEnabled(false);
    connect(m_browser, &QTextBrowser::backwardAvailable, m_back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, m_forward, &QAction::setEnabled);

    m_browser->setObjectName(QStringLiteral("txt_help"));
    // Pages of ours open here; the rest of the web belongs to the desktop's browser.
    m_browser->setOpenLinks(false);
    connect(m_browser, &QTextBrowser::anchorClicked, this, [this](const QUrl &url) {
        if (url.isLocalFile() || url.isRelative())
            m_browser->setSource(m_browser->source().resolved(url));
        else
            QDesktopServices::openUrl(url);
    });
    connect(m_browser, &QTextBrowser::sourceChanged, this, [this] {
        setWindowTitle(withoutAccelerator(m_app.text(QStringLiteral("Menus"), QStringLiteral("<hlp>")))
            + QStringLiteral(" - ") + m_browser->documentTitle());
    });

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(bar);
    layout->addWidget(m_browser, 1);
    LoadLang();
}

void HelpWindow::LoadLang()
{
    const auto tip
        = [this](const char *key) { return m_app.text(QStringLiteral("TTText"), QString::fromLatin1(key)); };
    m_back->setToolTip(tip("<helpBack>"));
    m_forward->setToolTip(tip("<helpForward>"));
    m_home->setToolTip(tip("<helpHome>"));
    m_find->setPlaceholderText(tip("<helpFind>"));
    // The pages follow the language too.
    if (!m_browser->source().isEmpty()) {
        const QString fragment = m_browser->source().fragment();
        const int topic = fragment.startsWith(u't') ? fragment.mid(1).toInt() : 0;
        const QUrl url = helpUrl(m_app.paths(), m_app.lang().name(), topic);
        if (url.adjusted(QUrl::RemoveFragment) != m_browser->source().adjusted(QUrl::RemoveFragment))
            m_browser->setSource(url);
    }
}

void HelpWindow::openHelp(int topic)
{
    m_browser->setSource(helpUrl(m_app.paths(), m_app.lang().name(), topic));
    show();
    raise();
    activateWindow();
}

QUrl HelpWindow::currentUrl() const
{
    return m_browser->source();
}

void HelpWindow::findNext()
{
    const QString wanted = m_find->text();
    if (wanted.isEmpty())
        return;
    if (!m_browser->find(wanted)) {
        QTextCursor top = m_browser->textCursor();
        top.movePosition(QTextCursor::Start);
        m_browser->setTextCursor(top);
        m_browser->find(wanted);
    }
}

} // namespace fenwork
