#pragma once

#include "flash/avm2/bindings/Events.h"
#include "flash/stage/Clip.h"
#include "flash/swf/Movie.h"

#include <memory>

namespace flash::avm2
{

class Player;

/// An instance on the display list, or taken off it. One class for all of them: what a script's class does
/// not show stays unused.
class DisplayObject final : public DispatcherObject
{
public:
    AVM2_NATIVE(DispatcherObject)
    DisplayObject(Traits* traits, Object* proto) : DispatcherObject(traits, proto) {}
    void trace(Tracer& tracer) override;
    [[nodiscard]] DispatcherObject* eventParent() const override { return parent; }
    [[nodiscard]] DisplayObject* top()
    {
        DisplayObject* at = this;
        while (at->parent != nullptr) at = at->parent;
        return at;
    }
    [[nodiscard]] bool contains(const DisplayObject& other) const
    {
        for (const DisplayObject* at = &other; at != nullptr; at = at->parent) {
            if (at == this) return true;
        }
        return false;
    }
    [[nodiscard]] int totalFrames() const
    {
        return timeline != nullptr ? std::max<int>(1, timeline->statedFrameCount) : 1;
    }

    DisplayObject* parent = nullptr;
    TracedList<DisplayObject*> children; ///< in the order they are drawn
    Value name = Value::null();
    double x = 0, y = 0, scaleX = 1, scaleY = 1, rotation = 0; ///< pixels, factors, degrees
    bool isConstructed = false, isStage = false, isRoot = false, isTransformed = false;
    std::uint16_t characterId = 0;
    int depth = 0;       ///< of the timeline; 0: a script's
    int placedFrame = 0; ///< 1-based, of the tag that placed it
    stage::MoviePtr movie;
    std::shared_ptr<const swf::Timeline> timeline;
    int frame = 0; ///< 1-based; 0: none shown yet
    bool isPlaying = true, hasPendingScript = false;
    std::vector<std::pair<int, Value>, vm::TracedAllocator<std::pair<int, Value>>> frameScripts;
    std::weak_ptr<stage::Node> node; ///< what shows it, if anything does
};

std::span<const NativeClass> displayClasses();
std::span<const NativeClass> clipClasses();
DisplayObject& displaySelf(Call& call);

} // namespace flash::avm2
