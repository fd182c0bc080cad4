#include "flash/avm2/bindings/Fields.h"
#include "flash/avm2/bindings/Library.h"

// What a movie may ask of the machine around it: input methods, the clipboard, helpers for those who cannot
// see.
namespace flash::avm2
{

using Kind = NativeMember::Kind;

namespace
{

// Movies override these; nobody asks them.

Value zero(Call&) { return 0; }
constexpr NativeMember kAccessible[] = {
    {"get_accRole", Kind::Method, &zero, 1, 1, nullptr, "uint"},
    {"get_accName", Kind::Method, &isAlwaysNull, 1, 1, nullptr, "String"},
    {"get_accValue", Kind::Method, &isAlwaysNull, 1, 1, nullptr, "String"},
    {"get_accState", Kind::Method, &zero, 1, 1, nullptr, "uint"},
    {"get_accDefaultAction", Kind::Method, &isAlwaysNull, 1, 1, nullptr, "String"},
    {"accDoDefaultAction", Kind::Method, &doNothing, 1, 1, nullptr, "void"},
    {"isLabeledBy", Kind::Method, &isAlwaysFalse, 1, 1, nullptr, "Boolean"},
    {"getChildIDArray", Kind::Method, &isAlwaysNull, 0, 0, nullptr, "Array"},
    {"accLocation", Kind::Method, &isAlwaysNull, 1, 1},
    {"get_accSelection", Kind::Method, &isAlwaysNull, 0, 0, nullptr, "Array"},
    {"get_accFocus", Kind::Method, &zero, 0, 0, nullptr, "uint"},
    {"accSelect", Kind::Method, &doNothing, 2, 2, nullptr, "void"},
    {"get_selectionAnchorIndex", Kind::Method, &isAlwaysNull, 0, 0},
    {"get_selectionActiveIndex", Kind::Method, &isAlwaysNull, 0, 0},
};

constexpr NativeClass kClasses[] = {
    {.package = "flash.accessibility",
     .name = "AccessibilityImplementation",
     .base = {},
     .minArguments = 0,
     .maxArguments = 0,
     .members = kAccessible,
     .slots = "stub:Boolean errno:uint"},
    {.package = "flash.accessibility",
     .name = "ISearchableText",
     .base = {},
     .flags = NativeClass::Interface},
    {.package = "flash.accessibility",
     .name = "ISimpleTextSelection",
     .base = {},
     .flags = NativeClass::Interface},
};

} // namespace

NativeLibrary accessibilityLibrary() { return {kClasses, {}}; }

} // namespace flash::avm2
