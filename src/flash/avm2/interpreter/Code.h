#pragma once

#include "flash/avm2/abc/Opcodes.h"
#include "flash/avm2/interpreter/Object.h"

#include <vector>

namespace flash::avm2
{

/// One instruction as it is run. Jumps name instructions.
struct Ins {
    std::uint16_t op = 0;
    std::uint16_t c = 0; ///< which parts of a multiname come from the stack: 1 name, 2 namespace
    std::int32_t a = 0;  ///< multiname, register, target...
    std::int32_t b = 0;  ///< count of arguments, second register
    std::int32_t cache = -1;
};

/// What an instruction found the last time, and whether it still holds.
struct SiteCache {
    Traits* traits = nullptr;
    Binding binding;
    std::uint32_t position = 0; ///< of a dynamic property, when the binding is none
    // For names that scopes are searched for: where it was found.
    const ScopeChain* chain = nullptr;
    Object* holder = nullptr;
    std::uint32_t epoch = 0;
};

/// Verified code: every register, stack place, scope, jump and pool entry that it names exists.
class Code final : public Cell
{
public:
    struct Handler {
        std::uint32_t from = 0, to = 0, target = 0; ///< instructions; `to` exclusive
        std::uint32_t type = 0, name = 0;           ///< multinames
    };
    void trace(Tracer& tracer) override
    {
        tracer(unit);
        tracer(activation);
        for (const SiteCache& cache : caches) {
            tracer(cache.traits);
            tracer(cache.chain);
            tracer(cache.holder);
        }
        for (const Traits* traits : catches) tracer(traits);
        for (const Traits* type : parameterTypes) tracer(type);
        tracer(returnType);
    }

    Unit* unit = nullptr;
    std::uint32_t body = 0;
    std::vector<Ins> code;
    std::vector<std::uint32_t> offsets;               ///< in the file, per instruction
    std::vector<std::vector<std::uint32_t>> switches; ///< targets; the default is last
    std::vector<Handler> handlers;
    std::vector<SiteCache, vm::TracedAllocator<SiteCache>> caches;
    TracedList<Traits*> catches; ///< of the scopes of handlers, made when first needed
    Traits* activation = nullptr;
    std::uint32_t maxStack = 0, locals = 0, maxScopes = 0;
    bool typesKnown = false;
    TracedList<Traits*> parameterTypes;
    Traits* returnType = nullptr;
};

} // namespace flash::avm2
