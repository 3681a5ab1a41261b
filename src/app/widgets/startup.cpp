#include "app/widgets/startup.h"

#include "collections/choicefile.h"
#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "app/session.h"
#include "editing/recovery.h"
#include "frame/settings.h"
#include "frame/singleinstance.h"
#include "frame/strutil.h"
#include "app/widgets/firststartdialog.h"
#include "frame/widgets/icons.h"
#include "app/widgets/languagechooser.h"
#include "app/widgets/mainwindow.h"
#include "frame/widgets/progressstrip.h"
#include "app/widgets/qttranslation.h"
#include "app/widgets/splashwindow.h"
#include "app/widgets/tipsdialog.h"
#include "app/widgets/unixsignals.h"
#include "frame/widgets/widgetdialogs.h"
#include "app/windowsession.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>
#include <QTimer>
#include <QUrl>

namespace fenwork {

namespace {

// The last session's file that still exists, opened as the command line would open it but left
// unselected.
QString reopen(MainWindow &window, const QString &path)
{
    return QFileInfo(path).isFile() ? window.openPath(path, false) : QString();
}

} // namespace

int Main(const QStringList &arguments)
{
    // Installed first, so that a termination during a slow start still ends in an orderly way:
    // each start-up window gives way, and the start stops there.
    UnixSignals signalsWatch;
    WidgetDialogs dialogs;
    const Paths paths = Paths::fromEnvironment();
    // With its parents: on a new account even ~/.local/share may not exist yet.
    if (!QFileInfo(paths.userRoot()).isDir() && !QDir().mkpath(paths.userRoot())) {
        dialogs.contextError(QStringLiteral("MAIN"), QStringLiteral("Can't create the folder ") + paths.userRoot());
        return 1;
    }
    AppContext app(paths, &dialogs);
    IniFile &ini = app.ini();
    setupIconTheme();

    if (ini.getValue(keys::Lang.sectionName(), keys::Lang.keyName(), {}).isEmpty()) {
        const QString chosen = LanguageChooser::choose(app);
        if (!chosen.isEmpty())
            app.lang().setName(chosen);
        if (signalsWatch.wasRequested())
            return 0;
    }
    installQtTranslation(app.lang().name());
    app.buildStartupTexts();

    if (ini.getValue(keys::FichBak.sectionName(), keys::FichBak.keyName(), {}).isEmpty()) {
        FirstStartDialog first(app);
        first.exec();
        if (signalsWatch.wasRequested())
            return 0;
    }

    const QString commandLine = cleanCommandLinePath(commandLineText(arguments));
    SingleInstance instance(paths.userRoot());
    if (!instance.claim()) {
        if (commandLine.isEmpty()) {
            dialogs.message(app.text(QStringLiteral("msg"), QStringLiteral("<prevInstance>")));
            return 0;
        }
        // The first instance runs in another folder: a relative path would name another file there.
        if (!instance.handOver(QFileInfo(commandLine).absoluteFilePath()))
            dialogs.contextError(QStringLiteral("MAIN"), QStringLiteral("The running Fennelworks did not answer."));
        return 0;
    }

    const RecoveryOffer recovered = offerRecovery(app);
    if (signalsWatch.wasRequested())
        return 0;
    if (recovered.open == RecoveryOffer::Open::InEditor)
        QDesktopServices::openUrl(QUrl::fromLocalFile(recovered.keptFile));

    QApplication::processEvents();
    auto *splash = new SplashWindow;
    splash->show();
    QApplication::processEvents();

    MainWindow window(app);
    window.MainLoad();
    window.show();
    splash->close();
    splash->deleteLater();

    QObject::connect(&instance, &SingleInstance::pathReceived, &window, &MainWindow::openHandedOver);

    QString lastKey;
    if (!commandLine.isEmpty()) {
        const QFileInfo info(commandLine);
        if (!info.isFile()) {
            dialogs.message(commandLineNotOpened(commandLine));
        } else {
            lastKey = window.openPath(commandLine, true);
        }
    } else if (ini.get(keys::Rouvrir) == u"1") {
        for (const QString &path : sessionFilesToRestore(ini)) {
            const QString key = reopen(window, path);
            if (!key.isEmpty())
                lastKey = key;
        }
        // The list's own file finds its tunes by path and number, whatever the order of the files;
        // without it, the places in the settings, whose entries that no longer fit drop out.
        bool kept = false;
        QVector<ChoiceItem> listed = readChoiceFile(choiceFilePath(app.paths()), app.tree(), &kept);
        if (!kept)
            for (const QString &key : tempListKeys(app.tree(), ini.get(keys::TempListContents)))
                if (const Node *node = app.tree().find(key))
                    listed.append({ key, node->Text, 1 });
        window.choiceList().addAll(listed);
    }

    if (recovered.open == RecoveryOffer::Open::InProgram) {
        // The program's own copy: no backup of it beside it.
        app.store().backupOnOpen = false;
        const QString key = window.openPath(recovered.keptFile, true);
        app.store().backupOnOpen = true;
        if (!key.isEmpty())
            lastKey = key;
    }
    if (ini.getBool(keys::SelFirstTune) && !lastKey.isEmpty()) {
        if (Node *file = app.tree().find(lastKey); file && file->child(1) && file->child(1)->firstChild())
            window.SimulerNodeClick(file->child(1)->firstChild()->Key);
    }
    if (ini.getBool(keys::ShowTips)) {
        QApplication::processEvents();
        TipsDialog tips(app, &window);
        tips.exec();
    }
    // Once the event loop runs, so that it costs the start nothing; it speaks when the server answers.
    if (ini.getBool(keys::CheckNewVersion))
        QTimer::singleShot(0, &window, [&window] { window.CheckVersion(true); });

    QApplication::setQuitOnLastWindowClosed(true);
    if (signalsWatch.wasRequested()) {
        window.quitWithoutQuestions();
        return 0;
    }
    // Only once the code that opened a box has had its answer: quitting from inside it would
    // pull the window from under that code.
    QObject::connect(&signalsWatch, &UnixSignals::readyToQuit, &window, [&window] {
        window.quitWithoutQuestions();
        QCoreApplication::quit();
    });
    return QApplication::exec();
}

} // namespace fenwork
