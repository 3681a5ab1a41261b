#include "cli/listcommand.h"

#include "cli/clicommands.h"
#include "collections/choicefile.h"
#include "collections/choicelist.h"
#include "collections/choicesets.h"
#include "collections/listtoabc.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/textfile.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFileInfo>
#include <QHash>

namespace fenwork {

namespace {

int usage(const QString &command, const QString &text)
{
    cli::writeErr(QStringLiteral("fenwork-cli ") + command + QStringLiteral(": ") + text
        + QStringLiteral("\nTry 'fenwork-cli --help'.\n"));
    return cli::Usage;
}

// A tune reference: FILE:X (the first tune numbered X) or FILE#N (the N-th tune), then @R.
struct TuneRef
{
    QString file;
    QString number; // FILE:X
    int place = 0; // FILE#N
    int repetitions = 1;
};

bool parseRef(const QString &argument, TuneRef &ref)
{
    QString rest = argument;
    const qsizetype at = rest.lastIndexOf(u'@');
    if (at > 0) {
        bool ok = false;
        const QString count = rest.mid(at + 1);
        count.toInt(&ok);
        // A file name may hold an "@": only digits after it make a count.
        if (ok && !count.contains(u'-') && !count.contains(u'+')) {
            ref.repetitions = repetitionsFromText(count);
            if (ref.repetitions == 0)
                return false;
            rest = rest.left(at);
        }
    }
    const qsizetype cut = qMax(rest.lastIndexOf(u':'), rest.lastIndexOf(u'#'));
    if (cut <= 0 || cut == rest.size() - 1)
        return false;
    ref.file = rest.left(cut);
    if (rest.at(cut) == u'#') {
        bool ok = false;
        ref.place = rest.mid(cut + 1).toInt(&ok);
        return ok && ref.place >= 1;
    }
    ref.number = rest.mid(cut + 1);
    return true;
}

// The files the references name, each opened once as the program opens it (no backup: the
// commands write no file of theirs back), and the list of the tunes they point to.
class RefList
{
public:
    explicit RefList(AppContext &app)
        : m_app(app)
    {
        app.store().backupOnOpen = false;
    }

    QString open(const QString &argument)
    {
        const QFileInfo info(argument);
        const QString path = info.absoluteFilePath();
        if (const auto it = m_files.constFind(path); it != m_files.constEnd())
            return it.value();
        const QString kFile
            = m_app.store().FichierOuvrir(path, false, true, info.exists() && !info.isWritable());
        if (!kFile.isEmpty())
            m_files.insert(path, kFile);
        return kFile;
    }

    // Adds the tune of a reference; false, with the reason on standard error, when none is found.
    bool add(const TuneRef &ref, const QString &argument)
    {
        const QString kFile = open(ref.file);
        if (kFile.isEmpty())
            return false;
        const Node *file = m_app.tree().find(kFile);
        const Node *body = file ? file->child(1) : nullptr;
        const Node *tune = nullptr;
        if (body && ref.place > 0 && ref.place <= body->childCount()) {
            tune = body->child(ref.place - 1);
        } else if (body && ref.place == 0) {
            for (const Node *candidate : body->children())
                if (tuneNumber(candidate) == ref.number) {
                    tune = candidate;
                    break;
                }
        }
        if (!tune) {
            cli::writeErr(QStringLiteral("fenwork-cli: no tune for ") + argument + u'\n');
            return false;
        }
        // A tune named twice counts once, with the repetitions it was first given.
        if (list.add(tune->Key, tune->Text))
            list.setRepetitions(list.count() - 1, ref.repetitions);
        return true;
    }

    bool isOpen(const QString &path) const { return m_files.contains(QFileInfo(path).absoluteFilePath()); }

    ChoiceList list;

private:
    AppContext &m_app;
    QHash<QString, QString> m_files; // absolute path -> file key
};

// Fills `refs` from the arguments; a usage code when one is malformed, else -1.
int gatherRefs(const QString &command, const QStringList &arguments, RefList &refs)
{
    QVector<std::pair<TuneRef, QString>> parsed;
    for (const QString &argument : arguments) {
        TuneRef ref;
        if (!parseRef(argument, ref))
            return usage(command,
                QStringLiteral("'%1' is no FILE:X or FILE#N, with an optional @R from 1 to 999")
                    .arg(argument));
        parsed.append({ ref, argument });
    }
    for (const auto &[ref, argument] : parsed)
        if (!refs.add(ref, argument))
            return cli::Failed;
    return -1;
}

} // namespace

QString listCommandHelp()
{
    return QStringLiteral(
        "Usage: fenwork-cli list2abc OUT REF...\n"
        "       fenwork-cli set TARGET OUT REF...\n"
        "A REF names a tune: FILE:X is the first tune of FILE whose X: is X, FILE#N its N-th tune\n"
        "in file order; @R after it gives the tune R repetitions (1 to 999, default 1). A tune\n"
        "named twice counts once.\n"
        "list2abc writes the tunes, in the order given, as the choice list's ABC file: numbered\n"
        "X:1, X:2 ..., with ABC escapes when the ABCstr setting is on, after the \"%abc\" and\n"
        "creator lines unless noSaveHdrFile is on. OUT \"-\" is standard output; OUT may not be\n"
        "one of the FILEs.\n"
        "set makes of the tunes one new tune of TARGET, each tune one part (26 at most), played R\n"
        "times, writes TARGET with it to OUT as the program saves, and prints the new tune's\n"
        "caption.\n");
}

int runList2AbcCommand(AppContext &app, const QStringList &args)
{
    const QString command = QStringLiteral("list2abc");
    if (args.size() < 2)
        return usage(command, QStringLiteral("list2abc takes OUT and at least one REF"));
    RefList refs(app);
    if (const int code = gatherRefs(command, args.mid(1), refs); code >= 0)
        return code;
    const QString body = listAbcBody(app, refs.list, app.ini().get(keys::ABCstr) == u"1");
    const QString text = listAbcFile(app, body);
    const QString out = args.at(0);
    if (out == u"-") {
        cli::writeOut(text);
        return cli::Ok;
    }
    const QString path = QFileInfo(out).absoluteFilePath();
    // The store's own warning for a target that is open, on standard error.
    if (IsOpenFile(app, path))
        return cli::Failed;
    QString why;
    if (!writeTextFile(path, text, TextEncoding::Utf8, &why)) {
        cli::writeErr(
            QStringLiteral("fenwork-cli: cannot write ") + path + QStringLiteral(": ") + why + u'\n');
        return cli::Failed;
    }
    return cli::Ok;
}

int runSetCommand(AppContext &app, const QStringList &args)
{
    const QString command = QStringLiteral("set");
    if (args.size() < 4)
        return usage(command, QStringLiteral("set takes TARGET, OUT and at least two REFs"));
    RefList refs(app);
    const QString kTarget = refs.open(args.at(0));
    if (kTarget.isEmpty())
        return cli::Failed;
    if (const int code = gatherRefs(command, args.mid(2), refs); code >= 0)
        return code;
    if (refs.list.count() < 2)
        return usage(command, QStringLiteral("a set needs two different tunes"));
    const QString kNew = makeSet(app, kTarget, refs.list.items());
    const Node *tune = kNew.isEmpty() ? nullptr : app.tree().find(kNew);
    if (!tune)
        return cli::Failed;
    const QString out = QFileInfo(args.at(1)).absoluteFilePath();
    QString why;
    if (!app.store().FichierSaveFromKey(kTarget, out, QString(), &why)) {
        cli::writeErr(
            QStringLiteral("fenwork-cli: cannot write ") + out + QStringLiteral(": ") + why + u'\n');
        return cli::Failed;
    }
    cli::writeOut(tune->Text + u'\n');
    return cli::Ok;
}

} // namespace fenwork
