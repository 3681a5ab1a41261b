#include "editing/editsession.h"

#include "store/duplicates.h"
#include "frame/appcontext.h"
#include "frame/selection.h"
#include "frame/strutil.h"
#include "frame/userdialogs.h"
#include "store/node.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTimer>

namespace fenwork {

namespace {

constexpr int kSessionRing = 10;
constexpr int kRecoverPeriodMs = 10000;

} // namespace

void UndoRing::resize(int size)
{
    m_entries.resize(qMax(1, size));
}

bool UndoRing::SetUndo(const QString &text)
{
    if (text.isEmpty() || m_entries.size() <= 1)
        return false;
    m_entries.removeLast();
    m_entries.prepend(text);
    return true;
}

QString UndoRing::GetUndo()
{
    if (m_entries.size() <= 1)
        return {};
    m_entries.removeFirst();
    m_entries.append(QString());
    return m_entries.first();
}

QString currentLine(const QString &text, qsizetype caret)
{
    caret = qBound(qsizetype(0), caret, text.size());
    const qsizetype start = caret == 0 ? 0 : text.lastIndexOf(u'\n', caret - 1) + 1;
    qsizetype end = text.indexOf(u'\n', caret);
    if (end < 0)
        end = text.size();
    QString line = text.mid(start, end - start);
    if (line.endsWith(u'\r'))
        line.chop(1);
    return line;
}

bool needsBlankLineGuard(const QString &text, qsizetype caret)
{
    if (caret < 1 || caret > text.size())
        return false;
    const QChar before = text.at(caret - 1);
    return before == u'\n' || before == u'\r' || before == QChar::ParagraphSeparator;
}

QString getCurLineAsTune(const AppContext &app, const QString &kTune, const QString &text, qsizetype caret)
{
    QString out;
    if (const Node *tune = app.tree().find(kTune)) {
        if (const Node *header = tune->child(0)) {
            for (const Node *line : header->children())
                out += line->Text + CRLF;
        }
    }
    return out + currentLine(text, caret) + CRLF;
}

QString toStoreText(const QString &editorText)
{
    return crlfLines(editorText);
}

QString fromStoreText(QString storeText)
{
    storeText.replace(CRLF, QStringLiteral("\n"));
    if (storeText.endsWith(u'\n'))
        storeText.chop(1);
    return storeText;
}

EditSession::EditSession(AppContext &app, QObject *parent)
    : QObject(parent)
    , m_app(app)
    , m_recover(new QTimer(this))
{
    m_recover->setObjectName(QStringLiteral("tm_RecoverTune"));
    m_recover->setInterval(kRecoverPeriodMs);
    connect(m_recover, &QTimer::timeout, this, &EditSession::writeRecovery);
}

EditSession::~EditSession() = default;

bool EditSession::start(const QString &text)
{
    if (isActive())
        return false;
    if (!m_app.selection().tuneKey().isEmpty() && m_app.tree().find(m_app.selection().tuneKey())) {
        m_target = Target::Tune;
        m_kTune = m_app.selection().tuneKey();
    } else if (!m_app.selection().fileKey().isEmpty() && m_app.tree().find(m_app.selection().fileKey())) {
        m_target = Target::Header;
        m_kTune.clear();
    } else {
        return false;
    }
    m_kFile = m_app.selection().fileKey();
    // Nothing of an earlier session may stand in the ring: an entry behind the start text would
    // read as a change.
    m_ring = UndoRing();
    m_ring.resize(kSessionRing);
    m_ring.SetUndo(text);
    m_startText = text;
    m_recover->start();
    return true;
}

bool EditSession::validate(const QString &text)
{
    if (!isActive())
        return false;
    const QString stored = toStoreText(text);
    if (m_target == Target::Tune) {
        QString lead = stored;
        while (lead.startsWith(u' '))
            lead.remove(0, 1);
        if (!lead.startsWith(QStringLiteral("X:"))) {
            m_app.ui().message(
                m_app.text(QStringLiteral("Msg"), QStringLiteral("<Xmissing>")), UserDialogs::Icon::Warning);
            return false;
        }
        QString copy = stored;
        QString wanted;
        const QString key = m_app.store().AddStringTune(copy, m_kFile, false, m_kTune, false, wanted);
        if (Node *tune = m_app.tree().find(key.isEmpty() ? m_kTune : key))
            m_app.tree().setImage(tune, Pic::TuneM);
        int doubled = 0;
        ShowDoublonsX(m_app, m_kFile, false, doubled);
    } else {
        m_app.store().rebuildFileHeader(m_kFile, stored);
    }
    close(true);
    return true;
}

bool EditSession::cancel(QString *reloaded)
{
    if (!isActive())
        return false;
    // Entry 0 is the text as it stands: typed and undone again is no change.
    if (m_ring.hasChanges() && m_ring.entry(0) != m_startText) {
        const auto answer
            = m_app.ui().question(m_app.text(QStringLiteral("Msg"), QStringLiteral("<exitEdit>")), true);
        if (answer != UserDialogs::Answer::Yes)
            return false;
    }
    if (reloaded) {
        *reloaded = m_target == Target::Tune ? m_app.store().GetStringTune(m_kTune, false)
                                             : m_app.store().GetStringHdrFile(m_kFile, false);
    }
    close(false);
    return true;
}

void EditSession::writeRecovery()
{
    if (!textSource)
        return;
    const QString path = m_app.paths().recoverFile();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(toStoreText(textSource()).toUtf8());
    file.commit();
}

void EditSession::close(bool validated)
{
    const QString kFile = m_kFile;
    m_target = Target::None;
    m_kTune.clear();
    m_kFile.clear();
    m_ring.resize(1);
    m_recover->stop();
    QFile::remove(m_app.paths().recoverFile());
    if (validated)
        m_app.store().SetFlagModifFile(kFile);
    emit ended(validated);
}

} // namespace fenwork
