// The main window's ways out: export through Ghostscript, to MIDI, and printing, from the menus
// and the tool bar's print, topdf and tomidi buttons.
#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"

#include "collections/choicelist.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/userdialogs.h"
#include "publishing/exportcommon.h"
#include "publishing/gsexport.h"
#include "publishing/midiexport.h"
#include "publishing/widgets/exportdialog.h"
#include "publishing/widgets/printer.h"
#include "score/widgets/scorepanel.h"

#include <QAction>

namespace fenwork {

namespace {

enum class Scope { Tune, File, List };

} // namespace

void MainWindow::connectPublishCommands()
{
    AppContext &app = m_app;
    const auto source = [this, &app](Scope scope) -> QString {
        switch (scope) {
        case Scope::Tune:
            return app.selection().tuneKey();
        case Scope::File:
            return app.selection().fileKey();
        case Scope::List:
            return choiceListText(app, choiceList());
        }
        return {};
    };
    // The tool bar's buttons alone work on the tune while the tune's commands are on, else on
    // the file.
    const auto buttonScope = [this] {
        const QAction *tune = m_menus->action(QStringLiteral("mnu_printTune"));
        return tune && tune->isEnabled() ? Scope::Tune : Scope::File;
    };
    const auto viaGs = [this, &app, source](Scope scope, const QString &ext) {
        const QString text = source(scope);
        if (text.isEmpty())
            return;
        ExportDialogWindowHost host(app, this);
        GsExporter exporter(app, &host);
        QString extension = ext;
        QString target;
        int resolution = 0;
        QString answer = exporter.ExportViaGs(text, extension, target, resolution);
        if (exporter.ghostscriptMissing())
            m_score->enterDegradedMode();
        // The dialog may have turned the export into direct printing.
        if (answer.isEmpty() && extension == u"prn" && !target.isEmpty())
            answer = printRenderedPages(app, exporter.paperName(), this);
        if (!answer.isEmpty())
            app.ui().statusMessage(answer);
    };
    const auto toMidi = [&app, source](Scope scope) {
        const QString text = source(scope);
        if (text.isEmpty())
            return;
        MidiExporter exporter(app);
        QString target;
        const QString answer = exporter.ExportToMidi(text, target);
        if (!answer.isEmpty())
            app.ui().statusMessage(answer);
    };
    const auto printAbc = [this, &app, source](Scope scope) {
        const QString text = source(scope);
        if (text.isEmpty())
            return;
        const QString answer = PrintAbc(app, text, this);
        if (!answer.isEmpty())
            app.ui().statusMessage(answer);
    };

    const auto on = [this](std::initializer_list<const char *> names, const std::function<void()> &handler) {
        for (const char *name : names)
            m_menus->setHandler(QString::fromLatin1(name), handler);
    };
    static const char *const fourTypes[] = { "pdf", "png", "bmp", "jpg" };
    for (int row = 0; row < 4; ++row) {
        const QString ext = QLatin1String(fourTypes[row]);
        const QString n = QString::number(row);
        m_menus->setHandler(QStringLiteral("mnu_ExportFileViaGS") + n, [viaGs, ext] { viaGs(Scope::File, ext); });
        m_menus->setHandler(QStringLiteral("mnu_exportLstViaGs") + n, [viaGs, ext] { viaGs(Scope::List, ext); });
        // The tune's menu offers the pictures; its PDF is on the tool bar.
        if (row > 0) {
            m_menus->setHandler(QStringLiteral("mnu_ExportTuneViaGS") + QString::number(row - 1),
                                [viaGs, ext] { viaGs(Scope::Tune, ext); });
        }
    }
    const QString pdf = QStringLiteral("pdf");
    const QString prn = QStringLiteral("prn");
    on({ "topdftune" }, [viaGs, pdf] { viaGs(Scope::Tune, pdf); });
    on({ "topdffile" }, [viaGs, pdf] { viaGs(Scope::File, pdf); });
    on({ "topdflst" }, [viaGs, pdf] { viaGs(Scope::List, pdf); });
    on({ "topdf" }, [viaGs, pdf, buttonScope] { viaGs(buttonScope(), pdf); });

    on({ "mnu_exportFichVersMIDI" }, [toMidi] { toMidi(Scope::File); });
    on({ "mnu_exportTuneVersMidi", "tomidi" }, [toMidi] { toMidi(Scope::Tune); });
    on({ "mnu_exportLstVersMidi", "mnu_ExportLstToMidi" }, [toMidi] { toMidi(Scope::List); });

    on({ "mnu_printFile", "printfile" }, [viaGs, prn] { viaGs(Scope::File, prn); });
    on({ "mnu_printTune", "printtune" }, [viaGs, prn] { viaGs(Scope::Tune, prn); });
    on({ "mnu_printLst", "printlst" }, [viaGs, prn] { viaGs(Scope::List, prn); });
    on({ "print" }, [viaGs, prn, buttonScope] { viaGs(buttonScope(), prn); });
    on({ "mnu_printAbcFile" }, [printAbc] { printAbc(Scope::File); });
    on({ "mnu_printAbcTune" }, [printAbc] { printAbc(Scope::Tune); });
    on({ "mnu_printAbcLst" }, [printAbc] { printAbc(Scope::List); });
}

} // namespace fenwork
