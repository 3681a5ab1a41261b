#pragma once
#include <memory>
#include "frame/clidialogs.h"

class QTextStream;

namespace fenwork {

class AppContext;

// The context of a command that opens files only to read them and reports on its own error
// stream: the settings and language of the user root (English when none is chosen yet), the
// workspace root, and no backup copy made on opening.
class ReadingContext
{
public:
    ReadingContext(const char *command, QTextStream &err);
    ~ReadingContext();
    // False when the user folder cannot be made: the reason is on the error stream.
    bool ok() const { return bool(m_app); }
    AppContext &app() { return *m_app; }

private:
    StreamDialogs m_dialogs;
    std::unique_ptr<AppContext> m_app;
};

} // namespace fenwork
