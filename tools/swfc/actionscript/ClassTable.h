#pragma once

#include "swfc/actionscript/Tree.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace swfc::actionscript
{

/// The classes a movie declares, as far as they are known so far. All scripts of the movie share one table,
/// because a bare name in a method may be a member inherited from a class of another script.
class ClassTable
{
public:
    struct FoundMember {
        bool isStatic = false;
        std::string owner; ///< dotted name of the class that declares it
    };

    void add(const ClassDeclaration& declaration);
    [[nodiscard]] bool contains(const std::string& name) const { return m_classes.contains(name); }
    /// @returns the member of the class or of what it extends. A class that extends the built-in MovieClip
    /// has that one's members too.
    [[nodiscard]] std::optional<FoundMember> find(const std::string& className,
                                                  const std::string& member) const;

private:
    struct Entry {
        std::string base;
        std::map<std::string, bool> members; // name to isStatic
    };
    std::map<std::string, Entry> m_classes;
};

} // namespace swfc::actionscript
