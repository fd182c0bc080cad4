#include "swfc/actionscript3/Program.h"

#include "swfc/actionscript3/Parser.h"

#include <algorithm>
#include <filesystem>

namespace swfc::actionscript3
{

using abc::NamespaceKind;

namespace
{

constexpr std::size_t kMaxFiles = 1024;

std::string qualified(const std::string& package, const std::string& name)
{
    return package.empty() ? name : package + "." + name;
}

std::string colons(const std::string& package, const std::string& name)
{
    return package.empty() ? name : package + ":" + name;
}

} // namespace

void Program::addFile(const SourceText& source)
{
    m_sources.push_back(std::make_unique<File>());
    File* file = m_sources.back().get();
    file->path = source.path;
    file->number = static_cast<int>(m_sources.size());
    if (m_main == nullptr) m_main = file;
    const std::size_t before = m_diagnostics.errorCount();
    Parser(source, *file, m_diagnostics).parseFile();
    if (m_diagnostics.errorCount() == before) collect(file);
}

/// Reads the file of a class below the root. @returns whether the class is known then.
bool Program::load(const std::string& dotted)
{
    std::string path = dotted;
    std::ranges::replace(path, '.', '/');
    path = besideFile(m_root, path + ".as");
    const auto [tried, isNew] = m_tried.try_emplace(path, false);
    if (!isNew) return m_definitions.contains(dotted);
    for (const auto& file : m_sources) {
        if (file->path == path) return m_definitions.contains(dotted);
    }
    if (m_sources.size() >= kMaxFiles) return false;
    const auto content = m_files.read(path);
    if (!content) return false;
    addFile({std::string(content->begin(), content->end()), path, {m_diagnostics.addFile(path), 1, 1}});
    return m_definitions.contains(dotted);
}

ClassSymbol* Program::findClass(const std::string& dotted)
{
    if (!m_definitions.contains(dotted)) load(dotted);
    const auto found = m_definitions.find(dotted);
    return found == m_definitions.end() ? nullptr : found->second.cls;
}

/// Frame scripts become methods of a class: their variables are its fields, their functions its methods.
void Program::addTimeline(const std::string& name, const std::string& base,
                          const std::vector<FrameScript>& scripts)
{
    m_sources.push_back(std::make_unique<File>());
    File* file = m_sources.back().get();
    file->number = static_cast<int>(m_sources.size());
    file->initializer = file->addFunction();
    if (m_main == nullptr) m_main = file;
    const std::size_t before = m_diagnostics.errorCount();

    Stmt* declared = file->addStmt();
    declared->kind = StmtKind::Class;
    ClassDeclaration* declaration = declared->declaration = file->addClass();
    declaration->initializer = file->addFunction();
    declaration->modifiers.access = "public";
    declaration->modifiers.isDynamic = true;
    Package& package = file->packages.emplace_back();
    const auto dot = name.rfind('.');
    if (dot != std::string::npos) package.name = name.substr(0, dot);
    declaration->name = dot == std::string::npos ? name : name.substr(dot + 1);
    declaration->base = file->addType();
    declaration->base->name = base;

    const auto addMember = [&](StmtKind kind, Position where) {
        Stmt* member = file->addStmt();
        member->kind = kind;
        member->where = where;
        member->modifiers.access = "public";
        declaration->body.push_back(member);
        return member;
    };
    // Frames beyond those of the authoring tool's own packages are reached without imports.
    for (const char* imported :
         {"flash.display.*", "flash.events.*", "flash.text.*", "flash.utils.*", "flash.geom.*",
          "flash.media.*", "flash.net.*", "flash.ui.*", "flash.filters.*", "flash.system.*"}) {
        Stmt* stmt = file->addStmt();
        stmt->kind = StmtKind::Import;
        stmt->text = imported;
        package.body.push_back(stmt);
    }
    Function* constructor = file->addFunction();
    constructor->name = declaration->name;
    std::set<std::string> known;
    for (const FrameScript& script : scripts) {
        Parser parser(script.source, *file, m_diagnostics);
        Function* frame = parser.parseFrame("frame" + std::to_string(script.frame + 1));
        declaration->where = frame->where = script.source.start;
        std::vector<Stmt*> body;
        for (Stmt* stmt : frame->body) {
            if (stmt->kind == StmtKind::Import || stmt->kind == StmtKind::UseNamespace)
                package.body.push_back(stmt);
            else if (stmt->kind == StmtKind::Function) {
                addMember(StmtKind::Function, stmt->where)->function = stmt->function;
                known.insert(stmt->function->name);
            } else if (stmt->kind == StmtKind::Class || stmt->kind == StmtKind::Namespace)
                error(stmt->where, "expected classes and namespaces in files of their own");
            else
                body.push_back(stmt);
        }
        for (const Local& local : std::exchange(frame->locals, {})) {
            if (!known.insert(local.name).second) continue;
            Stmt* field = addMember(StmtKind::Var, script.source.start);
            field->variables.push_back({local.name, local.type, nullptr, script.source.start});
        }
        frame->captured.clear();
        frame->body = body;
        addMember(StmtKind::Function, script.source.start)->function = frame;

        // addFrameScript(frame, method)
        Expr* call = file->addExpr();
        call->kind = ExprKind::Call;
        call->a = file->addExpr();
        call->a->kind = ExprKind::Name;
        call->a->text = "addFrameScript";
        Expr* number = file->addExpr();
        number->kind = ExprKind::Number;
        number->number = script.frame;
        number->isInteger = true;
        Expr* method = file->addExpr();
        method->kind = ExprKind::Name;
        method->text = frame->name;
        call->list = {number, method};
        call->where = call->a->where = number->where = method->where = script.source.start;
        Stmt* stmt = file->addStmt();
        stmt->kind = StmtKind::Expression;
        stmt->a = call;
        stmt->where = script.source.start;
        constructor->body.push_back(stmt);
    }
    declaration->base->where = declared->where = declaration->where;
    addMember(StmtKind::Function, declaration->where)->function = constructor;
    package.body.push_back(declared);
    if (m_diagnostics.errorCount() == before) collect(file);
}

void Program::collect(File* file)
{
    std::string plain = std::filesystem::path(file->path).filename().string();
    if (plain.empty()) plain = "timeline";
    const Index fileNs = abc.ns(NamespaceKind::Private, plain + "$" + std::to_string(file->number));
    for (Package& package : file->packages) collectPackage(file, package, fileNs);
}

void Program::collectPackage(File* file, Package& package, Index fileNs)
{
    m_scopes.push_back(std::make_unique<Scope>());
    Scope& scope = *m_scopes.back();
    package.scope = &scope;
    scope.file = file;
    scope.package = package.name;
    scope.isOutside = package.isOutside;
    scope.fileNs = fileNs;
    m_packages.insert(package.name);
    for (const Stmt* stmt : package.body) {
        if (stmt->kind == StmtKind::Import) import(scope, stmt);
    }
    // Namespaces first: declarations may stand in them.
    for (const Stmt* stmt : package.body) {
        if (stmt->kind != StmtKind::Namespace) continue;
        Definition made;
        made.kind = Definition::Kind::Namespace;
        made.ns = access(scope, stmt->modifiers, stmt->where);
        made.namespaceValue = namespaceValue(scope, package.name, stmt, nullptr);
        define(scope, stmt->text, stmt->where, made);
    }
    std::set<std::string> listed;
    for (const Stmt* stmt : package.body) {
        Definition made;
        made.ns = access(scope, stmt->modifiers, stmt->where);
        if (stmt->kind == StmtKind::Class) {
            made.kind = Definition::Kind::Class;
            made.ns = access(scope, stmt->declaration->modifiers, stmt->where);
            made.cls = addClass(scope, stmt->declaration);
            made.cls->qname = abc.qname(made.ns, made.cls->name);
            made.cls->type = addType({Type::Kind::Class, made.cls->qname, made.cls, nullptr,
                                      qualified(scope.package, made.cls->name)});
            define(scope, stmt->declaration->name, stmt->where, made);
        } else if (stmt->kind == StmtKind::Function) {
            made.kind = Definition::Kind::Function;
            define(scope, stmt->function->name, stmt->where, made);
            listed.insert(stmt->function->name);
        } else if (stmt->kind == StmtKind::Var) {
            made.kind = stmt->isConst ? Definition::Kind::Constant : Definition::Kind::Variable;
            for (const Variable& variable : stmt->variables) {
                if (!listed.insert(variable.name).second) continue; // once more, as may happen in scripts
                made.typeExpr = variable.type;
                define(scope, variable.name, variable.where, made);
            }
        }
    }
    if (!package.isOutside) return;
    // Variables of inner statements belong to the whole file.
    for (const Local& local : file->initializer->locals) {
        if (m_outside.contains({file, local.name})) continue;
        bool isInPackage = false;
        for (const Package& other : file->packages)
            isInPackage = isInPackage || m_definitions.contains(qualified(other.name, local.name));
        if (isInPackage) continue;
        Definition made;
        made.ns = access(scope, {}, {});
        made.typeExpr = local.type;
        define(scope, local.name, {}, made);
    }
}

Index Program::access(const Scope& scope, const Modifiers& modifiers, Position where)
{
    const std::string& word = modifiers.access;
    if (scope.isOutside) {
        if (word == "private" || word == "protected" || word == "public")
            error(where, "expected no '" + word + "' outside of a package");
        if (word.empty() || word == "internal") return scope.fileNs;
    }
    if (word == "public") return publicNs(scope.package);
    if (word.empty() || word == "internal") return abc.ns(NamespaceKind::PackageInternal, scope.package);
    if (word == "private" || word == "protected") {
        if (!scope.isOutside)
            error(where, "expected 'public' or 'internal' in a package, found '" + word + "'");
        return scope.fileNs;
    }
    const auto found = findNamespace(word, const_cast<Scope&>(scope), nullptr);
    if (!found) error(where, "expected a namespace that is known, found '" + word + "'");
    return found.value_or(scope.fileNs);
}

Index Program::namespaceValue(const Scope& scope, const std::string& owner, const Stmt* stmt,
                              ClassSymbol* cls)
{
    if (stmt->a == nullptr) return abc.ns(NamespaceKind::Namespace, colons(owner, stmt->text));
    if (stmt->a->kind == ExprKind::String) return abc.ns(NamespaceKind::Namespace, stmt->a->text);
    if (stmt->a->kind == ExprKind::Name) {
        if (const auto found = findNamespace(stmt->a->text, const_cast<Scope&>(scope), cls)) return *found;
    }
    error(stmt->where, "expected a text or a namespace that is known as the value of a namespace");
    return publicNs();
}

void Program::define(Scope& scope, const std::string& name, Position where, Definition definition)
{
    definition.scope = &scope;
    definition.file = scope.file;
    definition.qname = abc.qname(definition.ns, name);
    const bool isNew = scope.isOutside
                           ? m_outside.try_emplace({scope.file, name}, definition).second
                           : m_definitions.try_emplace(qualified(scope.package, name), definition).second;
    if (!isNew) error(where, "expected a new name, found '" + name + "' a second time");
}

ClassSymbol* Program::addClass(Scope& scope, ClassDeclaration* declaration)
{
    m_classes.push_back(std::make_unique<ClassSymbol>());
    ClassSymbol* cls = m_classes.back().get();
    cls->package = scope.package;
    cls->name = declaration->name;
    cls->declaration = declaration;
    cls->scope = &scope;
    const std::string text = scope.isOutside
                                 ? abc.data.strings[abc.data.namespaces[scope.fileNs].name] + ":" + cls->name
                                 : colons(scope.package, cls->name);
    cls->privateNs = abc.ns(NamespaceKind::Private, text);
    cls->protectedNs = abc.ns(NamespaceKind::Protected, text);
    cls->staticProtectedNs = abc.ns(NamespaceKind::StaticProtected, text);
    if (declaration->isInterface) cls->interfaceNs = abc.ns(NamespaceKind::Namespace, text);
    cls->index = static_cast<Index>(abc.data.instances.size());
    abc.data.instances.emplace_back();
    abc.data.classes.emplace_back();
    return cls;
}

Index Program::memberAccess(ClassSymbol& cls, const Modifiers& modifiers, Position where)
{
    const std::string& word = modifiers.access;
    if (cls.declaration->isInterface) {
        if (!word.empty()) error(where, "expected no '" + word + "' in an interface");
        return cls.interfaceNs;
    }
    if (word == "protected") return modifiers.isStatic ? cls.staticProtectedNs : cls.protectedNs;
    if (word.empty()) return abc.ns(NamespaceKind::PackageInternal, cls.package);
    const auto found = findNamespace(word, *cls.scope, &cls);
    if (!found) error(where, "expected a namespace that is known, found '" + word + "'");
    return found.value_or(publicNs());
}

void Program::declareMembers(ClassSymbol& cls)
{
    if (cls.isDeclared) return;
    cls.isDeclared = true;
    if (cls.declaration->base != nullptr) {
        const TypePtr base = resolve(cls.declaration->base, *cls.scope);
        if (base->kind != Type::Kind::Class || !base->cls->declaration->isInterface)
            cls.base = base;
        else
            error(cls.declaration->base->where,
                  "expected a class to extend, found the interface '" + base->text + "'");
        if (base->kind == Type::Kind::Class && base->cls->declaration->modifiers.isFinal)
            error(cls.declaration->base->where,
                  "expected a class to extend that is not final, found '" + base->text + "'");
        if (cls.base != nullptr && cls.base->kind == Type::Kind::Object) cls.base = nullptr;
    }
    for (const Stmt* stmt : cls.declaration->body) {
        if (stmt->kind == StmtKind::Namespace)
            cls.namespaces[stmt->text] =
                namespaceValue(*cls.scope, colons(cls.package, cls.name), stmt, &cls);
    }
    for (const Stmt* stmt : cls.declaration->body) declareMember(cls, stmt);
    // Variables of statements in the body are the class's own.
    for (const Local& local : cls.declaration->initializer->locals) {
        if (cls.members.contains(local.name)) continue;
        Member member;
        member.ns = cls.privateNs;
        member.isStatic = true;
        member.type = resolve(local.type, *cls.scope);
        addMember(cls, local.name, cls.declaration->where, member);
    }
    // An interface has the members of those it extends.
    if (!cls.declaration->isInterface) return;
    for (const TypeExpr* type : cls.declaration->interfaces) {
        const TypePtr extended = resolve(type, *cls.scope);
        if (extended->kind != Type::Kind::Class) continue;
        declareMembers(*extended->cls);
        for (const auto& [name, member] : extended->cls->members) {
            Member inherited = member;
            inherited.ns = cls.interfaceNs;
            cls.members.emplace(name, inherited);
        }
    }
}

void Program::declareMember(ClassSymbol& cls, const Stmt* stmt)
{
    if (stmt->kind != StmtKind::Var && stmt->kind != StmtKind::Function) return;
    Member member;
    member.isStatic = stmt->modifiers.isStatic;
    member.ns = memberAccess(cls, stmt->modifiers, stmt->where);
    if (stmt->kind == StmtKind::Var) {
        if (cls.declaration->isInterface) error(stmt->where, "expected functions only in an interface");
        member.kind = stmt->isConst ? Member::Kind::Constant : Member::Kind::Variable;
        for (const Variable& variable : stmt->variables) {
            member.type = resolve(variable.type, *cls.scope);
            addMember(cls, variable.name, variable.where, member);
        }
        return;
    }
    const Function* function = stmt->function;
    if (function->name == cls.name && function->role == Function::Role::Plain) return; // the constructor
    member.type = resolve(function->returnType, *cls.scope);
    member.kind = Member::Kind::Method;
    if (function->role == Function::Role::Getter) member.kind = Member::Kind::Getter;
    if (function->role == Function::Role::Setter) {
        member.kind = Member::Kind::Setter;
        if (function->parameters.size() != 1)
            error(function->where, "expected one parameter of a setter");
        else
            member.type = resolve(function->parameters[0].type, *cls.scope);
    }
    addMember(cls, function->name, function->where, member);
}

void Program::addMember(ClassSymbol& cls, const std::string& name, Position where, Member member)
{
    member.name = abc.qname(member.ns, name);
    const auto [begin, end] = cls.members.equal_range(name);
    for (auto entry = begin; entry != end; ++entry) {
        const Member& other = entry->second;
        const bool areAccessors =
            (other.kind == Member::Kind::Getter && member.kind == Member::Kind::Setter) ||
            (other.kind == Member::Kind::Setter && member.kind == Member::Kind::Getter);
        if (other.isStatic == member.isStatic && other.ns == member.ns && !areAccessors)
            error(where, "expected a new member, found '" + name + "' a second time");
    }
    cls.members.emplace(name, member);
}

} // namespace swfc::actionscript3
