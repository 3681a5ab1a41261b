#pragma once
#include <QWidget>

class QLineEdit;
class QTextBrowser;
class QUrl;

namespace fenwork {

class AppContext;

// Our own help window: the help pages of the current language in a browser with back, forward,
// home and a search box. A window of our own, since the desktop's opener drops the anchor of a
// local file and so could not open a page at its topic.
class HelpWindow : public QWidget
{
    Q_OBJECT
public:
    explicit HelpWindow(AppContext &app, QWidget *parent = nullptr);

    // Shows the page of `topic` at its anchor (0: the guide's beginning) and brings the window up.
    void openHelp(int topic);
    QUrl currentUrl() const;

public slots:
    void LoadLang();
    // Finds the next occurrence of the search box's text, from the top again after the last.
    void findNext();

private:
    AppContext &m_app;
    QTextBrowser *m_browser;
    QLineEdit *m_find;
    QAction *m_back;
    QAction *m_forward;
    QAction *m_home;
};

} // namespace fenwork
