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
    /// Lines at letters, and letters beside the line. Distances are below the baseline, negative above it;
    /// of lines that is the middle.
    struct Extras {
        double underline = 0, underlineThickness = 0;
        double strike = 0, strikeThickness = 0;
        double subscript = 0, subscriptScale = 1; ///< times the size
        double superscript = 0, superscriptScale = 1;
    };
    virtual ~FontFace() = default;
    [[nodiscard]] virtual Metrics metrics() const = 0;
    /// Those that text fonts usually have, where the font does not say.
    [[nodiscard]] virtual Extras extras() const;
    /// @returns the glyph of a character; null when the font has none. Lives as long as the face.
    [[nodiscard]] virtual const FaceGlyph* glyph(char32_t character) const = 0;
    /// What is added between two characters.
    [[nodiscard]] virtual double kerning(char32_t left, char32_t right) const = 0;
    /// Whether its letters stand on whole pixels, as the machine's do in text fields.
    [[nodiscard]] virtual bool standsOnPixels() const { return false; }
    /// Of what shapedAt() gives, in pixels.
    static constexpr double kShapedUnit = 1.0 / 1024;
    /// A character as the font's own instructions shape it at a size in pixels. Units are kShapedUnit.
    /// @returns null where the font has none; lives as long as the face
    [[nodiscard]] virtual const FaceGlyph* shapedAt(char32_t, int /*pixels*/) const { return nullptr; }
    /// Whether a character is the font's own, and not another one's that stands in.
    [[nodiscard]] virtual bool hasOwn(char32_t character) const { return glyph(character) != nullptr; }
};
using FontFacePtr = std::shared_ptr<const FontFace>;

/// A font of the movie. Characters outside the basic plane are never in it.
FontFacePtr makeEmbeddedFace(std::shared_ptr<const swf::Font> font);
/// The first face, with the letters that it has not from the second. Each of them may be null.
FontFacePtr completedBy(FontFacePtr first, FontFacePtr second);

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
    /// Whether that would be a font of this name, and not another one instead.
    [[nodiscard]] static bool has(std::string_view name);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace flash::render
