#pragma once

#include "base/Result.h"

#include <QColor>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <vector>

// tools/svgpng: draws the pictures that ship beside the program from SVG files, while the program is built. A
// recipe says what is drawn; the program itself never needs the SVG files.

namespace svgpng
{

/// One drawing of a picture; later ones lie above earlier ones.
struct Layer {
    QString svg;         ///< file name; empty for a plain rounded rectangle
    QRectF place;        ///< pixels at scale 1
    QColor colour;       ///< of the rectangle, or what every part of the drawing becomes; invalid: its own
    double opacity = 1;  ///< 0 to 1
    double radius = 0;   ///< of the rectangle's corners, pixels at scale 1
    bool mirror = false; ///< left and right exchanged
};

struct Picture {
    QString output; ///< below the output folder; its suffix chooses the format
    QSize size;     ///< pixels at scale 1
    QColor key;     ///< valid: every pixel is either opaque or of this colour
    std::vector<int> scales{1};
    std::vector<Layer> layers;
};

/// Reads a recipe. Empty lines and those that begin with # say nothing; the others are
///   picture OUTPUT WxH [key=#RRGGBB] [scales=1,2] + LAYER [+ LAYER ...]
///   button OUTPUT NAME.svg WxH SIDE [#RRGGBB] [scales=1,2]
/// A LAYER is NAME.svg or "ground", and in any order [WxH[@X,Y]] [#RRGGBB] [opacity=0.5] [radius=6] [mirror].
/// Without a size it fills the picture, without a place it lies in the middle. A button is the picture of a
/// skin's button in its four states, in folders of their names, with a glyph of SIDE pixels.
/// @errors Malformed, with the line's number
base::Result<std::vector<Picture>> readRecipe(const QString& text);

/// Draws a picture and writes it, at each of its scales; those beyond 1 go to files named like OUTPUT@2x.
/// @param folders where SVG files are looked for, in this order
/// @param used receives the paths of the SVG files
/// @errors NotFound, Malformed, IoFailure
base::Result<void> draw(const Picture& picture, const QString& outputFolder, const QStringList& folders,
                        QStringList& used);

} // namespace svgpng
