#pragma once

#include "flash/stage/TextFormat.h"

#include <string>
#include <string_view>
#include <vector>

namespace flash::stage
{

/// A picture among the letters of a text, which flow around it. It takes no place in the text: it stands
/// before the character `index`. Lengths are twips.
struct TextPicture {
    std::size_t index = 0;
    std::u16string source;               ///< a linkage name, or the address of a picture or movie
    std::u16string id;                   ///< what scripts call its instance; may be empty
    std::optional<double> width, height; ///< as stated; else its own
    static constexpr double kUsualSpace = 8 * swf::kTwipsPerPixel;
    double horizontalSpace = kUsualSpace, verticalSpace = kUsualSpace; ///< left free on each side
    bool onRight = false;
    TextFormat format; ///< of letters that would stand in its place
    /// One instance does for both: they differ in where they stand among the letters, at most.
    [[nodiscard]] bool isSameAs(const TextPicture& other) const
    {
        return source == other.source && id == other.id && width == other.width && height == other.height &&
               horizontalSpace == other.horizontalSpace && verticalSpace == other.verticalSpace &&
               onRight == other.onRight;
    }
    friend bool operator==(const TextPicture&, const TextPicture&) = default;
};

/// A text with the format of each of its characters. Indices count UTF-16 units; those beyond the end mean
/// the end. Paragraphs end with a carriage
/// return, or with a line feed, which breaks the line just so but is not there for scripts (see
/// TextField::text()).
class TextContent
{
public:
    struct Run {
        std::size_t length = 0;
        TextFormat format;
        friend bool operator==(const Run&, const Run&) = default;
    };

    [[nodiscard]] const std::u16string& text() const { return m_text; }
    /// None is empty, neighbours differ.
    [[nodiscard]] const std::vector<Run>& runs() const { return m_runs; }
    [[nodiscard]] std::size_t size() const { return m_text.size(); }
    /// In the order of their places.
    [[nodiscard]] const std::vector<TextPicture>& pictures() const { return m_pictures; }
    [[nodiscard]] bool isEmpty() const { return m_text.empty(); }

    void clear();
    void append(std::u16string_view text, const TextFormat& format);
    /// Puts a picture at the end of the text, whatever its index says.
    void append(TextPicture picture);
    /// @param place among the pictures
    void removePicture(std::size_t place);
    /// Pictures between the replaced characters go with them.
    void replace(std::size_t begin, std::size_t end, std::u16string_view text, const TextFormat& format);
    void apply(std::size_t begin, std::size_t end, const PartialTextFormat& change);

    /// Of a character, or of the last one; null when there is no text.
    [[nodiscard]] const TextFormat* formatAt(std::size_t index) const;
    /// What the characters have in common; all open when there are none.
    [[nodiscard]] PartialTextFormat common(std::size_t begin, std::size_t end) const;

    friend bool operator==(const TextContent&, const TextContent&) = default;

private:
    /// @returns how many of so many units more it takes
    [[nodiscard]] std::size_t roomFor(std::size_t units) const;
    /// @returns the index of the run that begins at `index`, after cutting one in two when needed
    std::size_t cut(std::size_t index);
    void join();
    std::u16string m_text;
    std::vector<Run> m_runs;
    std::vector<TextPicture> m_pictures;
};

} // namespace flash::stage
