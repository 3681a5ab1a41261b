#pragma once
// The similar-melody search over the open files: the melody index kept in step with the tree,
// and the ranked tunes of a query.
#include "finding/melodyindex.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

namespace fenwork {

class AppContext;

struct SimilarTune
{
    QString key;
    QString caption;
    int position = 0; // the tune's place in tree order, from 1
    int score = 0;
    double ratio = 0; // score over the best a fragment of that length can reach
};

// What the user typed, as the panel and the batch command take it.
struct SimilarQuery
{
    QString fragment;
    QString key; // a K: value; empty: C major
    QString unit; // an L: value; empty: 1/8
    MelodySearchOptions options;
};

class MelodySimilar
{
public:
    explicit MelodySimilar(AppContext &app)
        : m_app(app)
    { }

    // Reads again the tunes that changed since the last call (all of them the first time) and
    // rebuilds the index when anything did. Cheap when nothing changed: the tunes' lines are
    // hashed, not read.
    void refresh();
    const MelodyIndex &index() const { return m_index; }

    // The ranked tunes; nothing when the fragment holds fewer than
    // MelodyIndex::kMinimumQuery notes (see readMelodyFragment).
    QVector<SimilarTune> search(const SimilarQuery &query);
    // Whether a fragment holds enough notes to be looked for.
    static bool isSearchable(const SimilarQuery &query);
    // A query read once and run against the index as it stands (refresh first).
    QVector<SimilarTune> searchIndexed(const Melody &query, const MelodySearchOptions &options) const;

private:
    struct Cached
    {
        size_t fingerprint = 0;
        Melody melody;
    };

    AppContext &m_app;
    MelodyIndex m_index;
    QStringList m_keys; // in index order
    QStringList m_captions;
    QHash<QString, Cached> m_cache;
    size_t m_fingerprint = 0; // of the whole, in order
    bool m_built = false;
};

} // namespace fenwork
