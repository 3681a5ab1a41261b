#pragma once
// What the export tests share: tune books written on the spot and opened in the tree.
#include "testenv.h"

#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QByteArray>
#include <QString>

namespace fenwork::test {

// `count` tunes of `lines` music lines each, numbered from 1.
inline QByteArray tuneBook(int count, int lines = 4)
{
    QByteArray text = "%abc-2.1\r\n\r\n";
    for (int n = 1; n <= count; ++n) {
        text += "X:" + QByteArray::number(n) + "\r\nT:Tune number " + QByteArray::number(n)
            + "\r\nM:4/4\r\nL:1/8\r\nK:G\r\n";
        for (int l = 0; l < lines; ++l)
            text += "GABc dedB|cBAG FGAB|GABc dedB|cBAG G4|\r\n";
        text += "\r\n";
    }
    return text;
}

// Opens a file written from `bytes`; returns its key (no backup copy is made).
inline QString openBook(TestEnv &env, const QString &name, const QByteArray &bytes)
{
    if (!env.app().tree().find(key::Root))
        createWorkspaceRoot(env.app());
    env.app().store().backupOnOpen = false;
    return env.app().store().FichierOuvrir(env.writeFile(name, bytes), false, true, false);
}

// The key of the file's tune at `row`.
inline QString tuneKeyAt(TestEnv &env, const QString &kFile, int row)
{
    const Node *body = env.app().tree().find(kFile + key::BdyFile);
    return body && row < body->children().size() ? body->children().at(row)->Key : QString();
}

} // namespace fenwork::test
