// The score panel's views of the page: the zoom that follows the panel's width, and the full
// panel (F10) that lies over the window's inner area until it goes back to its splitter.
#include "score/widgets/scorepanel.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "score/scorezoom.h"
#include "score/widgets/scorecanvas.h"

#include <QMainWindow>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSlider>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>

namespace fenwork {

bool ScorePanel::fitsWidth() const
{
    return m_fitButton->isChecked();
}

void ScorePanel::setFitWidth(bool fit)
{
    m_fitButton->setChecked(fit);
}

void ScorePanel::fitToWidth()
{
    if (!fitsWidth() || !m_canvas->isVisible())
        return;
    const int zoom = fitWidthZoom(m_canvas->roomForWidth(), m_pageInches, m_zoom->minimum(), m_zoom->maximum());
    if (zoom != m_zoom->value())
        m_zoom->setValue(zoom);
}

void ScorePanel::placeFull()
{
    QWidget *host = parentWidget();
    if (!host)
        return;
    const auto *main = qobject_cast<QMainWindow *>(host);
    setGeometry(main && main->centralWidget() ? main->centralWidget()->geometry() : host->rect());
    raise();
}

void ScorePanel::setFullPanel(bool full)
{
    if (full == m_full)
        return;
    const IniFile &ini = m_app.ini();
    const bool keepZoom = ini.getBool(keys::SaveZoom);
    QWidget *host = window();
    if (full) {
        if (host == this)
            return;
        // The panel lies over the whole inner area of the window until it goes back.
        m_homeSplitter = qobject_cast<QSplitter *>(parentWidget());
        if (m_homeSplitter) {
            m_homeIndex = m_homeSplitter->indexOf(this);
            m_homeSizes = m_homeSplitter->sizes();
        }
        ini.set(keys::Zoom, QString::number(m_zoom->value()));
        ini.set(keys::ScrollHScore, QString::number(scrollH()));
        m_full = true;
        setParent(host);
        host->installEventFilter(this);
        placeFull();
        show();
        if (keepZoom) {
            const int h = ini.get(keys::ScrollHScoreMax).toInt();
            setZoom(ini.getInt(keys::ZoomMax));
            m_canvas->horizontalBar()->setValue(h);
        }
    } else {
        ini.set(keys::ZoomMax, QString::number(m_zoom->value()));
        ini.set(keys::ScrollHScoreMax, QString::number(scrollH()));
        m_full = false;
        if (QWidget *current = parentWidget())
            current->removeEventFilter(this);
        if (m_homeSplitter) {
            m_homeSplitter->insertWidget(qMax(0, m_homeIndex), this);
            m_homeSplitter->setSizes(m_homeSizes);
        }
        show();
        if (keepZoom) {
            const int h = ini.get(keys::ScrollHScore).toInt();
            setZoom(ini.getInt(keys::Zoom));
            m_canvas->horizontalBar()->setValue(h);
        }
    }
    const QSignalBlocker block(m_fullButton);
    m_fullButton->setChecked(m_full);
    m_fullButton->setIcon(
        QIcon::fromTheme(m_full ? QStringLiteral("view-restore") : QStringLiteral("view-fullscreen")));
    setFocus();
}

} // namespace fenwork
