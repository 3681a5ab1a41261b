#include "scripteddialogs.h"

namespace fenwork {

void ScriptedDialogs::setEscapePressed(bool pressed, int afterChecks)
{
    m_escape = pressed;
    m_escapeDelay = afterChecks;
}

QStringList ScriptedDialogs::texts(Kind kind) const
{
    QStringList result;
    for (const Shown &s : shown) {
        if (s.kind == kind)
            result.append(s.text);
    }
    return result;
}

QString ScriptedDialogs::lastMessage() const
{
    for (auto it = shown.crbegin(); it != shown.crend(); ++it) {
        if (it->kind == Kind::Message)
            return it->text;
    }
    return {};
}

void ScriptedDialogs::clear()
{
    shown.clear();
    progress = {};
    captionHistory.clear();
    busyDepth = 0;
    unexpectedPrompts = 0;
    exitCode.reset();
    m_answers.clear();
    m_inputs.clear();
    m_files.clear();
    m_escape = false;
    m_escapeDelay = 0;
    m_escapeChecks = 0;
    m_eventPumps = 0;
}

void ScriptedDialogs::message(const QString &text, Icon icon, const QString &title)
{
    shown.append({ Kind::Message, text, title, icon, {} });
}

UserDialogs::Answer ScriptedDialogs::question(const QString &text, bool withCancel, const QString &title)
{
    shown.append({ Kind::Question, text, title, Icon::Information, {} });
    if (m_answers.isEmpty()) {
        ++unexpectedPrompts;
        return Answer::No;
    }
    const Answer answer = m_answers.dequeue();
    // A script that answers Cancel to a Yes/No box gets what closing such a box gives.
    if (answer == Answer::Cancel && !withCancel)
        return Answer::No;
    return answer;
}

QString ScriptedDialogs::inputText(const QString &prompt, const QString &title, const QString &defaultText)
{
    Q_UNUSED(defaultText)
    shown.append({ Kind::Input, prompt, title, Icon::Information, {} });
    if (m_inputs.isEmpty()) {
        ++unexpectedPrompts;
        return {};
    }
    return m_inputs.dequeue();
}

ScriptedDialogs::FileAnswer ScriptedDialogs::nextFile(
    Kind kind, const QString &title, const QString &folder, const QStringList &filters)
{
    shown.append({ kind, folder, title, Icon::Information, filters });
    if (m_files.isEmpty()) {
        ++unexpectedPrompts;
        return { QString(), 0 };
    }
    return m_files.dequeue();
}

QString ScriptedDialogs::openFileName(const QString &title, const QString &folder, const QStringList &filters)
{
    return nextFile(Kind::OpenFile, title, folder, filters).path;
}

QStringList ScriptedDialogs::openFileNames(
    const QString &title, const QString &folder, const QStringList &filters)
{
    const QString paths = nextFile(Kind::OpenFiles, title, folder, filters).path;
    if (paths.isEmpty())
        return {};
    return paths.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString ScriptedDialogs::saveFileName(
    const QString &title, const QString &startPath, const QStringList &filters, int *selectedFilter)
{
    const FileAnswer answer = nextFile(Kind::SaveFile, title, startPath, filters);
    if (selectedFilter && !answer.path.isEmpty())
        *selectedFilter = answer.filterRow;
    return answer.path;
}

QString ScriptedDialogs::folderName(const QString &title, const QString &folder)
{
    return nextFile(Kind::Folder, title, folder, {}).path;
}

void ScriptedDialogs::showProgress(bool visible)
{
    progress.visible = visible;
}

void ScriptedDialogs::setProgressCaption(const QString &caption)
{
    progress.caption = caption;
    captionHistory.append(caption);
}

void ScriptedDialogs::setProgressRange(int maximum)
{
    progress.maximum = maximum;
    if (progress.value > maximum)
        progress.value = maximum;
}

void ScriptedDialogs::setProgressValue(int value)
{
    progress.value = value;
}

void ScriptedDialogs::setBusy(bool busy)
{
    busyDepth += busy ? 1 : -1;
}

void ScriptedDialogs::statusMessage(const QString &text)
{
    shown.append({ Kind::Status, text, QString(), Icon::Information, {} });
}

bool ScriptedDialogs::escapePressed()
{
    ++m_escapeChecks;
    if (!m_escape)
        return false;
    if (m_escapeDelay > 0) {
        --m_escapeDelay;
        return false;
    }
    m_escape = false;
    return true;
}

void ScriptedDialogs::terminate(int code)
{
    exitCode = code;
}

} // namespace fenwork
