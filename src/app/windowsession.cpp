#include "app/windowsession.h"

#include "collections/choicefile.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/paths.h"
#include "app/session.h"
#include "frame/settings.h"
#include "frame/userdialogs.h"
#include "frame/version.h"
#include "store/recentfiles.h"
#include "store/trashbox.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFileInfo>
#include <QHash>

namespace fenwork {

namespace {

const SettingKey *const kGeometryKeys[]
    = { &keys::Top, &keys::Left, &keys::Width, &keys::Height, &keys::PanelX, &keys::PanelYD, &keys::PanelYG };

int numberOr(const IniFile &ini, const SettingKey &key, int fallback)
{
    bool ok = false;
    const int value = ini.getValue(key.sectionName(), key.keyName(), {}).toInt(&ok);
    return ok ? value : fallback;
}

} // namespace

WindowGeometry readWindowGeometry(const IniFile &ini, const WindowGeometry &defaults)
{
    if (ini.get(keys::UseRecordedData) != u"1")
        return defaults;
    WindowGeometry g;
    g.state = ini.get(keys::WindowState) == u"2" ? WindowGeometry::Maximised : WindowGeometry::Normal;
    g.frame = QRect(numberOr(ini, keys::Left, defaults.frame.x()),
        numberOr(ini, keys::Top, defaults.frame.y()), numberOr(ini, keys::Width, defaults.frame.width()),
        numberOr(ini, keys::Height, defaults.frame.height()));
    g.panelX = numberOr(ini, keys::PanelX, defaults.panelX);
    g.panelYD = numberOr(ini, keys::PanelYD, defaults.panelYD);
    g.panelYG = numberOr(ini, keys::PanelYG, defaults.panelYG);
    return g;
}

void writeWindowGeometry(const IniFile &ini, const WindowGeometry &g)
{
    ini.set(
        keys::WindowState, g.state == WindowGeometry::Maximised ? QStringLiteral("2") : QStringLiteral("0"));
    if (g.state == WindowGeometry::Minimised) {
        for (const SettingKey *key : kGeometryKeys)
            ini.set(*key, {});
        return;
    }
    if (g.state == WindowGeometry::Maximised) {
        for (const SettingKey *key : { &keys::Top, &keys::Left, &keys::Width, &keys::Height })
            ini.set(*key, {});
    } else {
        ini.set(keys::Top, QString::number(g.frame.y()));
        ini.set(keys::Left, QString::number(g.frame.x()));
        ini.set(keys::Width, QString::number(g.frame.width()));
        ini.set(keys::Height, QString::number(g.frame.height()));
    }
    ini.set(keys::PanelX, QString::number(g.panelX));
    ini.set(keys::PanelYD, QString::number(g.panelYD));
    ini.set(keys::PanelYG, QString::number(g.panelYG));
}

QStringList prepareMainLoad(AppContext &app)
{
    const QStringList failed = ensureUserFolders(app.paths());
    IniFile &ini = app.ini();
    if (ini.get(keys::DirDef).isEmpty())
        ini.set(keys::DirDef, specialFolder(SF_Documents));

    // All values are read before any is tested, so that one reset cannot hide another's reading.
    const SettingKey *const checked[]
        = { &keys::Tool2midi, &keys::Tool2ps, &keys::Tool2abc, &keys::ToolMidi2abc, &keys::FmtFile };
    QStringList values;
    for (const SettingKey *key : checked)
        values.append(ini.get(*key));
    for (int i = 0; i < values.size(); ++i) {
        if (values.at(i).isEmpty() || !QFileInfo::exists(values.at(i)))
            ini.set(*checked[i], computedDefault(*checked[i], app.paths()));
    }

    app.tempoDef = qint16(ini.getInt(keys::TempoDef));
    return failed;
}

KeptSettings readKeptSettings(const IniFile &ini)
{
    KeptSettings kept;
    kept.zoom = ini.get(keys::Zoom);
    kept.scrollHScore = ini.get(keys::ScrollHScore);
    kept.seeKbd = ini.get(keys::SeeKbd);
    kept.dronePitch = ini.get(keys::DronePitch);
    kept.tablaturesIndex = ini.get(keys::TablaturesIndex);
    return kept;
}

QStringList changedFileKeys(const AppContext &app)
{
    QStringList changed;
    const Node *root = app.tree().root();
    for (int i = 1; root && i < root->childCount(); ++i) {
        const Node *file = root->child(i);
        if (file->Image == Pic::FileAbcM || file->Image == Pic::FileRoM)
            changed.append(file->Key);
    }
    return changed;
}

QString tempListContents(const WorkspaceTree &tree, const QStringList &keys)
{
    if (keys.isEmpty())
        return {};
    QHash<const Node *, int> places;
    places.reserve(keys.size());
    for (const QString &key : keys)
        if (const Node *node = tree.find(key))
            places.insert(node, 0);
    int place = 0;
    int left = int(places.size());
    tree.walk(tree.root(), [&](Node *node) {
        ++place;
        const auto it = places.find(node);
        if (it != places.end()) {
            it.value() = place;
            --left;
        }
        return left > 0;
    });
    QStringList pieces;
    for (const QString &key : keys)
        if (const Node *node = tree.find(key))
            pieces.append(QString::number(places.value(node)));
    return pieces.join(u'|');
}

QStringList tempListKeys(const WorkspaceTree &tree, const QString &contents)
{
    QHash<int, int> wanted; // place -> position in the list
    const QStringList pieces = contents.split(u'|', Qt::SkipEmptyParts);
    for (int i = 0; i < pieces.size(); ++i) {
        bool ok = false;
        const int place = pieces.at(i).toInt(&ok);
        if (ok && place > 0 && !wanted.contains(place))
            wanted.insert(place, i);
    }
    QVector<QString> found(pieces.size());
    int place = 0;
    int left = int(wanted.size());
    tree.walk(tree.root(), [&](Node *node) {
        const auto it = wanted.constFind(++place);
        if (it != wanted.constEnd()) {
            found[it.value()] = node->Key;
            --left;
        }
        return left > 0;
    });
    QStringList keys;
    for (const QString &key : found)
        if (!key.isEmpty())
            keys.append(key);
    return keys;
}

void writeSessionAtQuit(AppContext &app, const QuitState &state)
{
    IniFile &ini = app.ini();
    app.recent().save(ini, state.reset);
    writeOpenFiles(app, state.reset);
    ini.set(keys::TempListContents, tempListContents(app.tree(), state.choiceListKeys));
    QString listWhy;
    if (!writeChoiceFile(choiceFilePath(app.paths()), app.tree(), state.choiceItems, &listWhy))
        app.ui().contextError(QStringLiteral("Form_Unload"), listWhy);
    writeWindowGeometry(ini, state.geometry);

    ini.set(keys::Zoom, state.kept.zoom);
    ini.set(keys::ScrollHScore, state.kept.scrollHScore);
    ini.set(keys::SeeKbd, state.kept.seeKbd);

    const bool trimmed = trimTrashBox(app);
    if (trimmed || app.store().trashChanged) {
        QString why;
        if (!app.store().FichierSaveFromKey(key::Trash, app.paths().trashFile(), QString(), &why))
            app.ui().contextError(QStringLiteral("Form_Unload"), why);
    }

    ini.set(keys::Version, versionText());
    ini.set(keys::DronePitch, state.kept.dronePitch);
    const int tabs = state.kept.tablaturesIndex.toInt();
    ini.set(keys::TablaturesIndex, QString::number(tabs > 0 ? tabs : 0));
    cleanScratchFiles(app.paths());
}

} // namespace fenwork
