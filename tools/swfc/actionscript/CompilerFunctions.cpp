#include "swfc/actionscript/Compiler.h"

#include <algorithm>

namespace swfc::actionscript
{
namespace
{

constexpr int kMaxRegisters = 255;

// Flags of a function's header. For this, arguments and super there is one bit to put the value into a
// register and one to leave it out altogether.
constexpr int kPreloadThis = 0x01, kSuppressThis = 0x02;
constexpr int kPreloadArguments = 0x04, kSuppressArguments = 0x08;
constexpr int kPreloadSuper = 0x10, kSuppressSuper = 0x20;
constexpr int kPreloadRoot = 0x40, kPreloadParent = 0x80, kPreloadGlobal = 0x100;

} // namespace

/// Decides what lives in registers and writes the part of the header that says so.
void Compiler::chooseRegisters(const Function& fn, const MethodContext& method, Scope& scope,
                               Assembler::Payload& header)
{
    int flags = 0, next = 1;
    const auto assign = [&](const std::string& name, int flag) {
        flags |= flag;
        scope.registers[name] = static_cast<std::uint8_t>(next++);
    };
    const auto isOwnName = [&](const std::string& name) {
        return fn.locals.contains(name) || fn.namedOnly.contains(name) ||
               std::find(fn.parameters.begin(), fn.parameters.end(), name) != fn.parameters.end();
    };
    const bool mayNameThem = fn.dynamicScope;
    const bool usesThis = fn.usesThis || !method.className.empty();
    if (usesThis)
        assign("this", kPreloadThis);
    else if (!mayNameThem)
        flags |= kSuppressThis;
    if (fn.usesArguments && !isOwnName("arguments"))
        assign("arguments", kPreloadArguments);
    else if (!mayNameThem)
        flags |= kSuppressArguments;
    if (fn.usesSuper || method.callSuperFirst)
        assign("super", kPreloadSuper);
    else if (!mayNameThem)
        flags |= kSuppressSuper;
    // Inside `with` these three may be members of the object.
    if (!fn.dynamicScope) {
        constexpr std::pair<const char*, int> kAlways[] = {
            {"_root", kPreloadRoot}, {"_parent", kPreloadParent}, {"_global", kPreloadGlobal}};
        for (const auto& [name, flag] : kAlways) {
            const bool own = isOwnName(name) ||
                             (!method.className.empty() && m_context.classes.find(method.className, name));
            if (fn.references.contains(name) && !fn.captured.contains(name) && !own) assign(name, flag);
        }
    }
    const auto fits = [&](const std::string& name) {
        return !fn.dynamicScope && !fn.captured.contains(name) && !fn.namedOnly.contains(name) &&
               name != "arguments" && !scope.registers.contains(name) && next < kMaxRegisters - 2;
    };
    scope.temporary[0] = 0;
    std::vector<int> parameterRegisters;
    for (const std::string& name : fn.parameters) {
        const bool unique = std::count(fn.parameters.begin(), fn.parameters.end(), name) == 1;
        int number = 0;
        if (unique && fits(name)) {
            number = next;
            scope.registers[name] = static_cast<std::uint8_t>(next++);
        }
        parameterRegisters.push_back(number);
    }
    for (const std::string& name : fn.locals) {
        const bool isParameter =
            std::find(fn.parameters.begin(), fn.parameters.end(), name) != fn.parameters.end();
        if (!isParameter && fits(name)) scope.registers[name] = static_cast<std::uint8_t>(next++);
    }
    scope.temporary[1] = static_cast<std::uint8_t>(next++);
    header.u8(next).u16(flags);
    for (std::size_t i = 0; i < fn.parameters.size(); ++i) {
        header.u8(parameterRegisters[i]).text(fn.parameters[i]);
    }
}

/// Emits the function. One with a name becomes a variable of the scope; one without stays on the stack.
void Compiler::function(const Function& fn, const std::string& name, const MethodContext& method)
{
    m_asm.at(fn.where);
    Scope inner;
    inner.isFunction = true;
    inner.method = method;
    inner.function = &fn;
    Assembler::Payload header;
    header.text(name).u16(static_cast<int>(fn.parameters.size()));
    const Label end = m_asm.newLabel();
    if (m_version >= 7) {
        chooseRegisters(fn, method, inner, header);
    } else {
        for (const std::string& parameter : fn.parameters) header.text(parameter);
    }
    header.length(end);
    m_asm.record(m_version >= 7 ? Action::DefineFunction2 : Action::DefineFunction, header);
    std::swap(m_scope, inner);
    if (method.callSuperFirst) {
        m_asm.push(0.0);
        nameValue("super", fn.where);
        m_asm.push(UndefinedValue{});
        m_asm.op(Action::CallMethod);
        m_asm.op(Action::Pop);
    }
    hoisted(fn.body);
    std::swap(m_scope, inner);
    m_asm.mark(end);
}

void Compiler::functionExpression(const Function& fn)
{
    if (!need(5, fn.where, "functions")) return;
    // A class's members are not looked for in functions inside its methods: their `this` is another one.
    function(fn, fn.name, {});
    if (fn.name.empty()) return;
    m_asm.push(fn.name);
    m_asm.op(Action::GetVariable);
}

std::string Compiler::fullClassName(const std::string& name) const
{
    const auto imported = m_imports.find(name);
    return imported == m_imports.end() ? name : imported->second;
}

/// A class becomes a constructor function at its dotted place under _global, unless it is there already.
void Compiler::classDeclaration(const ClassDeclaration& declaration)
{
    m_context.classes.add(declaration);
    const std::string& name = declaration.name;
    const std::size_t lastDot = name.rfind('.');
    if (lastDot != std::string::npos) m_imports[name.substr(lastDot + 1)] = name;
    if (declaration.isIntrinsic) return;
    const auto pushParent = [&](const std::string& path) {
        const std::size_t dot = path.rfind('.');
        if (dot == std::string::npos) {
            m_asm.push("_global");
            m_asm.op(Action::GetVariable);
        } else {
            dottedValue(path.substr(0, dot), true);
        }
        m_asm.push(dot == std::string::npos ? path : path.substr(dot + 1));
    };
    for (std::size_t dot = name.find('.'); dot != std::string::npos; dot = name.find('.', dot + 1)) {
        const std::string package = name.substr(0, dot);
        const Label exists = m_asm.newLabel();
        dottedValue(package, true);
        m_asm.branch(Action::If, exists);
        pushParent(package);
        m_asm.push(0.0);
        m_asm.op(Action::InitObject);
        m_asm.op(Action::SetMember);
        m_asm.mark(exists);
    }
    const Label done = m_asm.newLabel();
    dottedValue(name, true);
    m_asm.branch(Action::If, done);
    pushParent(name);
    const Function empty;
    const Function* constructor = declaration.constructor != nullptr ? declaration.constructor : &empty;
    const bool derived = !declaration.base.empty();
    function(*constructor, {}, {name, false, derived && !constructor->callsSuper});
    m_asm.op(Action::SetMember);
    if (derived && m_version >= 7) {
        dottedValue(name, true);
        dottedValue(fullClassName(declaration.base), false);
        m_asm.op(Action::Extends);
    } else if (derived) {
        for (const char* link : {"__proto__", "__constructor__"}) {
            dottedValue(name + ".prototype", true);
            m_asm.push(link);
            const std::string base = fullClassName(declaration.base);
            dottedValue(link[2] == 'p' ? base + ".prototype" : base, false);
            m_asm.op(Action::SetMember);
        }
    }
    if (!declaration.interfaces.empty() && m_version >= 7) {
        for (const std::string& interface : declaration.interfaces)
            dottedValue(fullClassName(interface), false);
        m_asm.push(static_cast<double>(declaration.interfaces.size()));
        dottedValue(name, true);
        m_asm.op(Action::ImplementsOp);
    }
    classMembers(declaration);
    // Members of a class do not show in for..in.
    m_asm.push(1.0);
    m_asm.push(NullValue{});
    dottedValue(name + ".prototype", true);
    m_asm.push(3.0);
    m_asm.push("ASSetPropFlags");
    m_asm.op(Action::CallFunction);
    m_asm.op(Action::Pop);
    m_asm.mark(done);
}

void Compiler::classMembers(const ClassDeclaration& declaration)
{
    using Kind = ClassMember::Kind;
    for (const ClassMember& member : declaration.members) {
        if (member.kind == Kind::Field && member.value == nullptr) continue;
        m_asm.at(member.where);
        dottedValue(member.isStatic ? declaration.name : declaration.name + ".prototype", true);
        const char* prefix = member.kind == Kind::Getter   ? "__get__"
                             : member.kind == Kind::Setter ? "__set__"
                                                           : "";
        m_asm.push(prefix + member.name);
        if (member.kind == Kind::Field) {
            Scope around;
            around.method = {declaration.name, true, false};
            std::swap(m_scope.method, around.method);
            value(member.value);
            std::swap(m_scope.method, around.method);
        } else {
            function(*member.function, {}, {declaration.name, member.isStatic, false});
        }
        m_asm.op(Action::SetMember);
    }
    accessors(declaration);
}

/// Joins the halves of each get/set pair to a property.
void Compiler::accessors(const ClassDeclaration& declaration)
{
    using Kind = ClassMember::Kind;
    std::map<std::pair<bool, std::string>, int> found; // 1: has a getter, 2: has a setter
    for (const ClassMember& member : declaration.members) {
        if (member.kind == Kind::Getter) found[{member.isStatic, member.name}] |= 1;
        if (member.kind == Kind::Setter) found[{member.isStatic, member.name}] |= 2;
    }
    for (const auto& [key, halves] : found) {
        const std::string holder = key.first ? declaration.name : declaration.name + ".prototype";
        if ((halves & 2) != 0)
            dottedValue(holder + ".__set__" + key.second, true);
        else
            m_asm.push(NullValue{});
        if ((halves & 1) != 0) {
            dottedValue(holder + ".__get__" + key.second, true);
        } else {
            // A property needs a getter; reading a write-only one gives undefined.
            const Function none;
            function(none, {}, {});
        }
        m_asm.push(key.second);
        m_asm.push(3.0);
        dottedValue(holder, true);
        m_asm.push("addProperty");
        m_asm.op(Action::CallMethod);
        m_asm.op(Action::Pop);
    }
}

} // namespace swfc::actionscript
