#pragma once
// fenwork-cli as a user runs it: a separate process over a user root of its own, with a folder for
// the files a test gives it.
#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace fenwork::test {

struct CliRun
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

class CliProcess
{
public:
    QString write(const QString &name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(bytes);
        return path(name);
    }
    QString path(const QString &name) const { return m_files.filePath(name); }
    QString root() const { return m_root.path(); }

    // A null `pathVariable` keeps the PATH of the tests.
    CliRun run(const QStringList &arguments, const QByteArray &pathVariable = {}) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("FENNELWORKS_ROOT"), m_root.path());
        if (!pathVariable.isEmpty())
            environment.insert(QStringLiteral("PATH"), QString::fromLocal8Bit(pathVariable));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(FENWORK_BINARY_DIR "/fenwork-cli"), arguments);
        CliRun result;
        if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
            return result;
        result.exitCode = process.exitCode();
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

private:
    QTemporaryDir m_root;
    QTemporaryDir m_files;
};

} // namespace fenwork::test
