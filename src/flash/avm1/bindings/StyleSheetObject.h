#pragma once

#include "flash/avm1/interpreter/Object.h"
#include "flash/stage/StyleSheet.h"
#include "flash/stage/TextField.h"

namespace flash::avm1
{

/// The native side of a TextField.StyleSheet: what its fields read.
class StyleSheetObject final : public Native
{
public:
    static constexpr char kTag = 0;
    std::shared_ptr<const stage::StyleSheet> sheet = std::make_shared<stage::StyleSheet>();
    std::vector<std::weak_ptr<stage::Node>> users; ///< text fields that show it

    [[nodiscard]] const void* tag() const override { return &kTag; }
};

} // namespace flash::avm1
