#include "store/duplicates.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/userdialogs.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <QHash>
#include <QVector>

namespace fenwork {

namespace {

// "[12]  Title" -> "[12]": what the duplicates are told apart by.
QString bracketedX(const QString &caption)
{
    const qsizetype bracket = caption.indexOf(u']');
    return bracket < 0 ? caption : caption.left(bracket + 1);
}

} // namespace

void ShowDoublonsX(AppContext &app, const QString &kFile, bool forced, int &count)
{
    if (kFile.isEmpty())
        return;
    WorkspaceTree &tree = app.tree();
    const Node *file = tree.find(kFile);
    const Node *body = file ? file->child(1) : nullptr;
    if (!body || body->Image != Pic::BdyFile)
        return;
    if (!forced && !app.ini().getBool(keys::ShowDoublons))
        return;

    UserDialogs &ui = app.ui();
    const int n = body->childCount();
    ui.setProgressRange(n);
    ui.setProgressValue(0);
    ui.setProgressCaption(QStringLiteral("Searching..."));
    ui.showProgress(true);
    ui.processEvents();

    // One pass to count each number, one to mark: linear where comparing every tune with every
    // other would be quadratic, with the same tunes marked.
    QVector<QString> numbers;
    numbers.reserve(n);
    QHash<QString, int> occurrences;
    occurrences.reserve(n);
    for (const Node *tune : body->children()) {
        numbers.append(bracketedX(tune->Text).toCaseFolded());
        ++occurrences[numbers.constLast()];
    }
    const int step = qMax(1, n / 100);
    for (int i = 0; i < n; ++i) {
        if (i % step == 0)
            ui.setProgressValue(i);
        if (occurrences.value(numbers.at(i)) > 1) {
            tree.setBackColor(body->child(i), color::DuplicateX);
            ++count;
        }
    }
    ui.showProgress(false);
}

} // namespace fenwork
