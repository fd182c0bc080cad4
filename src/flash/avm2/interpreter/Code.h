#pragma once

#include "flash/avm2/interpreter/Object.h"
#include "flash/avm2/interpreter/RegisterForm.h"

#include <vector>

namespace flash::avm2
{

/// What an instruction found the last time, and whether it still holds.
struct SiteCache {
    Traits* traits = nullptr;
    Binding binding;
    std::uint32_t position = 0; ///< of a dynamic property, when the binding is none
    Name name;                  ///< of that property; the unit's
    // For names that scopes are searched for: where it was found.
    const ScopeChain* chain = nullptr;
    Object* holder = nullptr;
    std::uint32_t epoch = 0;
    static constexpr std::uint32_t kInnerScopes = 2;
    Traits* passed[kInnerScopes] = {}; ///< of the frame's own scopes, which do not have it
};

/// Verified code in its register form: every register, scope, jump and pool entry that it names exists.
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
            for (const Traits* traits : cache.passed) tracer(traits);
        }
        for (const Value value : constants) tracer(value);
        for (const Traits* traits : mentioned) tracer(traits);
        for (const Traits* traits : catches) tracer(traits);
        for (const Traits* type : parameterTypes) tracer(type);
        tracer(returnType);
        tracer(self);
    }

    Unit* unit = nullptr;
    std::uint32_t body = 0;
    std::vector<Ins> code;
    std::vector<std::vector<std::uint32_t>> switches; ///< targets; the default is last
    std::vector<Handler> handlers;
    std::vector<SiteCache, vm::TracedAllocator<SiteCache>> caches;
    TracedList<Traits*> catches; ///< of the scopes of handlers, made when first needed
    Traits* activation = nullptr;
    TracedList<Value> constants;
    TracedList<Traits*> mentioned; ///< that instructions were bound to
    Traits* self = nullptr;        ///< what `this` is taken to be; null: anything
    std::uint32_t maxStack = 0, locals = 0, maxScopes = 0;
    /// Registers in all.
    [[nodiscard]] std::uint32_t frameSize() const { return locals + maxScopes + maxStack + 2; }
    [[nodiscard]] std::uint32_t stackBase() const { return locals + maxScopes; }
    std::uint32_t declared = 0, minArguments = 0;
    bool takesMore = false;   ///< as rest or `arguments`
    bool isUnchecked = false; ///< takes whatever number of arguments
    bool isFunction = false;  ///< of no class
    /// The slot that is all a method gives, when it does nothing else; -1: it does.
    std::int32_t slotRead = -1;
    // What most calls begin with is done with the arguments: ints become raw, `this` becomes the first scope.
    std::uint32_t clearedLocals = 0; ///< those behind are written before they are read
    std::uint64_t rawParameters = 0; ///< a bit for each register
    bool startsWithThis = false;
    static constexpr std::uint32_t kNotDirect = 0xFFFF'FFFF;
    /// With so many arguments, of their types, there is nothing else to do.
    std::uint32_t directCount = kNotDirect;
    bool checksTypes = false;    ///< there are types among them that are not raw
    std::uint32_t registers = 0; ///< frameSize(), once the code is translated
    std::uint32_t entry = 0;     ///< the first instruction behind that
    TracedList<Traits*> parameterTypes;
    Traits* returnType = nullptr;
};

} // namespace flash::avm2
