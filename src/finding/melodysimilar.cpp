#include "finding/melodysimilar.h"

#include "finding/melodyreader.h"
#include "frame/appcontext.h"
#include "store/node.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

namespace fenwork {

namespace {

size_t hashLines(const Node *node, size_t seed)
{
    seed = qHash(node->Text, seed);
    for (const Node *child : node->children())
        seed = hashLines(child, seed);
    return seed;
}

} // namespace

void MelodySimilar::refresh()
{
    const Node *root = m_app.tree().root();
    QStringList keys;
    QStringList captions;
    QVector<size_t> prints;
    size_t whole = 0;
    // The tunes of every open file in tree order; the trash box (the root's first child) is no
    // part of the search.
    for (int f = 1; root && f < root->childCount(); ++f) {
        const Node *body = root->child(f)->child(1);
        if (!body || body->Image != Pic::BdyFile)
            continue;
        for (const Node *tune : body->children()) {
            const size_t print = hashLines(tune, qHash(tune->Key));
            keys.append(tune->Key);
            captions.append(tune->Text);
            prints.append(print);
            whole = qHash(print, whole);
        }
    }
    if (m_built && whole == m_fingerprint && keys == m_keys)
        return;

    const TuneStore &store = m_app.store();
    QHash<QString, Cached> cache;
    cache.reserve(keys.size());
    QVector<Melody> melodies;
    melodies.reserve(keys.size());
    for (int i = 0; i < keys.size(); ++i) {
        auto old = m_cache.find(keys.at(i));
        Cached entry;
        if (old != m_cache.end() && old->fingerprint == prints.at(i))
            entry = std::move(*old);
        else
            entry = { prints.at(i), readTuneMelody(store.GetStringTune(keys.at(i), false, 0)) };
        melodies.append(entry.melody);
        cache.insert(keys.at(i), std::move(entry));
    }
    m_cache = std::move(cache);
    m_keys = std::move(keys);
    m_captions = std::move(captions);
    m_index.build(std::move(melodies));
    m_fingerprint = whole;
    m_built = true;
}

bool MelodySimilar::isSearchable(const SimilarQuery &query)
{
    return readMelodyFragment(query.fragment, query.key, query.unit).size() >= MelodyIndex::kMinimumQuery;
}

QVector<SimilarTune> MelodySimilar::search(const SimilarQuery &query)
{
    refresh();
    return searchIndexed(readMelodyFragment(query.fragment, query.key, query.unit), query.options);
}

QVector<SimilarTune> MelodySimilar::searchIndexed(
    const Melody &query, const MelodySearchOptions &options) const
{
    QVector<SimilarTune> tunes;
    for (const MelodyMatch &match : m_index.search(query, options))
        tunes.append({ m_keys.at(match.entry), m_captions.at(match.entry), match.entry + 1, match.score,
            match.ratio });
    return tunes;
}

} // namespace fenwork
