#pragma once

#include "swfc/actionscript3/Lexer.h"

#include <cstdint>
#include <vector>

namespace swfc::actionscript3
{

/// Makes a block from its parts as text, one to a line, for what no compiler would write. What flashrun
/// prints of a block can be read, too: the offsets before its instructions are labels here.
///
///     class Name extends Base [implements A B] [final] [dynamic] [interface] init #1 static #2
///         slot name:Type [= value]          traits of its objects
///       static                              and of the class
///         method name #3
///     script init #0
///         class Name #0                     the class's number
///     method #0 name(Type,Type) Type stack 2 locals 1 [scopes 1 4] [rest] [arguments] [activation]
///         slot x:int                        of the activation
///         getlocal_0
///         loop:
///         jump -> loop
///         catch from..to -> target Type [name]
///
/// Names: `name`, `package::name`, `{a,b}::name`, `{a,b}::[]`, `[]::name`, `*::name`, `@name`,
/// `Vector.<int>`; namespaces of other kinds are written `private(a)`, `internal(a)`, `protected(a)`,
/// `static(a)`, `namespace(a)`, `explicit(a)`.
/// @returns nothing when anything was reported
std::vector<std::uint8_t> assemble(const SourceText& source, Diagnostics& diagnostics);

} // namespace swfc::actionscript3
