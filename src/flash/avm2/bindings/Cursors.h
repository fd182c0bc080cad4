#pragma once

#include "flash/stage/CursorPicture.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace flash::avm2
{

/// The pointers that a movie has made itself, by their names, and the name that it has chosen.
class Cursors
{
public:
    /// Pictures of a pointer, one after the other.
    struct Made {
        std::vector<stage::CursorPicturePtr> pictures;
        double perSecond = 0; ///< 0: the first one stays
    };
    /// Pictures that all of them may have together.
    static constexpr std::size_t kMostPictures = 1024;

    /// @returns false, with nothing changed, when there would be too many pictures
    bool add(const std::u16string& name, Made made);
    void remove(const std::u16string& name);
    [[nodiscard]] bool has(const std::u16string& name) const { return m_made.contains(name); }
    [[nodiscard]] const std::u16string& chosen() const { return m_chosen; }
    void choose(const std::u16string& name) { m_chosen = name; }
    /// Of the chosen one at a time; null when it is one of the system's.
    [[nodiscard]] stage::CursorPicturePtr picture(double nowMs) const;

private:
    std::map<std::u16string, Made> m_made;
    std::u16string m_chosen = u"auto";
};

} // namespace flash::avm2
