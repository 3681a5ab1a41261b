#pragma once
// Lookups and small operations on the workspace tree shared by every subsystem: what a key
// addresses, the picture of a line, the captions that count tunes and files.
#include "store/node.h"

#include <QString>

namespace fenwork {

class AppContext;
class WorkspaceTree;

namespace key {
inline const QString Root = QStringLiteral("abc");
inline const QString Trash = QStringLiteral("_file0");
inline const QString TrashHeader = QStringLiteral("_file0_hdrFile");
inline const QString TrashBody = QStringLiteral("_file0_bdyFile");
inline const QString HdrFile = QStringLiteral("_hdrFile");
inline const QString BdyFile = QStringLiteral("_bdyFile");
inline const QString HdrTune = QStringLiteral("_hdrTune");
inline const QString BdyTune = QStringLiteral("_bdyTune");
} // namespace key

// Colours with a meaning (0xBBGGRR).
namespace color {
constexpr int File = 16512;
constexpr int FileHeader = 16737380;
constexpr int Trash = 9881750;
constexpr int TrashHeader = 11257458;
constexpr int TrashTune = 11191466;
constexpr int TuneSelected = 0;
constexpr int TuneLeftOut = 0xDCDCDC;
constexpr int IncludedLine = 0xFF0000;
constexpr int FailedInclude = 0xB0B0FF;
constexpr int DuplicateX = 0xB0B0FF;
} // namespace color

// The kinds of key, tested in this order since a line's key holds its ancestors' keys.
enum class KeyKind { TrashTune, Trash, TuneBody, TuneHeader, Tune, FileHeader, FileBody, File, Root, None };
KeyKind keyKind(const QString &key);

// "_file3_tune5_bdyTune_lg2" -> "_file3". Meant for keys below a file.
QString GetKFile(const QString &key);
// The tune a key lies in, or empty (always empty in the trash box).
QString GetKtune(const QString &key);
// The picture of an ABC line from its first characters; trims `line` of blanks in place.
Pic GetIconeLigne(QString &line);

// Gives `node` the first free key prefix + 1, prefix + 2, ...
void SetOneKey(WorkspaceTree &tree, Node *node, const QString &prefix);

// The path of a file node (its Tag); empty for an empty or unknown key.
QString GetPathFile(const AppContext &app, const QString &kFile);
// The file's alias: its alias line from the 12th character, trimmed; empty for "none". `found`
// tells whether the file has an alias line at all (the trash box and a file without tunes have none).
QString GetAliasFile(const AppContext &app, const QString &kFile, bool *found = nullptr);
// Whether a file of exactly this path is open; if so, says so in a warning.
bool IsOpenFile(AppContext &app, const QString &path);
// Recomputes the caption of a file's body (and of the trash box) from its number of tunes.
void CompterTunesDansFichier(AppContext &app, const QString &kFile);
// Recomputes the root's caption from the number of open files, and whether "save all" is enabled.
void CompterFiles(AppContext &app);
// Number of open files (root children after the trash box).
int openFileCount(const AppContext &app);

// Makes the root and the empty trash box nodes.
void createWorkspaceRoot(AppContext &app);

// What the status bar says of a node: the file's caption and, inside a tune, the tune's, for
// the keys themselves mean nothing to a user. Empty for an unknown key.
QString statusCaption(const WorkspaceTree &tree, const QString &key);

} // namespace fenwork
