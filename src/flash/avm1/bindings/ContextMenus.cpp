#include "flash/avm1/bindings/ContextMenus.h"

#include "flash/avm1/bindings/StageBinding.h"
#include "flash/avm1/interpreter/Convert.h"
#include "flash/stage/TextField.h"

#include <algorithm>

namespace flash::avm1
{

stage::Node* ContextMenus::place(stage::MenuAt at) const
{
    stage::Stage& stage = m_binding.stage();
    if (at == stage::MenuAt::Focus) return stage.focus().node();
    return stage.pointer().topNodeAt(stage.pointer().position());
}

std::vector<stage::MenuItem> ContextMenus::open(stage::MenuAt at)
{
    close();
    stage::Stage& stage = m_binding.stage();
    if (!stage.movie()) return {};
    Vm& vm = m_binding.vm();
    const Name menuName = vm.name(std::string_view("menu"));
    stage::NodePtr node;
    if (stage::Node* found = place(at)) node = found->shared_from_this();
    if (node != nullptr && node->kind() == stage::NodeKind::TextField) m_field = node;

    // The nearest that has one; last the main timeline, which what is not drawn on belongs to as well.
    Root<Object> menu(vm.heap()), owner(vm.heap());
    const auto look = [&](stage::Node& of) {
        Object* object = m_binding.objectOf(&of);
        if (object == nullptr) return false;
        const Vm::VersionScope scope(vm, of.movie() ? of.movie()->header.version : 6);
        owner = object;
        menu = object->get(vm, menuName).asObject();
        return menu.get() != nullptr;
    };
    bool isFound = false;
    for (stage::NodePtr of = node; of != nullptr && !isFound;) {
        isFound = look(*of);
        of = of->parent() != nullptr ? of->parent()->shared_from_this() : nullptr;
    }
    const auto& levels = stage.displayList().levels();
    if (!isFound && !levels.empty()) {
        const auto root = levels.begin()->second;
        isFound = look(*root);
    }

    stage::MenuItems items;
    if (isFound) {
        // The classes came with version 7.
        const Vm::VersionScope scope(vm, std::max<int>(7, stage.movie()->header.version));
        m_owner = owner.get();
        m_binding.callHandler(menu.get(), "onSelect", {Value(owner.get()), Value(menu.get())});
        listItems(*menu, items);
    }
    if (const stage::NodePtr field = m_field.lock(); field != nullptr && !field->isRemoved())
        stage::addTextItems(items, static_cast<stage::TextField&>(*field));
    auto shown = items.take();
    for (const stage::MenuItem& item : shown) m_kinds.push_back(item.kind);
    return shown;
}

/// Getters of the items may run, and change the list.
void ContextMenus::listItems(Object& menu, stage::MenuItems& items)
{
    Vm& vm = m_binding.vm();
    Root<Object> list(vm.heap(), menu.get(vm, vm.name(std::string_view("customItems"))).asObject());
    if (!list) return;
    const double length = toNumber(vm, list->get(vm, vm.name(std::string_view("length"))));
    const auto count =
        length > 0 ? std::min(length, static_cast<double>(stage::MenuItems::kMostListed)) : 0.0;
    for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(count); ++i) {
        Root<Object> item(vm.heap(), list->getIndex(vm, i).asObject());
        if (!item) continue;
        const auto flag = [&](std::string_view name) { return toBoolean(vm, item->get(vm, vm.name(name))); };
        const Value caption = item->get(vm, vm.name(std::string_view("caption")));
        if (caption.isUndefined() || caption.isNull()) continue;
        const std::u16string text = toText(vm, caption);
        const bool separates = flag("separatorBefore"), enabled = flag("enabled"), visible = flag("visible");
        if (items.add(text, separates, enabled, visible)) m_listed.push_back(item.get());
    }
}

void ContextMenus::choose(std::size_t item)
{
    if (item >= m_kinds.size()) return;
    const stage::MenuItem::Kind kind = m_kinds[item];
    Vm& vm = m_binding.vm();
    Root<Object> owner(vm.heap(), m_owner);
    Root<Object> chosen(vm.heap(), item < m_listed.size() ? m_listed[item] : nullptr);
    const stage::NodePtr field = m_field.lock();
    close();
    if (kind == stage::MenuItem::Kind::Own) {
        if (!chosen || !m_binding.stage().movie()) return;
        const Vm::VersionScope scope(vm, std::max<int>(7, m_binding.stage().movie()->header.version));
        m_binding.callHandler(chosen.get(), "onSelect", {Value(owner.get()), Value(chosen.get())});
    } else if (field != nullptr && !field->isRemoved()) {
        stage::doTextItem(m_binding.stage(), static_cast<stage::TextField&>(*field), kind);
    }
}

void ContextMenus::close()
{
    m_owner = nullptr;
    m_listed.clear();
    m_field.reset();
    m_kinds.clear();
}

void ContextMenus::trace(Tracer& tracer)
{
    tracer(m_owner);
    for (Object* item : m_listed) tracer(item);
}

} // namespace flash::avm1
