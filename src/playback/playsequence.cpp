#include "playback/playsequence.h"

#include "collections/choicelist.h"
#include "playback/playerlogic.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/workspacetree.h"

#include <algorithm>

namespace fenwork {

PlaySequence::PlaySequence(const WorkspaceTree &tree, PlaySequenceHost host, QObject *parent)
    : QObject(parent)
    , m_tree(tree)
    , m_host(std::move(host))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(kPauseMs);
    connect(&m_pause, &QTimer::timeout, this, &PlaySequence::pauseOver);
}

bool PlaySequence::playFile(FileMode mode, const QString &fileKey, const QString &currentKey, int nbRepeat)
{
    const Node *body = m_tree.find(fileKey + key::BdyFile);
    if (!body || body->childCount() == 0)
        return false;
    finish();
    m_source = Source::File;
    m_mode = mode;
    m_nbRepeat = nbRepeat;
    if (m_host.begin)
        m_host.begin();
    const Node *start = m_tree.find(currentKey);
    startFileTune(start && start->parent() == body ? currentKey : body->firstChild()->Key);
    return true;
}

void PlaySequence::playList(const ChoiceList &list)
{
    finish();
    m_source = Source::List;
    m_list = &list;
    if (m_host.begin)
        m_host.begin();
    if (list.isEmpty())
        close();
    else
        startListItem(0);
}

void PlaySequence::startFileTune(const QString &first)
{
    QString key = first;
    int skipped = 0;
    for (;;) {
        const Node *node = m_tree.find(key);
        if (!node) {
            finish(); // the file went away
            return;
        }
        if (m_mode != FileMode::Filtered || node->ForeColor != player::kFilteredOutColour)
            break;
        if (++skipped > node->parent()->childCount()) {
            finish(); // every tune is greyed out
            return;
        }
        const Node *next = node->nextSibling();
        key = next ? next->Key : node->parent()->firstChild()->Key;
    }
    // The quick scan keeps whatever repeat count it finds.
    if (m_mode != FileMode::QuickScan)
        m_repetitions = m_nbRepeat - 1;
    startTune(key);
}

void PlaySequence::startListItem(int row)
{
    m_repetitions = std::max(0, m_list->at(row).repetitions - 1);
    if (m_host.showRow)
        m_host.showRow(row);
    startTune(m_list->at(row).key);
}

void PlaySequence::startTune(const QString &key)
{
    m_key = key;
    // Selecting lets events run: the end of the last tune must not be taken for this one's.
    m_state = State::Starting;
    if (m_host.select)
        m_host.select(key);
    if (m_state != State::Starting)
        return; // stopped meanwhile
    if (m_host.play)
        m_host.play();
    if (m_state == State::Starting)
        m_state = State::Playing;
}

void PlaySequence::positionMoved()
{
    if (m_state != State::Playing || !m_host.loaded || !m_host.loaded())
        return;
    const int position = m_host.position();
    const bool scanned = m_source == Source::File && m_mode == FileMode::QuickScan
        && position > player::kQuickScanLength;
    if (position == m_host.length() || scanned) {
        m_state = State::Pausing;
        m_pause.start();
    }
}

void PlaySequence::pauseOver()
{
    m_pause.stop();
    if (m_state == State::Closing) {
        finish();
        if (m_host.stop)
            m_host.stop();
        return;
    }
    if (m_state != State::Pausing)
        return;
    if (m_source == Source::File) {
        const Node *node = m_tree.find(m_key);
        if (!node) {
            finish();
            return;
        }
        const Node *next = node->nextSibling();
        startFileTune(next ? next->Key : node->parent()->firstChild()->Key);
        return;
    }
    // The list may have changed meanwhile: go on after the item just played, wherever it is now.
    const int row = m_list ? m_list->indexOf(m_key) : -1;
    if (row >= 0 && row + 1 < m_list->count())
        startListItem(row + 1);
    else
        close();
}

void PlaySequence::playerStopped()
{
    finish();
}

void PlaySequence::close()
{
    m_state = State::Closing;
    m_pause.start();
}

void PlaySequence::finish()
{
    m_pause.stop();
    m_state = State::Idle;
    m_repetitions = 0;
}

} // namespace fenwork
