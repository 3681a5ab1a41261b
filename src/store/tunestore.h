#pragma once
// The tune store: reads ABC files into the workspace tree, builds files and tunes as nodes, and
// gives their text back. The tree is the only copy of an open file's text.
#include "frame/textfile.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>

namespace fenwork {

class AppContext;
class Node;
class RecentFiles;

class TuneStore : public QObject
{
    Q_OBJECT
public:
    explicit TuneStore(AppContext &app);

    // Placement flags of AddStringFile.
    enum PlaceFlag { ReuseWanted = 1, NewWithWanted = 2, AfterRelative = 4, BeforeRelative = 8 };

    // Reads a file into the tree; returns its key, or empty on failure (after saying why).
    QString FichierOuvrir(const QString &path, bool inTrash, bool noAsk, bool readOnly);
    // Builds a file's nodes from normalised CR LF text; returns the file key or empty.
    QString AddStringFile(const QString &path, const QString &text, bool inTrash, bool noAsk, bool readOnly,
                          const QString &kWanted, const QString &kRelative, int place);
    // Adds or rewrites one tune; returns its key or empty. `text` receives the ":|:" rewrite;
    // `kWanted` is cleared when that key was refused.
    QString AddStringTune(QString &text, const QString &kFile, bool noInclude, const QString &kRelative,
                          bool before, QString &kWanted);
    QString AddStringTune(const QString &text, const QString &kFile, bool noInclude = false,
                          const QString &kRelative = {}, bool before = false);
    // Shows the lines of the file an include line names, after that line.
    void InclureDans(const QString &path, Node *node, const QString &line);
    // A new empty file "<new>"; returns its key.
    QString createNewFile();
    // Replaces a file's header by edited text.
    void rebuildFileHeader(const QString &kFile, const QString &text);

    QString GetStringTune(const QString &kTune, bool expandIncludes, int xNumber = 0) const;
    QString GetStringHdrFile(const QString &kFile, bool expandIncludes) const;
    QString GetStringFile(const QString &kFile, bool noHeader, bool expandIncludes) const;
    // Marks a file as changed (its picture) and enables the save commands.
    void SetFlagModifFile(const QString &kFile);
    // Writes a file: `lineEnd` "cr", "lf", or anything else for CR LF. On failure the file on disk
    // is untouched; the error goes to `error` when given, else to a message box.
    bool FichierSaveFromKey(const QString &kFile, const QString &path, const QString &lineEnd,
                            QString *error = nullptr);
    // Replaces a whole file's content by `text` as it stands; the file keeps its place and key.
    void SwapStringFile(const QString &text, QString &kFile);

    // "latin1", "latin2" or empty from the file's %%abc-charset lines.
    QString GetCharset(const QString &kFile) const;

    // The encoding a file was read in, and is written back in.
    TextEncoding fileEncoding(const QString &kFile) const;
    void setFileEncoding(const QString &kFile, TextEncoding encoding) { m_encodings.insert(kFile, encoding); }
    void forgetFile(const QString &kFile) { m_encodings.remove(kFile); }

    // Opening copies the file to "<path>.BAK" when the setting asks; commands that only read a
    // file turn this off, so that they write nothing but their own output.
    bool backupOnOpen = true;
    // The trash box changed since it was loaded: it is written back at quit.
    bool trashChanged = false;
    // The recent-files list that opening adds to; may be null.
    RecentFiles *recent = nullptr;
    // A cut or copied tune waiting to be pasted, and one being dragged: key, CR LF, text.
    QString pendingTune;
    QString pendingDrag;

signals:
    // A node made or moved by an operation wants to be selected (the window clicks it).
    void nodeSelectionRequested(const QString &key);
    // Tunes left the tree: whoever keeps references to them drops those now gone.
    void tunesRemoved();

private:
    // The tune of `lines` (the X: line first); blank lines are skipped.
    QString addTuneLines(QStringList &lines, const QString &kFile, bool noInclude, const QString &kRelative,
                         bool before, QString &kWanted);
    // Texts every tune needs, looked up once per file load rather than once per tune.
    struct TuneCaptions
    {
        QString placeholder, tuneHeader, tuneBody;
    };
    TuneCaptions tuneCaptions() const;
    const TuneCaptions *m_captions = nullptr;

    AppContext &m_app;
    QHash<QString, TextEncoding> m_encodings;
};

// The text of a file from disk with its line ends made CR LF and the ABC spellings normalised
// (escapes decoded, bar lines closed up, double repeats split, PostScript blocks spared).
// On failure returns false with `error` set; an empty result means an empty file.
bool normaliseAbcText(QString &text, class UserDialogs *progress, QString *error);

} // namespace fenwork
