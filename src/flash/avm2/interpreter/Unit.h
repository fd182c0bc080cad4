#pragma once

#include "flash/avm2/interpreter/Object.h"

#include <map>
#include <memory>

namespace flash::avm2
{

class Domain;
struct NativeClass;
struct NativeFunctionInfo;

/// A block of code that was loaded into a domain: its pools as this machine's names, and what has been made
/// of its classes and scripts so far.
class Unit final : public Cell
{
public:
    Unit(Vm& vm, Domain* domain, std::shared_ptr<const abc::Abc> abc);
    void trace(Tracer& tracer) override;

    [[nodiscard]] const abc::Abc& abc() const { return *m_abc; }
    [[nodiscard]] Domain* domain() const { return m_domain; }
    [[nodiscard]] Name name(std::uint32_t string) const { return m_names[string]; }
    [[nodiscard]] Namespace* ns(std::uint32_t index) const { return m_namespaces[index]; }
    /// Without what comes from values at run time.
    [[nodiscard]] const Multiname& multiname(std::uint32_t index) const { return m_multinames[index]; }
    /// @returns the type that a multiname names; null for any. Makes it when it is a generic.
    /// @throws the script error 1014 when there is none
    Traits* type(Vm& vm, std::uint32_t multiname);
    /// @returns whether the type was found already.
    [[nodiscard]] bool typeIfKnown(std::uint32_t multiname, Traits*& result) const
    {
        result = m_types[multiname];
        return m_typeKnown[multiname];
    }
    [[nodiscard]] Value constant(Vm& vm, const abc::Constant& constant);
    /// Of a class's instances. They are known, as a type, before the class is made.
    Traits* instanceTraits(Vm& vm, std::uint32_t index);
    /// The same, to be filled in: those that are known, or others when the class is made once more.
    Traits* takeInstanceTraits(Vm& vm, std::uint32_t index);

    struct Script {
        Object* global = nullptr;
        bool isRun = false;
    };
    /// The global object of a script, whose initialiser has run or is running.
    Object* script(Vm& vm, std::uint32_t index);
    /// The same, without running anything.
    Object* scriptObject(Vm& vm, std::uint32_t index);
    void runAllScripts(Vm& vm);
    /// The global object of a script, as far as there is one.
    [[nodiscard]] Object* scriptIfMade(std::uint32_t index) const { return m_scripts[index].global; }
    int version = 0; ///< of the movie that it came in
    /// The verified code of a method, null before.
    Code*& codeOf(std::uint32_t method) { return m_codes[method]; }
    MethodEnv* method(Vm& vm, std::uint32_t index, ScopeChain* scope);

private:
    void completeInterface(Vm& vm, std::uint32_t index);
    Domain* m_domain;
    std::shared_ptr<const abc::Abc> m_abc;
    TracedList<Name> m_names;
    TracedList<Namespace*> m_namespaces;
    std::vector<TracedList<Namespace*>> m_sets;
    std::vector<Multiname, vm::TracedAllocator<Multiname>> m_multinames;
    TracedList<Traits*> m_types;
    TracedList<Code*> m_codes;
    TracedList<Traits*> m_instanceTraits;
    std::vector<bool> m_traitsTaken;
    std::vector<bool> m_typeKnown;
    std::vector<Script, vm::TracedAllocator<Script>> m_scripts;
};

/// Where definitions are found by name: those of the parent first.
class Domain final : public Cell
{
public:
    explicit Domain(Domain* parent) : parent(parent) {}
    void trace(Tracer& tracer) override;

    /// Makes a block's definitions known; nothing of it runs yet.
    Unit* load(Vm& vm, std::shared_ptr<const abc::Abc> abc, int version = 0);
    /// @returns the object that has the definition, its script run; null when there is none.
    Object* find(Vm& vm, const Multiname& name);
    /// @returns what a definition holds by now, running nothing; undefined when that is not known
    [[nodiscard]] Value madeAlready(const Multiname& name) const;
    /// Whether a movie's code in here or above defines the name; nothing is run.
    [[nodiscard]] bool defines(const Multiname& name) const
    {
        return definition(name) != nullptr || (parent != nullptr && parent->defines(name));
    }
    /// By a dotted or qualified name: `flash.display.Sprite`, `flash.display::Sprite`, `Vector.<int>`.
    /// @returns whether there is one
    bool lookUp(Vm& vm, std::u16string_view text, Value& result);
    [[nodiscard]] std::vector<std::u16string> definitionNames() const;

    Domain* const parent;
    Object* memory = nullptr; ///< ByteArray for the fast memory instructions
    /// What they work on while there is none.
    std::span<std::uint8_t> spareMemory()
    {
        if (m_spareMemory.empty()) m_spareMemory.resize(kSpareBytes);
        return m_spareMemory;
    }

private:
    struct Key {
        const Atom* name;
        const Namespace* ns;
        friend auto operator<=>(const Key&, const Key&) = default;
    };
    struct Definition {
        Name name;
        Namespace* ns;
        Unit* unit;
        std::uint32_t script;
        /// Found in here once: what those above come to define under its name no longer hides it.
        mutable bool isTaken = false;
    };
    static constexpr std::size_t kSpareBytes = 1024;
    std::vector<std::uint8_t> m_spareMemory;
    const Definition* definition(const Multiname& name) const;
    std::map<Key, Definition, std::less<>, vm::TracedAllocator<std::pair<const Key, Definition>>>
        m_definitions;
    std::vector<Key> m_order;
};

} // namespace flash::avm2
