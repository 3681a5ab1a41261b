#pragma once
#include "frame/userdialogs.h"

class QTextStream;

namespace fenwork {

// The dialogs seam for the batch companion: nobody is there to answer, so messages go to
// standard error, every question is answered No (the answer that leaves things as they are),
// input and file dialogs give nothing, and the progress display is silent.
class CliDialogs : public UserDialogs
{
public:
    void message(const QString &text, Icon icon = Icon::Warning, const QString &title = {}) override;
    Answer question(const QString &text, bool withCancel = false, const QString &title = {}) override;
    QString inputText(const QString &prompt, const QString &title, const QString &defaultText) override;
    QString openFileName(const QString &title, const QString &folder, const QStringList &filters) override;
    QStringList openFileNames(
        const QString &title, const QString &folder, const QStringList &filters) override;
    QString saveFileName(const QString &title, const QString &startPath, const QStringList &filters,
        int *selectedFilter = nullptr) override;
    QString folderName(const QString &title, const QString &folder) override;

    void showProgress(bool) override { }
    void setProgressCaption(const QString &) override { }
    void setProgressRange(int) override { }
    void setProgressValue(int value) override { m_progressValue = value; }
    int progressValue() const override { return m_progressValue; }

    void setBusy(bool) override { }
    void statusMessage(const QString &text) override;
    void processEvents() override { }
    bool escapePressed() override { return false; }
    // Ends the process; a command that must go on after a failure overrides this.
    void terminate(int exitCode) override;

private:
    int m_progressValue = 0;
};

// For a command with an error stream of its own that judges failures by its results: messages go
// to that stream as they stand (lines ended by LF), and a failure reported on the way ends nothing.
class StreamDialogs : public CliDialogs
{
public:
    explicit StreamDialogs(QTextStream &err)
        : m_err(err)
    { }
    void message(const QString &text, Icon icon = Icon::Warning, const QString &title = {}) override;
    void terminate(int) override { }

private:
    QTextStream &m_err;
};

} // namespace fenwork
