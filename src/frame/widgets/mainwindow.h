#pragma once
#include <QMainWindow>
#include <functional>

class QLabel;
class QPlainTextEdit;
class QSplitter;

namespace fenwork {

class AppContext;
class ProgressStrip;
class TreeModel;
class TreeView;
class WidgetDialogs;

// The main window. It composes the panels and runs the load and quit sequences; each panel does
// its own work.
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    MainWindow(AppContext &app, WidgetDialogs &dialogs, QWidget *parent = nullptr);
    ~MainWindow() override;

    // Builds every panel and the workspace root; runs once before the window is first shown.
    void MainLoad();
    // Selects a node as a click would.
    void SimulerNodeClick(const QString &key);
    // Opens a file handed over by a second start.
    void openHandedOver(const QString &path);
    // Opens `path` with the read-only flag from its attribute; returns the key or empty.
    QString openPath(const QString &path);
    // Runs a duplicate-number check on a freshly opened file (a hook until that check exists).
    std::function<void(const QString &kFile)> afterOpen;

    TreeView *tree() const { return m_tree; }
    ProgressStrip *progressStrip() const { return m_progress; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    bool Form_Unload();
    void buildMenus();
    void NodeClick(const QString &key);
    void openFileDialog();
    void applyGeometry();
    void writeGeometry();

    AppContext &m_app;
    WidgetDialogs &m_dialogs;
    TreeModel *m_model = nullptr;
    TreeView *m_tree = nullptr;
    ProgressStrip *m_progress = nullptr;
    QPlainTextEdit *m_text = nullptr;
    QSplitter *m_split = nullptr;      // PanelX
    QSplitter *m_splitLeft = nullptr;  // PanelYG
    QSplitter *m_splitRight = nullptr; // PanelYD
    QLabel *m_version = nullptr;
    QLabel *m_fileInfo = nullptr;
    bool m_quitting = false;
};

} // namespace fenwork
