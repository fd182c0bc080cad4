#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>

// What the paragraphs of the text engine are made of: texts, pictures, and groups of them.
namespace flash::avm2::textengine
{

using classes::allocateNative;
using classes::selfAs;
using Kind = NativeMember::Kind;

namespace
{

constexpr std::string_view kElementClass = "flash.text.engine::ContentElement";

ElementObject& self(Call& call) { return elementSelf(call); }
template <ElementObject::Kind kind>
ElementObject& selfOf(Call& call)
{
    ElementObject& element = self(call);
    if (element.kind != kind) throwInvalid(call.vm);
    return element;
}

// ---- what all have ----

Value format(Call& call) { return self(call).format; }
Value setFormat(Call& call)
{
    ElementObject& element = self(call);
    auto* given = as<ElementFormatObject>(Value(objectArg(call, 0, "flash.text.engine::ElementFormat")));
    element.format = Value(given);
    if (given != nullptr) given->isLocked = true;
    element.changed();
    return {};
}
Value mirror(Call& call) { return self(call).mirror; }
Value setMirror(Call& call)
{
    self(call).mirror = Value(objectArg(call, 0, "flash.events::EventDispatcher"));
    return {};
}
Value rotation(Call& call) { return self(call).rotation; }
Value setRotation(Call& call)
{
    const Value value = choiceArg(call, kTextRotation);
    self(call).rotation = value;
    return {};
}
Value userData(Call& call) { return self(call).userData; }
Value setUserData(Call& call)
{
    self(call).userData = call.arg(0);
    return {};
}
Value groupOf(Call& call) { return Value(self(call).group); }
Value blockOf(Call& call) { return Value(self(call).textBlock()); }
Value blockBegin(Call& call)
{
    ElementObject& element = self(call);
    return element.textBlock() != nullptr ? Value(static_cast<double>(element.begin())) : Value(-1);
}
Value rawText(Call& call)
{
    ElementObject& element = self(call);
    if (element.kind == ElementObject::Kind::Text && !element.hasText) return Value::null();
    std::u16string all;
    element.appendText(all);
    return Value(call.vm.string(std::move(all)));
}
/// Without what stands for pictures.
Value text(Call& call)
{
    ElementObject& element = self(call);
    if (element.kind == ElementObject::Kind::Text && !element.hasText) return Value::null();
    std::u16string all;
    element.appendText(all);
    std::erase(all, kGraphicCharacter);
    return Value(call.vm.string(std::move(all)));
}

Value refuse(Call& call)
{
    call.vm.throwError(ErrorClass::Argument, 2012, "ContentElement$ class cannot be instantiated.");
}

constexpr NativeMember kElement[] = {
    {"elementFormat", Kind::Getter, &format, 0, 0, &setFormat, "flash.text.engine::ElementFormat"},
    {"eventMirror", Kind::Getter, &mirror, 0, 0, &setMirror, "flash.events::EventDispatcher"},
    {"textRotation", Kind::Getter, &rotation, 0, 0, &setRotation, "String"},
    {"userData", Kind::Getter, &userData, 0, 0, &setUserData},
    {"groupElement", Kind::Getter, &groupOf, 0, 0, nullptr, "flash.text.engine::GroupElement"},
    {"textBlock", Kind::Getter, &blockOf, 0, 0, nullptr, "flash.text.engine::TextBlock"},
    {"textBlockBeginIndex", Kind::Getter, &blockBegin, 0, 0, nullptr, "int"},
    {"rawText", Kind::Getter, &rawText, 0, 0, nullptr, "String"},
    {"text", Kind::Getter, &text, 0, 0, nullptr, "String"},
};

// ---- texts ----

ElementObject& textSelf(Call& call) { return selfOf<ElementObject::Kind::Text>(call); }

Value setText(Call& call)
{
    ElementObject& element = textSelf(call);
    element.hasText = !call.arg(0).isNullish();
    element.text = element.hasText ? std::u16string(call.vm.text(call.arg(0))) : std::u16string();
    element.changed();
    return {};
}
Value replaceText(Call& call)
{
    ElementObject& element = textSelf(call);
    const std::int32_t begin = call.vm.toInt(call.arg(0)), end = call.vm.toInt(call.arg(1));
    std::u16string with;
    if (!call.arg(2).isNullish()) with = call.vm.text(call.arg(2));
    const auto size = static_cast<std::int64_t>(element.text.size());
    if (begin < 0 || end < begin || end > size) throwOutOfRange(call.vm);
    element.text.replace(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin), with);
    element.hasText = true;
    element.changed();
    return {};
}
Value constructText(Call& call)
{
    constructElement(call, 1);
    return setText(call);
}
constexpr NativeMember kText[] = {
    {"text", Kind::Getter, &text, 0, 0, &setText, "String"},
    {"replaceText", Kind::Method, &replaceText, 3, 3, nullptr, "void"},
};

// ---- pictures ----

ElementObject& picture(Call& call) { return selfOf<ElementObject::Kind::Graphic>(call); }

Value graphic(Call& call) { return picture(call).graphic; }
Value setGraphic(Call& call)
{
    picture(call).graphic = Value(objectArg(call, 0, "flash.display::DisplayObject"));
    picture(call).changed();
    return {};
}
template <double ElementObject::*member>
Value getSize(Call& call)
{
    return picture(call).*member;
}
template <double ElementObject::*member>
Value setSize(Call& call)
{
    constexpr double kMaxPixels = 1000000;
    const double value = call.vm.toNumber(call.arg(0));
    if (!(value >= 0)) throwInvalid(call.vm);
    picture(call).*member = std::min(value, kMaxPixels);
    picture(call).changed();
    return {};
}
Value constructGraphic(Call& call)
{
    self(call).kind = ElementObject::Kind::Graphic;
    constructElement(call, 3);
    constexpr NativeFunction kSetters[] = {&setGraphic, &setSize<&ElementObject::width>,
                                           &setSize<&ElementObject::height>};
    for (std::uint32_t i = 0; i < std::size(kSetters) && call.has(i); ++i) {
        Call set{call.vm, call.self, call.args + i, 1};
        kSetters[i](set);
    }
    return {};
}
constexpr NativeMember kGraphic[] = {
    {"graphic", Kind::Getter, &graphic, 0, 0, &setGraphic, "flash.display::DisplayObject"},
    {"elementWidth", Kind::Getter, &getSize<&ElementObject::width>, 0, 0, &setSize<&ElementObject::width>,
     "Number"},
    {"elementHeight", Kind::Getter, &getSize<&ElementObject::height>, 0, 0, &setSize<&ElementObject::height>,
     "Number"},
};

NativeClass element(std::string_view name, NativeFunction constructor, std::int8_t most,
                    std::span<const NativeMember> members)
{
    return {.package = "flash.text.engine",
            .name = name,
            .base = kElementClass,
            .flags = NativeClass::Sealed | NativeClass::Final,
            .constructor = constructor,
            .minArguments = 0,
            .maxArguments = most,
            .members = members};
}
const NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "ContentElement",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &refuse,
     .allocate = &allocateNative<ElementObject>,
     .members = kElement},
    element("TextElement", &constructText, 4, kText),
    element("GraphicElement", &constructGraphic, 6, kGraphic),
    element("GroupElement", &constructGroup, 4, groupMembers()),
};

} // namespace

ElementObject& elementSelf(Call& call)
{
    return selfAs<ElementObject>(call, "flash.text.engine.ContentElement");
}

void constructElement(Call& call, std::uint32_t first)
{
    ElementObject& element = self(call);
    element.rotation = nameValue(call.vm, "rotate0");
    constexpr NativeFunction kSetters[] = {&setFormat, &setMirror, &setRotation};
    for (std::uint32_t i = 0; i < std::size(kSetters) && call.has(first + i); ++i) {
        Call set{call.vm, call.self, call.args + first + i, 1};
        kSetters[i](set);
    }
}
void ElementObject::trace(Tracer& tracer)
{
    Object::trace(tracer);
    tracer(format);
    tracer(mirror);
    tracer(rotation);
    tracer(userData);
    tracer(graphic);
    for (const ElementObject* child : children) tracer(child);
    tracer(group);
    tracer(block);
    tracer.outside(text.capacity() * sizeof(char16_t));
}

std::size_t ElementObject::length() const
{
    if (kind == Kind::Graphic) return 1;
    if (kind == Kind::Text) return text.size();
    std::size_t all = 0;
    for (const ElementObject* child : children) all += child->length();
    return all;
}

std::size_t ElementObject::begin() const
{
    std::size_t index = 0;
    for (const ElementObject* at = this; at->group != nullptr; at = at->group) {
        for (const ElementObject* sibling : at->group->children) {
            if (sibling == at) break;
            index += sibling->length();
        }
    }
    return index;
}

const ElementObject* ElementObject::top() const
{
    const ElementObject* at = this;
    while (at->group != nullptr) at = at->group;
    return at;
}

int ElementObject::depth() const
{
    int deepest = 0;
    for (const ElementObject* child : children) deepest = std::max(deepest, child->depth() + 1);
    return deepest;
}

void ElementObject::appendText(std::u16string& to) const
{
    if (kind == Kind::Graphic)
        to += kGraphicCharacter;
    else if (kind == Kind::Text)
        to += text;
    for (const ElementObject* child : children) child->appendText(to);
}

void ElementObject::changed()
{
    if (BlockObject* block = textBlock()) block->changed(begin());
}

std::span<const NativeClass> elementClasses() { return kClasses; }

} // namespace flash::avm2::textengine
