#pragma once
// A fresh user root in a temporary folder, the shipped program folder, scripted dialogs and an
// application context over them: what most core tests start from.
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "scripteddialogs.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>
#include <memory>

namespace fenwork {
class MainWindow;
}

namespace fenwork::test {

class TestEnv
{
public:
    // `language` empty leaves the language unset.
    explicit TestEnv(const QString &language = QStringLiteral("English"));
    ~TestEnv();

    AppContext &app() { return *m_app; }
    ScriptedDialogs &ui() { return m_ui; }
    QString root() const { return m_root.path(); }
    // A path under the temporary folder (not under the user root's "user" folder).
    QString path(const QString &name) const { return m_root.filePath(QStringLiteral("files/") + name); }
    // Writes bytes to path(name), making the folder; returns the path.
    QString writeFile(const QString &name, const QByteArray &bytes) const;

private:
    QTemporaryDir m_root;
    ScriptedDialogs m_ui;
    std::unique_ptr<AppContext> m_app;
};

// Sets an environment variable for one scope (a null value unsets it) and puts the old value back.
class EnvGuard
{
public:
    EnvGuard(const char *name, const QByteArray &value);
    ~EnvGuard();
    EnvGuard(const EnvGuard &) = delete;
    EnvGuard &operator=(const EnvGuard &) = delete;

private:
    const char *m_name;
    bool m_had;
    QByteArray m_old;
};

// The main window over `env`, loaded and shown, with the start-up questions of a first run
// (alias, backup copies) answered in the settings so that nothing waits for a person.
std::unique_ptr<MainWindow> loadedMainWindow(TestEnv &env);

QString corpusDir();      // ../shared/corpus or $FENWORK_CORPUS_DIR, empty when absent
// The small General MIDI font that install-deps installs, empty when absent: tests that listen
// render with it, since the program rightly prefers a larger one when the machine has it.
QString testSoundFont();
QString testDataDir();    // tests/
QString readAll(const QString &path);
QByteArray readBytes(const QString &path);

} // namespace fenwork::test
