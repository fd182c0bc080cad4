#pragma once

#include "flash/avm1/interpreter/Vm.h"
#include "flash/stage/TextFormat.h"

namespace flash::avm1
{

class StageBinding;

/// The native side of a TextFormat: attributes that are undecided read as null.
///
/// Lengths are kept in twips like everywhere below; the colour's alpha byte holds the upper byte of the
/// number that a script set.
class TextFormatObject final : public Native
{
public:
    static constexpr char kTag = 0;
    enum class Display : std::uint8_t { Block, Inline, None };
    stage::PartialTextFormat format;
    Display display = Display::Block;

    [[nodiscard]] const void* tag() const override { return &kTag; }

    /// The attributes as text takes them.
    [[nodiscard]] stage::PartialTextFormat forText() const;
};

/// A new TextFormat that says what `format` says.
Object* makeTextFormat(Vm& vm, const stage::PartialTextFormat& format);

} // namespace flash::avm1
