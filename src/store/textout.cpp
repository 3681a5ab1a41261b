// The text of tunes, headers and files read back from the tree, and writing a file.
#include "store/tunestore.h"

#include "frame/appcontext.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strbuild.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <algorithm>

namespace fenwork {

namespace {

// Lines the program shows for an include (the lines it read, or the note that the file was not
// found) are never part of the user's text: a save writing them back would include them again at
// the next open. A tool gets the included lines in place of the include line.
bool isShownForInclude(const Node *line)
{
    return line->Key.contains(u"_inclg") || line->Key.endsWith(u"_err");
}

void appendLines(StrBuild &out, const Node *group, bool expandIncludes)
{
    for (const Node *line : group->children()) {
        const bool keep = expandIncludes ? line->Image != Pic::Include && !line->Key.endsWith(u"_err")
                                         : !isShownForInclude(line);
        if (keep) {
            out.Append(line->Text);
            out.Append(CRLF);
        }
    }
}

} // namespace

QString TuneStore::GetStringTune(const QString &kTune, bool expandIncludes, int xNumber) const
{
    const Node *tune = m_app.tree().find(kTune);
    if (!tune)
        return {};
    StrBuild out;
    out.Append(QStringLiteral("X:"));
    if (xNumber < 1) {
        const qsizetype bracket = tune->Text.indexOf(u']');
        out.Append(bracket < 0 ? tune->Text.mid(1) : tune->Text.mid(1, bracket - 1));
    } else {
        out.Append(QString::number(xNumber));
    }
    out.Append(CRLF);
    if (const Node *header = tune->child(0))
        appendLines(out, header, expandIncludes);
    if (const Node *body = tune->child(1))
        appendLines(out, body, expandIncludes);
    return out.Value();
}

QString TuneStore::GetStringHdrFile(const QString &kFile, bool expandIncludes) const
{
    const Node *file = m_app.tree().find(kFile);
    const Node *header = file ? file->child(0) : nullptr;
    if (!header)
        return {};
    StrBuild out;
    appendLines(out, header, expandIncludes);
    return out.Value();
}

QString TuneStore::GetStringFile(const QString &kFile, bool noHeader, bool expandIncludes) const
{
    UserDialogs &ui = m_app.ui();
    QString text;
    if (!noHeader)
        text = GetStringHdrFile(kFile, expandIncludes) + CRLF;
    const Node *file = m_app.tree().find(kFile);
    const Node *body = file ? file->child(1) : nullptr;
    if (!body) {
        ui.showProgress(false);
        return text;
    }
    ui.setProgressRange(body->childCount() + 1);
    ui.setProgressValue(0);
    ui.showProgress(true);
    ui.processEvents();
    StrBuild out;
    const int step = qMax(1, body->childCount() / 100);
    for (int i = 0; i < body->childCount(); ++i) {
        if (i % step == 0)
            ui.setProgressValue(i);
        out.Append(GetStringTune(body->child(i)->Key, expandIncludes, 0));
        out.Append(CRLF);
    }
    text += out.Value();
    ui.showProgress(false);
    return text;
}

void TuneStore::SetFlagModifFile(const QString &kFile)
{
    Node *file = m_app.tree().find(kFile);
    if (!file)
        return;
    Pic changed = Pic::None;
    if (file->Image == Pic::FileAbc)
        changed = Pic::FileAbcM;
    else if (file->Image == Pic::FileRo)
        changed = Pic::FileRoM;
    if (changed == Pic::None)
        return;
    m_app.tree().setImage(file, changed);
    CommandState &commands = m_app.commands();
    commands.setEnabled(QStringLiteral("mnu_save0"), true);
    commands.setEnabled(QStringLiteral("mnu_save1"), true);
    commands.setEnabled(QStringLiteral("save"), true);
}

bool TuneStore::FichierSaveFromKey(const QString &kFile, const QString &path, const QString &lineEnd, QString *error)
{
    UserDialogs &ui = m_app.ui();
    BusyScope busy(ui);
    ui.setProgressCaption(QStringLiteral("Extract..."));
    ui.showProgress(true);
    ui.processEvents();
    const bool noHeader = m_app.ini().get(keys::NoSaveHdrFile) == u"1" && kFile != key::Trash;
    QString text = GetStringFile(kFile, noHeader, false);
    ui.setProgressCaption(QStringLiteral("ABC strings..."));
    ui.showProgress(true);
    ui.processEvents();
    if (m_app.ini().get(keys::ABCstr) == u"1")
        text = abcEscapeEncode(text, &ui);
    if (lineEnd == u"cr")
        text = replaceAll(text, CRLF, u"\r");
    else if (lineEnd == u"lf")
        text = replaceAll(text, CRLF, u"\n");
    ui.setProgressCaption(QStringLiteral("Save..."));
    ui.processEvents();
    TextEncoding encoding = fileEncoding(kFile);
    // A header may ask for Latin-1; but a letter Latin-1 cannot hold is never turned into "?".
    const bool fitsLatin1 = std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 256; });
    if (!fitsLatin1)
        encoding = TextEncoding::Utf8;
    else if (headerDeclaresLatin1(GetStringHdrFile(kFile, false)))
        encoding = TextEncoding::Latin1;
    QString why;
    const bool ok = writeTextFile(path, text + CRLF, encoding, &why);
    ui.showProgress(false);
    ui.processEvents();
    if (!ok) {
        if (error)
            *error = why;
        else
            ui.contextError(QStringLiteral("FichierSaveFromKey"), why);
    }
    return ok;
}

void TuneStore::SwapStringFile(const QString &text, QString &kFile)
{
    WorkspaceTree &tree = m_app.tree();
    Node *file = tree.find(kFile);
    if (!file)
        return;
    const QString path = file->Tag;
    const bool readOnly = file->Image == Pic::FileRo || file->Image == Pic::FileRoM;
    const TextEncoding encoding = fileEncoding(kFile);
    int place = NewWithWanted;
    QString kRelative;
    if (Node *next = file->nextSibling()) {
        kRelative = next->Key;
        place += BeforeRelative;
    } else if (Node *previous = file->previousSibling()) {
        kRelative = previous->Key;
        place += AfterRelative;
    }
    const QString wanted = kFile;
    tree.remove(file);
    forgetFile(wanted);
    kFile = AddStringFile(path, text, false, true, readOnly, wanted, kRelative, place);
    if (!kFile.isEmpty())
        setFileEncoding(kFile, encoding);
}

} // namespace fenwork
