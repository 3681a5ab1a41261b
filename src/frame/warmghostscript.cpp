#include "frame/warmghostscript.h"

#include "frame/ghostscript.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <dlfcn.h>
#include <ghostscript/gserrors.h>
#include <ghostscript/iapi.h>

#include <vector>

namespace fenwork {

namespace {

// The entry points a kept instance needs beyond those of a single run.
struct WarmApi
{
    QByteArray library;
    decltype(&gsapi_new_instance) newInstance = nullptr;
    decltype(&gsapi_delete_instance) deleteInstance = nullptr;
    decltype(&gsapi_set_stdio) setStdio = nullptr;
    decltype(&gsapi_set_arg_encoding) setArgEncoding = nullptr;
    decltype(&gsapi_init_with_args) initWithArgs = nullptr;
    decltype(&gsapi_run_string) runString = nullptr;
    decltype(&gsapi_run_file) runFile = nullptr;
    decltype(&gsapi_exit) exit = nullptr;
};

template <typename F> bool resolve(void *handle, const char *name, F &target)
{
    target = reinterpret_cast<F>(dlsym(handle, name));
    return target != nullptr;
}

// The library that the one-run wrapper loaded (it says "gsdll" when there is none), opened once
// more for the entry points it does not use. Looked up again when tests switch the library.
const WarmApi *warmApi(QString *error)
{
    static WarmApi api;
    if (!ghostscriptAvailable(error))
        return nullptr;
    const QByteArray name = qEnvironmentVariableIsSet("FENNELWORKS_GSLIB") ? qgetenv("FENNELWORKS_GSLIB")
                                                                           : QByteArray("libgs.so.10");
    if (api.library == name && api.exit)
        return &api;
    api = WarmApi {};
    void *handle = dlopen(name.constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle || !resolve(handle, "gsapi_new_instance", api.newInstance)
        || !resolve(handle, "gsapi_delete_instance", api.deleteInstance)
        || !resolve(handle, "gsapi_set_stdio", api.setStdio)
        || !resolve(handle, "gsapi_set_arg_encoding", api.setArgEncoding)
        || !resolve(handle, "gsapi_init_with_args", api.initWithArgs)
        || !resolve(handle, "gsapi_run_string", api.runString)
        || !resolve(handle, "gsapi_run_file", api.runFile) || !resolve(handle, "gsapi_exit", api.exit)) {
        if (error)
            *error = QStringLiteral("Entry point not found in gsdll (") + QString::fromLocal8Bit(name)
                + QStringLiteral(")");
        api = WarmApi {};
        return nullptr;
    }
    api.library = name;
    return &api;
}

QByteArray &output()
{
    static QByteArray text;
    return text;
}

int GSDLLCALL noInput(void *, char *, int)
{
    return 0;
}

int GSDLLCALL keepOutput(void *, const char *text, int length)
{
    output().append(text, length);
    return length;
}

bool succeeded(int code)
{
    return code == 0 || code == gs_error_Quit;
}

QString failure(int code)
{
    return QStringLiteral("Ghostscript error ") + QString::number(code) + QStringLiteral("\r\n")
        + QString::fromLocal8Bit(output()).trimmed();
}

// What a page of `pattern` is called: its %d (or %0Nd) replaced by the number.
QString pageName(const QString &pattern, int page)
{
    return QString::asprintf(pattern.toUtf8().constData(), page);
}

} // namespace

WarmGhostscript::~WarmGhostscript()
{
    close();
}

void WarmGhostscript::close()
{
    if (!m_instance)
        return;
    if (const WarmApi *api = warmApi(nullptr)) {
        api->exit(m_instance);
        api->deleteInstance(m_instance);
    }
    m_instance = nullptr;
    m_arguments.clear();
}

bool WarmGhostscript::start(const QStringList &arguments, QString *error)
{
    const WarmApi *api = warmApi(error);
    if (!api)
        return false;
    void *instance = nullptr;
    int code = api->newInstance(&instance, this);
    if (code < 0) {
        if (error)
            *error = QStringLiteral("gsapi_new_instance: ") + QString::number(code);
        return false;
    }
    api->setStdio(instance, noInput, keepOutput, keepOutput);
    api->setArgEncoding(instance, GS_ARG_ENCODING_UTF8);

    std::vector<QByteArray> bytes;
    std::vector<char *> argv;
    bytes.reserve(size_t(arguments.size()));
    for (const QString &argument : arguments) {
        bytes.push_back(argument.toUtf8());
        argv.push_back(bytes.back().data());
    }
    argv.push_back(nullptr);
    output().clear();
    code = api->initWithArgs(instance, int(arguments.size()), argv.data());
    if (!succeeded(code)) {
        if (error)
            *error = failure(code);
        api->exit(instance);
        api->deleteInstance(instance);
        return false;
    }
    m_instance = instance;
    m_arguments = arguments;
    m_folder = QDir::currentPath();
    m_outputPattern.clear();
    for (const QString &argument : arguments)
        if (argument.startsWith(u"-sOutputFile="))
            m_outputPattern = argument.mid(13);
    return true;
}

bool WarmGhostscript::runString(const QByteArray &code, int *exitCode)
{
    const WarmApi *api = warmApi(nullptr);
    return api && succeeded(api->runString(m_instance, code.constData(), 0, exitCode));
}

int WarmGhostscript::pageCount()
{
    int exitCode = 0;
    output().clear();
    if (!runString("currentdevice getdeviceprops >> /PageCount get = flush\n", &exitCode))
        return -1;
    bool ok = false;
    const int count = output().trimmed().toInt(&ok);
    return ok ? count : -1;
}

// The device counts pages over the instance's life; a new instance would have started at 1.
void WarmGhostscript::renumberPages(int before, int after) const
{
    if (before <= 0 || m_outputPattern.isEmpty() || !m_outputPattern.contains(u'%'))
        return;
    for (int page = 1; page <= after - before; ++page) {
        const QString wanted = pageName(m_outputPattern, page);
        QFile::remove(wanted);
        QFile::rename(pageName(m_outputPattern, before + page), wanted);
    }
}

bool WarmGhostscript::run(const QStringList &arguments, const QString &input, QString *error)
{
    if (m_instance && (arguments != m_arguments || QDir::currentPath() != m_folder))
        close();
    if (!m_instance && !start(arguments, error))
        return false;
    const WarmApi *api = warmApi(error);
    if (!api) {
        m_instance = nullptr; // the library it lived in is gone for us
        return false;
    }

    const int before = pageCount();
    // A save before the job and its restore after it: what one tune's PostScript defines does
    // not reach the next one, so each page is drawn as a new instance would draw it.
    int exitCode = 0;
    output().clear();
    bool ok = before >= 0 && runString("userdict /fenworkJob save put\n", &exitCode);
    int code = ok ? api->runFile(m_instance, QFile::encodeName(input).constData(), 0, &exitCode) : -1;
    ok = ok && succeeded(code);
    const QString messages = QString::fromLocal8Bit(output());
    ok = ok && runString("userdict /fenworkJob get restore\n", &exitCode);
    const int after = ok ? pageCount() : -1;
    if (!ok || after < before) {
        if (error) {
            output() = messages.toLocal8Bit();
            *error = failure(code != 0 ? code : exitCode);
        }
        close(); // a failed job may leave the interpreter in any state: the next run starts afresh
        return false;
    }
    renumberPages(before, after);
    return true;
}

} // namespace fenwork
