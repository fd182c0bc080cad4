#pragma once

#include "flash/render/FontFace.h"

#include <QRawFont>

#include <map>
#include <memory>
#include <utility>

namespace flash::render
{

/// The letters of one of the machine's TrueType fonts as its own instructions shape them for a size in
/// pixels: stems on whole pixels, and advances that go with them. One thread only.
class HintedFont
{
public:
    explicit HintedFont(QRawFont font);
    ~HintedFont();
    HintedFont(const HintedFont&) = delete;
    HintedFont& operator=(const HintedFont&) = delete;

    /// The first call reads the font. What comes out is counted in FontFace::kShapedUnit.
    /// @returns null when the font has no instructions, or they fail; lives as long as this
    const FaceGlyph* glyph(quint32 index, int pixels);

private:
    class Engine;
    QRawFont m_font;
    bool m_isRead = false;
    std::unique_ptr<Engine> m_engine; ///< null where there is nothing to do
    std::map<std::pair<quint32, int>, FaceGlyph> m_glyphs;
};

} // namespace flash::render
