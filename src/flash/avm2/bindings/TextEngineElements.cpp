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
constexpr int kMaxDepth = 200; // of groups in groups

ElementObject& self(Call& call) { return selfAs<ElementObject>(call, "flash.text.engine.ContentElement"); }
template <ElementObject::Kind kind>
ElementObject& selfOf(Call& call)
{
    ElementObject& element = self(call);
    if (element.kind != kind) throwInvalid(call.vm);
    return element;
}
ElementObject& group(Call& call) { return selfOf<ElementObject::Kind::Group>(call); }

Value newVector(Vm& vm, std::span<ElementObject* const> elements)
{
    ClassObject* type = vm.vectorOf(vm.nativeClass(kElementClass)->instances);
    auto* list = as<VectorObject>(Value(vm.instantiate(type)));
    for (ElementObject* element : elements) list->push(vm, Value(element));
    return Value(list);
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

/// @param first of the arguments: format, mirror and rotation
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

// ---- groups ----

std::size_t indexArg(Call& call, std::uint32_t i, std::size_t size)
{
    const std::int32_t index = call.vm.toInt(call.arg(i));
    if (index < 0 || static_cast<std::size_t>(index) >= size) throwOutOfRange(call.vm);
    return static_cast<std::size_t>(index);
}
struct Range {
    std::size_t begin, end;
};
Range rangeArg(Call& call, std::size_t size)
{
    const std::int32_t begin = call.vm.toInt(call.arg(0)), end = call.vm.toInt(call.arg(1));
    if (begin < 0 || end < begin || static_cast<std::size_t>(end) > size) throwOutOfRange(call.vm);
    return {static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

/// Puts elements in the place of some. What was in another group leaves it.
void replace(Call& call, ElementObject& holder, Range range, std::span<ElementObject* const> with)
{
    int above = 0;
    for (const ElementObject* at = &holder; at != nullptr; at = at->group) ++above;
    TracedList<ElementObject*> sorted(with.begin(), with.end());
    std::ranges::sort(sorted);
    if (std::ranges::adjacent_find(sorted) != sorted.end()) throwInvalid(call.vm);
    for (ElementObject* element : with) {
        if (element == nullptr) throwNullParameter(call.vm, "elements");
        if (element->block != nullptr || above + element->depth() > kMaxDepth) throwInvalid(call.vm);
        for (const ElementObject* at = &holder; at != nullptr; at = at->group) {
            if (at == element) throwInvalid(call.vm);
        }
        // It cannot be here twice.
        if (element->group == &holder) {
            const auto at = static_cast<std::size_t>(std::ranges::find(holder.children, element) -
                                                     holder.children.begin());
            if (at < range.begin || at >= range.end) throwInvalid(call.vm);
        }
    }
    holder.changed();
    const auto from = holder.children.begin() + static_cast<std::ptrdiff_t>(range.begin),
               to = holder.children.begin() + static_cast<std::ptrdiff_t>(range.end);
    for (auto at = from; at != to; ++at) (*at)->group = nullptr;
    const auto place = holder.children.erase(from, to);
    const auto index = place - holder.children.begin();
    for (ElementObject* element : with) {
        if (element->group != nullptr) {
            element->changed();
            std::erase(element->group->children, element);
        }
        element->group = &holder;
    }
    holder.children.insert(holder.children.begin() + index, with.begin(), with.end());
    holder.changed();
}

/// The elements of a vector; none for null. @throws 1034
RootedList<ElementObject*> elementsArg(Call& call, std::uint32_t i)
{
    Vm& vm = call.vm;
    RootedList<ElementObject*> elements(vm.heap());
    const Value given =
        vm.coerce(call.arg(i), vm.vectorOf(vm.nativeClass(kElementClass)->instances)->instances);
    if (const auto* list = as<VectorObject>(given)) {
        for (const Value item : list->items) elements.push_back(as<ElementObject>(item));
    }
    return elements;
}

Value elementCount(Call& call) { return static_cast<double>(group(call).children.size()); }
Value elementAt(Call& call)
{
    ElementObject& holder = group(call);
    return Value(holder.children[indexArg(call, 0, holder.children.size())]);
}
Value elementIndex(Call& call)
{
    const auto& children = group(call).children;
    const auto* wanted = as<ElementObject>(call.arg(0));
    const auto at = std::ranges::find(children, wanted);
    return at == children.end() ? Value(-1) : Value(static_cast<double>(at - children.begin()));
}
Value elementAtCharacter(Call& call)
{
    ElementObject& holder = group(call);
    std::size_t index = indexArg(call, 0, holder.length());
    for (ElementObject* child : holder.children) {
        if (index < child->length()) return Value(child);
        index -= child->length();
    }
    return Value::null();
}
Value setElements(Call& call)
{
    const auto elements = elementsArg(call, 0);
    ElementObject& holder = group(call);
    replace(call, holder, {0, holder.children.size()}, *elements);
    return {};
}
Value replaceElements(Call& call)
{
    const auto elements = elementsArg(call, 2);
    ElementObject& holder = group(call);
    const Range range = rangeArg(call, holder.children.size());
    const RootedList<ElementObject*> gone(call.vm.heap(),
                                          holder.children.begin() + static_cast<std::ptrdiff_t>(range.begin),
                                          holder.children.begin() + static_cast<std::ptrdiff_t>(range.end));
    replace(call, holder, range, *elements);
    return gone.empty() ? Value::null() : newVector(call.vm, *gone);
}

ElementObject* newElement(Call& call, std::string_view cls, const ElementObject& like)
{
    auto* made = as<ElementObject>(call.vm.construct(Value(call.vm.nativeClass(cls)), {}));
    made->format = like.format;
    made->mirror = like.mirror;
    made->rotation = like.rotation;
    return made;
}
Value groupElements(Call& call)
{
    ElementObject& holder = group(call);
    const Range range = rangeArg(call, holder.children.size());
    int above = 1;
    for (const ElementObject* at = &holder; at != nullptr; at = at->group) ++above;
    if (above + holder.depth() > kMaxDepth) throwInvalid(call.vm);
    ElementObject* made = newElement(call, "flash.text.engine::GroupElement", holder);
    made->mirror = Value::null();
    const auto from = holder.children.begin() + static_cast<std::ptrdiff_t>(range.begin),
               to = holder.children.begin() + static_cast<std::ptrdiff_t>(range.end);
    made->children.assign(from, to);
    for (ElementObject* child : made->children) child->group = made;
    const auto place = holder.children.erase(from, to);
    holder.children.insert(place, made);
    made->group = &holder;
    made->changed();
    return Value(made);
}
Value ungroupElements(Call& call)
{
    ElementObject& holder = group(call);
    const std::size_t index = indexArg(call, 0, holder.children.size());
    ElementObject* inner = holder.children[index];
    if (inner->kind != ElementObject::Kind::Group) return {};
    inner->changed();
    inner->group = nullptr;
    const auto place = holder.children.erase(holder.children.begin() + static_cast<std::ptrdiff_t>(index));
    for (ElementObject* child : inner->children) child->group = &holder;
    holder.children.insert(place, inner->children.begin(), inner->children.end());
    inner->children.clear();
    return {};
}
Value splitText(Call& call)
{
    ElementObject& holder = group(call);
    const std::size_t index = indexArg(call, 0, holder.children.size());
    ElementObject* first = holder.children[index];
    if (first->kind != ElementObject::Kind::Text) throwInvalid(call.vm);
    const std::size_t at = indexArg(call, 1, first->text.size() + 1);
    ElementObject* second = newElement(call, "flash.text.engine::TextElement", *first);
    second->text = first->text.substr(at);
    second->hasText = true;
    first->text.resize(at);
    second->group = &holder;
    holder.children.insert(holder.children.begin() + static_cast<std::ptrdiff_t>(index) + 1, second);
    first->changed();
    return Value(second);
}
Value mergeText(Call& call)
{
    ElementObject& holder = group(call);
    const Range range = rangeArg(call, holder.children.size());
    if (range.begin == range.end) return Value::null();
    const auto from = holder.children.begin() + static_cast<std::ptrdiff_t>(range.begin),
               to = holder.children.begin() + static_cast<std::ptrdiff_t>(range.end);
    if (!std::all_of(from, to, [](const ElementObject* e) { return e->kind == ElementObject::Kind::Text; }))
        throwInvalid(call.vm);
    ElementObject* first = *from;
    for (auto at = from + 1; at != to; ++at) {
        first->text += (*at)->text;
        (*at)->group = nullptr;
    }
    holder.children.erase(from + 1, to);
    first->changed();
    return Value(first);
}
Value constructGroup(Call& call)
{
    self(call).kind = ElementObject::Kind::Group;
    constructElement(call, 1);
    return call.has(0) ? setElements(call) : Value();
}
constexpr std::string_view kElementType = kElementClass;
constexpr NativeMember kGroup[] = {
    {"elementCount", Kind::Getter, &elementCount, 0, 0, nullptr, "int"},
    {"getElementAt", Kind::Method, &elementAt, 1, 1, nullptr, kElementType},
    {"getElementIndex", Kind::Method, &elementIndex, 1, 1, nullptr, "int"},
    {"getElementAtCharIndex", Kind::Method, &elementAtCharacter, 1, 1, nullptr, kElementType},
    {"setElements", Kind::Method, &setElements, 1, 1, nullptr, "void"},
    {"replaceElements", Kind::Method, &replaceElements, 3, 3, nullptr,
     "__AS3__.vec::Vector.<flash.text.engine::ContentElement>"},
    {"groupElements", Kind::Method, &groupElements, 2, 2, nullptr, "flash.text.engine::GroupElement"},
    {"ungroupElements", Kind::Method, &ungroupElements, 1, 1, nullptr, "void"},
    {"splitTextElement", Kind::Method, &splitText, 2, 2, nullptr, "flash.text.engine::TextElement"},
    {"mergeTextElements", Kind::Method, &mergeText, 2, 2, nullptr, "flash.text.engine::TextElement"},
};

constexpr NativeClass element(std::string_view name, NativeFunction constructor, std::int8_t most,
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
constexpr NativeClass kClasses[] = {
    {.package = "flash.text.engine",
     .name = "ContentElement",
     .base = {},
     .flags = NativeClass::Sealed,
     .constructor = &refuse,
     .allocate = &allocateNative<ElementObject>,
     .members = kElement},
    element("TextElement", &constructText, 4, kText),
    element("GraphicElement", &constructGraphic, 6, kGraphic),
    element("GroupElement", &constructGroup, 4, kGroup),
};

} // namespace

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
