#include "swfc/actionscript3/FunctionCompiler.h"

#include <cmath>
#include <limits>

namespace swfc::actionscript3
{

using abc::MethodInfo;

namespace
{

constexpr std::uint32_t kMaxRegisters = 60000;

} // namespace

std::uint32_t FunctionCompiler::temporary()
{
    if (!m_free.empty()) {
        const std::uint32_t reg = m_free.back();
        m_free.pop_back();
        return reg;
    }
    if (m_registers == kMaxRegisters)
        error(m_function != nullptr ? m_function->where : Position{},
              "expected fewer variables in one function");
    return m_registers++;
}

Index FunctionCompiler::function(const Function& fn, const std::string& name)
{
    MethodInfo info;
    m_function = &fn;
    m_isWithin = m_context.outer != nullptr && (m_context.outer->m_with > 0 || m_context.outer->m_isWithin);
    m_returnType = m_program.resolve(fn.returnType, scope());
    if (m_kind == Kind::Constructor) m_returnType = m_program.types().none;
    info.returnType = m_kind == Kind::Constructor ? 0 : m_returnType->name;
    parameters(fn, info);
    chooseLocals(fn);
    prologue(fn);
    // Namespaces that the function opens are its own.
    const std::vector<Index> used = scope().used;
    statements(fn.body);
    scope().used = used;
    return finish(name, std::move(info));
}

void FunctionCompiler::parameters(const Function& fn, MethodInfo& info)
{
    for (const Variable& parameter : fn.parameters) {
        const TypePtr type = m_program.resolve(parameter.type, scope());
        if (type->kind == Type::Kind::Void) error(parameter.where, "expected a type of values, found 'void'");
        info.parameterTypes.push_back(type->name);
        if (parameter.value != nullptr) {
            const auto value = constant(parameter.value, type);
            if (!value) error(parameter.value->where, "expected a constant as the value of a parameter");
            info.optionals.push_back(value.value_or(abc::Constant{0x0C, 0x0C}));
            info.flags |= MethodInfo::HasOptional;
        }
        m_locals[parameter.name] = {false, m_registers++, type, false};
    }
    if (!fn.rest.empty()) {
        m_locals[fn.rest] = {false, m_registers++, m_program.types().array, false};
        info.flags |= MethodInfo::NeedRest;
    } else if (fn.usesArguments && !m_locals.contains("arguments")) {
        m_locals["arguments"] = {false, m_registers++, m_program.types().any, false};
        info.flags |= MethodInfo::NeedArguments;
    }
}

/// Variables that inner functions or with statements may seek become slots of an activation, all others
/// registers.
void FunctionCompiler::chooseLocals(const Function& fn)
{
    std::vector<std::pair<std::string, std::uint32_t>> moved; // parameters, to be copied
    std::uint32_t slots = 0;
    const auto addSlot = [&](const std::string& name, LocalPlace& place) {
        place.isSlot = true;
        place.number = ++slots;
        abc::Trait trait;
        trait.name = m_program.abc.qname(m_program.publicNs(), name);
        trait.id = slots;
        trait.type = place.type->name;
        m_activationTraits.push_back(trait);
    };
    for (auto& [name, place] : m_locals) {
        if (!fn.captured.contains(name)) continue;
        moved.emplace_back(name, place.number);
        addSlot(name, place);
    }
    for (const Local& local : fn.locals) {
        if (m_locals.contains(local.name)) continue;
        LocalPlace place{false, 0, m_program.resolve(local.type, scope()), local.isConst};
        if (place.type->kind == Type::Kind::Void) error(fn.where, "expected a type of values, found 'void'");
        if (fn.captured.contains(local.name))
            addSlot(local.name, place);
        else
            place.number = temporary();
        m_locals[local.name] = place;
    }
    if (slots > 0) m_activation = temporary();
    if (m_kind != Kind::Closure) {
        m_code.getLocal(0);
        m_code.op(Op::pushscope);
        m_scopes.push_back({0, false});
    }
    if (m_activation == 0) return;
    m_code.op(Op::newactivation);
    m_code.op(Op::dup);
    m_code.setLocal(m_activation);
    m_code.op(Op::pushscope);
    m_scopes.push_back({m_activation, false});
    for (const auto& [name, from] : moved) {
        m_code.getLocal(m_activation);
        m_code.getLocal(from);
        m_code.op(Op::setslot, m_locals[name].number);
    }
}

void FunctionCompiler::prologue(const Function& fn)
{
    if (fn.usesXmlNamespace) m_usesXmlNamespace = true;
    // Registers hold undefined, which is none of most types' values.
    for (const Local& local : fn.locals) {
        const LocalPlace& place = m_locals[local.name];
        if (place.isSlot || place.number <= fn.parameters.size()) continue;
        switch (place.type->kind) {
        case Type::Kind::Any: continue;
        case Type::Kind::Int: m_code.op(Op::pushbyte, 0); break;
        case Type::Kind::Uint:
            m_code.op(Op::pushbyte, 0);
            m_code.op(Op::convert_u);
            break;
        case Type::Kind::Number: m_code.op(Op::pushnan); break;
        case Type::Kind::Boolean: m_code.op(Op::pushfalse); break;
        default: m_code.op(Op::pushnull); coerce(place.type, m_program.types().any);
        }
        m_code.setLocal(place.number);
    }
    makeFunctions(fn);
    if (m_kind != Kind::Constructor) return;
    fields();
    if (!fn.callsSuper) {
        m_code.getLocal(0);
        m_code.call(Op::constructsuper, 0);
    }
}

/// Functions declared within are there from the beginning.
void FunctionCompiler::makeFunctions(const Function& fn)
{
    for (const Function* inner : fn.functions) {
        const Place place = resolve(inner->name);
        const Index method = closure(*inner);
        beginStore(place);
        m_code.op(Op::newfunction, method);
        coerce(place.type, m_program.types().function);
        endStore(place, false);
    }
}

Index FunctionCompiler::closure(const Function& fn)
{
    FunctionCompiler inner({m_program, m_context.scope, m_context.cls, m_context.isStatic, this,
                            m_context.scopeDepth + static_cast<std::uint32_t>(m_code.scopes())},
                           Kind::Closure);
    return inner.function(fn, fn.name);
}

/// First values of fields that take code; the others are in the class's description.
void FunctionCompiler::fields()
{
    for (const Stmt* stmt : m_context.cls->declaration->body) {
        if (stmt->kind != StmtKind::Var || stmt->modifiers.isStatic) continue;
        for (const Variable& variable : stmt->variables) {
            if (variable.value == nullptr) continue;
            const TypePtr type = m_program.resolve(variable.type, scope());
            if (constant(variable.value, type)) continue;
            const auto [begin, end] = m_context.cls->members.equal_range(variable.name);
            for (auto entry = begin; entry != end; ++entry) {
                if (!entry->second.isStatic) initialize(variable, type, entry->second.name, true);
            }
        }
    }
}

void FunctionCompiler::initialize(const Variable& variable, TypePtr type, Index name, bool onThis)
{
    // The parameters of a constructor are not seen here.
    auto locals = std::exchange(m_locals, {});
    if (m_kind == Kind::ScriptInit || m_kind == Kind::StaticInit) m_locals = locals;
    if (onThis)
        m_code.getLocal(0);
    else
        m_code.op(Op::findproperty, name);
    valueAs(variable.value, type);
    m_code.op(Op::initproperty, name);
    m_locals = std::move(locals);
}

void FunctionCompiler::beginInit(const Function* fn)
{
    m_function = fn;
    m_returnType = m_program.types().any;
    m_code.getLocal(0);
    m_code.op(Op::pushscope);
    m_scopes.push_back({0, false});
    if (fn != nullptr) {
        m_usesXmlNamespace = fn->usesXmlNamespace;
        makeFunctions(*fn);
    }
}

Index FunctionCompiler::finishInit(const std::string& name) { return finish(name, {}); }

Index FunctionCompiler::finish(const std::string& name, MethodInfo info)
{
    AbcFile& abc = m_program.abc;
    info.name = name.empty() ? 0 : abc.string(name);
    if (m_activation != 0) info.flags |= MethodInfo::NeedActivation;
    if (m_usesXmlNamespace) info.flags |= MethodInfo::SetDxns;
    const Index method = abc.addMethod(std::move(info));
    abc::Body body;
    body.method = method;
    body.localCount = m_registers;
    body.initScopeDepth = m_context.scopeDepth;
    body.traits = std::move(m_activationTraits);
    std::vector<std::uint8_t> code;
    if (!m_code.finish(body, code))
        error(m_function != nullptr ? m_function->where : Position{}, "expected less code in one function");
    abc.addBody(std::move(body), std::move(code));
    return method;
}

/// After an error was caught: the scopes are put back as they were.
void FunctionCompiler::restoreScopes()
{
    for (const Pushed& scope : m_scopes) {
        m_code.getLocal(scope.reg);
        m_code.op(scope.isWith ? Op::pushwith : Op::pushscope);
    }
}

const Expr* FunctionCompiler::constantValue(const Expr* expr)
{
    if (expr->qualifier != nullptr || expr->isAttribute || expr->isAnyName || expr->b != nullptr)
        return nullptr;
    ClassSymbol* cls = m_context.cls;
    if (expr->kind == ExprKind::Member) {
        const auto found = packagedName(expr->a);
        cls = found && found->definition != nullptr ? found->definition->cls : nullptr;
    } else if (expr->kind != ExprKind::Name || declares(expr->text)) {
        return nullptr;
    }
    if (cls == nullptr) return nullptr;
    for (const Stmt* stmt : cls->declaration->body) {
        if (stmt->kind != StmtKind::Var || !stmt->isConst || !stmt->modifiers.isStatic) continue;
        for (const Variable& variable : stmt->variables) {
            if (variable.name == expr->text) return variable.value;
        }
    }
    return nullptr;
}

std::optional<abc::Constant> FunctionCompiler::constant(const Expr* expr, TypePtr type, int depth)
{
    // Constants that stand for each other end somewhere.
    constexpr int kMaxConstants = 16;
    if (const Expr* known = depth < kMaxConstants ? constantValue(expr) : nullptr)
        return constant(known, type, depth + 1);
    AbcFile& abc = m_program.abc;
    const auto plain = [](std::uint8_t kind) { return abc::Constant{kind, kind}; };
    double number = 0;
    bool isNumber = false;
    switch (expr->kind) {
    case ExprKind::String:
        if (type->kind == Type::Kind::String || type->kind == Type::Kind::Any ||
            type->kind == Type::Kind::Object)
            return abc::Constant{0x01, abc.string(expr->text)};
        return std::nullopt;
    case ExprKind::True: return type->isNumeric() ? std::nullopt : std::optional(plain(0x0B));
    case ExprKind::False: return type->isNumeric() ? std::nullopt : std::optional(plain(0x0A));
    case ExprKind::Null:
        if (type->isNumeric() || type->kind == Type::Kind::Boolean) return std::nullopt;
        return plain(0x0C);
    case ExprKind::Number:
        number = expr->number;
        isNumber = true;
        break;
    case ExprKind::Unary:
        if ((expr->op == "-" || expr->op == "+") && expr->a->kind == ExprKind::Number) {
            number = expr->op == "-" ? -expr->a->number : expr->a->number;
            isNumber = true;
        } else if (expr->op == "void" && expr->a->kind == ExprKind::Number && type->kind == Type::Kind::Any) {
            return plain(0x00);
        }
        break;
    case ExprKind::Name:
        if (expr->qualifier != nullptr || expr->isAttribute || resolve(expr->text).definition != nullptr)
            break;
        if (expr->text == "undefined" && type->kind == Type::Kind::Any) return plain(0x00);
        if (expr->text == "NaN" || expr->text == "Infinity") {
            number = expr->text == "NaN" ? std::numeric_limits<double>::quiet_NaN()
                                         : std::numeric_limits<double>::infinity();
            isNumber = true;
        }
        break;
    case ExprKind::Member: {
        struct Known {
            std::string_view of, name;
            double value;
        };
        static constexpr Known kKnown[] = {
            {"int", "MAX_VALUE", 2147483647.0},
            {"int", "MIN_VALUE", -2147483648.0},
            {"uint", "MAX_VALUE", 4294967295.0},
            {"uint", "MIN_VALUE", 0.0},
            {"Number", "MAX_VALUE", std::numeric_limits<double>::max()},
            {"Number", "MIN_VALUE", std::numeric_limits<double>::denorm_min()},
            {"Number", "NaN", std::numeric_limits<double>::quiet_NaN()},
            {"Number", "POSITIVE_INFINITY", std::numeric_limits<double>::infinity()},
            {"Number", "NEGATIVE_INFINITY", -std::numeric_limits<double>::infinity()},
        };
        for (const Known& known : kKnown) {
            if (expr->a->kind != ExprKind::Name || expr->a->text != known.of || expr->text != known.name)
                continue;
            number = known.value;
            isNumber = true;
        }
        break;
    }
    default: break;
    }
    if (!isNumber) return std::nullopt;
    const bool fitsInt = number == static_cast<double>(static_cast<std::int64_t>(
                                       number >= -2147483648.0 && number <= 4294967295.0 ? number : 0.5)) &&
                         !(number == 0 && std::signbit(number));
    if (type->kind == Type::Kind::Int && fitsInt && number <= 2147483647.0)
        return abc::Constant{0x03, abc.integer(static_cast<std::int32_t>(number))};
    if (type->kind == Type::Kind::Uint && fitsInt && number >= 0)
        return abc::Constant{0x04, abc.uinteger(static_cast<std::uint32_t>(number))};
    if (type->kind == Type::Kind::Number) return abc::Constant{0x06, abc.number(number)};
    if (type->kind != Type::Kind::Any && type->kind != Type::Kind::Object) return std::nullopt;
    if (fitsInt && number <= 2147483647.0)
        return abc::Constant{0x03, abc.integer(static_cast<std::int32_t>(number))};
    return abc::Constant{0x06, abc.number(number)};
}

} // namespace swfc::actionscript3
