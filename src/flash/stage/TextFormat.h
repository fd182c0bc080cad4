#pragma once

#include "flash/render/TextLayout.h"

#include <optional>
#include <string>
#include <vector>

namespace flash::stage
{

/// How a character looks and where it leads: everything a script can say about it. Lengths are twips.
struct TextFormat {
    render::TextStyle style;
    std::u16string url, target; ///< of a link; the url is empty when there is none
    unsigned link = 0;          ///< which link of its HTML it belongs to, from 1; 0 for others
    friend bool operator==(const TextFormat&, const TextFormat&) = default;
};

/// A format that leaves attributes open: what a script wants changed, or what a stretch of text has in
/// common.
struct PartialTextFormat {
    std::optional<std::string> font;
    std::optional<double> size;
    std::optional<swf::Rgba> color;
    std::optional<bool> bold, italic, underline, kerning, bullet;
    std::optional<double> letterSpacing, leftMargin, rightMargin, indent, blockIndent, leading;
    std::optional<swf::EditText::Align> align;
    std::optional<std::vector<double>> tabStops;
    std::optional<std::u16string> url, target;

    /// Calls visit(optional, attribute) for every attribute and its place in a format.
    template <class Partial, class Format, class Visit>
    static void pairUp(Partial& partial, Format& format, Visit&& visit)
    {
        visit(partial.font, format.style.font);
        visit(partial.size, format.style.size);
        visit(partial.color, format.style.color);
        visit(partial.bold, format.style.bold);
        visit(partial.italic, format.style.italic);
        visit(partial.underline, format.style.underline);
        visit(partial.kerning, format.style.kerning);
        visit(partial.bullet, format.style.bullet);
        visit(partial.letterSpacing, format.style.letterSpacing);
        visit(partial.leftMargin, format.style.leftMargin);
        visit(partial.rightMargin, format.style.rightMargin);
        visit(partial.indent, format.style.indent);
        visit(partial.blockIndent, format.style.blockIndent);
        visit(partial.leading, format.style.leading);
        visit(partial.align, format.style.align);
        visit(partial.tabStops, format.style.tabStops);
        visit(partial.url, format.url);
        visit(partial.target, format.target);
    }

    [[nodiscard]] static PartialTextFormat of(const TextFormat& format)
    {
        PartialTextFormat all;
        pairUp(all, format, [](auto& open, const auto& value) { open = value; });
        return all;
    }
    void applyTo(TextFormat& format) const
    {
        pairUp(*this, format, [](const auto& open, auto& value) {
            if (open) value = *open;
        });
    }
    /// Opens what `format` has otherwise.
    void keepCommon(const TextFormat& format)
    {
        pairUp(*this, format, [](auto& open, const auto& value) {
            if (open && *open != value) open.reset();
        });
    }
};

} // namespace flash::stage
