#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::stage
{

class Stage;
class TextField;

/// An item that a movie adds to the menu of the right button.
struct MenuItem {
    /// What choosing it does; the captions of all but a movie's own are the host's.
    enum class Kind : std::uint8_t { Own, Cut, Copy, Paste, Clear, SelectAll, OpenLink, CopyLink };
    static constexpr Kind kLastKind = Kind::CopyLink;
    Kind kind = Kind::Own;
    std::string caption; ///< UTF-8; of the movie's own
    bool separatorBefore = false, enabled = true;
};

/// What the user points at as the menu opens.
enum class MenuAt : std::uint8_t { Pointer, Focus };

/// Puts together what a movie may show of the items that its scripts list. Captions that stand for commands
/// of the player, that repeat another or show nothing are left out.
class MenuItems
{
public:
    static constexpr std::size_t kMost = 15;
    /// So many entries of a script's list are looked at.
    static constexpr std::size_t kMostListed = 255;
    static constexpr std::size_t kLongestCaption = 100; ///< UTF-16 units

    /// @returns whether it is shown
    bool add(std::u16string_view caption, bool separatorBefore, bool enabled, bool visible);
    /// A command for the text that the user points at. Comes behind the movie's own.
    void add(MenuItem::Kind kind, bool enabled);
    [[nodiscard]] std::vector<MenuItem> take() { return std::move(m_shown); }

private:
    std::vector<MenuItem> m_shown;
    std::vector<std::u16string> m_known; ///< captions so far, as they are compared
    std::size_t m_own = 0;
};

/// What can be done with the text of a field that the user points at, by the menu.
void addTextItems(MenuItems& items, TextField& field);
void doTextItem(Stage& stage, TextField& field, MenuItem::Kind kind);

} // namespace flash::stage
