#include "flash/avm2/bindings/ContextMenus.h"

#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Input.h"
#include "flash/avm2/bindings/NetLoading.h"
#include "flash/avm2/bindings/OldMovies.h"
#include "flash/avm2/bindings/Player.h"
#include "flash/avm2/interpreter/Collections.h"
#include "flash/stage/TextField.h"

#include <algorithm>
#include <iterator>

namespace flash::avm2
{

namespace
{

using Kind = stage::MenuItem::Kind;

constexpr std::string_view kInteractive = "flash.display::InteractiveObject", kMenu = "flash.ui::ContextMenu",
                           kItem = "flash.ui::ContextMenuItem";

struct ClipboardItem {
    Kind kind;
    std::string_view flag;  ///< of ContextMenuClipboardItems
    std::string_view event; ///< that its owner hears
};
constexpr ClipboardItem kClipboard[] = {{Kind::Cut, "cut", "cut"},
                                        {Kind::Copy, "copy", "copy"},
                                        {Kind::Paste, "paste", "paste"},
                                        {Kind::Clear, "clear", "clear"},
                                        {Kind::SelectAll, "selectAll", "selectAll"}};

bool isA(Vm& vm, Value value, std::string_view cls)
{
    Object* object = value.asObject();
    return object != nullptr && object->traits()->isA(vm.nativeClass(cls)->instances);
}

/// A property as its class has it, whatever a class derived from it makes of the name.
Value property(Vm& vm, Object& object, std::string_view cls, std::string_view name)
{
    const Binding* binding = vm.nativeClass(cls)->instances->find(vm.publicName(name));
    return binding != nullptr ? vm.getBinding(Value(&object), *binding) : Value();
}

} // namespace

ContextMenus::ContextMenus(Player& player, Heap& heap)
    : m_player(player), m_owner(heap), m_target(heap), m_listed(heap)
{
}

void ContextMenus::tell(DispatcherObject& hearer, std::string_view type)
{
    fireWith(
        m_player.vm(), hearer, "flash.events::ContextMenuEvent", type,
        {m_target ? Value(m_target.get()) : Value::null(), m_owner ? Value(m_owner.get()) : Value::null()});
}

std::vector<stage::MenuItem> ContextMenus::open(stage::MenuAt at)
{
    close();
    Vm& vm = m_player.vm();
    DisplayObject* target = at == stage::MenuAt::Focus
                                ? m_player.input().focus()
                                : m_player.input().targetAt(m_player.stage().pointer().position());
    if (target == nullptr) target = m_player.stageObject();
    if (target == nullptr) return {};
    m_target = target;
    if (target->node().kind() == stage::NodeKind::TextField) m_field = target->nodePtr();

    Root<DispatcherObject> menu(vm.heap());
    const auto look = [&](DisplayObject& object) {
        if (object.isStage || !isA(vm, Value(&object), kInteractive)) return false;
        const Value value = property(vm, object, kInteractive, "contextMenu");
        if (!isA(vm, value, kMenu)) return false;
        menu = as<DispatcherObject>(value);
        m_owner = &object;
        return true;
    };
    stage::MenuItems items;
    vm.guarded([&] {
        bool isFound = false;
        // The nearest that has one; last the main timeline, which an empty place belongs to as well.
        for (DisplayObject* of = target; of != nullptr && !isFound; of = of->parent) isFound = look(*of);
        if (!isFound && m_player.root() != nullptr) isFound = look(*m_player.root());
        if (!isFound) return;
        tell(*menu, "menuSelect");
        listItems(*menu, items);
        if (listLink(*menu, items)) return;
        if (m_field.expired()) listClipboard(*menu, items);
    });
    if (const stage::NodePtr field = m_field.lock(); field != nullptr && !field->isRemoved())
        stage::addTextItems(items, static_cast<stage::TextField&>(*field));
    auto shown = items.take();
    for (const stage::MenuItem& item : shown) m_kinds.push_back(item.kind);
    return shown;
}

void ContextMenus::listItems(DispatcherObject& menu, stage::MenuItems& items)
{
    Vm& vm = m_player.vm();
    const Value list = property(vm, menu, kMenu, "customItems");
    auto* array = as<ArrayObject>(list);
    if (array == nullptr) return;
    Root<ArrayObject> keep(vm.heap(), array);
    for (std::uint32_t i = 0; i < std::min<std::size_t>(array->length(), stage::MenuItems::kMostListed);
         ++i) {
        const Value entry = array->at(vm, i);
        if (!isA(vm, entry, kItem)) continue;
        Object& item = *entry.asObject();
        const auto flag = [&](std::string_view name) {
            return vm.toBoolean(property(vm, item, kItem, name));
        };
        const Value caption = property(vm, item, kItem, "caption");
        if (caption.isNullish()) continue;
        if (items.add(vm.text(caption), flag("separatorBefore"), flag("enabled"), flag("visible")))
            m_listed.push_back(as<DispatcherObject>(entry));
    }
}

/// @returns whether the menu is one of a link: what else it says of the clipboard does not count then
bool ContextMenus::listLink(DispatcherObject& menu, stage::MenuItems& items)
{
    Vm& vm = m_player.vm();
    const Value link = property(vm, menu, kMenu, "link");
    if (link.isNullish() || vm.getPublic(link, "url").isNullish()) return false;
    Call reading{vm, Value(&menu), &link, 1};
    const auto request = requestArg(reading, 0);
    m_link = addressOf(*request);
    items.add(Kind::OpenLink, true);
    items.add(Kind::CopyLink, true);
    return true;
}

void ContextMenus::followLink(Kind kind)
{
    if (kind == Kind::OpenLink)
        askToOpen(m_player.vm(), m_link, "_blank");
    else
        m_player.stage().services().host.setClipboardText(m_link);
}

void ContextMenus::listClipboard(DispatcherObject& menu, stage::MenuItems& items)
{
    Vm& vm = m_player.vm();
    constexpr std::string_view kItems = "flash.ui::ContextMenuClipboardItems";
    if (!vm.toBoolean(property(vm, menu, kMenu, "clipboardMenu"))) return;
    const Value enabled = property(vm, menu, kMenu, "clipboardItems");
    const bool has = isA(vm, enabled, kItems);
    for (const ClipboardItem& item : kClipboard)
        items.add(item.kind, has && vm.toBoolean(property(vm, *enabled.asObject(), kItems, item.flag)));
}

bool ContextMenus::editField(Kind kind)
{
    const stage::NodePtr field = m_field.lock();
    m_field.reset();
    if (field == nullptr) return false;
    if (!field->isRemoved())
        stage::doTextItem(m_player.stage(), static_cast<stage::TextField&>(*field), kind);
    return true;
}

void ContextMenus::choose(std::size_t item)
{
    if (const auto old = m_oldMovie.lock()) {
        close();
        old->chooseMenuItem(item);
        return;
    }
    if (item >= m_kinds.size()) return;
    const Kind kind = m_kinds[item];
    Vm& vm = m_player.vm();
    Root<DispatcherObject> chosen(vm.heap(), item < m_listed.size() ? (*m_listed)[item] : nullptr);
    m_kinds.clear(); // chosen from once
    if (kind == Kind::OpenLink || kind == Kind::CopyLink) {
        followLink(kind);
    } else if (kind != Kind::Own) {
        if (editField(kind)) return close();
        const auto* known = std::ranges::find(kClipboard, kind, &ClipboardItem::kind);
        Root<DisplayObject> owner(vm.heap(), m_owner.get());
        if (owner && known != std::end(kClipboard)) vm.guarded([&] { fire(vm, *owner, known->event); });
    } else if (chosen) {
        vm.guarded([&] { tell(*chosen, "menuItemSelect"); });
    }
    close();
}

void ContextMenus::close()
{
    m_owner = nullptr;
    m_target = nullptr;
    m_listed->clear();
    m_field.reset();
    m_oldMovie.reset();
    m_kinds.clear();
    m_link.clear();
}

// ---- the player's part ----

std::vector<stage::MenuItem> Player::openMenu(stage::MenuAt at)
{
    if (m_menus == nullptr) return {};
    m_menus->close();
    const stage::Node* top = at == stage::MenuAt::Pointer && !m_oldMovies.empty()
                                 ? m_stage->pointer().topNodeAt(m_stage->pointer().position())
                                 : nullptr;
    if (top != nullptr) {
        std::vector<stage::MenuItem> inner;
        std::shared_ptr<OldMovieNode> found;
        const swf::Point point = m_stage->pointer().position();
        for (const auto& entry : m_oldMovies)
            if (const auto node = entry.lock(); node.get() == top) found = node;
        if (found != nullptr) inner = found->openMenu(point);
        if (!inner.empty()) {
            m_menus->handOver(found);
            return inner;
        }
    }
    return m_menus->open(at);
}

void Player::chooseMenuItem(std::size_t item)
{
    if (m_menus != nullptr) m_menus->choose(item);
}

void Player::closeMenu()
{
    if (m_menus != nullptr) m_menus->close();
}

} // namespace flash::avm2
