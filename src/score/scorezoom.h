#pragma once
// The resolution at which a page fills the width it is given.

namespace fenwork {

// A4's width in inches: the page assumed until a page has been drawn.
inline constexpr double kA4WidthInches = 8.27;

// The dots per inch at which a page `pageWidthInches` wide fits into `availablePixels`, within
// [`minimum`, `maximum`].
int fitWidthZoom(int availablePixels, double pageWidthInches, int minimum, int maximum);

} // namespace fenwork
