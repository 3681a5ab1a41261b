// What the main window closes off while an edit session runs and opens again at its end, and the
// working list kept in step with the tree.
#include "app/widgets/mainwindow.h"

#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "playback/widgets/dronepanel.h"
#include "playback/widgets/playerpanel.h"
#include "score/widgets/scorepanel.h"
#include "store/widgets/treeview.h"
#include "store/workspacetree.h"

#include <QToolBar>

#include <utility>

namespace fenwork {

void MainWindow::EpurerListeChoix()
{
    const WorkspaceTree &tree = m_app.tree();
    m_choiceList->prune([&tree](const QString &key) { return tree.contains(key); });
}

void MainWindow::closeForSession(bool tune, const QString &editedKey)
{
    // The notes typed in a tune sound on the drone's output, so the drone gives way.
    if (tune && m_drone)
        m_drone->stopDrone();
    TreeView *view = tree();
    view->setEnabled(false);
    view->setCursor(Qt::ForbiddenCursor);
    view->expandKey(editedKey);
    m_toolBar->setEnabled(false);
    m_score->setPauseVisible(tune);
    m_player->setNextPrevEnabled(false);
    m_player->setOneLineShown(tune);
}

void MainWindow::openAfterSession(const QString &editedKey, bool validated)
{
    TreeView *view = tree();
    view->setEnabled(true);
    view->setCursor(Qt::ArrowCursor);
    m_toolBar->setEnabled(true);
    m_score->setPauseVisible(false);
    m_player->setNextPrevEnabled(true);
    m_player->setOneLineShown(false);
    if (validated)
        SimulerNodeClick(editedKey);
    view->setFocus();
    const QStringList waiting = std::exchange(m_handedOverDuringEdit, {});
    for (const QString &path : waiting)
        openPath(path, true);
}

} // namespace fenwork
