#pragma once

#include <QImage>
#include <QRegion>

#include <vector>

namespace skin
{

/// A colour as skins write it: red in the lowest byte, then green, then blue.
using SkinColour = quint32;
inline QColor toColor(SkinColour colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>(colour >> 8 & 0xFF),
                  static_cast<int>(colour >> 16 & 0xFF));
}

/// The region of all pixels whose colour is not the key colour, in the picture's own coordinates.
/// @param picture as painted, at the size that it is shown in
QRegion GetSolidRegion(const QImage& picture, SkinColour key);
/// The region of all pixels of the key colour.
QRegion GetHoleRegion(const QImage& picture, SkinColour key);

/// A panel's holes and where the panel lies in the window.
struct MaskPlace {
    QRegion holes;
    int absoluteLeft = 0; ///< the panel's own left, whatever contains it
    int absoluteTop = 0;  ///< the sum of the tops of the panel and all its containers
};
/// The window's shape: its inner area with every mask combined by exclusive or. So key-coloured pixels inside
/// become holes, while those outside of the inner area are added to the window. Both are wanted.
QRegion windowShape(QSize innerSize, const std::vector<MaskPlace>& masks);

} // namespace skin
