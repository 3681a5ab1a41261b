// The help menu, the options and the settings they change, and the window-wide Alt+arrow keys.
#include "app/widgets/mainwindow.h"

#include "app/helplinks.h"
#include "app/versioncheck.h"
#include "app/widgets/aboutdialog.h"
#include "app/widgets/helpwindow.h"
#include "app/widgets/mainmenus.h"
#include "app/widgets/optionsdialog.h"
#include "editing/widgets/abctextpanel.h"
#include "editing/widgets/editcontroller.h"
#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/settingsnotice.h"
#include "playback/widgets/playerpanel.h"
#include "score/widgets/scorepanel.h"

#include <QApplication>
#include <QDesktopServices>
#include <QKeyEvent>

namespace fenwork {

namespace {

// Alt with the arrows moves the tempo (left, right) and volume (up, down) sliders by 2 when the
// key is let go; the arrows alone keep their meaning where the focus is.
class AltArrows : public QObject
{
public:
    AltArrows(QWidget *window, PlayerPanel *player)
        : QObject(window)
        , m_window(window)
        , m_player(player)
    { }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const QEvent::Type type = event->type();
        if (type != QEvent::KeyPress && type != QEvent::KeyRelease)
            return false;
        auto *key = static_cast<QKeyEvent *>(event);
        if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::AltModifier)
            return false;
        auto *widget = qobject_cast<QWidget *>(watched);
        if (!widget || widget->window() != m_window)
            return false;
        int index = -1;
        int delta = 0;
        switch (key->key()) {
        case Qt::Key_Left:
            index = 0, delta = -2;
            break;
        case Qt::Key_Right:
            index = 0, delta = 2;
            break;
        case Qt::Key_Up:
            index = 1, delta = 2;
            break;
        case Qt::Key_Down:
            index = 1, delta = -2;
            break;
        default:
            return false;
        }
        // The press is kept from the control with the focus; the move comes with the release.
        if (type == QEvent::KeyRelease && !key->isAutoRepeat())
            m_player->stepSlider(index, delta);
        return true;
    }

private:
    QWidget *m_window;
    PlayerPanel *m_player;
};

// Rows that need an address nobody has given stay visibly unavailable.
void setHelpRowStates(AppContext &app)
{
    const bool server = !app.ini().get(keys::UpdateServer).isEmpty();
    app.commands().setEnabled(
        QStringLiteral("mnu_hlp_item4"), !app.ini().get(keys::ContactAddress).isEmpty());
    app.commands().setEnabled(QStringLiteral("mnu_hlp_item5"), server);
    app.commands().setEnabled(QStringLiteral("mnu_hlp_item6"), server);
}

} // namespace

void MainWindow::connectHelpCommands()
{
    AppContext &app = m_app;
    m_menus->setHandler(QStringLiteral("mnu_hlp_item0"), [this] {
        AboutDialog about(m_app, this);
        about.exec();
    });
    m_menus->setHandler(QStringLiteral("mnu_hlp_item1"), [this] { openHelp(0); });
    m_menus->setHandler(QStringLiteral("mnu_hlp_item3"),
        [&app] { QDesktopServices::openUrl(languageFolderUrl(app.paths())); });
    m_menus->setHandler(QStringLiteral("mnu_hlp_item4"),
        [&app] { QDesktopServices::openUrl(contactUrl(app.ini().get(keys::ContactAddress))); });
    m_menus->setHandler(QStringLiteral("mnu_hlp_item5"), [&app] {
        QDesktopServices::openUrl(serverUrl(app.ini().get(keys::UpdateServer), QStringLiteral("/fenwk.php")));
    });
    m_menus->setHandler(QStringLiteral("mnu_hlp_item6"), [this] { CheckVersion(false); });
    m_menus->setHandler(QStringLiteral("mnu_Options"), [this] { showOptions(-1); });
    qApp->installEventFilter(new AltArrows(this, m_player));
    connect(&app.settingsNotice(), &SettingsNotice::changed, this, &MainWindow::followSettings);
    setHelpRowStates(app);
}

void MainWindow::followSettings(bool languageChanged)
{
    AppContext &app = m_app;
    setHelpRowStates(app);
    m_textPanel->setTextFont(app.ini().get(keys::FontName), app.ini().getInt(keys::FontSize));
    m_score->loadSettings();
    m_player->applySettings();
    if (languageChanged) {
        // Every window that shows texts sets them again, this one first.
        LoadLang();
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows)
            if (window != this && window->metaObject()->indexOfMethod("LoadLang()") >= 0)
                QMetaObject::invokeMethod(window, "LoadLang");
    } else {
        // The templates list lives with the editor's texts.
        m_edit->loadLang();
    }
}

void MainWindow::CheckVersion(bool silent)
{
    auto *check = findChild<VersionCheck *>(QString(), Qt::FindDirectChildrenOnly);
    if (!check)
        check = new VersionCheck(m_app, this);
    check->CheckVersion(silent);
}

void MainWindow::openHelp(int topic)
{
    auto *help = findChild<HelpWindow *>(QString(), Qt::FindDirectChildrenOnly);
    if (!help)
        help = new HelpWindow(m_app, this);
    help->openHelp(topic);
}

void MainWindow::showOptions(int tab)
{
    OptionsDialog options(m_app, this);
    if (tab >= 0)
        options.setCurrentTab(tab);
    options.exec();
}

} // namespace fenwork
