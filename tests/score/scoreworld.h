#pragma once
// An open file with two tunes of our own and a source for the score made from one of them.
#include "testenv.h"

#include "frame/ghostscript.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "score/scorerefresh.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QStandardPaths>

namespace fenwork::test {

inline const QByteArray kScoreFile = "%abc\n%%abc-alias Score tests\n%%scale 0.9\n\n"
                                     "X:1\nT:The Mill Road\nR:reel\nM:4/4\nL:1/8\nK:D\n"
                                     "|:DFAF dFAF|GBdB AFEF|DFAF dfed|cABc d2 d2:|\n"
                                     "|:fdfa gefg|fdec d2 AG|FDFA GEGB|Adcd e2 d2:|\n\n"
                                     "X:2\nT:Short Air\nM:3/4\nL:1/4\nK:G\nG A B|c2 B|A G F|G3|]\n";

class ScoreWorld
{
public:
    ScoreWorld()
    {
        createWorkspaceRoot(env.app());
        env.app().ini().set(keys::Ask4alias, QStringLiteral("0"));
        env.app().ini().set(keys::FichBak, QStringLiteral("0"));
        fileKey = env.app().store().FichierOuvrir(
            env.writeFile(QStringLiteral("score tests.abc"), kScoreFile), false, true, false);
        const Node *body = env.app().tree().find(fileKey + key::BdyFile);
        if (body && body->childCount() > 0)
            tuneKey = body->child(0)->Key;
    }

    ScoreSource source()
    {
        ScoreSource s;
        s.tuneKey = tuneKey;
        s.fileKey = fileKey;
        s.editorText = env.app().store().GetStringTune(tuneKey, false);
        return s;
    }

    QString cache(const QString &name) { return env.app().paths().cacheFolder() + u'/' + name; }

    static bool haveTools(QString *why)
    {
        if (QStandardPaths::findExecutable(QStringLiteral("abcm2ps")).isEmpty()) {
            *why = QStringLiteral("abcm2ps is not installed");
            return false;
        }
        if (!ghostscriptAvailable()) {
            *why = QStringLiteral("the Ghostscript library is not installed");
            return false;
        }
        return true;
    }

    TestEnv env;
    QString fileKey;
    QString tuneKey;
};

} // namespace fenwork::test

#define SKIP_WITHOUT_SCORE_TOOLS()                                                                           \
    do {                                                                                                     \
        QString why;                                                                                         \
        if (!fenwork::test::ScoreWorld::haveTools(&why))                                                     \
            QSKIP(qPrintable(why));                                                                          \
    } while (false)
