#include "tools/fieldtools.h"

#include "frame/appcontext.h"
#include "frame/strbuild.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tools/filetools.h"

namespace fenwork {

namespace {

QString bracketed(const QString &index)
{
    const QString trimmed = trimBlanks(index);
    return trimmed.isEmpty() ? QString() : u'[' + trimmed + u']';
}

} // namespace

QString applyFieldLine(const QString &tuneText, const QString &line, FieldAction action, bool *changed)
{
    QStringList lines = tuneText.split(CRLF);
    const QString code = line.left(2);
    bool done = false;
    if (action == FieldAction::Add) {
        qsizetype at = -1;
        for (const QString &prefix : { QStringLiteral("T:"), QStringLiteral("X:") }) {
            for (qsizetype i = 0; i < lines.size() && at < 0; ++i) {
                if (lines.at(i).startsWith(prefix, Qt::CaseInsensitive))
                    at = i;
            }
            if (at >= 0)
                break;
        }
        if (at >= 0) {
            lines.insert(at + 1, line);
        } else {
            lines.insert(0, line);
            lines.insert(0, QStringLiteral("X:0"));
        }
        done = true;
    } else {
        const auto matches = [&code](const QString &l) { return l.left(2).compare(code, Qt::CaseInsensitive) == 0; };
        if (action == FieldAction::ChangeLast) {
            for (qsizetype i = lines.size() - 1; i >= 0 && !done; --i) {
                if (matches(lines.at(i))) {
                    lines[i] = line;
                    done = true;
                }
            }
        } else {
            for (QString &l : lines) {
                if (matches(l)) {
                    l = line;
                    done = true;
                    if (action == FieldAction::ChangeFirst)
                        break;
                }
            }
        }
    }
    if (changed)
        *changed = done;
    return done ? lines.join(CRLF) : tuneText;
}

FieldResult applyFieldToFile(AppContext &app, QString &kFile, const QString &text, FieldAction action,
                             const QString &fromIndex, const QString &toIndex, ToolsBackup &backup,
                             const std::function<void(int, int)> &progress)
{
    const QString line = trimBlanks(text);
    const QString code = line.left(2);
    const bool comment = code.startsWith(u'%');
    if (!comment && (code.size() < 2 || code.at(1) != u':'))
        return FieldResult::Invalid;
    const Node *body = app.tree().find(kFile + key::BdyFile);
    if (!body || body->childCount() == 0)
        return FieldResult::NoTunes;
    const QString from = bracketed(fromIndex);
    const QString to = bracketed(toIndex);
    if (!from.isEmpty()) {
        const auto &tunes = body->children();
        if (std::none_of(tunes.cbegin(), tunes.cend(), [&from](const Node *t) { return t->Text.contains(from); }))
            return FieldResult::NoFromTune;
    }
    // A comment has no code to find in the tunes, so it can only be added.
    if (comment && action != FieldAction::Add)
        return FieldResult::CommentStop;

    backup.SetMemoFile(app, kFile);
    TuneStore &store = app.store();
    StrBuild out;
    out.Append(store.GetStringHdrFile(kFile, false));
    out.Append(CRLF);
    const int count = body->childCount();
    bool inRange = false;
    bool ended = false;
    for (int i = 0; i < count; ++i) {
        const Node *tune = body->child(i);
        if (progress)
            progress(i, count);
        if (!inRange && !ended && (from.isEmpty() || tune->Text.contains(from)))
            inRange = true;
        const QString tuneText = store.GetStringTune(tune->Key, false, 0);
        out.Append(inRange ? applyFieldLine(tuneText, line, action) : tuneText);
        out.Append(CRLF);
        if (inRange && !to.isEmpty() && tune->Text.contains(to)) {
            inRange = false;
            ended = true;
        }
    }
    store.SwapStringFile(out.Value(), kFile);
    emit store.nodeSelectionRequested(kFile);
    store.SetFlagModifFile(kFile);
    if (progress)
        progress(0, count);
    return FieldResult::Done;
}

} // namespace fenwork
