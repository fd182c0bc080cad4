#include "flash/avm2/bindings/Conversions.h"
#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/avm2/bindings/OldMovies.h"
#include "flash/avm2/bindings/Player.h"

#include <algorithm>

namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

[[noreturn]] void outOfBounds(Call& call)
{
    call.vm.throwError(ErrorClass::Range, 2006, "The supplied index is out of bounds.");
}

void checkNesting(Call& call, DisplayObject& parent, DisplayObject& child)
{
    if (&child == &parent)
        call.vm.throwError(ErrorClass::Argument, 2024, "An object cannot be added as a child of itself.");
    if (child.contains(parent))
        call.vm.throwError(
            ErrorClass::Argument, 2150,
            "An object cannot be added as a child to one of it's children (or children's children, etc.).");
    if (child.node().kind() == stage::NodeKind::Shape &&
        dynamic_cast<const OldMovieNode*>(&child.node()) != nullptr)
        call.vm.throwError(ErrorClass::Argument, 2180,
                           "It is illegal to move AVM1 content (AS1 or AS2) to a different part of the "
                           "displayList when it has been loaded into AVM2 content.");
    if (child.isStage)
        call.vm.throwError(ErrorClass::Argument, 2175,
                           "One or more items on the render list could not be added.");
}

void checkChild(Call& call, DisplayObject& parent, const DisplayObject& child)
{
    if (child.parent != &parent)
        call.vm.throwError(ErrorClass::Argument, 2025,
                           "The supplied DisplayObject must be a child of the caller.");
}

/// The place of a child. Asking for the number may run script, which may change the list.
std::size_t indexArg(Call& call, std::uint32_t i, const DisplayObject& parent)
{
    const std::int32_t index = call.vm.toInt(call.arg(i));
    if (index < 0 || static_cast<std::size_t>(index) >= parent.children.size()) outOfBounds(call);
    return static_cast<std::size_t>(index);
}

std::size_t placeOf(const DisplayObject& parent, const DisplayObject& child)
{
    return static_cast<std::size_t>(std::ranges::find(parent.children, &child) - parent.children.begin());
}

void swapPlaces(DisplayObject& parent, DisplayObject& a, DisplayObject& b)
{
    if (&a == &b) return;
    DisplayObject* first = &a;
    DisplayObject* second = &b;
    std::size_t low = placeOf(parent, a), high = placeOf(parent, b);
    if (low > high) {
        std::swap(low, high);
        std::swap(first, second);
    }
    first->depth = second->depth = 0;
    parent.moveChild(*second, low);
    parent.moveChild(*first, high);
}

/// What is placed and not constructed yet cannot be had.
Value childValue(DisplayObject* child)
{
    return child->isConstructed || child->isConstructing ? Value(child) : Value::null();
}

Value addChild(Call& call)
{
    auto& parent = displaySelf(call);
    auto& child = displayArg(call, 0);
    checkNesting(call, parent, child);
    const std::size_t size = parent.children.size();
    Player::of(call.vm).insert(parent, child, child.parent == &parent ? size - 1 : size);
    return Value(&child);
}
Value addChildAt(Call& call)
{
    auto& parent = displaySelf(call);
    auto& child = displayArg(call, 0);
    const std::int32_t index = call.vm.toInt(call.arg(1));
    if (index < 0 || static_cast<std::size_t>(index) > parent.children.size()) outOfBounds(call);
    checkNesting(call, parent, child);
    Player::of(call.vm).insert(parent, child, static_cast<std::size_t>(index));
    return Value(&child);
}
Value removeChild(Call& call)
{
    auto& child = displayArg(call, 0);
    checkChild(call, displaySelf(call), child);
    Player::of(call.vm).removeChild(displaySelf(call), child);
    return Value(&child);
}
Value removeChildAt(Call& call)
{
    auto& parent = displaySelf(call);
    const std::size_t index = indexArg(call, 0, parent);
    DisplayObject* child = parent.children[index];
    Player::of(call.vm).removeChild(parent, *child);
    return Value(child);
}
Value removeChildren(Call& call)
{
    auto& parent = displaySelf(call);
    const std::int32_t from = call.vm.toInt(call.arg(0));
    std::int32_t to = call.has(1) ? call.vm.toInt(call.arg(1)) : 0x7FFF'FFFF;
    const auto size = static_cast<std::int32_t>(parent.children.size());
    if (to == 0x7FFF'FFFF) {
        to = size - 1;
        if (from >= size) return {};
    }
    if (from < 0 || to < 0 || from > to || from >= size || to >= size) outOfBounds(call);
    RootedList<DisplayObject*> gone(call.vm.heap(), parent.children.begin() + from,
                                    parent.children.begin() + to + 1);
    for (std::size_t i = 0; i < gone.size(); ++i) Player::of(call.vm).removeChild(parent, *gone[i]);
    return {};
}
Value contains(Call& call) { return displaySelf(call).contains(displayArg(call, 0)); }
Value getChildAt(Call& call)
{
    const auto& parent = displaySelf(call);
    const std::size_t index = indexArg(call, 0, parent);
    return childValue(parent.children[index]);
}
Value getChildByName(Call& call)
{
    if (call.arg(0).isNullish()) return Value::null();
    for (DisplayObject* child : displaySelf(call).children) {
        if (call.vm.strictEquals(child->name, call.arg(0))) return Value(child);
    }
    return Value::null();
}
Value getChildIndex(Call& call)
{
    auto& parent = displaySelf(call);
    auto& child = displayArg(call, 0);
    checkChild(call, parent, child);
    return static_cast<double>(placeOf(parent, child));
}
Value setChildIndex(Call& call)
{
    auto& parent = displaySelf(call);
    auto& child = displayArg(call, 0);
    checkChild(call, parent, child);
    const std::size_t index = indexArg(call, 1, parent);
    checkChild(call, parent, child);
    child.depth = 0;
    parent.moveChild(child, index);
    return {};
}
Value swapChildren(Call& call)
{
    auto& parent = displaySelf(call);
    auto& a = displayArg(call, 0, "child1");
    auto& b = displayArg(call, 1, "child2");
    checkChild(call, parent, a);
    checkChild(call, parent, b);
    swapPlaces(parent, a, b);
    return {};
}
Value swapChildrenAt(Call& call)
{
    auto& parent = displaySelf(call);
    const std::size_t a = indexArg(call, 0, parent), b = indexArg(call, 1, parent);
    if (a >= parent.children.size()) outOfBounds(call);
    swapPlaces(parent, *parent.children[a], *parent.children[b]);
    return {};
}
Value numChildren(Call& call) { return static_cast<double>(displaySelf(call).children.size()); }
Value stopAllClips(Call& call)
{
    RootedList<DisplayObject*> all(call.vm.heap());
    all.push_back(&displaySelf(call));
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i]->isPlaying = false;
        for (DisplayObject* child : all[i]->children) all.push_back(child);
    }
    return {};
}
Value notInaccessible(Call&) { return false; }
Value objectsUnderPoint(Call& call)
{
    auto& parent = displaySelf(call);
    const swf::Point at = pointOf(objectArg(call, 0, "flash.geom::Point", "point"));
    const swf::Point stagePoint{at.x * swf::kTwipsPerPixel, at.y * swf::kTwipsPerPixel};
    auto* list = static_cast<ArrayObject*>(call.vm.newArray());
    RootedList<DisplayObject*> pending(call.vm.heap());
    for (std::size_t i = parent.children.size(); i-- > 0;) pending.push_back(parent.children[i]);
    if (parent.clip() != nullptr && parent.clip()->drawingHits(stagePoint))
        list->push(call.vm, Value(&parent));
    while (!pending->empty()) {
        DisplayObject* child = pending[pending.size() - 1];
        pending->pop_back();
        call.vm.check();
        const bool hit = child->clip() != nullptr ? child->clip()->drawingHits(stagePoint)
                                                  : child->node().hitsShape(stagePoint);
        if (hit) list->push(call.vm, Value(child));
        for (std::size_t i = child->children.size(); i-- > 0;) pending.push_back(child->children[i]);
    }
    return Value(list);
}
Value textSnapshot(Call& call) { return newTextSnapshot(call.vm, displaySelf(call)); }
constexpr NativeMember kContainer[] = {
    {"textSnapshot", Kind::Getter, &textSnapshot, 0, 0, nullptr, "flash.text::TextSnapshot"},
    {"addChild", Kind::Method, &addChild, 1, 1},
    {"addChildAt", Kind::Method, &addChildAt, 2, 2},
    {"removeChild", Kind::Method, &removeChild, 1, 1},
    {"removeChildAt", Kind::Method, &removeChildAt, 1, 1},
    {"removeChildren", Kind::Method, &removeChildren, 0, 2},
    {"contains", Kind::Method, &contains, 1, 1},
    {"getChildAt", Kind::Method, &getChildAt, 1, 1},
    {"getChildByName", Kind::Method, &getChildByName, 1, 1},
    {"getChildIndex", Kind::Method, &getChildIndex, 1, 1},
    {"setChildIndex", Kind::Method, &setChildIndex, 2, 2},
    {"swapChildren", Kind::Method, &swapChildren, 2, 2},
    {"swapChildrenAt", Kind::Method, &swapChildrenAt, 2, 2},
    {"stopAllMovieClips", Kind::Method, &stopAllClips, 0, 0},
    {"areInaccessibleObjectsUnderPoint", Kind::Method, &notInaccessible, 1, 1},
    {"getObjectsUnderPoint", Kind::Method, &objectsUnderPoint, 1, 1},
    {"numChildren", Kind::Getter, &numChildren, 0, 0, nullptr, "int"},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.display",
     .name = "DisplayObjectContainer",
     .base = "flash.display::InteractiveObject",
     .flags = NativeClass::Sealed | NativeClass::Abstract,
     .constructor = &refuseDisplayConstruction,
     .minArguments = 0,
     .maxArguments = 0,
     .members = kContainer,
     .slots = "mouseChildren:Boolean=true tabChildren:Boolean=true"},
};

} // namespace

std::span<const NativeClass> containerClasses() { return kClasses; }

} // namespace flash::avm2
