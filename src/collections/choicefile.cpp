#include "collections/choicefile.h"

#include "collections/choicelist.h"
#include "frame/paths.h"
#include "frame/textfile.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QMultiHash>
#include <QSet>

namespace fenwork {

namespace {

const Node *fileOf(const Node *tune)
{
    const Node *body = tune->parent();
    return body ? body->parent() : nullptr;
}

QString oneLine(QString text)
{
    text.replace(u'\r', u' ');
    text.replace(u'\n', u' ');
    return text;
}

} // namespace

QString tuneNumber(const Node *tune)
{
    const QString &text = tune->Text;
    const qsizetype close = text.indexOf(u']');
    return text.startsWith(u'[') && close > 0 ? text.mid(1, close - 1) : QString();
}

QString choiceFilePath(const Paths &paths)
{
    return QDir(paths.userFolder()).filePath(QStringLiteral("choice.lst"));
}

bool writeChoiceFile(
    const QString &path, const WorkspaceTree &tree, const QVector<ChoiceItem> &items, QString *error)
{
    QString text;
    for (const ChoiceItem &item : items) {
        const Node *tune = tree.find(item.key);
        const Node *file = tune ? fileOf(tune) : nullptr;
        // A file never saved has no path to find it by.
        if (!file || file->Tag.isEmpty() || file->Tag == u"<new>")
            continue;
        // The path stands last but one and the caption last: neither is cut by a tab in the other.
        text += tuneNumber(tune) + u'\t' + QString::number(item.repetitions) + u'\t' + oneLine(file->Tag)
            + u'\t' + oneLine(item.caption) + u'\n';
    }
    return writeTextFile(path, text, TextEncoding::Utf8, error);
}

QVector<ChoiceItem> readChoiceFile(const QString &path, const WorkspaceTree &tree, bool *found)
{
    if (found)
        *found = QFile::exists(path);
    QVector<ChoiceItem> items;
    if (!QFile::exists(path))
        return items;
    const QString text = readTextFile(path).text;

    // The open files by path, and each one's tunes by number, built as lines ask for them.
    QHash<QString, const Node *> files;
    if (const Node *root = tree.root())
        for (const Node *file : root->children())
            if (!file->Tag.isEmpty() && !files.contains(file->Tag))
                files.insert(file->Tag, file);
    QHash<const Node *, QMultiHash<QString, const Node *>> numbers;

    QSet<const Node *> taken;
    for (const QString &raw : text.split(u'\n', Qt::SkipEmptyParts)) {
        const QString line = raw.endsWith(u'\r') ? raw.chopped(1) : raw;
        const QStringList fields = line.split(u'\t');
        if (fields.size() < 4)
            continue;
        // The caption may hold tabs: it is all that follows the path.
        const QString number = fields.at(0);
        const int repetitions = fields.at(1).toInt();
        const QString filePath = fields.at(2);
        const QString caption = fields.mid(3).join(u'\t');
        const Node *file = files.value(filePath);
        const Node *body = file ? file->child(1) : nullptr;
        if (!body)
            continue;
        auto it = numbers.find(file);
        if (it == numbers.end()) {
            QMultiHash<QString, const Node *> byNumber;
            for (const Node *tune : body->children())
                byNumber.insert(tuneNumber(tune), tune);
            it = numbers.insert(file, byNumber);
        }
        // Among tunes that share a number, the one with the same caption, else the first not taken.
        const QList<const Node *> candidates = it->values(number);
        const Node *chosen = nullptr;
        for (auto c = candidates.crbegin(); c != candidates.crend(); ++c) {
            if (taken.contains(*c))
                continue;
            if ((*c)->Text == caption) {
                chosen = *c;
                break;
            }
            if (!chosen)
                chosen = *c;
        }
        if (!chosen)
            continue;
        taken.insert(chosen);
        items.append({ chosen->Key, caption, repetitions >= 1 ? repetitions : 1 });
    }
    return items;
}

} // namespace fenwork
