#pragma once

#include "flash/avm2/interpreter/Collections.h"
#include "flash/avm2/interpreter/Native.h"
#include "flash/avm2/interpreter/Vm.h"

#include <cmath>

// The language's own classes. Each file has its tables; library() puts them together.
namespace flash::avm2::classes
{

extern const NativeClass kObject, kClass, kFunction, kArray, kString, kNumber, kInt, kUint, kBoolean, kMath,
    kDate, kRegExp, kVector, kJson, kNamespace, kQName, kByteArray, kDictionary, kProxy, kXml, kXmlList;
std::span<const NativeClass> errorClasses();
std::span<const NativeFunctionInfo> topLevelFunctions();
std::span<const NativeClass> utilityClasses();
std::span<const NativeFunctionInfo> utilityFunctions();

std::string_view signatures(); ///< of these, and of flash.xml

/// All of it, for the machine's constructor.
std::span<const NativeLibrary> library();

using Kind = NativeMember::Kind;

/// The native of `this`, or an error that says it is none.
template <class T>
T& selfAs(Call& call, const char* what)
{
    T* native = as<T>(call.self);
    if (native == nullptr)
        call.vm.throwError(ErrorClass::Type, 1034,
                           u"Type Coercion failed: cannot convert " + call.vm.className(call.self) +
                               u"@00000000000 to " + fromUtf8(what) + u".");
    return *native;
}

template <class T>
Object* allocateNative(Vm& vm, ClassObject& cls)
{
    return vm.heap().make<T>(cls.instances, cls.prototype);
}

/// Whether the first argument can be called for each element of a list: not if it is null.
/// @throws the script errors 1034 when it is no function, 1510 when it is a method of an object and the
/// second
///         argument names another `this`
bool canWalk(Call& call);

/// A position as slice() and its like take it: counted from the end when negative, within 0 and `length`.
inline double clampIndex(double index, double length)
{
    if (std::isnan(index)) index = 0;
    index = std::trunc(index);
    return index < 0 ? std::max(0.0, length + index) : std::min(index, length);
}

} // namespace flash::avm2::classes
