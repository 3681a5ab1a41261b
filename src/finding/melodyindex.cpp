#include "finding/melodyindex.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace fenwork {

namespace {

// Two intervals (three notes) make an n-gram: long enough to be selective over thousands of
// tunes, short enough that a two-bar fragment with one wrong note keeps several intact.
constexpr int kMaxInterval = 24;
constexpr int kIntervalValues = 2 * kMaxInterval + 1;
constexpr int kKeyCount = kIntervalValues * kIntervalValues;
constexpr int kPositionBits = 12;
constexpr quint32 kPositionMask = (1u << kPositionBits) - 1;
constexpr int kMaxPositions = 1 << kPositionBits;

// How many melodies the n-gram count keeps, how many of them the diagonals keep for the
// alignment, and at how many places (diagonal and transposition) each is aligned.
constexpr int kFirstCut = 3000;
constexpr int kCandidates = 400;
constexpr int kSeeds = 3;
constexpr int kDiagonalBias = 1 << 20;

// Alignment scores: a wrong note costs less than a missing one, so that one note moved a step
// stays one substitution rather than two gaps.
constexpr int kMatch = 2;
constexpr int kHalfMatch = 1; // right pitch, wrong length, when the rhythm counts
constexpr int kMismatch = -1;
constexpr int kGap = -2;

int intervalValue(int from, int to)
{
    return qBound(-kMaxInterval, to - from, kMaxInterval) + kMaxInterval;
}

int gramKey(const QVector<quint8> &pitches, int at)
{
    return intervalValue(pitches.at(at), pitches.at(at + 1)) * kIntervalValues
        + intervalValue(pitches.at(at + 1), pitches.at(at + 2));
}

bool sameLength(float a, float b)
{
    return std::fabs(a - b) < 1e-3f;
}

} // namespace

void MelodyIndex::build(QVector<Melody> melodies)
{
    m_melodies = std::move(melodies);
    // Counting sort by key: one pass to size the lists, one to fill them.
    m_offsets.fill(0, kKeyCount + 1);
    for (const Melody &m : std::as_const(m_melodies)) {
        const int grams = qMin(m.size() - 2, kMaxPositions);
        for (int at = 0; at < grams; ++at)
            ++m_offsets[gramKey(m.pitches, at) + 1];
    }
    std::partial_sum(m_offsets.begin(), m_offsets.end(), m_offsets.begin());
    m_postings.resize(m_offsets.last());
    QVector<quint32> fill(m_offsets.begin(), m_offsets.end() - 1);
    for (int entry = 0; entry < m_melodies.size(); ++entry) {
        const Melody &m = m_melodies.at(entry);
        const int grams = qMin(m.size() - 2, kMaxPositions);
        for (int at = 0; at < grams; ++at)
            m_postings[fill[gramKey(m.pitches, at)]++] = (quint32(entry) << kPositionBits) | quint32(at);
    }
}

qint64 MelodyIndex::memoryBytes() const
{
    qint64 bytes = (m_offsets.capacity() + m_postings.capacity()) * qint64(sizeof(quint32));
    for (const Melody &m : m_melodies)
        bytes += sizeof(Melody) + m.pitches.capacity() * qint64(sizeof(quint8))
            + m.lengths.capacity() * qint64(sizeof(float));
    return bytes;
}

int MelodyIndex::perfectScore(const Melody &query)
{
    return kMatch * query.size();
}

int MelodyIndex::align(
    const Melody &query, const Melody &melody, int transposition, bool rhythm, int from, int to)
{
    const int m = query.size();
    const int n = to < 0 ? melody.size() : qMin(to, melody.size());
    // One column of the table at a time: column[i] is the best score of the first i query notes
    // ending at the current note of the melody. Row 0 is free, so the match may start anywhere.
    QVarLengthArray<int, 64> column(m + 1);
    for (int i = 0; i <= m; ++i)
        column[i] = kGap * i;
    int best = column[m];
    for (int j = qMax(0, from); j < n; ++j) {
        const int pitch = melody.pitches.at(j) - transposition;
        int diagonal = column[0];
        column[0] = 0;
        for (int i = 1; i <= m; ++i) {
            int step = kMismatch;
            if (query.pitches.at(i - 1) == pitch)
                step = rhythm && !sameLength(query.lengths.at(i - 1), melody.lengths.at(j)) ? kHalfMatch
                                                                                            : kMatch;
            const int score = std::max({ diagonal + step, column[i] + kGap, column[i - 1] + kGap });
            diagonal = column[i];
            column[i] = score;
        }
        best = std::max(best, column[m]);
    }
    return best;
}

QVector<MelodyMatch> MelodyIndex::search(const Melody &query, const MelodySearchOptions &options) const
{
    QVector<MelodyMatch> result;
    const int m = query.size();
    const int count = size();
    if (m < kMinimumQuery || count == 0 || options.top <= 0)
        return result;

    // The query's n-grams, each key once with the places where it stands in the query.
    struct Gram
    {
        int key;
        QVarLengthArray<int, 4> at;
    };
    QVector<Gram> grams;
    for (int at = 0; at + 2 < m; ++at) {
        const int key = gramKey(query.pitches, at);
        auto it = std::find_if(grams.begin(), grams.end(), [key](const Gram &g) { return g.key == key; });
        if (it == grams.end()) {
            Gram gram { key, {} };
            gram.at.append(at);
            grams.append(gram);
        } else {
            it->at.append(at);
        }
    }

    // First cut: each n-gram a melody shares with the query counts once, the rarer ones for more.
    QVector<float> weight(count, 0.f);
    {
        QVector<int> lastGram(count, -1);
        const double total = double(m_postings.size()) + 1;
        for (int g = 0; g < grams.size(); ++g) {
            const quint32 from = m_offsets.at(grams.at(g).key);
            const quint32 to = m_offsets.at(grams.at(g).key + 1);
            const float w = float(std::log2(2.0 + total / (1.0 + double(to - from))));
            for (quint32 p = from; p < to; ++p) {
                const int entry = int(m_postings.at(p) >> kPositionBits);
                if (lastGram.at(entry) != g) {
                    lastGram[entry] = g;
                    weight[entry] += w;
                }
            }
        }
    }
    const auto heavier = [&weight](int a, int b) {
        return weight.at(a) > weight.at(b) || (weight.at(a) == weight.at(b) && a < b);
    };
    QVector<int> kept;
    for (int entry = 0; entry < count; ++entry)
        if (weight.at(entry) > 0)
            kept.append(entry);
    if (kept.size() > kFirstCut) {
        std::nth_element(kept.begin(), kept.begin() + kFirstCut, kept.end(), heavier);
        kept.resize(kFirstCut);
    }
    QVector<int> slot(count, -1);
    for (int k = 0; k < kept.size(); ++k)
        slot[kept.at(k)] = k;

    // Second cut: the query's notes found on one diagonal of a melody at one transposition are
    // one phrase; a wrong note leaves the diagonal whole, a missing or extra one shifts it by one.
    QVector<quint64> hits;
    for (const Gram &g : std::as_const(grams)) {
        for (quint32 p = m_offsets.at(g.key); p < m_offsets.at(g.key + 1); ++p) {
            const int entry = int(m_postings.at(p) >> kPositionBits);
            const int k = slot.at(entry);
            if (k < 0)
                continue;
            const int pos = int(m_postings.at(p) & kPositionMask);
            const int pitch = m_melodies.at(entry).pitches.at(pos);
            for (int at : g.at) {
                const quint64 t = quint64(pitch - query.pitches.at(at) + 128);
                const quint64 diagonal = quint64(pos - at + kDiagonalBias);
                hits.append((quint64(k) << 40) | (t << 24) | diagonal);
            }
        }
    }
    std::sort(hits.begin(), hits.end());
    struct Seed
    {
        int transposition = 0;
        int diagonal = 0;
        int count = 0;
    };
    QVector<std::array<Seed, kSeeds>> seeds(kept.size());
    for (qsizetype h = 0, previousRun = -1; h < hits.size();) {
        qsizetype end = h;
        while (end < hits.size() && hits.at(end) == hits.at(h))
            ++end;
        const int k = int(hits.at(h) >> 40);
        Seed seed { int((hits.at(h) >> 24) & 0xFFFF) - 128, int(hits.at(h) & 0xFFFFFF) - kDiagonalBias,
            int(end - h) };
        // The diagonal just before, at the same transposition, joins the phrase.
        if (previousRun >= 0 && (hits.at(previousRun) >> 24) == (hits.at(h) >> 24)
            && (hits.at(previousRun) & 0xFFFFFF) + 1 == (hits.at(h) & 0xFFFFFF)) {
            seed.count += int(h - previousRun);
            --seed.diagonal;
        }
        auto &best = seeds[k];
        for (int i = 0; i < kSeeds; ++i) {
            if (seed.count > best[i].count) {
                std::move_backward(best.begin() + i, best.end() - 1, best.end());
                best[i] = seed;
                break;
            }
        }
        previousRun = h;
        h = end;
    }
    QVector<int> candidates(kept.size());
    std::iota(candidates.begin(), candidates.end(), 0);
    const auto stronger = [&](int a, int b) {
        return seeds.at(a)[0].count > seeds.at(b)[0].count
            || (seeds.at(a)[0].count == seeds.at(b)[0].count && heavier(kept.at(a), kept.at(b)));
    };
    if (candidates.size() > kCandidates) {
        std::nth_element(candidates.begin(), candidates.begin() + kCandidates, candidates.end(), stronger);
        candidates.resize(kCandidates);
    }

    // The alignment ranks: around each seed, a window wide enough for a few gaps.
    for (int k : std::as_const(candidates)) {
        const Melody &melody = m_melodies.at(kept.at(k));
        MelodyMatch match { kept.at(k), std::numeric_limits<int>::min(), 0 };
        for (const Seed &seed : seeds.at(k)) {
            if (seed.count == 0)
                break;
            const int from = qMax(0, seed.diagonal - m);
            const int to = qMin(melody.size(), seed.diagonal + 2 * m + 1);
            match.score
                = std::max(match.score, align(query, melody, seed.transposition, options.rhythm, from, to));
        }
        if (match.score == std::numeric_limits<int>::min())
            continue;
        match.ratio = double(match.score) / perfectScore(query);
        result.append(match);
    }
    std::sort(result.begin(), result.end(), [](const MelodyMatch &a, const MelodyMatch &b) {
        return a.score > b.score || (a.score == b.score && a.entry < b.entry);
    });
    if (result.size() > options.top)
        result.resize(options.top);
    return result;
}

} // namespace fenwork
