// Turning a tune's text into nodes: a tune header up to the first music line, a body after it,
// the T: and K: fields a playable tune needs, and the lines of included files.
#include "store/tunestore.h"

#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QFileInfo>

namespace fenwork {

namespace {

// The X value as the caption shows it: what follows the first ":" of the X: line, trimmed.
QString xValue(const QString &firstLine)
{
    const qsizetype colon = firstLine.indexOf(u':');
    return trimBlanks(colon < 0 ? QString() : firstLine.mid(colon + 1));
}

} // namespace

QString TuneStore::AddStringTune(const QString &text, const QString &kFile, bool noInclude, const QString &kRelative,
                                 bool before)
{
    QString copy = text;
    QString wanted;
    return AddStringTune(copy, kFile, noInclude, kRelative, before, wanted);
}

TuneStore::TuneCaptions TuneStore::tuneCaptions() const
{
    const QString mainForm = QStringLiteral("MainForm");
    return {m_app.text(mainForm, QStringLiteral("<withoutTtl>")), m_app.text(mainForm, QStringLiteral("<tuneHeader>")),
            m_app.text(mainForm, QStringLiteral("<tuneBody>"))};
}

QString TuneStore::AddStringTune(QString &text, const QString &kFile, bool noInclude, const QString &kRelative,
                                 bool before, QString &kWanted)
{
    text.replace(QStringLiteral(":|:"), QStringLiteral(":||:"));
    QStringList lines = text.split(CRLF);
    return addTuneLines(lines, kFile, noInclude, kRelative, before, kWanted);
}

QString TuneStore::addTuneLines(QStringList &lines, const QString &kFile, bool noInclude, const QString &kRelative,
                                bool before, QString &kWanted)
{
    WorkspaceTree &tree = m_app.tree();
    QString error;
    const auto fail = [&](const QString &description) {
        m_app.ui().contextError(QStringLiteral("AddStringTune"), description);
        return QString();
    };
    const TuneCaptions looked = m_captions ? TuneCaptions() : tuneCaptions();
    const TuneCaptions &captions = m_captions ? *m_captions : looked;
    const QString &placeholder = captions.placeholder;
    if (lines.isEmpty())
        lines.append(QString());
    Node *file = tree.find(kFile);
    Node *body = file ? file->child(1) : nullptr;

    Node *tune = nullptr;
    if (!kRelative.isEmpty() && !before) {
        tune = tree.find(kRelative);
        if (!tune)
            return fail(QStringLiteral("No tune of key ") + kRelative);
        tree.removeChildren(tune);
        tree.setText(tune, u'[' + xValue(lines.at(0)) + QStringLiteral("] ") + placeholder);
    } else {
        if (!body)
            return fail(QStringLiteral("The file has no body: ") + kFile);
        if (!kRelative.isEmpty()) {
            Node *relative = tree.find(kRelative);
            if (!relative)
                return fail(QStringLiteral("No tune of key ") + kRelative);
            tune = tree.add(relative, WorkspaceTree::Place::Previous, {}, {}, Pic::Tune);
        } else {
            tune = tree.addChild(body, {}, {}, Pic::Tune);
        }
        QString first = trimBlanks(lines.at(0));
        while (first.contains(QStringLiteral("  ")))
            first.replace(QStringLiteral("  "), QStringLiteral(" "));
        lines[0] = first;
        tune->Text = u'[' + xValue(first) + QStringLiteral("] ") + placeholder;
        tune->Expanded = false;
        tune->Bold = true;
        tune->ForeColor = kFile == key::Trash ? color::TrashTune : color::TuneSelected;
        if (!kWanted.isEmpty() && !tree.setKey(tune, kWanted))
            kWanted.clear();
        if (kWanted.isEmpty())
            SetOneKey(tree, tune, kFile + QStringLiteral("_tune"));
        tree.changed(tune);
    }
    const QString kTune = tune->Key;
    BuildScope build(tree, tune);

    Node *header = tree.addChild(tune, kTune + key::HdrTune, captions.tuneHeader, Pic::HdrTune, &error);
    if (!header)
        return fail(error);
    header->Expanded = true;
    Node *tuneBody = nullptr;
    bool inHeader = true, titleSeen = false, keySeen = false;
    int n = 0;
    const auto replacePlaceholder = [&](const QString &by) {
        if (!placeholder.isEmpty() && tune->Text.contains(placeholder)) {
            tune->Text.replace(placeholder, by);
            tree.changed(tune);
        }
    };

    for (qsizetype i = 1; i < lines.size(); ++i) {
        QString line = trimBlanks(lines.at(i));
        if (line.isEmpty())
            continue;
        if (line.contains(QStringLiteral(":|:")))
            line.replace(QStringLiteral(":|:"), QStringLiteral(":||:"));
        ++n;
        QString probe = line;
        const Pic pic = GetIconeLigne(probe);
        if ((pic == Pic::Mus || pic == Pic::Part) && inHeader) {
            inHeader = false;
            tuneBody = tree.addChild(tune, kTune + key::BdyTune, captions.tuneBody, Pic::BdyTune, &error);
            if (!tuneBody)
                return fail(error);
            tuneBody->Expanded = true;
            if (!titleSeen) {
                const QString titleKey = header->Key + QStringLiteral("_lg") + QString::number(n);
                const QString title = QStringLiteral("T:") + placeholder;
                Node *added = header->firstChild()
                    ? tree.add(header->firstChild(), WorkspaceTree::Place::Previous, titleKey, title, Pic::Propr, &error)
                    : tree.addChild(header, titleKey, title, Pic::Propr, &error);
                if (!added)
                    return fail(error);
                ++n;
                titleSeen = true;
            }
            if (!keySeen) {
                if (!tree.addChild(header, header->Key + QStringLiteral("_lg") + QString::number(n),
                                   QStringLiteral("K:C"), Pic::Propr, &error))
                    return fail(error);
                ++n;
                keySeen = true;
            }
        }
        if (pic == Pic::Propr && line.startsWith(u"K:")) {
            keySeen = true;
            QString rest = trimBlanks(line.mid(2));
            if (!rest.isEmpty() && rest.left(4) != u"clef" && rest.left(4) != u"perc")
                rest[0] = rest.at(0).toUpper();
            line = QStringLiteral("K:") + rest;
        } else if (pic == Pic::Propr && line.startsWith(u"T:")) {
            titleSeen = true;
            QString title = trimLeftBlanks(line.mid(2));
            const qsizetype percent = title.lastIndexOf(u'%');
            if (percent >= 0)
                title = trimRightBlanks(title.left(percent));
            replacePlaceholder(u' ' + title);
        }
        Node *parent = inHeader ? header : tuneBody;
        QString keyEnding;
        if (line.startsWith(u"%~~~EX~~~"))
            keyEnding = QStringLiteral("_lgex");
        else if (line.startsWith(u"%~~~LE~~~"))
            keyEnding = QStringLiteral("_lgle");
        else
            keyEnding = QStringLiteral("_lg") + QString::number(n);
        Node *node = tree.addChild(parent, parent->Key + keyEnding, line, pic, &error);
        if (!node)
            return fail(error);
        if (pic == Pic::Include && !noInclude)
            InclureDans(GetPathFile(m_app, kFile), node, line);
    }
    return kTune;
}

void TuneStore::InclureDans(const QString &path, Node *node, const QString &line)
{
    WorkspaceTree &tree = m_app.tree();
    Node *parent = node ? node->parent() : nullptr;
    if (!parent)
        return;
    parent->Expanded = true;
    QString name = trimBlanks(trimBlanks(line).mid(13));
    name.remove(u'"');
    name = trimBlanks(name);
    if (!name.contains(u'/'))
        name = path.left(path.lastIndexOf(u'/') + 1) + name;

    QString error;
    const QFileInfo info(name);
    if (!info.isFile()) {
        // A folder or a device is there, but cannot be read as lines: say which it is.
        const QString why = info.exists() ? QStringLiteral("% !!! ERR !!! : not a file (a folder, a device or a pipe)")
                                          : QStringLiteral("% !!! ERR !!! : file not found");
        Node *err = tree.addChild(parent, node->Key + QStringLiteral("_err"), why, Pic::NoAbc, &error);
        if (!err) {
            m_app.ui().contextError(QStringLiteral("IncludeIn"), error);
            return;
        }
        err->ForeColor = color::FailedInclude;
        return;
    }
    const TextFileResult read = readTextFile(name);
    if (!read.ok) {
        m_app.ui().contextError(QStringLiteral("IncludeIn"), read.error);
        return;
    }
    QString content = read.text;
    content.replace(CRLF, QStringLiteral("\n"));
    content.replace(u'\r', u'\n');
    bool inPostScript = false;
    int k = 0;
    for (const QString &included : content.split(u'\n')) {
        if (included.isEmpty())
            continue;
        ++k;
        Pic pic;
        if (included == u"%%beginps") {
            pic = Pic::ChpEtend;
            inPostScript = true;
        } else if (included == u"%%endps") {
            pic = Pic::ChpEtend;
            inPostScript = false;
        } else if (inPostScript) {
            pic = Pic::NoAbc;
        } else {
            QString probe = included;
            pic = GetIconeLigne(probe);
        }
        Node *added = tree.addChild(parent, node->Key + QStringLiteral("_inclg") + QString::number(k), included, pic,
                                    &error);
        if (!added) {
            m_app.ui().contextError(QStringLiteral("IncludeIn"), error);
            return;
        }
        added->ForeColor = color::IncludedLine;
    }
}

} // namespace fenwork
