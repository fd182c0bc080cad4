#include "swfc/actionscript3/FunctionCompiler.h"

#include "swfc/actionscript3/Library.h"

#include <limits>

namespace swfc::actionscript3
{

using abc::MultinameKind;

bool FunctionCompiler::declares(const std::string& name) const
{
    for (const CatchVariable& variable : m_catches) {
        if (variable.name == name) return true;
    }
    TypePtr ignored = nullptr;
    return m_locals.contains(name) || findOuter(name, ignored);
}

/// Variables of the functions around this one stand in scopes, under their names.
bool FunctionCompiler::findOuter(const std::string& name, TypePtr& type) const
{
    for (const FunctionCompiler* at = m_context.outer; at != nullptr; at = at->m_context.outer) {
        for (auto variable = at->m_catches.rbegin(); variable != at->m_catches.rend(); ++variable) {
            if (variable->name != name || !variable->isSlot) continue;
            type = variable->type;
            return true;
        }
        const auto found = at->m_locals.find(name);
        if (found == at->m_locals.end() || !found->second.isSlot) continue;
        type = found->second.type;
        return true;
    }
    return false;
}

/// Within a with statement only the machine can tell whose name it is.
FunctionCompiler::Place FunctionCompiler::resolveDynamic(const std::string& name)
{
    Place place;
    place.type = m_program.types().any;
    std::vector<Index> namespaces = open();
    const Program::Found found = m_program.find(name, scope());
    if (found.name != 0) {
        place.isKnown = true;
        place.definition = found.definition;
        const Index ns = m_program.abc.data.multinames[found.name].ns;
        if (std::ranges::find(namespaces, ns) == namespaces.end()) namespaces.push_back(ns);
    }
    place.name = m_program.openName(name, namespaces, &scope());
    return place;
}

Index FunctionCompiler::memberQName(const Member& member, const std::string& name)
{
    AbcFile& abc = m_program.abc;
    const abc::NamespaceInfo& info = abc.data.namespaces[member.ns];
    // Members of a base class are found in the protected namespace of the class itself as well.
    if (info.kind == abc::NamespaceKind::Protected && m_context.cls != nullptr)
        return abc.qname(m_context.cls->protectedNs, name);
    return member.name;
}

FunctionCompiler::Place FunctionCompiler::resolve(const std::string& name)
{
    if (m_with > 0) return resolveDynamic(name);
    for (auto variable = m_catches.rbegin(); variable != m_catches.rend(); ++variable) {
        if (variable->name != name) continue;
        if (!variable->isSlot)
            return {Place::Kind::Register, variable->number, 0, 0, variable->type, false, true};
        return {Place::Kind::Slot, 1, variable->number, 0, variable->type, false, true};
    }
    if (const auto found = m_locals.find(name); found != m_locals.end()) {
        const LocalPlace& local = found->second;
        return {local.isSlot ? Place::Kind::Slot : Place::Kind::Register,
                local.number,
                m_activation,
                0,
                local.type,
                local.isConst,
                true};
    }
    Place place;
    place.type = m_program.types().any;
    if (m_isWithin) return resolveDynamic(name);
    if (findOuter(name, place.type)) {
        place.name = m_program.abc.qname(m_program.publicNs(), name);
        place.isKnown = true;
        place.isVariable = true;
        return place;
    }
    if (m_context.cls != nullptr) {
        const std::vector<Index> namespaces = open();
        const Member* member = nullptr;
        if (!m_context.isStatic)
            member = m_program.findMember(m_context.cls, name, false, namespaces, Member::Kind::Getter);
        if (member == nullptr && !m_context.isStatic)
            member = m_program.findMember(m_context.cls, name, false, namespaces, Member::Kind::Setter);
        if (member != nullptr && m_kind != Kind::Closure) place.kind = Place::Kind::Member;
        if (member == nullptr)
            member = m_program.findMember(m_context.cls, name, true, namespaces, Member::Kind::Getter);
        if (member == nullptr)
            member = m_program.findMember(m_context.cls, name, true, namespaces, Member::Kind::Setter);
        if (member != nullptr) {
            place.name = memberQName(*member, name);
            place.type = member->kind == Member::Kind::Method ? m_program.types().function : member->type;
            place.result = member->kind == Member::Kind::Method ? member->type : nullptr;
            place.isFilled = place.kind == Place::Kind::Member && isFilledHere(*member);
            place.isKnown = true;
            return place;
        }
    }
    const Program::Found found = m_program.find(name, scope());
    place.definition = found.definition;
    place.name = found.name;
    place.isKnown = found.name != 0;
    if (found.definition != nullptr) place.type = m_program.typeOf(*found.definition);
    if (found.name == 0) place.name = m_program.openName(name, open(), &scope());
    return place;
}

/// Names of the language that are values.
TypePtr FunctionCompiler::constantName(const std::string& name)
{
    if (name == "undefined") {
        m_code.op(Op::pushundefined);
        return m_program.types().any;
    }
    if (name == "NaN") {
        m_code.op(Op::pushnan);
        return m_program.types().number;
    }
    if (name == "Infinity") {
        m_code.op(Op::pushdouble, m_program.abc.number(std::numeric_limits<double>::infinity()));
        return m_program.types().number;
    }
    return nullptr;
}

TypePtr FunctionCompiler::getPlace(const Place& place)
{
    switch (place.kind) {
    case Place::Kind::Register: m_code.getLocal(place.number); break;
    case Place::Kind::Slot:
        m_code.getLocal(place.holder);
        m_code.op(Op::getslot, place.number);
        break;
    case Place::Kind::Member:
        m_code.getLocal(0);
        m_code.op(Op::getproperty, place.name);
        break;
    case Place::Kind::Lexical: m_code.op(Op::getlex, place.name); break;
    }
    return place.type;
}

void FunctionCompiler::beginStore(const Place& place)
{
    if (place.kind == Place::Kind::Slot) m_code.getLocal(place.holder);
    if (place.kind == Place::Kind::Member) m_code.getLocal(0);
    if (place.kind == Place::Kind::Lexical) m_code.op(Op::findproperty, place.name);
}

void FunctionCompiler::endStore(const Place& place, bool wanted)
{
    if (wanted) m_code.op(Op::dup);
    if (place.kind == Place::Kind::Register) {
        m_code.setLocal(place.number);
        return;
    }
    const std::uint32_t reg = wanted ? temporary() : 0;
    if (wanted) m_code.setLocal(reg);
    if (place.kind == Place::Kind::Slot)
        m_code.op(Op::setslot, place.number);
    else
        m_code.op(place.isFilled ? Op::initproperty : Op::setproperty, place.name);
    if (!wanted) return;
    m_code.getLocal(reg);
    release(reg);
}

TypePtr FunctionCompiler::nameValue(const Expr* expr)
{
    if (expr->qualifier == nullptr && !expr->isAttribute && !expr->isAnyName) {
        const Place place = resolve(expr->text);
        if (place.kind == Place::Kind::Lexical && place.definition == nullptr && place.isKnown &&
            !place.isVariable) {
            if (const TypePtr type = constantName(expr->text)) return type;
        }
        return getPlace(place);
    }
    const Target target = openTarget(expr);
    pushTarget(target);
    const TypePtr type = getTarget(target);
    closeTarget(target);
    return type;
}

/// @returns `a.b.c` as text; empty when it is something else
std::string FunctionCompiler::dotted(const Expr* expr) const
{
    std::vector<std::string_view> parts;
    for (; expr->kind == ExprKind::Member; expr = expr->a) {
        if (expr->qualifier != nullptr || expr->isAttribute || expr->isAnyName || expr->b != nullptr)
            return {};
        parts.push_back(expr->text);
    }
    if (expr->kind != ExprKind::Name || expr->qualifier != nullptr || expr->isAttribute) return {};
    std::string text = expr->text;
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) text.append(".").append(*part);
    return text;
}

/// What a name with its package in front means; nothing when it is no such name.
std::optional<Program::Found> FunctionCompiler::packagedName(const Expr* expr)
{
    if (expr->kind == ExprKind::Name) {
        if (expr->qualifier != nullptr || expr->isAttribute || m_with > 0 || m_isWithin ||
            declares(expr->text))
            return std::nullopt;
        return m_program.find(expr->text, scope());
    }
    if (expr->kind != ExprKind::Member) return std::nullopt;
    const std::string text = dotted(expr);
    const auto first = text.find('.'), last = text.rfind('.');
    if (first == std::string::npos) return std::nullopt;
    const std::string leftmost = text.substr(0, first);
    if (!m_program.isPackage(leftmost, scope()) || declares(leftmost)) return std::nullopt;
    if (!m_program.isPackage(text.substr(0, last), scope())) return std::nullopt;
    const Program::Found found = m_program.findDotted(text, scope());
    if (found.name == 0) return std::nullopt;
    return found;
}

Index FunctionCompiler::runtimeName(bool isAttribute)
{
    return m_program.abc.multiname(isAttribute ? MultinameKind::MultinameLA : MultinameKind::MultinameL, 0,
                                   m_program.abc.nsSet(open()));
}

/// The member of a class that is known here.
FunctionCompiler::MemberName FunctionCompiler::knownMember(const std::string& name, TypePtr base,
                                                           bool forSetting)
{
    const auto& types = m_program.types();
    if (base != nullptr && base->kind == Type::Kind::Class) {
        const Member* member = m_program.findMember(base->cls, name, false, open(),
                                                    forSetting ? Member::Kind::Setter : Member::Kind::Getter);
        if (member != nullptr) {
            const bool isMethod = member->kind == Member::Kind::Method;
            // Whatever implements an interface has its members as public ones.
            const Index qname = base->cls->declaration->isInterface
                                    ? m_program.abc.qname(m_program.publicNs(), name)
                                    : memberQName(*member, name);
            return {qname, 0, member->type, isMethod};
        }
    }
    return {m_program.openName(name, open(), nullptr), 0, types.any, false};
}

/// Puts what a name takes from the stack there.
FunctionCompiler::MemberName FunctionCompiler::identifier(const Expr* expr, TypePtr base, bool forSetting)
{
    AbcFile& abc = m_program.abc;
    const bool isAttribute = expr->isAttribute;
    const Index text = expr->isAnyName ? 0 : abc.string(expr->text);
    const auto pick = [&](MultinameKind plain, MultinameKind attribute) {
        return isAttribute ? attribute : plain;
    };
    MemberName result{0, 0, m_program.types().any, false};
    if (expr->qualifier == nullptr) {
        if (expr->b != nullptr) {
            value(expr->b);
            return {runtimeName(isAttribute), 1, m_program.types().any, false};
        }
        if (!isAttribute && !expr->isAnyName) return knownMember(expr->text, base, forSetting);
        result.name =
            abc.multiname(pick(MultinameKind::Multiname, MultinameKind::MultinameA), text, abc.nsSet(open()));
        return result;
    }
    const std::string& qualifier = expr->qualifier->text;
    std::optional<Index> ns;
    if (expr->qualifier->isAnyName)
        ns = 0;
    else if (!declares(qualifier))
        ns = m_program.findNamespace(qualifier, scope(), m_context.cls);
    if (!ns) {
        nameValue(expr->qualifier);
        if (expr->b == nullptr) {
            result.parts = 1;
            result.name = abc.multiname(pick(MultinameKind::RtqName, MultinameKind::RtqNameA), text, 0);
        } else {
            value(expr->b);
            result.parts = 2;
            result.name = abc.multiname(pick(MultinameKind::RtqNameL, MultinameKind::RtqNameLA), 0, 0);
        }
    } else if (expr->b == nullptr) {
        result.name = abc.multiname(pick(MultinameKind::QName, MultinameKind::QNameA), text, *ns);
    } else {
        value(expr->b);
        result.parts = 1;
        result.name =
            abc.multiname(pick(MultinameKind::MultinameL, MultinameKind::MultinameLA), 0, abc.nsSet({*ns}));
    }
    return result;
}

/// The object before the dot, when it is a class of the program: it is pushed and its members are known.
TypePtr FunctionCompiler::staticBase(const Expr* expr, ClassSymbol*& cls)
{
    cls = nullptr;
    const auto found = packagedName(expr);
    if (found && found->definition != nullptr && found->definition->kind == Definition::Kind::Class &&
        !(expr->kind == ExprKind::Name && resolve(expr->text).definition == nullptr)) {
        cls = found->definition->cls;
        m_code.op(Op::getlex, found->name);
        return m_program.types().cls;
    }
    return value(expr);
}

FunctionCompiler::MemberName FunctionCompiler::openMember(const Expr* expr)
{
    ClassSymbol* cls = nullptr;
    const TypePtr base = staticBase(expr->a, cls);
    const bool isPlain =
        expr->qualifier == nullptr && !expr->isAttribute && !expr->isAnyName && expr->b == nullptr;
    if (cls != nullptr && isPlain) {
        const Member* member = m_program.findMember(cls, expr->text, true, open(), Member::Kind::Getter);
        if (member != nullptr)
            return {memberQName(*member, expr->text), 0, member->type, member->kind == Member::Kind::Method};
    }
    return identifier(expr, base, false);
}

TypePtr FunctionCompiler::member(const Expr* expr)
{
    if (const auto found = packagedName(expr)) {
        m_code.op(Op::getlex, found->name);
        return found->definition != nullptr ? m_program.typeOf(*found->definition) : m_program.types().any;
    }
    if (expr->a->kind == ExprKind::Super) return super(expr);
    const MemberName name = openMember(expr);
    m_code.op(Op::getproperty, name.name, name.parts);
    return name.isMethod ? m_program.types().function : name.type;
}

TypePtr FunctionCompiler::super(const Expr* expr)
{
    const Target target = openTarget(expr);
    pushTarget(target);
    const TypePtr type = getTarget(target);
    closeTarget(target);
    return type;
}

TypePtr FunctionCompiler::index(const Expr* expr)
{
    if (expr->a->kind == ExprKind::Super) return super(expr);
    const TypePtr base = value(expr->a);
    const TypePtr type = value(expr->b);
    m_code.op(Op::getproperty, runtimeName(), 1);
    if (base->kind == Type::Kind::Vector && type->isNumeric()) return base->element;
    return m_program.types().any;
}

} // namespace swfc::actionscript3
