#pragma once

#include "flash/avm2/bindings/Fields.h"
#include "flash/stage/TextFormat.h"

namespace flash::avm2
{

struct TextFormatTag {
    static constexpr const char* kClass = "flash.text.TextFormat";
};
/// In the order of the constructor's arguments, then the others.
enum TextFormatField : std::uint8_t {
    FormatFont,
    FormatSize,
    FormatColor,
    FormatBold,
    FormatItalic,
    FormatUnderline,
    FormatUrl,
    FormatTarget,
    FormatAlign,
    FormatLeftMargin,
    FormatRightMargin,
    FormatIndent,
    FormatLeading,
    FormatBlockIndent,
    FormatTabStops,
    FormatBullet,
    FormatKerning,
    FormatLetterSpacing,
    FormatDisplay,
    kTextFormatFields
};
using TextFormatObject = FieldsOf<Object, kTextFormatFields, TextFormatTag>;

/// What a format says, as far as a text can look like it. @param format null says nothing
stage::PartialTextFormat textFormatOf(Vm& vm, const TextFormatObject* format);
Value makeTextFormat(Vm& vm, const stage::PartialTextFormat& format);

} // namespace flash::avm2
