#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/stage/StyleSheet.h"

#include <map>
#include <memory>

namespace flash::avm2
{

class StyleSheetObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    StyleSheetObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        DispatcherObject::trace(tracer);
        for (const auto& [name, style] : styles) tracer(style);
    }
    /// What fields show with it; null when there are no styles.
    [[nodiscard]] std::shared_ptr<const stage::StyleSheet> sheet(Vm& vm);

    std::map<std::u16string, Value> styles; ///< by the name in lower case
};

} // namespace flash::avm2
