#include "tools/reindexsort.h"

#include "frame/appcontext.h"
#include "frame/strbuild.h"
#include "frame/strutil.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tools/filetools.h"

#include <algorithm>

namespace fenwork {

const QList<SortField> &sortFields()
{
    static const QList<SortField> fields = {
        { "X: ", "<chp24>" }, { "T: ", "<chp20>" }, { "A: ", "<chp1>" }, { "B: ", "<chp2>" },
        { "C: ", "<chp3>" }, { "D: ", "<chp4>" }, { "G: ", "<chp7>" }, { "K: ", "<chp11>" },
        { "M: ", "<chp13>" }, { "O: ", "<chp15>" }, { "Q: ", "<chp17>" }, { "R: ", "<chp18>" },
        { "S: ", "<chp19>" }, { "Z: ", "<chp26>" },
    };
    return fields;
}

bool reindexFile(AppContext &app, const QString &kFile, int start, ToolsBackup &backup)
{
    WorkspaceTree &tree = app.tree();
    Node *body = tree.find(kFile + key::BdyFile);
    if (!body || body->childCount() == 0)
        return false;
    backup.SetMemoFile(app, kFile);
    int n = start;
    for (Node *tune : body->children()) {
        const qsizetype bracket = tune->Text.indexOf(u']');
        const QString rest = bracket < 0 ? QString() : tune->Text.mid(bracket + 1);
        tree.setText(tune, u'[' + QString::number(n++) + u']' + rest);
    }
    app.store().SetFlagModifFile(kFile);
    emit app.store().nodeSelectionRequested(kFile);
    return true;
}

namespace {

QString numberKey(const Node *tune)
{
    const qsizetype open = tune->Text.indexOf(u'[');
    const qsizetype close = tune->Text.indexOf(u']');
    const QString number = open >= 0 && close > open ? tune->Text.mid(open + 1, close - open - 1) : QString();
    return (QStringLiteral("000000000000") + number).right(12);
}

} // namespace

QString sortKeyOf(const Node *tune, const QString &code1, const QString &code2, QString *key2Out)
{
    const bool number1 = code1.compare(u"X:", Qt::CaseInsensitive) == 0;
    const bool number2 = code2.compare(u"X:", Qt::CaseInsensitive) == 0;
    QString key1 = number1 ? numberKey(tune) : QString();
    QString key2 = number2 ? numberKey(tune) : QString();
    bool have1 = number1;
    bool have2 = code2.isEmpty() || number2;
    for (const Node *part : tune->children()) {
        for (const Node *line : part->children()) {
            if (have1 && have2)
                break;
            if (!number1 && line->Text.startsWith(code1, Qt::CaseInsensitive)) {
                key1 = line->Text.toLower();
                have1 = true;
            }
            if (!code2.isEmpty() && !number2 && line->Text.startsWith(code2, Qt::CaseInsensitive)) {
                key2 = line->Text.toLower();
                have2 = true;
            }
        }
    }
    if (key1.isEmpty())
        key1 = QStringLiteral("---");
    if (key2.isEmpty() && !code2.isEmpty())
        key2 = QStringLiteral("---");
    if (key2Out)
        *key2Out = key2;
    return key1;
}

QString sortString(const QString &key1, const QString &key2)
{
    return key1.left(80).leftJustified(81, u' ') + key2;
}

bool sortFile(AppContext &app, QString &kFile, const QString &code1, const QString &code2, ToolsBackup &backup,
              const std::function<void(int, int)> &progress, const std::function<void()> &reorganising)
{
    const Node *body = app.tree().find(kFile + key::BdyFile);
    if (!body || body->childCount() == 0)
        return false;
    backup.SetMemoFile(app, kFile);
    struct Item
    {
        QString key;
        const Node *tune;
    };
    QList<Item> items;
    items.reserve(body->childCount());
    for (const Node *tune : body->children()) {
        QString key2;
        const QString key1 = sortKeyOf(tune, code1, code2, &key2);
        items.append({ sortString(key1, key2), tune });
    }
    // By character codes; equal keys stay in file order.
    std::stable_sort(items.begin(), items.end(), [](const Item &a, const Item &b) { return a.key < b.key; });
    if (reorganising)
        reorganising();

    TuneStore &store = app.store();
    StrBuild out;
    out.Append(store.GetStringHdrFile(kFile, false));
    out.Append(CRLF);
    const int count = int(items.size());
    for (int i = 0; i < count; ++i) {
        if (progress && i % 64 == 0)
            progress(i, count);
        out.Append(store.GetStringTune(items.at(i).tune->Key, false, 0));
        out.Append(CRLF);
    }
    store.SwapStringFile(out.Value(), kFile);
    emit store.nodeSelectionRequested(kFile);
    store.SetFlagModifFile(kFile);
    if (progress)
        progress(0, count);
    return true;
}

} // namespace fenwork
