#include "score/scorezoom.h"

#include <QtGlobal>

namespace fenwork {

int fitWidthZoom(int availablePixels, double pageWidthInches, int minimum, int maximum)
{
    if (pageWidthInches <= 0.5)
        pageWidthInches = kA4WidthInches;
    // Rounded down: a dot more and the page would need the horizontal bar.
    return qBound(minimum, int(availablePixels / pageWidthInches), maximum);
}

} // namespace fenwork
