#pragma once

#include "swfc/Diagnostics.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace swfc::source
{

/// An element of a description, with the places that messages need.
struct Element {
    struct Attribute {
        std::string name, value;
    };
    std::string name;
    Position where;     ///< of the start tag
    Position textStart; ///< of the first character behind the start tag
    std::string text;   ///< all character data directly inside, CDATA included
    std::vector<Attribute> attributes;
    std::vector<std::unique_ptr<Element>> children;
};

/// Parses a description. Nothing is fetched from elsewhere and no entities can be declared.
/// @returns null after reporting an error
std::unique_ptr<Element> parseXml(std::string_view bytes, int file, Diagnostics& diagnostics);

} // namespace swfc::source
