#include "testenv.h"

#include "frame/inifile.h"
#include "frame/settings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace fenwork::test {

TestEnv::TestEnv(const QString &language)
{
    qputenv("FENNELWORKS_ROOT", m_root.path().toUtf8());
    const Paths paths(m_root.path(), QStringLiteral(FENWORK_DATA_DIR));
    QDir().mkpath(paths.cacheFolder());
    if (!language.isEmpty())
        IniFile(paths.settingsFile()).set(keys::Lang, language);
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
    const QString dir = QStringLiteral(FENWORK_CORPUS_DIR);
    return QFileInfo(dir).isDir() ? QDir(dir).canonicalPath() : QString();
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

} // namespace fenwork::test
