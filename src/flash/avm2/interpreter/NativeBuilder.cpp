#include "flash/avm2/interpreter/Vm.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

// Built-in classes: made of their tables, each when it is first asked for.
namespace flash::avm2
{

namespace
{

/// Where definitions of the player are found: asked by name, made when first asked for.
class NativeGlobal final : public Object
{
public:
    AVM2_NATIVE(Object)
    explicit NativeGlobal(Traits* traits) : Object(traits, nullptr) { m_exotic = Exotic::Last; }
    bool getExotic(Vm& vm, const Multiname& name, Value& result) override
    {
        return vm.findNative(name, result);
    }
    bool hasExotic(Vm& vm, const Multiname& name) override
    {
        Value ignored;
        return vm.findNative(name, ignored);
    }
};

} // namespace

void Vm::bindSlot(Traits& traits, std::string_view text, const Signature* signature)
{
    const auto colon = text.find(':'), equals = text.find('=');
    const std::string_view type =
        text.substr(colon + 1, equals == std::string_view::npos ? equals : equals - colon - 1);
    const bool hasInitial = equals != std::string_view::npos;
    const std::string initial(hasInitial ? text.substr(equals + 1) : std::string_view());
    TypeRef reference;
    Value value = Value::null();
    if (type == "int" || type == "uint" || type == "Number") {
        value = initial == "nan" ? std::nan("") : hasInitial ? std::atof(initial.c_str()) : 0.0;
        reference.resolved = (type == "int"    ? m_classes.integer
                              : type == "uint" ? m_classes.uinteger
                                               : m_classes.number)
                                 ->instances;
    } else if (type == "Boolean") {
        value = initial == "true";
        reference.resolved = m_classes.boolean->instances;
    } else if (type == "String") {
        if (hasInitial) value = Value(name(initial).string());
        reference.resolved = m_classes.string->instances;
    } else if (signature != nullptr && signature->type != "*") {
        // Making the class now might lead back to this one.
        reference.native = signature;
    }
    const std::int32_t slot = traits.addSlot(reference, value);
    traits.bind(name(text.substr(0, colon)), m_public, {Binding::Kind::Slot, slot, -1});
}

/// Has a native called as its signature says.
void Vm::sign(MethodEnv& env, const Signature& signature)
{
    // The language's own are not so strict: what their tables say is what they take.
    const bool isOwn = env.owner->ns == m_public;
    const bool isCalled = env.role == MethodEnv::Role::Method || env.role == MethodEnv::Role::Constructor;
    if (isCalled && !isOwn) {
        env.minArguments = static_cast<std::int16_t>(signature.required());
        env.maxArguments = signature.takesMore ? -1 : static_cast<std::int16_t>(signature.parameters.size());
    }
    const auto isClass = [](std::string_view type) {
        constexpr std::string_view kConverted[] = {"",       "*",       "int",    "uint", "Number",
                                                   "String", "Boolean", "Object", "void"};
        return std::ranges::find(kConverted, type) == std::end(kConverted);
    };
    const bool hasClasses =
        isCalled ? std::ranges::any_of(signature.parameters, isClass, &Signature::Parameter::type)
                 : env.role == MethodEnv::Role::Setter && isClass(signature.type);
    if (hasClasses && !isOwn) env.signature = &signature;
}

Traits* Vm::signatureTraits(std::string_view type)
{
    constexpr std::string_view kVector = "Vector<";
    if (type.starts_with(kVector)) {
        const std::string_view element = type.substr(kVector.size(), type.size() - kVector.size() - 1);
        Traits* of = signatureTraits(element);
        return of == nullptr && element != "*" ? nullptr : vectorOf(of)->instances;
    }
    std::string_view full = m_signatures.qualified(type);
    std::string known;
    if (full.empty()) {
        const auto found = std::ranges::find_if(
            m_nativeClasses, [&](const auto& entry) { return entry.first.second == type; });
        if (found == m_nativeClasses.end()) return nullptr;
        known =
            std::string(found->first.first) + (found->first.first.empty() ? "" : "::") + std::string(type);
        full = known;
    }
    const ClassObject* cls = nativeClass(full);
    return cls == nullptr ? nullptr : cls->instances;
}

std::u16string Vm::signatureType(std::string_view type)
{
    if (type.empty() || type == "*") return u"*";
    if (type == "void") return u"void";
    if (const Traits* traits = signatureTraits(type)) return traits->qualifiedName();
    const std::string_view full = m_signatures.qualified(type);
    return fromUtf8(full.empty() ? type : full);
}

void Vm::convertArguments(MethodEnv& env, std::span<Value> args)
{
    if (env.argumentTypes == nullptr) {
        const auto [found, isNew] = m_argumentTypes.try_emplace(env.signature);
        if (isNew) {
            // Making a class makes its methods: what the list is for is not asked for again meanwhile.
            std::vector<Traits*> types;
            const auto take = [&](std::string_view type) {
                Traits* traits = type == "Object" ? nullptr : signatureTraits(type);
                const bool isConverted = traits == nullptr || traits->special != Traits::Special::None;
                types.push_back(isConverted ? nullptr : traits);
            };
            if (env.role == MethodEnv::Role::Setter)
                take(env.signature->type);
            else
                for (const Signature::Parameter& one : env.signature->parameters) take(one.type);
            found->second = std::move(types);
        }
        env.argumentTypes = &found->second;
    }
    const std::vector<Traits*>& types = *env.argumentTypes;
    for (std::size_t i = 0; i < args.size() && i < types.size(); ++i) {
        if (types[i] != nullptr && !args[i].isNull()) args[i] = coerce(args[i], types[i]);
    }
}

ClassObject* Vm::makeNative(const NativeClass& spec)
{
    Namespace* space = ns(Namespace::Kind::Public, spec.package);
    const Name own = name(spec.name);
    ClassObject* base = nullptr;
    if ((spec.flags & NativeClass::Interface) == 0 && own.view() != u"Object")
        base = spec.base.empty() ? m_classes.object : nativeClass(spec.base);
    auto* statics =
        m_heap.make<Traits>(own, space, m_classes.cls != nullptr ? m_classes.cls->instances : nullptr);
    auto* instances = m_heap.make<Traits>(own, space, base != nullptr ? base->instances : nullptr);
    instances->isSealed = (spec.flags & NativeClass::Sealed) != 0;
    instances->isFinal = (spec.flags & NativeClass::Final) != 0;
    instances->isInterface = (spec.flags & NativeClass::Interface) != 0;
    for (std::size_t at = 0; at < spec.interfaces.size();) {
        const std::size_t end = std::min(spec.interfaces.find(' ', at), spec.interfaces.size());
        if (ClassObject* type = nativeClass(spec.interfaces.substr(at, end - at)))
            instances->implement(*this, type->instances);
        at = end + 1;
    }
    const Signatures::Class* told =
        m_signatures.of(spec.package.empty() ? std::string(spec.name)
                                             : std::string(spec.package) + "::" + std::string(spec.name));
    const auto method = [&](const NativeMember& member, NativeFunction function, Traits& owner,
                            MethodEnv::Role role) {
        auto* env = m_heap.make<MethodEnv>(function, member.name,
                                           role == MethodEnv::Role::Setter ? 1 : member.minArguments,
                                           role == MethodEnv::Role::Setter   ? 1
                                           : role == MethodEnv::Role::Getter ? 0
                                                                             : member.maxArguments);
        env->owner = &owner;
        env->name = name(member.name);
        env->ns = member.kind == NativeMember::Kind::As3 ? m_as3 : m_public;
        env->role = role;
        if (member.quick != nullptr && role != MethodEnv::Role::Setter) {
            env->quick = member.quick;
            env->quickArguments = member.quickArguments;
        }
        if (const Signature* known = told != nullptr ? told->find(member.name, &owner == statics) : nullptr)
            sign(*env, *known);
        return env;
    };
    for (const NativeMember& member : spec.members) {
        using Kind = NativeMember::Kind;
        Traits& owner =
            member.kind == Kind::Static || member.kind == Kind::StaticGetter ? *statics : *instances;
        Namespace* where = member.kind == Kind::As3 ? m_as3 : member.kind == Kind::Proxy ? m_proxy : m_public;
        if (member.kind == Kind::Getter || member.kind == Kind::StaticGetter) {
            if (member.function != nullptr)
                owner.bindMethod(name(member.name), where, Traits::MethodKind::Getter,
                                 method(member, member.function, owner, MethodEnv::Role::Getter));
            if (member.setter != nullptr)
                owner.bindMethod(name(member.name), where, Traits::MethodKind::Setter,
                                 method(member, member.setter, owner, MethodEnv::Role::Setter));
        } else if (member.kind != Kind::Prototype) {
            owner.bindMethod(name(member.name), where, Traits::MethodKind::Method,
                             method(member, member.function, owner, MethodEnv::Role::Method));
            // Compilers look for those of a few classes in the language's own namespace.
            if (member.kind == Kind::Static && spec.package.empty() &&
                (spec.name == "String" || spec.name == "XML"))
                owner.bind(name(member.name), m_as3, *owner.find(name(member.name), where));
        }
    }
    for (std::size_t at = 0; at < spec.slots.size();) {
        const std::size_t end = std::min(spec.slots.find(' ', at), spec.slots.size());
        const std::string_view slot = spec.slots.substr(at, end - at);
        const std::string_view plain = slot.substr(0, slot.find(':'));
        const Signature* known = told != nullptr ? told->find(plain, false) : nullptr;
        bindSlot(*instances, slot, known);
        // What is told to be read only natives set, and nobody else.
        if (known != nullptr && !known->canWrite) {
            Binding binding = *instances->find(name(plain), m_public);
            binding.kind = Binding::Kind::Const;
            instances->bind(name(plain), m_public, binding);
        }
        at = end + 1;
    }
    for (const NativeConstant& constant : spec.constants) {
        const Value value =
            constant.text != nullptr ? Value(name(constant.text).string()) : Value(constant.number);
        TypeRef type;
        using ConstantKind = NativeConstant::Kind;
        const ClassObject* of =
            constant.text != nullptr                ? m_classes.string
            : constant.kind == ConstantKind::Number ? m_classes.number
            : constant.kind == ConstantKind::Uint || (told != nullptr && told->numbers == "uint")
                ? m_classes.uinteger
                : nullptr;
        if (of != nullptr) type.resolved = of->instances;
        statics->bind(name(constant.name), m_public,
                      {Binding::Kind::Const, statics->addSlot(type, value), -1});
    }
    for (const Traits* interface : instances->interfaces) {
        const std::u16string uri =
            std::u16string(interface->ns->uri.view()) + u":" + std::u16string(interface->name.view());
        instances->alias(m_public, ns(Namespace::Kind::Public, name(uri)));
    }
    auto* cls = m_heap.make<ClassObject>(*this, statics, instances, base);
    cls->isAbstract = (spec.flags & NativeClass::Abstract) != 0;
    if (spec.allocate != nullptr) cls->allocate = spec.allocate;
    cls->conversion = spec.conversion;
    if (spec.constructor != nullptr) {
        cls->constructor =
            m_heap.make<MethodEnv>(spec.constructor, spec.name, spec.minArguments, spec.maxArguments);
        cls->constructor->owner = instances;
        cls->constructor->role = MethodEnv::Role::Constructor;
        const Signature* known = told != nullptr ? told->constructor() : nullptr;
        if (known != nullptr && !cls->isAbstract) sign(*cls->constructor, *known);
    } else if (base != nullptr) {
        cls->constructor = base->constructor;
    }
    // While the first classes are made there is none of objects yet; makeCore() sees to their prototypes.
    if (m_classes.object != nullptr && !instances->isInterface) {
        cls->prototype =
            m_heap.make<Object>(m_classes.object->instances, base != nullptr ? base->prototype : nullptr);
        cls->prototype->table().set(m_common.constructor, Value(cls));
        cls->prototype->table().setHidden(m_common.constructor, true);
    }
    return cls;
}

void Vm::makeCore()
{
    const auto spec = [&](std::string_view plain) -> const NativeClass& {
        return *m_nativeClasses.at({std::string_view(), plain});
    };
    const auto keep = [&](ClassObject* cls) {
        m_nativeValues[{cls->instances->name.cell(), m_public}] = Value(cls);
    };
    // A circle: classes are objects, functions are of a class, objects have prototypes.
    m_classes.object = makeNative(spec("Object"));
    keep(m_classes.object);
    m_classes.object->prototype = m_heap.make<Object>(m_classes.object->instances, nullptr);
    m_classes.object->instances->special = Traits::Special::Object;
    m_classes.cls = makeNative(spec("Class"));
    keep(m_classes.cls);
    m_classes.cls->instances->isFinal = true;
    // The class of objects was made before there was a class of classes.
    auto* statics = m_heap.make<Traits>(name("Object"), m_public, m_classes.cls->instances);
    for (const NativeConstant& constant : spec("Object").constants)
        statics->bind(name(constant.name), m_public,
                      {Binding::Kind::Const, statics->addSlot({}, constant.number), -1});
    ClassObject* first = m_heap.make<ClassObject>(*this, statics, m_classes.object->instances, nullptr);
    first->prototype = m_classes.object->prototype;
    first->constructor = m_classes.object->constructor;
    first->conversion = m_classes.object->conversion;
    m_classes.object = first;
    keep(first);
    auto* clsStatics = m_heap.make<Traits>(name("Class"), m_public, m_classes.cls->instances);
    clsStatics->bind(m_common.length, m_public, {Binding::Kind::Const, clsStatics->addSlot({}, 1), -1});
    ClassObject* second = m_heap.make<ClassObject>(*this, clsStatics, m_classes.cls->instances, first);
    second->prototype = m_heap.make<Object>(first->instances, first->prototype);
    second->allocate = m_classes.cls->allocate;
    m_classes.cls = second;
    keep(second);
    first->setProto(second->prototype);
    second->setProto(second->prototype);
    for (ClassObject* cls : {first, second}) {
        cls->prototype->table().set(m_common.constructor, Value(cls));
        cls->prototype->table().setHidden(m_common.constructor, true);
    }
    m_classes.function = nativeClass("Function");
    // What functions inherit from is one that does nothing.
    FunctionObject* nothing = newFunction([](Call&) -> Value { return {}; });
    nothing->setProto(first->prototype);
    nothing->table().set(m_common.constructor, Value(m_classes.function));
    nothing->table().setHidden(m_common.constructor, true);
    m_classes.function->prototype = nothing;
    for (ClassObject* cls : {first, second, m_classes.function}) {
        const NativeClass& own = spec(toUtf8(cls->instances->name.view()) == "Object"  ? "Object"
                                      : toUtf8(cls->instances->name.view()) == "Class" ? "Class"
                                                                                       : "Function");
        addMembers(*cls, own);
    }
    m_nativeValues[{name("undefined").cell(), m_public}] = Value();
    m_nativeValues[{name("NaN").cell(), m_public}] = std::nan("");
    m_nativeValues[{name("Infinity").cell(), m_public}] = HUGE_VAL;
    m_nativeGlobal =
        m_heap.make<NativeGlobal>(m_heap.make<Traits>(name("global"), m_public, first->instances));
    m_nativeGlobal->setProto(first->prototype);
    const auto special = [&](std::string_view plain, Traits::Special kind) {
        ClassObject* cls = nativeClass(plain);
        cls->instances->special = kind;
        return cls;
    };
    m_classes.integer = special("int", Traits::Special::Int);
    m_classes.uinteger = special("uint", Traits::Special::Uint);
    m_classes.number = special("Number", Traits::Special::Number);
    m_classes.boolean = special("Boolean", Traits::Special::Boolean);
    m_classes.string = special("String", Traits::Special::String);
    m_classes.array = nativeClass("Array");
    m_classes.error = nativeClass("Error");
    m_classes.nameSpace = nativeClass("Namespace");
    m_classes.qname = nativeClass("QName");
    m_classes.date = nativeClass("Date");
    m_classes.regExp = nativeClass("RegExp");
    m_classes.vector = nativeClass("__AS3__.vec::Vector");
    m_classes.xml = nativeClass("XML");
    m_classes.xmlList = nativeClass("XMLList");
    m_classes.byteArray = nativeClass("flash.utils::ByteArray");
    m_nativeValues[{name("flash_proxy").cell(), ns(Namespace::Kind::Public, "flash.utils")}] =
        Value(newNamespace(m_proxy));
    m_nativeValues[{name("AS3").cell(), m_public}] = Value(newNamespace(m_as3));
    m_classes.voidType = m_heap.make<Traits>(name("void"), m_public, nullptr);
    m_classes.voidType->special = Traits::Special::Void;
}

void Vm::addMembers(ClassObject& cls, const NativeClass& spec)
{
    if (cls.prototype != nullptr) {
        for (const NativeMember& member : spec.members) {
            if (member.kind != NativeMember::Kind::As3 && member.kind != NativeMember::Kind::Prototype)
                continue;
            const Name own = name(member.name);
            cls.prototype->table().set(own, Value(newFunction(member.function, member.name,
                                                              member.minArguments, member.maxArguments)));
            cls.prototype->table().setHidden(own, true);
        }
    }
    if (spec.setUp != nullptr) spec.setUp(*this, cls);
}

ClassObject* Vm::nativeClass(std::string_view qualifiedName)
{
    const auto colons = qualifiedName.find("::");
    const std::string_view package =
        colons == std::string_view::npos ? std::string_view() : qualifiedName.substr(0, colons);
    const std::string_view plain =
        colons == std::string_view::npos ? qualifiedName : qualifiedName.substr(colons + 2);
    Value found;
    if (!findAnyNative(Multiname::of(name(plain), ns(Namespace::Kind::Public, package)), found))
        return nullptr;
    return as<ClassObject>(found);
}

bool Vm::findNative(const Multiname& wanted, Value& result)
{
    for (std::uint32_t i = 0; i < wanted.size() && !wanted.name.isNull(); ++i) {
        const auto found = m_since.find({wanted.name.cell(), wanted.at(i)});
        if (found != m_since.end() && apiVersion() < found->second) return false;
    }
    return findAnyNative(wanted, result);
}

bool Vm::findAnyNative(const Multiname& wanted, Value& result)
{
    if (wanted.name.isNull()) return false;
    for (std::uint32_t i = 0; i < wanted.size(); ++i) {
        Namespace* space = wanted.at(i);
        const bool isInternal = space->kind == Namespace::Kind::Internal;
        if (space->kind != Namespace::Kind::Public && !isInternal) continue;
        const auto known = m_nativeValues.find({wanted.name.cell(), space});
        if (known != m_nativeValues.end()) {
            result = known->second;
            return true;
        }
        const std::string package = toUtf8(space->uri.view()), plain = toUtf8(wanted.name.view());
        if (const auto spec = m_nativeClasses.find({package, plain});
            spec != m_nativeClasses.end() && !isInternal) {
            ClassObject* cls = makeNative(*spec->second);
            m_nativeValues[{wanted.name.cell(), space}] = Value(cls);
            if (m_classes.function != nullptr) addMembers(*cls, *spec->second);
            result = Value(cls);
            return true;
        }
        if (const auto info = m_nativeFunctions.find({package, plain});
            info != m_nativeFunctions.end() && info->second->isInternal == isInternal) {
            FunctionObject* function = newFunction(info->second->function, info->second->name,
                                                   info->second->minArguments, info->second->maxArguments);
            function->env()->name = wanted.name;
            function->env()->ns = space;
            m_nativeValues[{wanted.name.cell(), space}] = Value(function);
            result = Value(function);
            return true;
        }
    }
    return false;
}

} // namespace flash::avm2
