#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What built-in classes take and give, told in a text for each library: a line at the margin names a class,
// those indented below it have its members, between spaces.
//
//   flash.display::Sprite
//     () graphics-:Graphics startDrag(Boolean=,Rectangle=):void ^names-:Array .text:String
//
// `(...)` alone is the constructor; `name:Type` an accessor, `name-:Type` one that is read only, `name+:Type`
// written only; `.name:Type` a variable; `name(Type,Type=,...):Type` a method, where `=` marks what may be
// left out and `...` takes any number. `^` stands before members of the class itself. `*:Type` tells of what
// type its numbers are. A type is a plain name, `*`, `void` or `Vector<Type>`.
namespace flash::avm2
{

struct Signature {
    enum class Kind : std::uint8_t { Constructor, Accessor, Variable, Method };
    struct Parameter {
        std::string_view type;
        bool isOptional = false;
    };
    std::string_view name, type;
    Kind kind = Kind::Method;
    bool isStatic = false, canRead = true, canWrite = true; ///< of accessors
    bool takesMore = false;
    std::vector<Parameter> parameters;
    [[nodiscard]] int required() const;
};

class Signatures
{
public:
    /// Takes a library's text; the classes in it are taken apart when they are asked for.
    void add(std::string_view text);

    struct Class {
        std::vector<Signature> members;
        std::string_view numbers; ///< type of its constants; empty: as the table says
        [[nodiscard]] const Signature* find(std::string_view name, bool isStatic) const;
        [[nodiscard]] const Signature* constructor() const;
    };
    /// @param name qualified with "::"
    const Class* of(std::string_view name);
    /// @returns where a class of the plain name is; empty when it is none of these
    [[nodiscard]] std::string_view qualified(std::string_view plain) const;

private:
    struct Entry {
        std::string_view text;
        bool isRead = false;
        Class cls;
    };
    std::map<std::string_view, Entry> m_classes;
    std::map<std::string_view, std::string_view> m_qualified; ///< by plain name
};

} // namespace flash::avm2
