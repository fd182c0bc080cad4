#include "flash/avm2/bindings/TextEngine.h"

#include <algorithm>

// Groups of elements of the text engine.
namespace flash::avm2::textengine
{

using Kind = NativeMember::Kind;

namespace
{

constexpr std::string_view kElementClass = "flash.text.engine::ContentElement";
constexpr int kMaxDepth = 200; // of groups in groups

ElementObject& group(Call& call)
{
    ElementObject& element = elementSelf(call);
    if (element.kind != ElementObject::Kind::Group) throwInvalid(call.vm);
    return element;
}

Value newVector(Vm& vm, std::span<ElementObject* const> elements)
{
    ClassObject* type = vm.vectorOf(vm.nativeClass(kElementClass)->instances);
    auto* list = as<VectorObject>(Value(vm.instantiate(type)));
    for (ElementObject* element : elements) list->push(vm, Value(element));
    return Value(list);
}

// What is given is asked of scripts, which may change the elements meanwhile: how many there are is asked
// after.
template <class Size>
std::size_t indexArg(Call& call, std::uint32_t i, Size size)
{
    const std::int32_t index = call.vm.toInt(call.arg(i));
    if (index < 0 || static_cast<std::size_t>(index) >= size()) throwOutOfRange(call.vm);
    return static_cast<std::size_t>(index);
}
struct Range {
    std::size_t begin, end;
};
Range rangeArg(Call& call, const ElementObject& holder)
{
    const std::int32_t begin = call.vm.toInt(call.arg(0)), end = call.vm.toInt(call.arg(1));
    if (begin < 0 || end < begin || static_cast<std::size_t>(end) > holder.children.size())
        throwOutOfRange(call.vm);
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
    const std::size_t index = indexArg(call, 0, [&] { return holder.children.size(); });
    return Value(holder.children[index]);
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
    std::size_t index = indexArg(call, 0, [&] { return holder.length(); });
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
    const Range range = rangeArg(call, holder);
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
    const Range range = rangeArg(call, holder);
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
    const std::size_t index = indexArg(call, 0, [&] { return holder.children.size(); });
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
    const std::int32_t place = call.vm.toInt(call.arg(1));
    const std::size_t index = indexArg(call, 0, [&] { return holder.children.size(); });
    ElementObject* first = holder.children[index];
    if (first->kind != ElementObject::Kind::Text) throwInvalid(call.vm);
    if (place < 0 || static_cast<std::size_t>(place) > first->text.size()) throwOutOfRange(call.vm);
    const auto at = static_cast<std::size_t>(place);
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
    const Range range = rangeArg(call, holder);
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

} // namespace

Value constructGroup(Call& call)
{
    elementSelf(call).kind = ElementObject::Kind::Group;
    constructElement(call, 1);
    return call.has(0) ? setElements(call) : Value();
}

std::span<const NativeMember> groupMembers() { return kGroup; }

} // namespace flash::avm2::textengine
