#pragma once
#include "frame/userdialogs.h"

#include <QList>
#include <QQueue>
#include <optional>

namespace fenwork {

// The dialogs seam for tests: answers come from queues the test fills beforehand, and every
// call that shows something is recorded so that tests can assert on the exact texts. A prompt
// met with an empty queue gets the safe answer (No, empty) and is counted as unexpected.
class ScriptedDialogs : public UserDialogs
{
public:
    enum class Kind { Message, Question, Input, OpenFile, OpenFiles, SaveFile, Folder, Status };

    struct Shown
    {
        Kind kind;
        QString text; // message, question or prompt text; the start folder for file dialogs
        QString title;
        Icon icon = Icon::Information;
        QStringList filters; // file dialogs only
    };

    struct Progress
    {
        bool visible = false;
        QString caption;
        int maximum = 0;
        int value = 0;
    };

    // Everything shown, in order.
    QList<Shown> shown;
    // Progress strip state as the last calls left it, and every caption set, in order.
    Progress progress;
    QStringList captionHistory;
    int busyDepth = 0;
    // Prompts answered by default because their queue was empty.
    int unexpectedPrompts = 0;
    std::optional<int> exitCode; // set by terminate()

    void pushAnswer(Answer answer) { m_answers.enqueue(answer); }
    void pushInput(const QString &text) { m_inputs.enqueue(text); }
    // For openFileNames, several names may be given separated by '\n'.
    void pushFileName(const QString &path, int filterRow = 1) { m_files.enqueue({ path, filterRow }); }
    // Esc reads as pressed on the (afterChecks + 1)-th call of escapePressed(), then clears.
    void setEscapePressed(bool pressed, int afterChecks = 0);
    int escapeChecks() const { return m_escapeChecks; }

    bool hadUnexpectedPrompts() const { return unexpectedPrompts > 0; }
    bool queuesEmpty() const { return m_answers.isEmpty() && m_inputs.isEmpty() && m_files.isEmpty(); }
    // Texts of the message boxes (Kind::Message), or of any kind.
    QStringList messages() const { return texts(Kind::Message); }
    QStringList texts(Kind kind) const;
    QString lastMessage() const;
    // Forgets the records and the queues, keeps nothing of the progress state.
    void clear();

    void message(const QString &text, Icon icon = Icon::Warning, const QString &title = {}) override;
    Answer question(const QString &text, bool withCancel = false, const QString &title = {}) override;
    QString inputText(const QString &prompt, const QString &title, const QString &defaultText) override;
    QString openFileName(const QString &title, const QString &folder, const QStringList &filters) override;
    QStringList openFileNames(
        const QString &title, const QString &folder, const QStringList &filters) override;
    QString saveFileName(const QString &title, const QString &startPath, const QStringList &filters,
        int *selectedFilter = nullptr) override;
    QString folderName(const QString &title, const QString &folder) override;

    void showProgress(bool visible) override;
    void setProgressCaption(const QString &caption) override;
    void setProgressRange(int maximum) override;
    void setProgressValue(int value) override;
    int progressValue() const override { return progress.value; }

    void setBusy(bool busy) override;
    void statusMessage(const QString &text) override;
    void processEvents() override { ++m_eventPumps; }
    bool escapePressed() override;
    void terminate(int exitCode) override;

    int eventPumps() const { return m_eventPumps; }

private:
    struct FileAnswer
    {
        QString path;
        int filterRow;
    };
    FileAnswer nextFile(Kind kind, const QString &title, const QString &folder, const QStringList &filters);

    QQueue<Answer> m_answers;
    QQueue<QString> m_inputs;
    QQueue<FileAnswer> m_files;
    bool m_escape = false;
    int m_escapeDelay = 0;
    int m_escapeChecks = 0;
    int m_eventPumps = 0;
};

} // namespace fenwork
