#pragma once
// One Ghostscript interpreter kept initialised between runs. Making, initialising and deleting an
// instance costs several times what rasterising one page does; the score redraws on every click
// and keystroke, so it keeps one instance for its device and resolution and feeds it each new
// PostScript file.
#include <QString>
#include <QStringList>

namespace fenwork {

class WarmGhostscript
{
public:
    WarmGhostscript() = default;
    ~WarmGhostscript();
    WarmGhostscript(const WarmGhostscript &) = delete;
    WarmGhostscript &operator=(const WarmGhostscript &) = delete;

    // Runs `input` on an instance initialised with `arguments` (a program name and the options,
    // no input file), in the current folder. A new instance is made when there is none, when the
    // arguments or the folder changed, and after any failure. Each run starts from the state the
    // initialisation left, and its pages are numbered from 1 as a new instance would number
    // them. `error` as for RunGhostscript: the load error (holding "gsdll") or the interpreter's
    // code and messages.
    bool run(const QStringList &arguments, const QString &input, QString *error = nullptr);

    // Whether an initialised instance is waiting for the next run.
    bool isWarm() const { return m_instance != nullptr; }
    // Ends the instance; the next run makes a new one.
    void close();

private:
    bool start(const QStringList &arguments, QString *error);
    bool runString(const QByteArray &code, int *exitCode);
    int pageCount();
    void renumberPages(int before, int after) const;

    void *m_instance = nullptr;
    QStringList m_arguments;
    QString m_folder;
    QString m_outputPattern; // the output file with its %d, to renumber the pages
};

} // namespace fenwork
