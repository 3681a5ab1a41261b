#pragma once
// Every question, message, input box, file dialog, progress display, busy cursor and event pump
// that core code needs goes through this seam. The window implements it with Qt dialogs, tests
// answer from a script and record what was shown, the batch companion answers on its own.
#include <QString>
#include <QStringList>

namespace fenwork {

class UserDialogs
{
public:
    enum class Icon { Information, Warning, Critical };
    enum class Answer { Yes, No, Cancel };

    virtual ~UserDialogs() = default;

    // A message box with an OK button.
    virtual void message(const QString &text, Icon icon = Icon::Warning, const QString &title = {}) = 0;
    // A Yes/No (or Yes/No/Cancel) question.
    virtual Answer question(const QString &text, bool withCancel = false, const QString &title = {}) = 0;
    // A text input box; returns empty when cancelled.
    virtual QString inputText(const QString &prompt, const QString &title, const QString &defaultText) = 0;

    // File dialogs. `filters` are rows such as "ABC file (*.abc)". Empty result: cancelled.
    // `selectedFilter`, when given, receives the 1-based row the user chose.
    virtual QString openFileName(const QString &title, const QString &folder, const QStringList &filters) = 0;
    virtual QStringList openFileNames(const QString &title, const QString &folder, const QStringList &filters) = 0;
    virtual QString saveFileName(const QString &title, const QString &startPath, const QStringList &filters,
                                 int *selectedFilter = nullptr) = 0;
    virtual QString folderName(const QString &title, const QString &folder) = 0;

    // The progress strip: a caption and a bar under the tree.
    virtual void showProgress(bool visible) = 0;
    virtual void setProgressCaption(const QString &caption) = 0;
    virtual void setProgressRange(int maximum) = 0; // minimum is 0
    virtual void setProgressValue(int value) = 0;
    virtual int progressValue() const = 0;

    virtual void setBusy(bool busy) = 0;                     // hourglass on / off
    virtual void statusMessage(const QString &text) = 0;     // short text in the progress strip
    virtual void processEvents() = 0;                        // let pending interface events run
    virtual bool escapePressed() = 0;                        // Esc seen since the last call
    // Esc counts only while a wait watches for it, so that an Esc that closed a menu or a box
    // before the wait does not stop it. Watching starts with no Esc seen.
    virtual void watchEscape(bool /*on*/) { }
    // The program cannot go on (a broken tree): end it after the message already shown.
    virtual void terminate(int exitCode) = 0;

    // "Context: <context>\r\n\r\n<description>" as a warning: how every operation reports a
    // failure it caught.
    void contextError(const QString &context, const QString &description);
};

// Holds the busy cursor for a scope.
class BusyScope
{
public:
    explicit BusyScope(UserDialogs &ui) : m_ui(ui) { m_ui.setBusy(true); }
    ~BusyScope() { m_ui.setBusy(false); }
    BusyScope(const BusyScope &) = delete;
    BusyScope &operator=(const BusyScope &) = delete;

private:
    UserDialogs &m_ui;
};

} // namespace fenwork
