// Turning a file's text into nodes: the file node, its header lines, its body and its tunes.
#include "store/tunestore.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strbuild.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QFileInfo>

namespace fenwork {

namespace {

const QString kCreatorPrefix = QStringLiteral("%%abc-creator Fennelworks");

QString fileName(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    return slash < 0 ? path : path.mid(slash + 1);
}

// The walk over a file's header lines, one for opening a file and rebuilding an edited header:
// each non-blank line, trimmed, becomes a child of the header node, keyed by the fixed line it
// may be and pictured by what it holds (the lines of a %%beginps block hold no ABC).
class HeaderBuilder
{
public:
    HeaderBuilder(AppContext &app, TuneStore &store, Node *header, const QString &path)
        : m_app(app)
        , m_store(store)
        , m_header(header)
        , m_path(path)
    { }

    // Adds `raw` unless it is blank; false, with `error`, when its key is taken.
    bool add(const QString &raw, QString *error)
    {
        const QString line = trimBlanks(raw);
        if (line.isEmpty())
            return true;
        ++m_count;
        QString keyEnding;
        QString shown = line;
        if (m_count == 1 && line.startsWith(u"%abc")) {
            keyEnding = QStringLiteral("_lgabc");
            m_sawAbc = true;
        } else if (line.left(25) == kCreatorPrefix) {
            keyEnding = QStringLiteral("_lgcreator");
            shown = m_app.creatorLine; // the version that last saved the file
            m_sawCreator = true;
        } else if (line.left(11) == u"%%abc-alias") {
            keyEnding = QStringLiteral("_lgalias");
            m_sawAlias = true;
        } else {
            keyEnding = QStringLiteral("_lg") + QString::number(m_count);
        }
        Node *node = m_app.tree().addChild(m_header, m_header->Key + keyEnding, shown, Pic::None, error);
        if (!node)
            return false;
        Pic pic;
        if (line == u"%%beginps") {
            pic = Pic::ChpEtend;
            m_inPostScript = true;
        } else if (line == u"%%endps") {
            pic = Pic::ChpEtend;
            m_inPostScript = false;
        } else if (m_inPostScript) {
            pic = Pic::NoAbc;
        } else {
            QString probe = line;
            pic = GetIconeLigne(probe);
        }
        node->Image = pic;
        if (pic == Pic::Include)
            m_store.InclureDans(m_path, node, line);
        return true;
    }

    // Puts "%abc" first and the creator line after the first line when the walk met none.
    bool complete(QString *error)
    {
        WorkspaceTree &tree = m_app.tree();
        const QString abcKey = m_header->Key + QStringLiteral("_lgabc");
        if (!m_sawAbc) {
            const QString abc = QStringLiteral("%abc");
            Node *first = m_header->firstChild();
            Node *node = first ? tree.add(first, WorkspaceTree::Place::Previous, abcKey, abc, Pic::Rem, error)
                               : tree.addChild(m_header, abcKey, abc, Pic::Rem, error);
            if (!node)
                return false;
        }
        if (!m_sawCreator
            && !tree.add(m_header->firstChild(), WorkspaceTree::Place::Next,
                m_header->Key + QStringLiteral("_lgcreator"), m_app.creatorLine, Pic::ChpEtend, error))
            return false;
        return true;
    }

    // Adds the alias line right after the first line.
    bool addAlias(const QString &alias, QString *error)
    {
        return m_app.tree().add(m_header->firstChild(), WorkspaceTree::Place::Next,
                   m_header->Key + QStringLiteral("_lgalias"), QStringLiteral("%%abc-alias ") + alias,
                   Pic::ChpEtend, error)
            != nullptr;
    }

    bool sawAlias() const { return m_sawAlias; }

private:
    AppContext &m_app;
    TuneStore &m_store;
    Node *m_header;
    QString m_path;
    int m_count = 0; // non-blank lines so far
    bool m_inPostScript = false;
    bool m_sawAbc = false;
    bool m_sawCreator = false;
    bool m_sawAlias = false;
};

// The file node's caption with the alias before its "[name]".
void showAlias(AppContext &app, Node *file)
{
    const qsizetype bracket = file->Text.indexOf(u'[');
    if (bracket >= 0)
        app.tree().setText(file, GetAliasFile(app, file->Key) + u' ' + file->Text.mid(bracket));
}

} // namespace

TuneStore::TuneStore(AppContext &app) : m_app(app) {}

TextEncoding TuneStore::fileEncoding(const QString &kFile) const
{
    return m_encodings.value(kFile, TextEncoding::Utf8);
}

QString TuneStore::GetCharset(const QString &kFile) const
{
    if (kFile.isEmpty())
        return {};
    return charsetFromHeader(GetStringHdrFile(kFile, true));
}

QString TuneStore::AddStringFile(const QString &path, const QString &text, bool inTrash, bool noAsk, bool readOnly,
                                 const QString &kWanted, const QString &kRelative, int place)
{
    WorkspaceTree &tree = m_app.tree();
    UserDialogs &ui = m_app.ui();
    const QString mainForm = QStringLiteral("MainForm");
    QString error;
    const auto fail = [&](const QString &description) {
        ui.contextError(QStringLiteral("AddStringFile"), description);
        ui.showProgress(false);
        return QString();
    };

    const QStringList lines = text.split(CRLF);
    Node *file = nullptr;
    Node *header = nullptr;
    if (inTrash) {
        file = tree.find(key::Trash);
        header = tree.find(key::TrashHeader);
        if (!file || !header)
            return fail(QStringLiteral("The trash box is missing"));
    } else {
        if (!kWanted.isEmpty() && (place & ReuseWanted) && tree.find(kWanted)) {
            file = tree.find(kWanted);
            tree.removeChildren(file);
        } else {
            Node *relative = kRelative.isEmpty() ? nullptr : tree.find(kRelative);
            if (relative && (place & AfterRelative))
                file = tree.add(relative, WorkspaceTree::Place::Next, {}, {}, Pic::FileAbc);
            else if (relative && (place & BeforeRelative))
                file = tree.add(relative, WorkspaceTree::Place::Previous, {}, {}, Pic::FileAbc);
            else
                file = tree.addChild(tree.root(), {}, {}, Pic::FileAbc);
            if (!file)
                return fail(QStringLiteral("The workspace has no root"));
            if (kWanted.isEmpty() || !(place & NewWithWanted) || !tree.setKey(file, kWanted))
                SetOneKey(tree, file, QStringLiteral("_file"));
        }
        file->Expanded = m_app.ini().get(keys::FileExpand) != u"0";
        file->Text = u'[' + fileName(path) + u']';
        file->Tag = path;
        file->ForeColor = color::File;
        file->Bold = true;
        file->Image = readOnly ? Pic::FileRo : Pic::FileAbc;
        tree.changed(file);
        header = tree.addChild(file, file->Key + key::HdrFile, m_app.text(mainForm, QStringLiteral("<fileHeader>")),
                               Pic::HdrFile, &error);
        if (!header)
            return fail(error);
        header->ForeColor = color::FileHeader;
        header->Bold = true;
    }
    const QString kFile = file->Key;
    BuildScope build(tree, inTrash ? header : file);

    ui.setProgressRange(qMax(0, int(lines.size()) - 1));
    ui.setProgressValue(0);
    ui.setProgressCaption(QStringLiteral("Load..."));
    ui.processEvents();

    const auto addBody = [&]() -> Node * {
        if (inTrash)
            return tree.find(key::TrashBody);
        Node *body = tree.addChild(file, kFile + key::BdyFile, m_app.text(mainForm, QStringLiteral("<fileBody>")),
                                   Pic::BdyFile, &error);
        if (body) {
            body->Expanded = true;
            body->ForeColor = color::FileHeader;
            body->Bold = true;
        }
        return body;
    };

    bool inHeader = true;
    HeaderBuilder headerLines(m_app, *this, header, path);
    QVector<QStringList> tunes;
    QStringList buffer;
    const int progressStep = qMax(1, int(lines.size() / 100));
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i % progressStep == 0)
            ui.setProgressValue(int(i));
        const QString line = trimBlanks(lines.at(i));
        if (line.startsWith(u"X:")) {
            if (inHeader) {
                inHeader = false;
                if (!addBody())
                    return fail(error);
            } else {
                tunes.append(std::move(buffer));
                buffer = QStringList();
            }
            buffer.append(line);
            continue;
        }
        if (!inHeader) {
            if (!line.isEmpty())
                buffer.append(line);
            continue;
        }
        if (!headerLines.add(line, &error))
            return fail(error);
    }

    if (inHeader) {
        // A file without any tune: no line is supplied, the user is told.
        if (!inTrash) {
            if (!addBody())
                return fail(error);
            ui.setBusy(false);
            ui.message(path + CRLF + CRLF + m_app.text(QStringLiteral("Msg"), QStringLiteral("<lackingX>")));
            ui.setBusy(true);
        }
        CompterTunesDansFichier(m_app, kFile);
        CompterFiles(m_app);
        ui.showProgress(false);
        return kFile;
    }
    tunes.append(std::move(buffer));

    if (!headerLines.complete(&error))
        return fail(error);
    if (!inTrash) {
        bool hasAlias = headerLines.sawAlias();
        if (!hasAlias) {
            QString alias;
            if (m_app.ini().get(keys::Ask4alias) == u"1" && !noAsk) {
                const QString msg = QStringLiteral("Msg");
                ui.setBusy(false);
                alias = trimBlanks(ui.inputText(path + CRLF + CRLF + m_app.text(msg, QStringLiteral("<chooseAlias>")),
                                                m_app.text(msg, QStringLiteral("<aliasFile>")),
                                                m_app.text(msg, QStringLiteral("<defaultAlias>"))));
                ui.setBusy(true);
            }
            if (!alias.isEmpty()) {
                hasAlias = true;
                SetFlagModifFile(kFile);
            } else {
                alias = QStringLiteral("none");
            }
            if (!headerLines.addAlias(alias, &error))
                return fail(error);
        }
        if (hasAlias)
            showAlias(m_app, file);
    }

    ui.processEvents();
    ui.setProgressRange(int(tunes.size()));
    ui.setProgressValue(0);
    ui.setProgressCaption(QStringLiteral("Build..."));
    ui.processEvents();
    const int tuneStep = qMax(1, int(tunes.size() / 100));
    const TuneCaptions captions = tuneCaptions();
    m_captions = &captions;
    for (qsizetype i = 0; i < tunes.size(); ++i) {
        if (i % tuneStep == 0)
            ui.setProgressValue(int(i));
        QString wanted = kFile + QStringLiteral("_tune") + QString::number(i + 1);
        addTuneLines(tunes[i], kFile, inTrash, {}, false, wanted);
        tunes[i] = QStringList(); // the nodes hold the text now
    }
    m_captions = nullptr;
    CompterTunesDansFichier(m_app, kFile);
    CompterFiles(m_app);
    ui.showProgress(false);
    return kFile;
}

QString TuneStore::createNewFile()
{
    WorkspaceTree &tree = m_app.tree();
    Node *file = tree.addChild(tree.root(), {}, u'<' + m_app.text(QStringLiteral("Msg"), QStringLiteral("<newAbcFile>")) + u'>',
                               Pic::FileAbc);
    if (!file)
        return {};
    SetOneKey(tree, file, QStringLiteral("_file"));
    file->Expanded = true;
    file->ForeColor = color::File;
    file->Bold = true;
    file->Tag = QStringLiteral("<new>");
    tree.changed(file);
    const QString kFile = file->Key;
    const QString mainForm = QStringLiteral("MainForm");
    {
        BuildScope build(tree, file);
        Node *header = tree.addChild(file, kFile + key::HdrFile, m_app.text(mainForm, QStringLiteral("<fileHeader>")),
                                     Pic::HdrFile);
        header->ForeColor = color::FileHeader;
        header->Bold = true;
        tree.addChild(header, header->Key + QStringLiteral("_lgabc"), QStringLiteral("%abc"), Pic::Rem);
        tree.addChild(header, header->Key + QStringLiteral("_lgalias"), QStringLiteral("%%abc-alias none"), Pic::ChpEtend);
        tree.addChild(header, header->Key + QStringLiteral("_lgcreator"), m_app.creatorLine, Pic::ChpEtend);
        Node *body = tree.addChild(file, kFile + key::BdyFile, m_app.text(mainForm, QStringLiteral("<fileBody>")),
                                   Pic::BdyFile);
        body->Expanded = true;
        body->ForeColor = color::FileHeader;
        body->Bold = true;
    }
    m_encodings.insert(kFile, TextEncoding::Utf8);
    CompterTunesDansFichier(m_app, kFile);
    emit nodeSelectionRequested(kFile);
    return kFile;
}

void TuneStore::rebuildFileHeader(const QString &kFile, const QString &text)
{
    WorkspaceTree &tree = m_app.tree();
    Node *file = tree.find(kFile);
    Node *header = file ? file->firstChild() : nullptr;
    if (!header)
        return;
    tree.removeChildren(header);
    QString error;
    const auto report = [&] { m_app.ui().contextError(QStringLiteral("HeaderRebuild"), error); };
    HeaderBuilder headerLines(m_app, *this, header, file->Tag);
    {
        BuildScope build(tree, header);
        for (const QString &line : text.split(CRLF)) {
            // A clashing line is left out; the rest of the header still stands.
            if (!headerLines.add(line, &error))
                report();
        }
        if (!headerLines.complete(&error))
            report();
        if (!headerLines.sawAlias() && !headerLines.addAlias(QStringLiteral("none"), &error))
            report();
    }
    if (headerLines.sawAlias())
        showAlias(m_app, file);
}

} // namespace fenwork
