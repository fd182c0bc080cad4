#include "flash/avm1/classes/ClassTable.h"

namespace flash::avm1
{

void defineFunctions(Vm& vm, Object* object, std::span<const LibraryFunction> functions, int nativeTable)
{
    for (const LibraryFunction& entry : functions) {
        Function* function = entry.written == Written::Script
                                 ? vm.newScriptLike(entry.function)
                                 : vm.newFunction(entry.function, entry.minArguments);
        object->define(vm, vm.name(std::string_view(entry.name)), function, entry.flags);
        if (nativeTable >= 0 && entry.nativeIndex >= 0)
            vm.registerNative(nativeTable, entry.nativeIndex, entry.function, entry.minArguments);
    }
}

} // namespace flash::avm1
