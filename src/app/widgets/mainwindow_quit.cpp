// The main window's geometry and its quit sequence: what is asked, saved and written back when
// the program ends, and the text panel given the whole window.
#include "app/widgets/mainwindow.h"

#include "collections/choicelist.h"
#include "editing/editsession.h"
#include "editing/widgets/abctextpanel.h"
#include "editing/widgets/editcontroller.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "app/windowsession.h"
#include "playback/widgets/dronepanel.h"
#include "score/widgets/scorepanel.h"
#include "store/filecommands.h"
#include "store/node.h"
#include "store/tuneops.h"
#include "store/widgets/explorerpanel.h"
#include "store/workspacetree.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QScreen>
#include <QSplitter>
#include <QTimer>

namespace fenwork {

namespace {

const QString kMsg = QStringLiteral("Msg");

} // namespace

void MainWindow::applyGeometry()
{
    const QScreen *screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
    const QRect avail = screen ? screen->availableGeometry() : QRect(0, 0, 1280, 800);
    // By default most of a small screen, and a comfortable size on a large one, centred.
    WindowGeometry defaults;
    const int width = qMin(avail.width() * 9 / 10, 1600);
    const int height = qMin(avail.height() * 9 / 10, 1000);
    defaults.frame = QRect(
        avail.x() + (avail.width() - width) / 2, avail.y() + (avail.height() - height) / 2, width, height);
    defaults.panelX = width * 3 / 10;
    defaults.panelYG = height * 3 / 4;
    defaults.panelYD = height * 2 / 5;

    const WindowGeometry g = readWindowGeometry(m_app.ini(), defaults);
    const QSize size(qBound(640, g.frame.width(), qMax(640, avail.width())),
        qBound(480, g.frame.height(), qMax(480, avail.height())));
    resize(size);
    // Whole on the screen: a place kept from a larger screen must not push the window off it.
    move(qBound(avail.left(), g.frame.x(), qMax(avail.left(), avail.left() + avail.width() - size.width())),
        qBound(avail.top(), g.frame.y(), qMax(avail.top(), avail.top() + avail.height() - size.height())));
    const int panelX = qBound(200, g.panelX, qMax(200, size.width() - 200));
    m_splitX->setSizes({ panelX, size.width() - panelX });
    // The player takes no more than it can use; what it leaves goes to the tabs.
    const int player = qMin(m_splitLeft->widget(1)->maximumHeight(), qMax(1, size.height() - g.panelYG));
    m_splitLeft->setSizes({ g.panelYG, player });
    m_splitRight->setSizes({ g.panelYD, qMax(1, size.height() - g.panelYD) });
    if (g.state == WindowGeometry::Maximised)
        setWindowState(windowState() | Qt::WindowMaximized);
}

WindowGeometry MainWindow::currentGeometry() const
{
    WindowGeometry g;
    g.state = isMinimized() ? WindowGeometry::Minimised
        : isMaximized()     ? WindowGeometry::Maximised
                            : WindowGeometry::Normal;
    g.frame = QRect(pos(), size());
    g.panelX = m_splitX->sizes().value(0);
    g.panelYG = m_splitLeft->sizes().value(0);
    g.panelYD = m_splitRight->sizes().value(0);
    // The text or the score alone in the window: the positions to keep are those of the normal view.
    if (m_score->isFullPanel())
        g.panelYD = m_score->homeSizes().value(0, g.panelYD);
    if (m_editMax) {
        g.panelX = m_sizesBeforeEditMax.value(0, g.panelX);
        g.panelYG = m_sizesBeforeEditMax.value(1, g.panelYG);
        if (!m_score->isFullPanel())
            g.panelYD = m_sizesBeforeEditMax.value(2, g.panelYD);
    }
    return g;
}

bool MainWindow::Form_Unload()
{
    UserDialogs &ui = m_app.ui();
    ui.processEvents();
    IniFile &ini = m_app.ini();
    const bool reset = ini.get(keys::NbFiles) == u"x";
    const QString quitConfirm = m_app.text(kMsg, QStringLiteral("<quitConfirm>"));
    if (m_unattended) {
        // Nobody is there to answer: the text being edited goes to the recovery copy, which the
        // next start offers, and no file is written without the user's word.
        if (m_edit->isEditing()) {
            m_edit->session().recoveryTimer()->stop();
            m_edit->session().writeRecovery();
        }
    } else if (m_edit->isEditing()) {
        if (ui.question(m_app.text(kMsg, QStringLiteral("<editCur>")) + CRLF + CRLF + quitConfirm)
            != UserDialogs::Answer::Yes)
            return false;
        m_edit->abandonRecovery();
    }
    if (!m_unattended && cutTuneNotPasted(m_app)
        && ui.question(m_app.text(kMsg, QStringLiteral("<clipNotSaved>")) + CRLF + CRLF + quitConfirm)
            != UserDialogs::Answer::Yes)
        return false;

    for (const QString &kFile : m_unattended ? QStringList() : changedFileKeys(m_app)) {
        const Node *file = m_app.tree().find(kFile);
        if (!file)
            continue;
        const auto answer
            = ui.question(file->Text + CRLF + CRLF + m_app.text(kMsg, QStringLiteral("<fileModified>")) + CRLF
                    + CRLF + m_app.text(kMsg, QStringLiteral("<saveModif>")),
                true);
        if (answer == UserDialogs::Answer::Cancel)
            return false;
        if (answer == UserDialogs::Answer::No)
            continue;
        // A file never saved, or one that may not be written, is saved under a name the user gives.
        const bool asNew = file->Tag == u"<new>" || file->Image == Pic::FileRoM;
        if (!FichierEnregistrer(m_app, kFile, asNew ? 1 : 0))
            return false; // a save that did not happen must not lose the changes
    }

    QuitState state;
    state.reset = reset;
    state.choiceListKeys = m_choiceList->keys();
    state.choiceItems = m_choiceList->items();
    state.geometry = currentGeometry();
    state.kept = m_kept;
    // The score writes the size it stands in; the other size's values were stored when the
    // panel changed size, so a quit in the full panel keeps the normal zoom apart.
    m_score->saveSettings();
    state.kept.zoom = ini.get(keys::Zoom);
    state.kept.scrollHScore = ini.get(keys::ScrollHScore);
    state.kept.tablaturesIndex = QString::number(m_score->tablatureRow());
    if (const auto *drone = findChild<DronePanel *>(QStringLiteral("pic_drone")))
        state.kept.dronePitch = drone->lowered() ? QStringLiteral("1") : QStringLiteral("0");
    writeSessionAtQuit(m_app, state);
    return true;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_quitting || Form_Unload()) {
        m_quitting = true;
        event->accept();
    } else {
        event->ignore();
    }
}

void MainWindow::quitWithoutQuestions()
{
    if (m_quitting)
        return;
    m_unattended = true;
    close();
}

void MainWindow::bt_editMax_Click()
{
    // The text alone in the window, for long tunes; the same key brings the panels back.
    m_editMax = !m_editMax;
    if (m_editMax)
        m_sizesBeforeEditMax = { m_splitX->sizes().value(0), m_splitLeft->sizes().value(0),
            m_splitRight->sizes().value(0) };
    m_splitLeft->setVisible(!m_editMax);
    m_score->setVisible(!m_editMax);
    m_textPanel->editor()->setFocus();
}

} // namespace fenwork
