#pragma once
// The export dialog's preview: the dialog's input engraved with its format into "tmp.ps", and
// one grey bitmap a page ("tmp1.bmp" ...) in the cache folder.
#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

struct PreviewRun
{
    QString input; // the ABC file of the dialog
    QString formatFile; // stands for format.fmt
    QString extras; // tablature switches
    bool jumpFormat = false; // the score's own options instead of the format file
    int resolution = 72;
    QString paperName = QStringLiteral("a4");
    bool keepPostScript = false; // a "tmp.ps" of the last preview is used again
};

struct PreviewPages
{
    QStringList pages; // the bitmaps in page order; empty on failure
    QString error; // the wait's answer, or the Ghostscript failure
    bool ghostscriptMissing = false;
};

PreviewPages renderPreview(AppContext &app, const PreviewRun &run);

} // namespace fenwork
