#pragma once
// The melody box of the filter turns a fragment typed in ABC letters into regular expressions.
// Nothing musical happens here: the fragment is compared with the tune's text as it stands, with
// blanks allowed between the typed characters, "?" for any one character or none, and "[...]"
// for one character out of several. Characters with a meaning to regular expressions keep it.
#include <QString>

namespace fenwork {

// The fragment as the search runs it, without anchors: blanks removed, " *" behind every
// character outside brackets and behind the closing "]", "?" made ".?".
// "G A [Bb] c" gives "G *A *[Bb] *c *".
QString melodySearchText(const QString &fragment);

// The alternative the melody adds to the filter's pattern, "|" included: "^" + text + ".*$|" when
// the melody must start a line, else "^.*" + text + ".*$|". Empty for a fragment of blanks only.
QString melodySearchAlternative(const QString &fragment, bool startOnly);

// The wider pattern that marks the fragment in a line shown in the editor: blanks, slashes, bars
// and digits may lie between the typed characters. No anchors.
QString melodyHighlightPattern(const QString &fragment);

} // namespace fenwork
