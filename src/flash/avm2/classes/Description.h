#pragma once

#include "flash/avm2/classes/Library.h"

#include <string>
#include <utility>
#include <vector>

namespace flash::avm2::classes
{

/// What a description has in it.
enum Flag : std::uint32_t {
    HideNamespaceMethods = 0x1,
    IncludeBases = 0x2,
    IncludeInterfaces = 0x4,
    IncludeVariables = 0x8,
    IncludeAccessors = 0x10,
    IncludeMethods = 0x20,
    IncludeMetadata = 0x40,
    IncludeConstructor = 0x80,
    IncludeTraits = 0x100,
    UseInstances = 0x200, ///< of a class: what its instances have
    HideObject = 0x400,   ///< what all objects have
    Usual = 0x5FF,
};

struct Parameter {
    std::u16string type;
    bool isOptional = false;
};
struct MetadataText {
    std::u16string name;
    std::vector<std::pair<std::u16string, std::u16string>> items;
};
struct Member {
    enum class Kind : std::uint8_t { Variable, Constant, Accessor, Method };
    Kind kind = Kind::Variable;
    std::u16string name, uri, type, declaredBy; ///< the type of a method is that of its result
    bool reads = true, writes = true;           ///< of an accessor
    std::vector<Parameter> parameters;
    std::vector<MetadataText> metadata;
    [[nodiscard]] std::u16string_view access() const
    {
        return reads && writes ? u"readwrite" : reads ? u"readonly" : u"writeonly";
    }
};
struct Description {
    std::vector<std::u16string> bases, interfaces;
    std::vector<Parameter> constructor;
    std::vector<Member> members;
};

/// What a class gives its instances or, for the traits of the class object, has itself.
/// @param flags of Flag
Description describe(Vm& vm, const Traits& traits, std::uint32_t flags);

} // namespace flash::avm2::classes
