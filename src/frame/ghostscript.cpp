#include "frame/ghostscript.h"

#include <QByteArray>
#include <QDir>
#include <QMutex>

#include <dlfcn.h>
#include <ghostscript/gserrors.h>
#include <ghostscript/iapi.h>

#include <vector>

namespace fenwork {

namespace {

// The few entry points we use, looked up by name so that the program starts without the library.
struct GsApi
{
    void *handle = nullptr;
    bool tried = false;
    QString loadError;
    decltype(&gsapi_new_instance) newInstance = nullptr;
    decltype(&gsapi_delete_instance) deleteInstance = nullptr;
    decltype(&gsapi_set_stdio) setStdio = nullptr;
    decltype(&gsapi_set_arg_encoding) setArgEncoding = nullptr;
    decltype(&gsapi_init_with_args) initWithArgs = nullptr;
    decltype(&gsapi_exit) exit = nullptr;
};

GsApi &api()
{
    static GsApi instance;
    return instance;
}

QString &messages()
{
    static QString text;
    return text;
}

template <typename F> bool resolve(void *handle, const char *name, F &target)
{
    target = reinterpret_cast<F>(dlsym(handle, name));
    return target != nullptr;
}

bool load(QString *error)
{
    GsApi &gs = api();
    if (!gs.tried) {
        gs.tried = true;
        const QByteArray name = qEnvironmentVariableIsSet("FENNELWORKS_GSLIB") ? qgetenv("FENNELWORKS_GSLIB")
                                                                               : QByteArray("libgs.so.10");
        gs.handle = dlopen(name.constData(), RTLD_NOW | RTLD_LOCAL);
        if (!gs.handle) {
            const char *why = dlerror();
            gs.loadError = QStringLiteral("File not found: gsdll (") + QString::fromLocal8Bit(name)
                + QStringLiteral("): ") + QString::fromLocal8Bit(why ? why : "");
        } else if (!resolve(gs.handle, "gsapi_new_instance", gs.newInstance)
            || !resolve(gs.handle, "gsapi_delete_instance", gs.deleteInstance)
            || !resolve(gs.handle, "gsapi_set_stdio", gs.setStdio)
            || !resolve(gs.handle, "gsapi_set_arg_encoding", gs.setArgEncoding)
            || !resolve(gs.handle, "gsapi_init_with_args", gs.initWithArgs)
            || !resolve(gs.handle, "gsapi_exit", gs.exit)) {
            gs.loadError = QStringLiteral("Entry point not found in gsdll (") + QString::fromLocal8Bit(name)
                + QStringLiteral(")");
            dlclose(gs.handle);
            gs.handle = nullptr;
        }
    }
    if (!gs.handle && error)
        *error = gs.loadError;
    return gs.handle != nullptr;
}

int GSDLLCALL stdinCallback(void *, char *, int)
{
    return 0; // no input
}

int GSDLLCALL outputCallback(void *, const char *text, int length)
{
    messages() += QString::fromLocal8Bit(text, length);
    return length;
}

} // namespace

QString ghostscriptMessages()
{
    return messages();
}

void clearGhostscriptMessages()
{
    messages().clear();
}

bool ghostscriptAvailable(QString *error)
{
    return load(error);
}

void resetGhostscriptLibrary()
{
    GsApi &gs = api();
    // The library stays mapped: an unloaded interpreter may leave atexit handlers behind.
    gs = GsApi {};
}

bool RunGhostscript(const QStringList &arguments, QString *error)
{
    if (!load(error))
        return false;
    GsApi &gs = api();

    void *instance = nullptr;
    int code = gs.newInstance(&instance, nullptr);
    if (code < 0) {
        if (error)
            *error = QStringLiteral("gsapi_new_instance: ") + QString::number(code);
        return false;
    }
    gs.setStdio(instance, stdinCallback, outputCallback, outputCallback);
    gs.setArgEncoding(instance, GS_ARG_ENCODING_UTF8);

    std::vector<QByteArray> bytes;
    bytes.reserve(size_t(arguments.size()));
    std::vector<char *> argv;
    for (const QString &argument : arguments) {
        bytes.push_back(argument.toUtf8());
        argv.push_back(bytes.back().data());
    }
    argv.push_back(nullptr);

    const qsizetype before = messages().size();
    code = gs.initWithArgs(instance, int(arguments.size()), argv.data());
    const int exitCode = gs.exit(instance);
    gs.deleteInstance(instance);

    // A "quit" inside the job ends it normally.
    const bool ok = (code == 0 || code == gs_error_Quit) && exitCode >= 0;
    if (!ok && error)
        *error = QStringLiteral("Ghostscript error ") + QString::number(code != 0 ? code : exitCode)
            + QStringLiteral("\r\n") + messages().mid(before).trimmed();
    return ok;
}

} // namespace fenwork
