#include "testenv.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "app/widgets/mainwindow.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork::test {

TestEnv::TestEnv(const QString &language)
{
    qputenv("FENNELWORKS_ROOT", m_root.path().toUtf8());
    const Paths paths(m_root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    const IniFile ini(paths.settingsFile());
    if (!language.isEmpty())
        ini.set(keys::Lang, language);
    // Whatever larger fonts the machine holds, what the tests hear is always the same.
    ini.set(keys::SoundFont, testSoundFont());
    m_app = std::make_unique<AppContext>(paths, &m_ui);
    m_app->buildStartupTexts();
}

TestEnv::~TestEnv() = default;

QString TestEnv::writeFile(const QString &name, const QByteArray &bytes) const
{
    const QString target = path(name);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QFile file(target);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return target;
}

QString corpusDir()
{
    // The environment may point elsewhere, or at nothing, to run the suite as a clone without it.
    const QString dir = qEnvironmentVariableIsSet("FENWORK_CORPUS_DIR")
        ? qEnvironmentVariable("FENWORK_CORPUS_DIR")
        : QStringLiteral(FENWORK_CORPUS_DIR);
    return QFileInfo(dir).isDir() ? QDir(dir).canonicalPath() : QString();
}

QString testSoundFont()
{
    const QString font = QStringLiteral("/usr/share/sounds/sf2/TimGM6mb.sf2");
    return QFileInfo(font).isReadable() ? font : QString();
}

QString testDataDir()
{
    return QStringLiteral(FENWORK_TESTDATA_DIR);
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString readAll(const QString &path)
{
    return QString::fromUtf8(readBytes(path));
}

EnvGuard::EnvGuard(const char *name, const QByteArray &value)
    : m_name(name)
    , m_had(qEnvironmentVariableIsSet(name))
    , m_old(qgetenv(name))
{
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

EnvGuard::~EnvGuard()
{
    if (m_had)
        qputenv(m_name, m_old);
    else
        qunsetenv(m_name);
}

std::unique_ptr<MainWindow> loadedMainWindow(TestEnv &env)
{
    const IniFile &ini = env.app().ini();
    ini.set(keys::Ask4alias, QStringLiteral("0"));
    ini.set(keys::FichBak, QStringLiteral("0"));
    auto window = std::make_unique<MainWindow>(env.app());
    window->MainLoad();
    window->show();
    QApplication::setActiveWindow(window.get());
    QApplication::processEvents();
    return window;
}

} // namespace fenwork::test
