#include "swfc/actionscript3/DefinitionCompiler.h"

#include <algorithm>

namespace swfc::actionscript3
{

using abc::Trait;

namespace
{

constexpr std::uint8_t kNamespaceConstant = 0x08;
/// Classes that extend classes, one after the other; each is a scope of those after it.
constexpr std::size_t kLongestLine = 200;

} // namespace

DefinitionCompiler::DefinitionCompiler(Program& program, File& file)
    : m_program(program), m_file(file),
      m_init({program, file.packages.back().scope, nullptr, false, nullptr, 1},
             FunctionCompiler::Kind::ScriptInit)
{
}

const Definition* DefinitionCompiler::definition(const Package& package, const std::string& name) const
{
    if (package.isOutside) {
        const auto found = m_program.m_outside.find({&m_file, name});
        return found == m_program.m_outside.end() ? nullptr : &found->second;
    }
    const auto found = m_program.m_definitions.find(package.name.empty() ? name : package.name + "." + name);
    return found == m_program.m_definitions.end() || found->second.file != &m_file ? nullptr : &found->second;
}

abc::ScriptInfo DefinitionCompiler::run()
{
    for (Package& package : m_file.packages) {
        for (const Stmt* stmt : package.body) {
            if (stmt->kind == StmtKind::Import) m_program.checkImport(stmt);
            if (stmt->kind == StmtKind::UseNamespace) m_program.use(*package.scope, stmt, nullptr);
        }
    }
    for (Package& package : m_file.packages) packageTraits(package);
    m_init.beginInit(m_file.initializer);
    // What stands beside a package is there for what stands in it.
    for (auto package = m_file.packages.rbegin(); package != m_file.packages.rend(); ++package) {
        m_init.setScope(*package->scope);
        for (const Stmt* stmt : package->body) {
            if (stmt->kind != StmtKind::Class) continue;
            const Definition* found = definition(*package, stmt->declaration->name);
            if (found != nullptr && found->cls != nullptr) defineClass(*found->cls);
        }
    }
    for (Package& package : m_file.packages) packageStatements(package);
    m_script.initializer = m_init.finishInit("");
    return std::move(m_script);
}

void DefinitionCompiler::packageStatements(Package& package)
{
    m_init.setScope(*package.scope);
    for (const Stmt* stmt : package.body) {
        if (stmt->kind == StmtKind::Class || stmt->kind == StmtKind::Function ||
            stmt->kind == StmtKind::Import || stmt->kind == StmtKind::UseNamespace ||
            stmt->kind == StmtKind::Namespace)
            continue;
        if (stmt->kind != StmtKind::Var) {
            m_init.statements({const_cast<Stmt*>(stmt)});
            continue;
        }
        for (const Variable& variable : stmt->variables) {
            const Definition* found = definition(package, variable.name);
            if (variable.value == nullptr || found == nullptr) continue;
            m_init.initialize(variable, m_program.typeOf(*found), found->qname, false);
        }
    }
}

abc::Trait DefinitionCompiler::namespaceTrait(const std::string& name, Index ns, Index value)
{
    Trait trait;
    trait.name = m_program.abc.qname(ns, name);
    trait.kind = Trait::Kind::Const;
    trait.value = {kNamespaceConstant, value};
    return trait;
}

void DefinitionCompiler::addMetadata(Trait& trait, const std::vector<Metadata>& list)
{
    AbcFile& abc = m_program.abc;
    for (const Metadata& entry : list) {
        abc::Metadata made;
        made.name = abc.string(entry.name);
        for (const auto& [key, value] : entry.items)
            made.items.emplace_back(key.empty() ? 0 : abc.string(key), abc.string(value));
        trait.metadata.push_back(abc.addMetadata(made));
        trait.attributes |= Trait::HasMetadata;
    }
}

void DefinitionCompiler::packageTraits(Package& package)
{
    std::set<std::string> done;
    const auto slot = [&](const std::string& name, bool isConst) {
        const Definition* found = definition(package, name);
        if (found == nullptr || !done.insert(name).second) return;
        Trait trait;
        trait.name = found->qname;
        trait.kind = isConst ? Trait::Kind::Const : Trait::Kind::Slot;
        trait.type = m_program.typeOf(*found)->name;
        m_script.traits.push_back(trait);
    };
    for (const Stmt* stmt : package.body) {
        if (stmt->kind == StmtKind::Namespace) {
            if (const Definition* found = definition(package, stmt->text))
                m_script.traits.push_back(namespaceTrait(stmt->text, found->ns, found->namespaceValue));
        } else if (stmt->kind == StmtKind::Var) {
            for (const Variable& variable : stmt->variables) slot(variable.name, stmt->isConst);
        } else if (stmt->kind == StmtKind::Function) {
            const Definition* found = definition(package, stmt->function->name);
            if (found == nullptr) continue;
            FunctionCompiler body({m_program, package.scope, nullptr, false, nullptr, 1},
                                  FunctionCompiler::Kind::Closure);
            Trait trait;
            trait.name = found->qname;
            trait.kind = Trait::Kind::Method;
            trait.index = body.function(*stmt->function, stmt->function->name);
            m_script.traits.push_back(trait);
        } else if (stmt->kind == StmtKind::Class) {
            const Definition* found = definition(package, stmt->declaration->name);
            if (found == nullptr || found->cls == nullptr) continue;
            Trait trait;
            trait.name = found->qname;
            trait.kind = Trait::Kind::Class;
            trait.index = found->cls->index;
            addMetadata(trait, stmt->declaration->modifiers.metadata);
            m_script.traits.push_back(trait);
        }
    }
    if (!package.isOutside) return;
    for (const Local& local : m_file.initializer->locals) slot(local.name, false);
}

// ---- classes ----------------------------------------------------------------------------------------------

void DefinitionCompiler::defineClass(ClassSymbol& cls)
{
    if (m_defined.contains(&cls)) return;
    if (!m_pending.insert(&cls).second) {
        m_program.error(cls.declaration->where,
                        "expected a class that does not extend itself, found '" + cls.name + "'");
        m_defined.insert(&cls);
        return;
    }
    m_program.declareMembers(cls);
    // Those of the same file come first, in whatever order they stand.
    ClassSymbol* base = m_program.baseOf(&cls);
    if (base != nullptr && base->scope->file == &m_file) defineClass(*base);
    if (!m_defined.insert(&cls).second) return;

    std::vector<Index> line;
    ClassSymbol* at = &cls;
    for (; line.size() < kLongestLine; at = m_program.baseOf(at)) {
        if (at->base == nullptr) break;
        line.push_back(at->base->name);
        if (at->base->kind != Type::Kind::Class) break;
    }
    if (line.size() == kLongestLine)
        m_program.error(cls.declaration->where, "expected fewer classes that extend each other");
    CodeWriter& code = m_init.code();
    const auto depth = static_cast<std::uint32_t>(line.size()) + 3;
    describeClass(cls, depth);
    code.op(Op::getscopeobject, 0);
    const Index object = m_program.types().object->name;
    if (!cls.declaration->isInterface) {
        code.op(Op::getlex, object);
        code.op(Op::pushscope);
        for (auto name = line.rbegin(); name != line.rend(); ++name) {
            code.op(Op::getlex, *name);
            code.op(Op::pushscope);
        }
        code.op(Op::getlex, line.empty() ? object : line.front());
    } else {
        code.op(Op::pushnull);
    }
    code.op(Op::newclass, cls.index);
    if (!cls.declaration->isInterface) {
        for (std::size_t i = 0; i <= line.size(); ++i) code.op(Op::popscope);
    }
    code.op(Op::initproperty, cls.qname);
}

void DefinitionCompiler::describeClass(ClassSymbol& cls, std::uint32_t depth)
{
    const ClassDeclaration& declaration = *cls.declaration;
    std::vector<Index> interfaces;
    for (const TypeExpr* type : declaration.interfaces) {
        const TypePtr resolved = m_program.resolve(type, *cls.scope);
        if (resolved->kind == Type::Kind::Class && !resolved->cls->declaration->isInterface)
            m_program.error(type->where, "expected an interface, found the class '" + resolved->text + "'");
        interfaces.push_back(resolved->name);
    }
    members(cls, depth);
    const Index initializer = constructor(cls, depth), statics = staticInitializer(cls, depth);
    AbcFile& abc = m_program.abc;
    abc::InstanceInfo& info = abc.data.instances[cls.index];
    info.name = cls.qname;
    using Flag = abc::InstanceInfo::Flag;
    if (declaration.isInterface) {
        info.flags = Flag::Interface | Flag::Sealed;
    } else {
        info.superName = cls.base != nullptr ? cls.base->name : m_program.types().object->name;
        info.flags =
            static_cast<std::uint8_t>((declaration.modifiers.isDynamic ? 0 : Flag::Sealed) |
                                      (declaration.modifiers.isFinal ? Flag::Final : 0) | Flag::ProtectedNs);
        info.protectedNs = cls.protectedNs;
    }
    info.interfaces = interfaces;
    info.initializer = initializer;
    abc.data.classes[cls.index].initializer = statics;
    checkInterfaces(cls);
}

void DefinitionCompiler::members(ClassSymbol& cls, std::uint32_t depth)
{
    FunctionCompiler constants({m_program, cls.scope, &cls, true, nullptr, depth},
                               FunctionCompiler::Kind::StaticInit);
    std::set<std::string> statics;
    for (const Stmt* stmt : cls.declaration->body) {
        if (stmt->kind == StmtKind::Var) {
            fieldTraits(cls, stmt, constants);
            for (const Variable& variable : stmt->variables) statics.insert(variable.name);
        } else if (stmt->kind == StmtKind::Function) {
            methodTrait(cls, stmt, depth);
        } else if (stmt->kind == StmtKind::Namespace) {
            m_program.abc.data.classes[cls.index].traits.push_back(
                namespaceTrait(stmt->text, m_program.memberAccess(cls, stmt->modifiers, stmt->where),
                               cls.namespaces[stmt->text]));
        }
    }
    for (const Local& local : cls.declaration->initializer->locals) {
        if (!statics.insert(local.name).second) continue;
        Trait trait;
        trait.name = m_program.abc.qname(cls.privateNs, local.name);
        trait.type = m_program.resolve(local.type, *cls.scope)->name;
        m_program.abc.data.classes[cls.index].traits.push_back(trait);
    }
}

void DefinitionCompiler::fieldTraits(ClassSymbol& cls, const Stmt* stmt, FunctionCompiler& constants)
{
    const Index ns = m_program.memberAccess(cls, stmt->modifiers, stmt->where);
    for (const Variable& variable : stmt->variables) {
        const TypePtr type = m_program.resolve(variable.type, *cls.scope);
        Trait trait;
        trait.name = m_program.abc.qname(ns, variable.name);
        trait.kind = stmt->isConst ? Trait::Kind::Const : Trait::Kind::Slot;
        trait.type = type->name;
        if (variable.value != nullptr)
            trait.value = constants.constant(variable.value, type).value_or(abc::Constant{});
        addMetadata(trait, stmt->modifiers.metadata);
        auto& traits = stmt->modifiers.isStatic ? m_program.abc.data.classes[cls.index].traits
                                                : m_program.abc.data.instances[cls.index].traits;
        traits.push_back(trait);
    }
}

void DefinitionCompiler::methodTrait(ClassSymbol& cls, const Stmt* stmt, std::uint32_t depth)
{
    const Function& function = *stmt->function;
    if (function.name == cls.name && function.role == Function::Role::Plain) return;
    Member member;
    member.ns = m_program.memberAccess(cls, stmt->modifiers, stmt->where);
    Trait trait;
    trait.name = m_program.abc.qname(member.ns, function.name);
    trait.kind = function.role == Function::Role::Getter   ? Trait::Kind::Getter
                 : function.role == Function::Role::Setter ? Trait::Kind::Setter
                                                           : Trait::Kind::Method;
    if (stmt->modifiers.isFinal) trait.attributes |= Trait::Final;
    if (stmt->modifiers.isOverride) trait.attributes |= Trait::Override;
    addMetadata(trait, stmt->modifiers.metadata);
    const bool isStatic = stmt->modifiers.isStatic;
    if (!isStatic) checkOverride(cls, stmt, member);
    if (cls.declaration->isInterface) {
        if (function.hasBody) m_program.error(function.where, "expected no body in an interface");
        abc::MethodInfo info;
        info.returnType = m_program.resolve(function.returnType, *cls.scope)->name;
        for (const Variable& parameter : function.parameters)
            info.parameterTypes.push_back(m_program.resolve(parameter.type, *cls.scope)->name);
        trait.index = m_program.abc.addMethod(info);
    } else {
        if (!function.hasBody) m_program.error(function.where, "expected a body of the function");
        FunctionCompiler body({m_program, cls.scope, &cls, isStatic, nullptr, depth},
                              FunctionCompiler::Kind::Method);
        trait.index = body.function(function, function.name);
    }
    auto& traits = isStatic ? m_program.abc.data.classes[cls.index].traits
                            : m_program.abc.data.instances[cls.index].traits;
    traits.push_back(trait);
}

void DefinitionCompiler::checkOverride(ClassSymbol& cls, const Stmt* stmt, const Member& member)
{
    const std::string& name = stmt->function->name;
    const auto kind =
        stmt->function->role == Function::Role::Setter ? Member::Kind::Setter : Member::Kind::Getter;
    ClassSymbol* base = m_program.baseOf(&cls);
    const bool isProtected = member.ns == cls.protectedNs;
    bool isLibrary = cls.base != nullptr && base == nullptr;
    bool isFound = false;
    ClassSymbol* holder = nullptr;
    std::size_t depth = 0;
    for (ClassSymbol* at = base; at != nullptr && !isFound && ++depth < kLongestLine;
         at = m_program.baseOf(at)) {
        const auto [begin, end] = at->members.equal_range(name);
        for (auto entry = begin; entry != end; ++entry) {
            const Member& other = entry->second;
            isFound = isFound || (!other.isStatic &&
                                  (other.kind == Member::Kind::Setter) == (kind == Member::Kind::Setter) &&
                                  (isProtected ? other.ns == at->protectedNs : other.ns == member.ns));
            if (isFound && holder == nullptr) holder = at;
        }
        if (at->base != nullptr && at->base->kind != Type::Kind::Class) isLibrary = true;
    }
    if (isFound && !stmt->modifiers.isOverride)
        m_program.error(stmt->function->where,
                        "expected 'override' before a function that the base class has, found '" + name +
                            "'");
    if (!isFound && stmt->modifiers.isOverride && !isLibrary)
        m_program.error(stmt->function->where,
                        "expected a function of the base class to override, found '" + name + "'");
    if (holder != nullptr && stmt->modifiers.isOverride) checkOverridden(cls, stmt, *holder);
}

/// The machine refuses a class that changes what it overrides; what is wrong shows here.
void DefinitionCompiler::checkOverridden(const ClassSymbol& cls, const Stmt* stmt, const ClassSymbol& holder)
{
    const Function& own = *stmt->function;
    const auto found = std::ranges::find_if(holder.declaration->body, [&](const Stmt* other) {
        return other->kind == StmtKind::Function && !other->modifiers.isStatic &&
               other->function->name == own.name && other->function->role == own.role;
    });
    if (found == holder.declaration->body.end()) {
        m_program.error(own.where,
                        "expected a function of the same kind to override, found '" + own.name + "'");
        return;
    }
    const Function& other = *(*found)->function;
    if ((*found)->modifiers.isFinal)
        m_program.error(own.where,
                        "expected a function to override that is not final, found '" + own.name + "'");
    const auto type = [&](const TypeExpr* written, const ClassSymbol& of) {
        return m_program.resolve(written, *of.scope);
    };
    bool isSame = own.parameters.size() == other.parameters.size() &&
                  own.rest.empty() == other.rest.empty() &&
                  type(own.returnType, cls) == type(other.returnType, holder);
    for (std::size_t i = 0; isSame && i < own.parameters.size(); ++i)
        isSame = type(own.parameters[i].type, cls) == type(other.parameters[i].type, holder) &&
                 (own.parameters[i].value == nullptr) == (other.parameters[i].value == nullptr);
    if (!isSame)
        m_program.error(own.where, "expected the parameters and the result of what is overridden, found '" +
                                       own.name + "' with others");
}

void DefinitionCompiler::checkInterfaces(ClassSymbol& cls)
{
    if (cls.declaration->isInterface) return;
    std::size_t depth = 0;
    for (ClassSymbol* at = &cls; at != nullptr && ++depth < kLongestLine; at = m_program.baseOf(at)) {
        // What a class of the player has is not known here.
        if (at->base != nullptr && at->base->kind != Type::Kind::Class) return;
    }
    const std::vector<Index> open = {m_program.publicNs()};
    for (const TypeExpr* type : cls.declaration->interfaces) {
        const TypePtr resolved = m_program.resolve(type, *cls.scope);
        if (resolved->kind != Type::Kind::Class) continue;
        m_program.declareMembers(*resolved->cls);
        for (const auto& [name, member] : resolved->cls->members) {
            const auto kind =
                member.kind == Member::Kind::Setter ? Member::Kind::Setter : Member::Kind::Getter;
            if (m_program.findMember(&cls, name, false, open, kind) == nullptr)
                m_program.error(cls.declaration->where,
                                "expected '" + name + "' of the interface '" + resolved->text + "'");
        }
    }
}

Index DefinitionCompiler::constructor(ClassSymbol& cls, std::uint32_t depth)
{
    if (cls.declaration->isInterface) return m_program.abc.addMethod({});
    const Function* found = nullptr;
    for (const Stmt* stmt : cls.declaration->body) {
        if (stmt->kind != StmtKind::Function || stmt->function->name != cls.name ||
            stmt->function->role != Function::Role::Plain)
            continue;
        if (found != nullptr) m_program.error(stmt->where, "expected one constructor");
        found = stmt->function;
    }
    FunctionCompiler body({m_program, cls.scope, &cls, false, nullptr, depth},
                          FunctionCompiler::Kind::Constructor);
    const Function none;
    return body.function(found != nullptr ? *found : none, cls.name);
}

Index DefinitionCompiler::staticInitializer(ClassSymbol& cls, std::uint32_t depth)
{
    FunctionCompiler body({m_program, cls.scope, &cls, true, nullptr, depth},
                          FunctionCompiler::Kind::StaticInit);
    body.beginInit(cls.declaration->initializer);
    for (const Stmt* stmt : cls.declaration->body) {
        if (stmt->kind == StmtKind::Var) {
            if (!stmt->modifiers.isStatic) continue;
            const Index ns = m_program.memberAccess(cls, stmt->modifiers, stmt->where);
            for (const Variable& variable : stmt->variables) {
                const TypePtr type = m_program.resolve(variable.type, *cls.scope);
                if (variable.value == nullptr || body.constant(variable.value, type)) continue;
                body.initialize(variable, type, m_program.abc.qname(ns, variable.name), true);
            }
        } else if (stmt->kind != StmtKind::Function && stmt->kind != StmtKind::Namespace) {
            body.statements({const_cast<Stmt*>(stmt)});
        }
    }
    return body.finishInit("");
}

std::vector<std::uint8_t> Program::compile()
{
    const std::size_t before = m_diagnostics.errorCount();
    if (m_main == nullptr || before > 0) return {};
    // Classes may bring in further files while they are compiled. The entry is the last script.
    std::vector<abc::ScriptInfo> scripts;
    scripts.push_back(DefinitionCompiler(*this, *m_main).run());
    for (std::size_t i = 0; i < m_sources.size() && m_diagnostics.errorCount() == before; ++i) {
        if (m_sources[i].get() != m_main && !m_sources[i]->packages.empty())
            scripts.push_back(DefinitionCompiler(*this, *m_sources[i]).run());
    }
    if (m_diagnostics.errorCount() != before) return {};
    std::ranges::reverse(scripts);
    abc.data.scripts = std::move(scripts);
    return abc.bytes();
}

} // namespace swfc::actionscript3
