#include "swfc/actionscript3/Program.h"

#include "swfc/actionscript3/Library.h"
#include "swfc/actionscript3/Parser.h"

#include <algorithm>

namespace swfc::actionscript3
{

using abc::NamespaceKind;

Program::Program(SourceFiles& files, Diagnostics& diagnostics) : m_files(files), m_diagnostics(diagnostics)
{
    m_as3 = abc.ns(NamespaceKind::Namespace, std::string(libraryNamespace("", "AS3")));
    using Kind = Type::Kind;
    m_types.any = addType({Kind::Any, 0, nullptr, nullptr, "*"});
    m_types.none = builtIn(Kind::Void, "void");
    m_types.integer = builtIn(Kind::Int, "int");
    m_types.uinteger = builtIn(Kind::Uint, "uint");
    m_types.number = builtIn(Kind::Number, "Number");
    m_types.boolean = builtIn(Kind::Boolean, "Boolean");
    m_types.string = builtIn(Kind::String, "String");
    m_types.object = builtIn(Kind::Object, "Object");
    m_types.function = builtIn(Kind::Other, "Function");
    m_types.array = builtIn(Kind::Other, "Array");
    m_types.xml = builtIn(Kind::Other, "XML");
    m_types.cls = builtIn(Kind::Other, "Class");
}

TypePtr Program::addType(Type type)
{
    if (type.name != 0) {
        if (const auto found = m_typesByName.find(type.name); found != m_typesByName.end())
            return found->second;
    }
    m_allTypes.push_back(std::make_unique<Type>(std::move(type)));
    TypePtr made = m_allTypes.back().get();
    if (made->name != 0) m_typesByName[made->name] = made;
    return made;
}

TypePtr Program::builtIn(Type::Kind kind, const std::string& name)
{
    return addType({kind, abc.qname(publicNs(), name), nullptr, nullptr, name});
}

TypePtr Program::vectorOf(TypePtr element)
{
    const Index base = abc.qname(publicNs("__AS3__.vec"), "Vector");
    return addType({Type::Kind::Vector, abc.typeName(base, {element->name}), nullptr, element,
                    "Vector.<" + element->text + ">"});
}

TypePtr Program::resolve(const TypeExpr* type, Scope& scope)
{
    if (type == nullptr || type->name == "*") return m_types.any;
    if (type->name == "void") return m_types.none;
    if (type->parameter != nullptr) {
        if (type->name != "Vector") {
            error(type->where, "expected Vector before a type in angle brackets, found '" + type->name + "'");
            return m_types.any;
        }
        return vectorOf(resolve(type->parameter, scope));
    }
    const Found found = findDotted(type->name, scope);
    if (found.definition != nullptr) {
        if (found.definition->kind == Definition::Kind::Class) return found.definition->cls->type;
        error(type->where, "expected a class, found '" + type->name + "'");
        return m_types.any;
    }
    if (found.name == 0) {
        error(type->where, "expected a class that is known, found '" + type->name + "'");
        return m_types.any;
    }
    return addType({Type::Kind::Other, found.name, nullptr, nullptr, type->name});
}

TypePtr Program::typeOf(const Definition& definition)
{
    switch (definition.kind) {
    case Definition::Kind::Class: return m_types.cls;
    case Definition::Kind::Function: return m_types.function;
    case Definition::Kind::Namespace: return m_types.any;
    case Definition::Kind::Variable:
    case Definition::Kind::Constant: return resolve(definition.typeExpr, *definition.scope);
    }
    return m_types.any;
}

ClassSymbol* Program::baseOf(ClassSymbol* cls)
{
    if (!cls->isDeclared) declareMembers(*cls);
    return cls->base != nullptr && cls->base->kind == Type::Kind::Class ? cls->base->cls : nullptr;
}

const Member* Program::findMember(const ClassSymbol* cls, const std::string& name, bool isStatic,
                                  const std::vector<Index>& namespaces, Member::Kind wanted)
{
    // Classes that extend each other in a circle are reported when they are compiled.
    constexpr int kDeepest = 256;
    int depth = 0;
    for (auto* at = const_cast<ClassSymbol*>(cls); at != nullptr && ++depth < kDeepest; at = baseOf(at)) {
        if (!at->isDeclared) declareMembers(*at);
        const auto [begin, end] = at->members.equal_range(name);
        for (auto entry = begin; entry != end; ++entry) {
            const Member& member = entry->second;
            if (member.isStatic != isStatic) continue;
            if ((member.kind == Member::Kind::Setter) != (wanted == Member::Kind::Setter) &&
                (member.kind == Member::Kind::Setter || member.kind == Member::Kind::Getter))
                continue;
            if (std::ranges::find(namespaces, member.ns) != namespaces.end() ||
                member.ns == at->protectedNs || member.ns == at->staticProtectedNs ||
                member.ns == at->interfaceNs)
                return &member;
        }
    }
    return nullptr;
}

// ---- names ------------------------------------------------------------------------------------------------

Program::Found Program::findDotted(const std::string& dotted, Scope& scope)
{
    const auto dot = dotted.rfind('.');
    if (dot == std::string::npos) return find(dotted, scope);
    const std::string package = dotted.substr(0, dot), name = dotted.substr(dot + 1);
    auto known = m_definitions.find(dotted);
    if (known == m_definitions.end() && !isLibraryPackage(package) && load(dotted))
        known = m_definitions.find(dotted);
    if (known != m_definitions.end()) return {&known->second, known->second.qname};
    if (isLibraryPackage(package)) return {nullptr, abc.qname(publicNs(package), name)};
    return {};
}

Program::Found Program::find(const std::string& name, Scope& scope)
{
    if (const auto own = m_outside.find({scope.file, name}); own != m_outside.end())
        return {&own->second, own->second.qname};
    const auto inPackage = [&](const std::string& package) -> const Definition* {
        const auto found = m_definitions.find(package.empty() ? name : package + "." + name);
        return found == m_definitions.end() ? nullptr : &found->second;
    };
    if (const Definition* found = inPackage(scope.package)) return {found, found->qname};
    if (const auto import = scope.imports.find(name); import != scope.imports.end()) {
        const std::string dotted = import->second;
        const Found found = findDotted(dotted, scope);
        if (found.name != 0 || dotted.find('.') == std::string::npos) return found;
        const auto dot = dotted.rfind('.');
        return {nullptr, abc.qname(publicNs(dotted.substr(0, dot)), name)};
    }
    for (const std::string& package : scope.wildcards) {
        if (const Definition* found = inPackage(package)) return {found, found->qname};
        if (isInLibrary(package, name)) return {nullptr, abc.qname(publicNs(package), name)};
    }
    if (const Definition* found = inPackage("")) return {found, found->qname};
    if (name == "Vector") return {nullptr, abc.qname(publicNs("__AS3__.vec"), name)};
    if (isInLibrary("", name)) return {nullptr, abc.qname(publicNs(), name)};
    // Classes have capitals; a file for each of the other names would be sought in vain.
    if (!name.empty() && name[0] >= 'A' && name[0] <= 'Z') {
        std::vector<std::string> packages = {scope.package};
        packages.insert(packages.end(), scope.wildcards.begin(), scope.wildcards.end());
        for (const std::string& package : packages) {
            if (!isLibraryPackage(package) && load(package.empty() ? name : package + "." + name)) {
                if (const Definition* found = inPackage(package)) return {found, found->qname};
            }
        }
    }
    return {};
}

bool Program::isPackage(const std::string& name, Scope& scope)
{
    if (isLibraryPackage(name) || m_packages.contains(name)) return true;
    const auto within = [&](const std::string& package) {
        return package == name || package.starts_with(name + ".");
    };
    return std::ranges::any_of(scope.wildcards, within) ||
           std::ranges::any_of(scope.imports,
                               [&](const auto& entry) { return entry.second.starts_with(name + "."); });
}

std::vector<Index> Program::openNamespaces(const Scope& scope, const ClassSymbol* cls)
{
    std::vector<Index> open;
    if (cls != nullptr) open.push_back(cls->privateNs);
    open.push_back(publicNs());
    open.push_back(abc.ns(NamespaceKind::PackageInternal, scope.package));
    open.push_back(m_as3);
    open.push_back(scope.fileNs);
    if (!scope.package.empty()) open.push_back(publicNs(scope.package));
    int depth = 0;
    for (auto* at = const_cast<ClassSymbol*>(cls); at != nullptr && ++depth < 256; at = baseOf(at)) {
        open.push_back(at->protectedNs);
        open.push_back(at->staticProtectedNs);
    }
    open.insert(open.end(), scope.used.begin(), scope.used.end());
    return open;
}

Index Program::openName(const std::string& name, const std::vector<Index>& namespaces, const Scope* imports,
                        bool isAttribute)
{
    std::vector<Index> set = namespaces;
    if (imports != nullptr) {
        for (const std::string& package : imports->wildcards) set.push_back(publicNs(package));
    }
    const auto kind = isAttribute ? abc::MultinameKind::MultinameA : abc::MultinameKind::Multiname;
    return abc.multiname(kind, abc.string(name), abc.nsSet(set));
}

std::optional<Index> Program::findNamespace(const std::string& name, Scope& scope, ClassSymbol* cls)
{
    if (name == "public") return publicNs();
    if (name == "internal") return abc.ns(NamespaceKind::PackageInternal, scope.package);
    if (name == "private") return cls != nullptr ? cls->privateNs : scope.fileNs;
    if (name == "protected" && cls != nullptr) return cls->protectedNs;
    int depth = 0;
    for (ClassSymbol* at = cls; at != nullptr && ++depth < 256; at = baseOf(at)) {
        if (const auto found = at->namespaces.find(name); found != at->namespaces.end()) return found->second;
    }
    const Found found = findDotted(name, scope);
    if (found.definition != nullptr && found.definition->kind == Definition::Kind::Namespace)
        return found.definition->namespaceValue;
    std::string package, plain = name;
    if (const auto dot = name.rfind('.'); dot != std::string::npos) {
        package = name.substr(0, dot);
        plain = name.substr(dot + 1);
    } else if (const auto import = scope.imports.find(name); import != scope.imports.end()) {
        package = import->second.substr(0, std::max<std::size_t>(import->second.rfind('.'), 0));
    }
    std::string_view address = libraryNamespace(package, plain);
    for (std::size_t i = 0; address.empty() && i < scope.wildcards.size(); ++i)
        address = libraryNamespace(scope.wildcards[i], plain);
    if (address.empty()) return std::nullopt;
    return abc.ns(NamespaceKind::Namespace, std::string(address));
}

void Program::use(Scope& scope, const Stmt* stmt, ClassSymbol* cls)
{
    for (const std::string& name : stmt->names) {
        const auto found = findNamespace(name, scope, cls);
        if (!found)
            error(stmt->where, "expected a namespace that is known, found '" + name + "'");
        else if (std::ranges::find(scope.used, *found) == scope.used.end())
            scope.used.push_back(*found);
    }
}

void Program::import(Scope& scope, const Stmt* stmt)
{
    const std::string& dotted = stmt->text;
    const auto dot = dotted.rfind('.');
    if (dot == std::string::npos) return;
    if (!dotted.ends_with(".*"))
        scope.imports[dotted.substr(dot + 1)] = dotted;
    else if (std::ranges::find(scope.wildcards, dotted.substr(0, dot)) == scope.wildcards.end())
        scope.wildcards.push_back(dotted.substr(0, dot));
}

void Program::checkImport(const Stmt* stmt)
{
    const std::string& dotted = stmt->text;
    const auto dot = dotted.rfind('.');
    if (dotted.ends_with(".*") || m_definitions.contains(dotted)) return;
    if (dot != std::string::npos && isLibraryPackage(dotted.substr(0, dot))) {
        if (!isInLibrary(dotted.substr(0, dot), dotted.substr(dot + 1)))
            error(stmt->where, "expected a class of the player, found '" + dotted + "'");
    } else if (!load(dotted) && !(dot == std::string::npos && isInLibrary("", dotted))) {
        error(stmt->where, "expected a class that is known, found '" + dotted + "'");
    }
}

} // namespace swfc::actionscript3
