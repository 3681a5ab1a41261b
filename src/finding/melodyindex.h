#pragma once
// Finding a tune by a few notes as a player remembers them: in another key, with a note wrong,
// missing or added. Pitch-interval n-grams pick the candidate tunes, an alignment of pitches at
// the candidates' transpositions ranks them.
#include <QVector>
#include <QtGlobal>

namespace fenwork {

// A tune's notes in playing order: MIDI pitches and lengths in whole notes (a quaver is 0.125).
struct Melody
{
    QVector<quint8> pitches;
    QVector<float> lengths;

    int size() const { return int(pitches.size()); }
    bool isEmpty() const { return pitches.isEmpty(); }
    void append(int pitch, float length)
    {
        pitches.append(quint8(qBound(0, pitch, 127)));
        lengths.append(length);
    }
};

struct MelodySearchOptions
{
    // Lengths count as well as pitches: a note of the right pitch and the wrong length is half
    // a match.
    bool rhythm = false;
    int top = 10;
};

struct MelodyMatch
{
    int entry = 0; // the melody's number in the index, which is its place in tree order
    int score = 0; // the alignment's score; higher is better
    // The score over the best a fragment of that length can reach, from 0 to 1.
    double ratio = 0;
};

// The melodies of a workspace in tree order, with the positions of every interval n-gram.
class MelodyIndex
{
public:
    static constexpr int kMinimumQuery = 3;

    // Takes the melodies in their order and builds the n-gram table.
    void build(QVector<Melody> melodies);
    int size() const { return int(m_melodies.size()); }
    const Melody &melody(int entry) const { return m_melodies.at(entry); }
    // Bytes held, for the figures of the benchmark.
    qint64 memoryBytes() const;

    // The best `options.top` melodies for the query, best first; equal scores keep index order.
    // A query of fewer than kMinimumQuery notes finds nothing: two notes are one interval, which
    // nearly every tune holds.
    QVector<MelodyMatch> search(const Melody &query, const MelodySearchOptions &options) const;

    // The alignment of a query at one transposition over the notes `from` .. `to` of a melody
    // (to -1: its end): the query is aligned from end to end, the melody anywhere.
    static int align(
        const Melody &query, const Melody &melody, int transposition, bool rhythm, int from = 0, int to = -1);
    // What `align` gives a query matched note for note.
    static int perfectScore(const Melody &query);

private:
    QVector<Melody> m_melodies;
    // Postings of the n-grams: m_offsets[key] .. m_offsets[key + 1] in m_postings, each posting
    // the melody's number shifted left by kPositionBits, or'ed with the n-gram's first note.
    QVector<quint32> m_offsets;
    QVector<quint32> m_postings;
};

} // namespace fenwork
