#include "flash/avm2/bindings/Display.h"
#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"
#include "flash/stage/Graphics.h"

#include <algorithm>
#include <cmath>
#include <limits>

// The texts that a timeline shows and no script can change, for scripts that look for something in them.
namespace flash::avm2
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr double kTwips = swf::kTwipsPerPixel;

/// Of one list, as it was when it was asked for.
class SnapshotObject final : public Object
{
public:
    AVM2_NATIVE(Object)
    SnapshotObject(Traits* traits, Object* proto) : Object(traits, proto) {}
    void trace(Tracer& tracer) override
    {
        Object::trace(tracer);
        tracer.outside(characters.capacity() * sizeof(Character));
    }
    struct Character {
        std::weak_ptr<stage::Node> node;
        std::size_t glyph = 0; ///< among those of its node
        char16_t unit = 0;
        bool isFirst = false; ///< of its node
        bool isSelected = false;
    };
    std::vector<Character> characters;
    std::uint32_t selectColor = 0xFFFF00;
};

SnapshotObject& self(Call& call) { return selfAs<SnapshotObject>(call, "flash.text.TextSnapshot"); }

struct Range {
    std::size_t begin, end;
};
/// At least one character, as the player takes it.
Range rangeArg(Call& call, const SnapshotObject& snapshot)
{
    const auto size = static_cast<std::int64_t>(snapshot.characters.size());
    const std::int64_t begin =
        std::clamp<std::int64_t>(call.vm.toInt(call.arg(0)), 0, std::max<std::int64_t>(size - 1, 0));
    const std::int64_t end =
        std::clamp<std::int64_t>(call.vm.toInt(call.arg(1)), begin + 1, std::max(size, begin + 1));
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(std::min(end, size))};
}

template <class Wanted>
Value textOf(Call& call, Range range, bool hasLineEndings, Wanted&& wanted)
{
    const SnapshotObject& snapshot = self(call);
    std::u16string text;
    for (std::size_t i = range.begin; i < range.end; ++i) {
        const SnapshotObject::Character& character = snapshot.characters[i];
        if (!wanted(character)) continue;
        if (hasLineEndings && character.isFirst && !text.empty()) text += u'\n';
        text += character.unit;
    }
    return Value(call.vm.string(std::move(text)));
}
Value charCount(Call& call) { return static_cast<double>(self(call).characters.size()); }
Value getText(Call& call)
{
    const Range range = rangeArg(call, self(call));
    return textOf(call, range, call.vm.toBoolean(call.arg(2)), [](const auto&) { return true; });
}
Value selectedText(Call& call)
{
    return textOf(call, {0, self(call).characters.size()}, call.vm.toBoolean(call.arg(0)),
                  [](const SnapshotObject::Character& character) { return character.isSelected; });
}
Value getSelected(Call& call)
{
    const SnapshotObject& snapshot = self(call);
    const Range range = rangeArg(call, snapshot);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        if (snapshot.characters[i].isSelected) return true;
    }
    return false;
}
/// Has its text paint a character as it is selected.
void show(const SnapshotObject& snapshot, const SnapshotObject::Character& character)
{
    const std::uint32_t rgb = snapshot.selectColor;
    const swf::Rgba color{static_cast<std::uint8_t>(rgb >> 16U), static_cast<std::uint8_t>(rgb >> 8U),
                          static_cast<std::uint8_t>(rgb), 255};
    if (const auto node = character.node.lock())
        static_cast<stage::StaticTextNode&>(*node).select(character.glyph, character.isSelected, color);
}
Value setSelected(Call& call)
{
    const bool value = call.vm.toBoolean(call.arg(2));
    SnapshotObject& snapshot = self(call);
    const Range range = rangeArg(call, snapshot);
    for (std::size_t i = range.begin; i < range.end; ++i) {
        snapshot.characters[i].isSelected = value;
        show(snapshot, snapshot.characters[i]);
    }
    return {};
}
Value setSelectColor(Call& call)
{
    const std::uint32_t color = call.has(0) ? call.vm.toUint(call.arg(0)) : 0xFFFF00;
    SnapshotObject& snapshot = self(call);
    snapshot.selectColor = color;
    for (const SnapshotObject::Character& character : snapshot.characters)
        if (character.isSelected) show(snapshot, character);
    return {};
}
Value findText(Call& call)
{
    const std::int32_t from = call.vm.toInt(call.arg(0));
    const std::u16string wanted = textArg(call, 1, "textToFind");
    const bool isSensitive = call.vm.toBoolean(call.arg(2));
    const auto& characters = self(call).characters;
    const auto folded = [&](char16_t unit) {
        return isSensitive || unit >= 0x80 ? unit : static_cast<char16_t>(std::tolower(unit));
    };
    const auto first = characters.begin() + std::clamp<std::int64_t>(from, 0, std::ssize(characters));
    const auto found = std::search(
        first, characters.end(), wanted.begin(), wanted.end(),
        [&](const SnapshotObject::Character& c, char16_t unit) { return folded(c.unit) == folded(unit); });
    return found == characters.end() || wanted.empty()
               ? Value(-1)
               : Value(static_cast<double>(found - characters.begin()));
}

/// Where a character's outline lies in the list that the snapshot is of.
std::optional<swf::Rect> boxOf(const SnapshotObject::Character& character)
{
    const auto node = character.node.lock();
    if (node == nullptr) return {};
    const auto glyph = static_cast<const stage::StaticTextNode&>(*node).glyph(character.glyph);
    return swf::mapBounds(node->matrix() * glyph.toNode, glyph.bounds);
}
/// @param 0,1 a point in pixels @param 2 how far from it a character may be
Value hitTest(Call& call)
{
    const double x = call.vm.toNumber(call.arg(0)) * kTwips, y = call.vm.toNumber(call.arg(1)) * kTwips,
                 most = call.has(2) ? call.vm.toNumber(call.arg(2)) * kTwips : 0;
    const auto& characters = self(call).characters;
    double nearest = std::numeric_limits<double>::infinity();
    Value result = -1;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const auto box = boxOf(characters[i]);
        if (!box || box->isEmpty()) continue;
        const double dx = std::max({box->xMin - x, x - box->xMax, 0.0}),
                     dy = std::max({box->yMin - y, y - box->yMax, 0.0}), distance = std::hypot(dx, dy);
        if (!(distance <= most) || distance >= nearest) continue;
        nearest = distance;
        result = static_cast<double>(i);
    }
    return result;
}
Value runInfo(Call& call)
{
    Vm& vm = call.vm;
    const SnapshotObject& snapshot = self(call);
    const Range range = rangeArg(call, snapshot);
    auto* list = static_cast<ArrayObject*>(vm.newArray());
    for (std::size_t i = range.begin; i < range.end; ++i) {
        const SnapshotObject::Character& character = snapshot.characters[i];
        const auto node = character.node.lock();
        const auto box = boxOf(character);
        if (node == nullptr || !box) continue;
        const auto glyph = static_cast<const stage::StaticTextNode&>(*node).glyph(character.glyph);
        Object* info = vm.newObject();
        list->push(vm, Value(info));
        const auto put = [&](std::string_view name, Value value) { vm.setPublic(Value(info), name, value); };
        put("indexInRun", static_cast<double>(character.glyph));
        put("selected", character.isSelected);
        put("font", Value(vm.string(std::string_view(glyph.font))));
        put("color", static_cast<double>((std::uint32_t{glyph.color.a} << 24U) + (glyph.color.r << 16U) +
                                         (glyph.color.g << 8U) + glyph.color.b));
        put("height", glyph.height / kTwips);
        const swf::Matrix& matrix = node->matrix();
        put("matrix_a", matrix.a);
        put("matrix_b", matrix.b);
        put("matrix_c", matrix.c);
        put("matrix_d", matrix.d);
        put("matrix_tx", matrix.tx / kTwips);
        put("matrix_ty", matrix.ty / kTwips);
        const std::int32_t corners[][2] = {
            {box->xMin, box->yMax}, {box->xMax, box->yMax}, {box->xMax, box->yMin}, {box->xMin, box->yMin}};
        for (std::size_t corner = 0; corner < std::size(corners); ++corner) {
            const std::string name = "corner" + std::to_string(corner);
            put(name + "x", corners[corner][0] / kTwips);
            put(name + "y", corners[corner][1] / kTwips);
        }
    }
    return Value(list);
}

constexpr NativeMember kMembers[] = {
    {"charCount", Kind::Getter, &charCount, 0, 0, nullptr, "int"},
    {"findText", Kind::Method, &findText, 3, 3, nullptr, "int"},
    {"getSelected", Kind::Method, &getSelected, 2, 2, nullptr, "Boolean"},
    {"getSelectedText", Kind::Method, &selectedText, 0, 1, nullptr, "String"},
    {"getText", Kind::Method, &getText, 2, 3, nullptr, "String"},
    {"getTextRunInfo", Kind::Method, &runInfo, 2, 2, nullptr, "Array"},
    {"hitTestTextNearPos", Kind::Method, &hitTest, 2, 3, nullptr, "Number"},
    {"setSelectColor", Kind::Method, &setSelectColor, 0, 1, nullptr, "void"},
    {"setSelected", Kind::Method, &setSelected, 3, 3, nullptr, "void"},
};
constexpr NativeClass kClasses[] = {
    {.package = "flash.text",
     .name = "TextSnapshot",
     .base = {},
     .minArguments = 0,
     .maxArguments = 0,
     .allocate = &allocateNative<SnapshotObject>,
     .members = kMembers},
};

} // namespace

Value newTextSnapshot(Vm& vm, DisplayObject& holder)
{
    auto* made = as<SnapshotObject>(Value(vm.instantiate(vm.nativeClass("flash.text::TextSnapshot"))));
    for (const DisplayObject* child : holder.children) {
        if (child->node().kind() != stage::NodeKind::StaticText) continue;
        const auto& node = static_cast<const stage::StaticTextNode&>(child->node());
        for (std::size_t i = 0; i < node.glyphCount(); ++i)
            made->characters.push_back(
                {child->nodePtr(), i, static_cast<char16_t>(node.glyph(i).code), i == 0, false});
    }
    return Value(made);
}

NativeLibrary textSnapshotLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
