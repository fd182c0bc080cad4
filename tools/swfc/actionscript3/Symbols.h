#pragma once

#include "swfc/actionscript3/AbcFile.h"
#include "swfc/actionscript3/Tree.h"

#include <optional>

namespace swfc::actionscript3
{

using Index = AbcFile::Index;
struct ClassSymbol;

struct Type {
    // clang-format off
    enum class Kind : std::uint8_t {
        Any, Void, Int, Uint, Number, Boolean, String, Object,
        Class,  ///< of the program: cls
        Vector, ///< of `element`
        Other,  ///< of the player's library, or not known before the movie runs
    };
    // clang-format on
    Kind kind = Kind::Any;
    Index name = 0; ///< multiname
    ClassSymbol* cls = nullptr;
    const Type* element = nullptr;
    std::string text; ///< for messages

    [[nodiscard]] bool isNumeric() const
    {
        return kind == Kind::Int || kind == Kind::Uint || kind == Kind::Number;
    }
};
using TypePtr = const Type*; ///< of Program, which has each type once

struct Member {
    enum class Kind : std::uint8_t { Variable, Constant, Method, Getter, Setter };
    Kind kind = Kind::Variable;
    Index ns = 0;
    Index name = 0;         ///< QName
    TypePtr type = nullptr; ///< of the value; of the result of a method
    bool isStatic = false;
    bool canSet = true;
};

/// Where names of a package, or of what stands outside of packages in a file, are looked up.
struct Scope {
    File* file = nullptr;
    std::string package;
    bool isOutside = false;
    std::map<std::string, std::string> imports; ///< short name to dotted
    std::vector<std::string> wildcards;         ///< packages
    std::vector<Index> used;                    ///< namespaces
    Index fileNs = 0;                           ///< of what stands outside of packages in the file
};

struct ClassSymbol {
    std::string package, name;
    Index qname = 0, index = 0; ///< index: of the class in the block
    Index privateNs = 0, protectedNs = 0, staticProtectedNs = 0;
    Index interfaceNs = 0; ///< in which an interface's members are named
    ClassDeclaration* declaration = nullptr;
    Scope* scope = nullptr;
    TypePtr type = nullptr;

    bool isDeclared = false; ///< the members below are known
    TypePtr base = nullptr;  ///< null: Object
    std::multimap<std::string, Member> members;
    std::map<std::string, Index> namespaces; ///< that the class declares
};

/// What a package, or a file, defines.
struct Definition {
    enum class Kind : std::uint8_t { Class, Function, Variable, Constant, Namespace };
    Kind kind = Kind::Variable;
    Index ns = 0, qname = 0;
    ClassSymbol* cls = nullptr;
    Scope* scope = nullptr;
    TypeExpr* typeExpr = nullptr; ///< of a variable
    Index namespaceValue = 0;
    File* file = nullptr;
};

} // namespace swfc::actionscript3
