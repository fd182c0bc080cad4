#include "flash/avm2/interpreter/Unit.h"

#include "flash/avm2/interpreter/Code.h"
#include "flash/avm2/interpreter/Vm.h"

#include <limits>

namespace flash::avm2
{

namespace
{

Namespace::Kind kindOf(abc::NamespaceKind kind)
{
    switch (kind) {
    case abc::NamespaceKind::Private: return Namespace::Kind::Private;
    case abc::NamespaceKind::Namespace:
    case abc::NamespaceKind::Package: return Namespace::Kind::Public;
    case abc::NamespaceKind::PackageInternal: return Namespace::Kind::Internal;
    case abc::NamespaceKind::Protected: return Namespace::Kind::Protected;
    case abc::NamespaceKind::Explicit: return Namespace::Kind::Explicit;
    case abc::NamespaceKind::StaticProtected: return Namespace::Kind::StaticProtected;
    }
    return Namespace::Kind::Public;
}

} // namespace

Unit::Unit(Vm& vm, Domain* domain, std::shared_ptr<const abc::Abc> abc)
    : m_domain(domain), m_abc(std::move(abc))
{
    for (const std::string& text : m_abc->strings) m_names.push_back(vm.name(fromUtf8(text)));
    for (const abc::NamespaceInfo& info : m_abc->namespaces) {
        const Namespace::Kind kind = kindOf(info.kind);
        // Marks of API versions follow the address as a private character.
        Name uri = m_names[info.name];
        if (kind == Namespace::Kind::Public && !uri.view().empty() && uri.view().back() >= 0xE000 &&
            uri.view().back() <= 0xF8FF)
            uri = vm.name(uri.view().substr(0, uri.view().size() - 1));
        m_namespaces.push_back(kind == Namespace::Kind::Private ? vm.heap().make<Namespace>(kind, uri)
                                                                : vm.ns(kind, uri));
    }
    m_namespaces[0] = vm.publicNs();
    for (const auto& set : m_abc->namespaceSets) {
        TracedList<Namespace*>& list = m_sets.emplace_back();
        for (const std::uint32_t index : set) list.push_back(m_namespaces[index]);
    }
    for (const abc::MultinameInfo& info : m_abc->multinames) {
        Multiname name;
        name.attribute = info.isAttribute();
        switch (info.kind) {
        case abc::MultinameKind::QName:
        case abc::MultinameKind::QNameA:
            if (info.ns == 0)
                name.anyNamespace = true;
            else
                name.single = m_namespaces[info.ns];
            break;
        case abc::MultinameKind::Multiname:
        case abc::MultinameKind::MultinameA:
        case abc::MultinameKind::MultinameL:
        case abc::MultinameKind::MultinameLA:
            name.list = m_sets[info.ns].data();
            name.count = static_cast<std::uint32_t>(m_sets[info.ns].size());
            break;
        default: break;
        }
        if (info.kind != abc::MultinameKind::TypeName && info.name != 0) name.name = m_names[info.name];
        m_multinames.push_back(name);
    }
    m_types.resize(m_multinames.size());
    m_typeKnown.resize(m_multinames.size());
    m_scripts.resize(m_abc->scripts.size());
    m_codes.resize(m_abc->methods.size());
    m_instanceTraits.resize(m_abc->instances.size());
    m_traitsTaken.resize(m_abc->instances.size());
}

void Unit::trace(Tracer& tracer)
{
    tracer(m_domain);
    for (const Name name : m_names) tracer(name);
    for (const Namespace* ns : m_namespaces) tracer(ns);
    for (const Traits* type : m_types) tracer(type);
    for (const Code* code : m_codes) tracer(code);
    for (const Traits* traits : m_instanceTraits) tracer(traits);
    for (const Script& script : m_scripts) tracer(script.global);
}

Traits* Unit::type(Vm& vm, std::uint32_t index)
{
    if (index == 0) return nullptr;
    if (m_typeKnown[index]) return m_types[index];
    const abc::MultinameInfo& info = m_abc->multinames[index];
    Traits* result = nullptr;
    if (info.kind == abc::MultinameKind::TypeName) {
        Traits* element = info.parameters.empty() ? nullptr : type(vm, info.parameters[0]);
        result = vm.vectorOf(element)->instances;
    } else {
        const Multiname& name = m_multinames[index];
        if (!name.name.isNull() && name.name.view() == u"void" && name.hasPublic()) {
            result = vm.classes().voidType;
        } else {
            Object* holder = name.name.isNull() ? nullptr : m_domain->find(vm, name);
            const Value value = holder != nullptr ? vm.get(Value(holder), name) : Value();
            auto* cls = as<ClassObject>(value);
            for (std::uint32_t i = 0; cls == nullptr && holder != nullptr && i < m_abc->instances.size();
                 ++i) {
                const Multiname& own = m_multinames[m_abc->instances[i].name];
                if (own.name == name.name && own.single != nullptr && name.contains(own.single))
                    return instanceTraits(vm, i);
            }
            if (cls == nullptr)
                vm.throwError(ErrorClass::Verify, 1014,
                              u"Class " + vm.nameText(name) + u" could not be found.");
            result = cls->instances;
        }
    }
    m_typeKnown[index] = true;
    m_types[index] = result;
    return result;
}

Traits* Unit::instanceTraits(Vm& vm, std::uint32_t index)
{
    if (m_instanceTraits[index] == nullptr) {
        const Multiname& name = m_multinames[m_abc->instances[index].name];
        m_instanceTraits[index] =
            vm.heap().make<Traits>(name.name, name.single != nullptr ? name.single : vm.publicNs(), nullptr);
        m_instanceTraits[index]->isInterface =
            (m_abc->instances[index].flags & abc::InstanceInfo::Interface) != 0;
        if (m_instanceTraits[index]->isInterface) completeInterface(vm, index);
    }
    return m_instanceTraits[index];
}

/// Classes may be made before the interfaces that they implement: those have no code to wait for.
void Unit::completeInterface(Vm& vm, std::uint32_t index)
{
    Traits* traits = m_instanceTraits[index];
    for (const std::uint32_t super : m_abc->instances[index].interfaces) {
        if (Traits* known = type(vm, super); known != nullptr && known != traits)
            traits->implement(vm, known);
    }
    vm.fillTraits(*traits, this, m_abc->instances[index].traits, nullptr);
}

Traits* Unit::takeInstanceTraits(Vm& vm, std::uint32_t index)
{
    if (m_traitsTaken[index]) m_instanceTraits[index] = nullptr;
    m_traitsTaken[index] = true;
    return instanceTraits(vm, index);
}

Value Unit::constant(Vm& vm, const abc::Constant& constant)
{
    switch (constant.kind) {
    case 0x01: return constant.index == 0 ? Value::null() : Value(m_names[constant.index].string());
    case 0x03: return m_abc->ints[constant.index];
    case 0x04: return m_abc->uints[constant.index];
    case 0x06: return m_abc->doubles[constant.index];
    case 0x0A: return false;
    case 0x0B: return true;
    case 0x0C: return Value::null();
    case 0x05:
    case 0x08:
    case 0x16:
    case 0x17:
    case 0x18:
    case 0x19:
    case 0x1A: return vm.newNamespace(m_namespaces[constant.index]);
    default: return {};
    }
}

MethodEnv* Unit::method(Vm& vm, std::uint32_t index, ScopeChain* scope)
{
    auto* env = vm.heap().make<MethodEnv>(this, index, scope);
    env->name = m_names[m_abc->methods[index].name];
    return env;
}

Object* Unit::scriptObject(Vm& vm, std::uint32_t index)
{
    if (m_scripts[index].global == nullptr) m_scripts[index].global = vm.newGlobal(this, index);
    return m_scripts[index].global;
}

Object* Unit::script(Vm& vm, std::uint32_t index)
{
    Object* global = scriptObject(vm, index);
    if (m_scripts[index].isRun) return global;
    m_scripts[index].isRun = true;
    auto* scope = vm.heap().make<ScopeChain>(global);
    MethodEnv* env = method(vm, m_abc->scripts[index].initializer, scope);
    env->role = MethodEnv::Role::ScriptInit;
    env->owner = global->traits();
    vm.invoke(*env, Value(global), {});
    return global;
}

void Unit::runAllScripts(Vm& vm)
{
    // The last one is the entry; it brings the others in as it needs them.
    if (!m_scripts.empty()) script(vm, static_cast<std::uint32_t>(m_scripts.size()) - 1);
}

void Domain::trace(Tracer& tracer)
{
    tracer(parent);
    tracer(memory);
    for (const auto& [key, definition] : m_definitions) {
        tracer(definition.name);
        tracer(definition.ns);
        tracer(definition.unit);
    }
}

Unit* Domain::load(Vm& vm, std::shared_ptr<const abc::Abc> abc, int version)
{
    auto* unit = vm.heap().make<Unit>(vm, this, std::move(abc));
    unit->version = version != 0 ? version : vm.version;
    ++vm.scopeEpoch;
    for (std::uint32_t i = 0; i < unit->abc().scripts.size(); ++i) {
        for (const abc::Trait& trait : unit->abc().scripts[i].traits) {
            const Multiname& name = unit->multiname(trait.name);
            if (name.name.isNull() || name.single == nullptr) continue;
            // The first definition of a name stays, as with scripts that come later from elsewhere.
            if (m_definitions
                    .try_emplace(Key{name.name.cell(), name.single},
                                 Definition{name.name, name.single, unit, i, false})
                    .second)
                m_order.push_back({name.name.cell(), name.single});
        }
    }
    return unit;
}

const Domain::Definition* Domain::definition(const Multiname& name) const
{
    if (name.name.isNull()) return nullptr;
    for (std::uint32_t i = 0; i < name.size(); ++i) {
        const auto found = m_definitions.find(Key{name.name.cell(), name.at(i)});
        if (found != m_definitions.end()) return &found->second;
    }
    return nullptr;
}

Object* Domain::find(Vm& vm, const Multiname& name)
{
    const Definition* known = definition(name);
    if (known != nullptr && known->isTaken) return known->unit->script(vm, known->script);
    if (parent == nullptr) {
        Value ignored;
        if (vm.findNative(name, ignored)) return vm.nativeGlobal();
    } else if (Object* found = parent->find(vm, name)) {
        return found;
    }
    if (known == nullptr) return nullptr;
    known->isTaken = true;
    return known->unit->script(vm, known->script);
}

Value Domain::madeAlready(const Multiname& name) const
{
    const Definition* known = definition(name);
    if (parent != nullptr && (known == nullptr || !known->isTaken)) {
        if (const Value made = parent->madeAlready(name); !made.isUndefined()) return made;
    }
    Object* global = known != nullptr ? known->unit->scriptIfMade(known->script) : nullptr;
    const Binding* binding = global != nullptr ? global->traits()->find(name) : nullptr;
    if (binding == nullptr || (binding->kind != Binding::Kind::Const && binding->kind != Binding::Kind::Slot))
        return {};
    return global->slot(static_cast<std::uint32_t>(binding->id));
}

bool Domain::lookUp(Vm& vm, std::u16string_view text, Value& result)
{
    if (const auto open = text.find(u".<"); open != std::u16string_view::npos && text.back() == u'>') {
        const std::u16string_view base = text.substr(0, open);
        if (base == u"Vector" || base == u"__AS3__.vec::Vector" || base == u"__AS3__.vec.Vector") {
            const std::u16string_view inner = text.substr(open + 2, text.size() - open - 3);
            Value element;
            if (inner != u"*" && !lookUp(vm, inner, element)) return false;
            auto* cls = as<ClassObject>(element);
            if (inner != u"*" && cls == nullptr) return false;
            result = Value(vm.vectorOf(cls != nullptr ? cls->instances : nullptr));
            return true;
        }
        // Names may hold any character.
    }
    std::u16string_view package, plain = text;
    if (const auto colons = text.rfind(u"::"); colons != std::u16string_view::npos) {
        package = text.substr(0, colons);
        plain = text.substr(colons + 2);
    } else if (const auto dot = text.rfind(u'.'); dot != std::u16string_view::npos) {
        package = text.substr(0, dot);
        plain = text.substr(dot + 1);
    }
    const Multiname name = Multiname::of(vm.name(plain), vm.ns(Namespace::Kind::Public, vm.name(package)));
    Object* holder = find(vm, name);
    if (holder == nullptr) return false;
    result = vm.get(Value(holder), name);
    return true;
}

std::vector<std::u16string> Domain::definitionNames() const
{
    std::vector<std::u16string> names;
    for (const Key& key : m_order) {
        const Definition& definition = m_definitions.at(key);
        // What only its package sees is told as well.
        if (definition.ns->kind == Namespace::Kind::Public ||
            definition.ns->kind == Namespace::Kind::Internal)
            names.push_back(qualified(definition.ns, definition.name));
    }
    return names;
}

} // namespace flash::avm2
