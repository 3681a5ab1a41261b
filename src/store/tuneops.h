#pragma once
// What the user does to whole tunes: cut, copy, paste, delete, new tune, a tune added as a part
// of another, drag and drop in the tree, and tunes from the clipboard.
#include <QString>

namespace fenwork {

class AppContext;

// Puts the tune on the clipboard and in `pending` (key, CR LF, text). A tune already pending is
// only replaced when the user agrees.
void CopierTune(AppContext &app, const QString &kTune, QString &pending);
// Copies, then removes the tune, whatever was answered about the one pending before.
void CouperTune(AppContext &app, const QString &kTune, QString &pending);
// Pastes the pending tune before the tune of `targetKey`, or at the end of its file; returns the
// new tune's key (empty when nothing was pasted).
QString CollerTuneSur(AppContext &app, const QString &targetKey, QString &pending);
// Deletes a tune, to the trash box or for good; `confirm` asks first.
void DelTune(AppContext &app, const QString &kTune, bool confirm, bool toTrash);
// A new tune at the end of the file, from the template when asked and set, with a free X:
// number no higher than the count. Returns its key.
QString AddNewTune(AppContext &app, const QString &kFile, bool useTemplate);
// Appends the tune `kSource` to the tune `kTarget` as further parts, played `repeats` times.
void AddTuneAsPart(AppContext &app, const QString &kSource, const QString &kTarget, int repeats);

// A tune was cut and not pasted: the only copy of it is the pending text.
bool cutTuneNotPasted(AppContext &app);

// The pieces a clipboard text makes: cut at every "X:", or one tune numbered 0 when it has none.
QStringList clipboardTunes(const QString &text);

// The commands, on the current tune or file.
void mnu_copyTune(AppContext &app);
void mnu_cutTune(AppContext &app);
void mnu_pasteTune(AppContext &app);
// 0: to the trash box; 1: erased.
void mnu_delTune(AppContext &app, int index);
// A new tune in the current file, selected; returns its key for the edit that follows.
QString CreateNewTune(AppContext &app);
void mnu_impClipboard(AppContext &app);

// Whether a tune node may be dragged at all.
bool isDraggableTune(const QString &key);
// A tune dropped on a node of the tree: a move, a delete into the trash box, or (with Alt) a part.
void dropTune(AppContext &app, const QString &draggedKey, const QString &targetKey, bool asPart);

} // namespace fenwork
