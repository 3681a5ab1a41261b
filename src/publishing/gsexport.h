#pragma once
// Export through the engraver and Ghostscript: ABC to PostScript with the user's format file,
// then PostScript to PDF or to one grey picture a page.
#include "publishing/exportcommon.h"

#include <QString>
#include <QStringList>

namespace fenwork {

class AppContext;

// What the export dialog is shown with, and what it answers.
struct ExportDialogRequest
{
    QString inputPath; // the ABC the preview engraves
    QString extension; // upper case: "PDF", "PNG", "BMP", "JPG", "PRN" or "SETUP"
    ExportScope scope = ExportScope::File;
    int resolution = 0;
};

struct ExportDialogAnswer
{
    QString paperName; // empty: the dialog was cancelled
    QString extension; // lower case, "prn" for direct printing
    int resolution = 0;
    bool addTabs = false;
    int tabsRow = 0;
    bool jumpFormat = false; // the score's own options instead of the format file
};

// Shows f_export modally. The window implements it; tests answer from a script.
class ExportDialogHost
{
public:
    virtual ~ExportDialogHost() = default;
    virtual ExportDialogAnswer showExportDialog(const ExportDialogRequest &request) = 0;
};

// The text that reports a failed Ghostscript run.
inline const QString kGsFailure = QStringLiteral(" * * * Echec conversion Ghostscript * * * ");

// The Ghostscript arguments of an export of `postScript` to `target` ("prn" renders pictures as
// "bmp" does).
QStringList exportGhostscriptArguments(const QString &extension, int resolution, const QString &target,
                                       const QString &paperName, const QString &postScript);

class GsExporter
{
public:
    // `host` may be null for silent runs only.
    GsExporter(AppContext &app, ExportDialogHost *host = nullptr);

    // The format file that stands for "format.fmt" (the batch companion's --format).
    void setFormatFile(const QString &path) { m_formatFile = path; }
    QString formatFile() const;

    // Exports `source` (a tree key, or ABC text). An empty `target` shows the dialog and asks for
    // the path; `extension`, `target` and `resolution` come back as the run used them. Returns ""
    // or the error text.
    QString ExportViaGs(const QString &source, QString &extension, QString &target, int &resolution);

    // The run found no Ghostscript library: the window switches the score to manual refreshing.
    bool ghostscriptMissing() const { return m_ghostscriptMissing; }
    // The files the last run wrote (the pages of an image export).
    QStringList written() const { return m_written; }
    // The paper name of the last run ("a4" in silent runs).
    QString paperName() const { return m_paperName; }

    // The default name the save dialog proposes for `source` and `extension`.
    static QString defaultName(const AppContext &app, const QString &source, const QString &extension);

private:
    QString run(const QString &source, QString &extension, QString &target, int &resolution);
    void offerViewer(const QString &extension, const QString &target);

    AppContext &m_app;
    ExportDialogHost *m_host;
    QString m_formatFile;
    bool m_ghostscriptMissing = false;
    QStringList m_written;
    QString m_paperName;
};

} // namespace fenwork
