#pragma once

#include "flash/avm1/interpreter/Object.h"
#include "flash/stage/ContextMenu.h"
#include "flash/stage/Node.h"

#include <memory>
#include <vector>

namespace flash::stage
{
class TextField;
}

namespace flash::avm1
{

class StageBinding;

/// The menu of the right button as scripts have it: the ContextMenu that the `menu` property of a clip, a
/// button or a field holds.
class ContextMenus
{
public:
    explicit ContextMenus(StageBinding& binding) : m_binding(binding) {}

    /// Calls the menu's onSelect, then reads its items.
    std::vector<stage::MenuItem> open(stage::MenuAt at);
    /// Calls the item's onSelect.
    void choose(std::size_t item);
    void close();
    void trace(Tracer& tracer);

private:
    void listItems(Object& menu, stage::MenuItems& items);
    [[nodiscard]] stage::Node* place(stage::MenuAt at) const;

    StageBinding& m_binding;
    Object* m_owner = nullptr;    ///< whose menu it is
    TracedList<Object*> m_listed; ///< the items that are shown, in their order
    std::weak_ptr<stage::Node> m_field;
    std::vector<stage::MenuItem::Kind> m_kinds; ///< of all that is shown
};

} // namespace flash::avm1
