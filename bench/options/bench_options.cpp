// The options dialog: its opening, a language switch that retitles every open window, and what
// the version check costs the start when the server never answers.
// Usage: bench_options [runs] | bench_options --shots FOLDER (pictures of each tab and of f_about)
#include "app/versioncheck.h"
#include "app/widgets/aboutdialog.h"
#include "app/widgets/mainwindow.h"
#include "app/widgets/optionsdialog.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "frame/widgets/icons.h"
#include "scripteddialogs.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTabWidget>
#include <QTcpServer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace fenwork;

namespace {

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const size_t n = values.size();
    return n == 0 ? 0 : n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

double msSince(const QElapsedTimer &timer)
{
    return timer.nsecsElapsed() / 1e6;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication qapp(argc, argv);
    setupIconTheme();
    const QString shots = argc > 2 && QString::fromLocal8Bit(argv[1]) == u"--shots"
        ? QString::fromLocal8Bit(argv[2])
        : QString();
    const int runs = argc > 1 && shots.isEmpty() ? std::max(1, atoi(argv[1])) : 15;
    QTemporaryDir root;
    qputenv("FENNELWORKS_ROOT", root.path().toUtf8());
    ScriptedDialogs dialogs;
    AppContext app(Paths::fromEnvironment(), &dialogs);
    app.lang().setName(QStringLiteral("English"));
    app.ini().set(keys::FichBak, QStringLiteral("0"));
    app.ini().set(keys::Ask4alias, QStringLiteral("0"));
    MainWindow window(app);
    window.MainLoad();
    window.show();
    QApplication::processEvents();

    if (!shots.isEmpty()) {
        app.ini().set(keys::ContactAddress, QStringLiteral("tunes@example.org"));
        OptionsDialog dialog(app, &window);
        dialog.show();
        auto *tabs = dialog.findChild<QTabWidget *>(QStringLiteral("ongl_Opt"));
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            QApplication::processEvents();
            dialog.grab().save(shots + QStringLiteral("/options%1.png").arg(i));
        }
        AboutDialog about(app, &window);
        about.show();
        QApplication::processEvents();
        about.grab().save(shots + QStringLiteral("/about.png"));
        return 0;
    }

    std::vector<double> open;
    std::vector<double> language;
    const QStringList names = { QStringLiteral("Français"), QStringLiteral("English") };
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        auto *dialog = new OptionsDialog(app, &window);
        dialog->show();
        QApplication::processEvents();
        open.push_back(msSince(timer));

        dialog->findChild<QComboBox *>(QStringLiteral("lst_lang"))->setCurrentText(names.at(i % 2));
        timer.restart();
        dialog->findChild<QPushButton *>(QStringLiteral("bt_Appliquer"))->click();
        QApplication::processEvents();
        language.push_back(msSince(timer));
        delete dialog;
    }
    std::printf(
        "options: f_Options opens (built and shown)   median %7.1f ms over %d runs\n", median(open), runs);
    std::printf(
        "options: a language switch retitles all     median %7.1f ms over %d runs\n", median(language), runs);

    // A server that takes the connection and never answers: the start only pays for asking.
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    app.ini().set(keys::UpdateServer, QStringLiteral("http://127.0.0.1:%1").arg(silent.serverPort()));
    std::vector<double> ask;
    for (int i = 0; i < runs; ++i) {
        VersionCheck check(app);
        QElapsedTimer timer;
        timer.start();
        check.CheckVersion(true);
        QApplication::processEvents();
        ask.push_back(msSince(timer));
    }
    std::printf("options: version check, server silent: the start pays %5.1f ms the first time "
                "(network set-up), then median %5.1f ms\n",
        ask.front(), median(ask));
    return 0;
}
