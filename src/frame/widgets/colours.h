#pragma once
#include <QColor>

namespace fenwork {

// The core keeps colours as 0xBBGGRR integers, as its files and settings write them.
inline QColor bgrColour(int bgr)
{
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

} // namespace fenwork
