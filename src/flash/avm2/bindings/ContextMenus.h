#pragma once

#include "flash/avm2/bindings/Display.h"
#include "flash/stage/ContextMenu.h"

#include <memory>
#include <vector>

namespace flash::avm2
{

class OldMovieNode;
class Player;

/// The menu of the right button as scripts have it: the contextMenu of an interactive object.
class ContextMenus
{
public:
    ContextMenus(Player& player, Heap& heap);

    /// Tells the menu that it is about to open, then reads its items.
    std::vector<stage::MenuItem> open(stage::MenuAt at);
    void choose(std::size_t item);
    void close();
    /// The choice is one of this movie's menu, which the user points at through the list of another.
    void handOver(const std::shared_ptr<OldMovieNode>& movie) { m_oldMovie = movie; }

private:
    void listItems(DispatcherObject& menu, stage::MenuItems& items);
    void listClipboard(DispatcherObject& menu, stage::MenuItems& items);
    void tell(DispatcherObject& hearer, std::string_view type);
    bool listLink(DispatcherObject& menu, stage::MenuItems& items);
    void followLink(stage::MenuItem::Kind kind);
    bool editField(stage::MenuItem::Kind kind);

    Player& m_player;
    Root<DisplayObject> m_owner, m_target;
    RootedList<DispatcherObject*> m_listed; ///< the items that are shown, in their order
    std::weak_ptr<stage::Node> m_field;
    std::weak_ptr<OldMovieNode> m_oldMovie;
    std::vector<stage::MenuItem::Kind> m_kinds; ///< of all that is shown
    std::string m_link;                         ///< where it leads, UTF-8
};

} // namespace flash::avm2
