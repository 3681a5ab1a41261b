#pragma once
// The edit session without its widgets: which tune or header is edited, the undo ring, the
// recovery copy, and the validation that hands the text back to the store.
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

class QTimer;

namespace fenwork {

class AppContext;

// Ten texts while a session runs, one outside. Entry 0 is the newest; each change pushes the
// editor's text, so undoing gives back the text before the present one.
class UndoRing
{
public:
    void resize(int size);
    int size() const { return int(m_entries.size()); }
    QString entry(int index) const { return m_entries.value(index); }
    // Stores the present text; false (nothing stored) when it is empty or the ring is one long.
    bool SetUndo(const QString &text);
    // The text before the present one; empty when there is none.
    QString GetUndo();
    // Entry 1 holds a text: something was changed since the session began.
    bool hasChanges() const { return m_entries.size() > 1 && !m_entries.at(1).isEmpty(); }

private:
    QStringList m_entries { QString() };
};

// The line under the caret in `text` (CR LF or LF line ends), without its line break.
QString currentLine(const QString &text, qsizetype caret);
// An Enter at `caret` would make an empty line: the character before the caret ends a line.
bool needsBlankLineGuard(const QString &text, qsizetype caret);
// The tune's header lines as the tree holds them, each with CR LF, then the caret's line and CR LF:
// a one-line tune for the score and the player.
QString getCurLineAsTune(const AppContext &app, const QString &kTune, const QString &text, qsizetype caret);
// Editor text (LF) as the store takes it (CR LF).
QString toStoreText(const QString &editorText);
// Store text as the editor shows it: LF lines, without the last line break the store adds, so
// that a reload looks as typed.
QString fromStoreText(QString storeText);

class EditSession : public QObject
{
    Q_OBJECT
public:
    enum class Target { None, Tune, Header };

    explicit EditSession(AppContext &app, QObject *parent = nullptr);
    ~EditSession() override;

    // Where the recovery copy reads the editor's text.
    std::function<QString()> textSource;

    bool isActive() const { return m_target != Target::None; }
    Target target() const { return m_target; }
    QString tuneKey() const { return m_kTune; }
    QString fileKey() const { return m_kFile; }
    UndoRing &ring() { return m_ring; }

    // Starts on the current tune, else on the current file's header; false when neither is
    // selected or a session runs already.
    bool start(const QString &text);
    // Gives the text back to the tree. False, with the message shown, when a tune's text does not
    // begin with "X:": the session goes on.
    bool validate(const QString &text);
    // Asks when the text changed; true when the session ended. `reloaded` receives the stored text.
    bool cancel(QString *reloaded);
    // Writes the recovery file now; errors are ignored (the next tick tries again).
    void writeRecovery();
    QTimer *recoveryTimer() const { return m_recover; }

signals:
    void ended(bool validated);

private:
    void close(bool validated);

    AppContext &m_app;
    Target m_target = Target::None;
    QString m_kTune;
    QString m_kFile;
    UndoRing m_ring;
    QString m_startText; // what the session began with: the reference for "changed"
    QTimer *m_recover;
};

} // namespace fenwork
