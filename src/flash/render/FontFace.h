#pragma once

#include "flash/swf/Movie.h"

#include <memory>
#include <string_view>

namespace flash::render
{

struct FaceGlyph {
    std::shared_ptr<const swf::Shape> outline; ///< in face units, origin on the baseline; may be empty
    double advance = 0;                        ///< face units
};

/// A font at no particular size. All numbers are in face units, unitsPerEm of them to the font size.
class FontFace
{
public:
    struct Metrics {
        double unitsPerEm = 1024;
        double ascent = 0, descent = 0; ///< both counted away from the baseline
        double leading = 0;
    };
    virtual ~FontFace() = default;
    [[nodiscard]] virtual Metrics metrics() const = 0;
    /// @returns the glyph of a character; null when the font has none. Lives as long as the face.
    [[nodiscard]] virtual const FaceGlyph* glyph(char32_t character) const = 0;
    /// What is added between two characters.
    [[nodiscard]] virtual double kerning(char32_t left, char32_t right) const = 0;
};
using FontFacePtr = std::shared_ptr<const FontFace>;

/// A font of the movie. Characters outside the basic plane are never in it.
FontFacePtr makeEmbeddedFace(std::shared_ptr<const swf::Font> font);

/// Fonts of the machine, by the names that movies use: "_sans", "_serif", "_typewriter" and family names. A
/// family that is not installed is replaced by one of its kind; ascent and descent are those of the fonts
/// that movies were made with (Arial, Times New Roman, Courier New) where one of these is meant, so that
/// lines are as high as their authors saw them.
///
/// Needs a QGuiApplication, which may run off screen; without one there are no faces. One thread only.
class DeviceFonts
{
public:
    DeviceFonts();
    ~DeviceFonts();
    DeviceFonts(const DeviceFonts&) = delete;
    DeviceFonts& operator=(const DeviceFonts&) = delete;

    /// @param name UTF-8; several may stand separated by commas, the first installed one counts
    /// @returns the face, kept for further calls; null when the machine has no fonts at all
    FontFacePtr face(std::string_view name, bool bold, bool italic);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace flash::render
