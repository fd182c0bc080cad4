#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

void FunctionCompiler::statements(const std::vector<Stmt*>& body)
{
    for (const Stmt* stmt : body) statement(stmt);
}

void FunctionCompiler::statement(const Stmt* stmt)
{
    switch (stmt->kind) {
    case StmtKind::Empty:
    case StmtKind::Function: // made when the function began
    case StmtKind::Namespace: return;
    case StmtKind::Class: error(stmt->where, "expected classes outside of functions"); return;
    case StmtKind::Expression: effect(stmt->a); return;
    case StmtKind::Block: statements(stmt->body); return;
    case StmtKind::Var: varStatement(stmt); return;
    case StmtKind::If: ifStatement(stmt); return;
    case StmtKind::While:
    case StmtKind::DoWhile:
    case StmtKind::For: loop(stmt); return;
    case StmtKind::ForIn: forIn(stmt); return;
    case StmtKind::Return: returnStatement(stmt); return;
    case StmtKind::Break:
    case StmtKind::Continue: jumpStatement(stmt); return;
    case StmtKind::Labeled: {
        m_labels.push_back(stmt->text);
        const StmtKind kind = stmt->first->kind;
        if (kind == StmtKind::While || kind == StmtKind::DoWhile || kind == StmtKind::For ||
            kind == StmtKind::ForIn || kind == StmtKind::Switch || kind == StmtKind::Labeled) {
            statement(stmt->first);
            m_labels.clear();
            return;
        }
        const Label end = m_code.newLabel();
        m_enclosing.push_back({Enclosing::Kind::Labeled, takeLabels(), end, end, m_scopes.size()});
        statement(stmt->first);
        m_enclosing.pop_back();
        m_code.mark(end);
        return;
    }
    case StmtKind::Switch: switchStatement(stmt); return;
    case StmtKind::With: withStatement(stmt); return;
    case StmtKind::Throw:
        value(stmt->a);
        m_code.op(Op::throw_);
        return;
    case StmtKind::Try: tryStatement(stmt); return;
    case StmtKind::SuperCall: superCall(stmt); return;
    case StmtKind::Import:
        m_program.import(scope(), stmt);
        m_program.checkImport(stmt);
        return;
    case StmtKind::UseNamespace: m_program.use(scope(), stmt, m_context.cls); return;
    case StmtKind::XmlNamespace:
        if (stmt->a->kind == ExprKind::String) {
            m_code.op(Op::dxns, m_program.abc.string(stmt->a->text));
        } else {
            value(stmt->a);
            m_code.op(Op::dxnslate);
        }
        return;
    }
}

void FunctionCompiler::varStatement(const Stmt* stmt)
{
    for (const Variable& variable : stmt->variables) {
        if (variable.value == nullptr) continue;
        Place place = resolve(variable.name);
        beginStore(place);
        valueAs(variable.value, place.type);
        // The one place where a constant gets its value.
        place.isConst = false;
        if (place.kind == Place::Kind::Lexical && stmt->isConst)
            m_code.op(Op::initproperty, place.name);
        else
            endStore(place, false);
    }
}

void FunctionCompiler::ifStatement(const Stmt* stmt)
{
    // A chain of else if is as long as it likes.
    const Label end = m_code.newLabel();
    for (const Stmt* at = stmt;;) {
        const Label otherwise = m_code.newLabel();
        condition(at->a, otherwise, false);
        statement(at->first);
        if (at->second != nullptr) m_code.jump(Op::jump, end);
        m_code.mark(otherwise);
        if (at->second == nullptr) break;
        if (at->second->kind != StmtKind::If) {
            statement(at->second);
            break;
        }
        at = at->second;
    }
    m_code.mark(end);
}

void FunctionCompiler::loop(const Stmt* stmt)
{
    const Label body = m_code.newLabel(), next = m_code.newLabel(), test = m_code.newLabel(),
                end = m_code.newLabel();
    if (stmt->init != nullptr) statement(stmt->init);
    m_enclosing.push_back({Enclosing::Kind::Loop, takeLabels(), end, next, m_scopes.size()});
    if (stmt->kind != StmtKind::DoWhile) {
        m_code.jump(Op::jump, test);
        m_code.enteredFromBelow(body, test);
    }
    m_code.markLoop(body);
    statement(stmt->first);
    m_enclosing.pop_back();
    m_code.mark(next);
    if (stmt->b != nullptr) effect(stmt->b);
    m_code.mark(test);
    if (stmt->a != nullptr)
        condition(stmt->a, body, true);
    else
        m_code.jump(Op::jump, body);
    m_code.mark(end);
}

void FunctionCompiler::forIn(const Stmt* stmt)
{
    const Label body = m_code.newLabel(), next = m_code.newLabel(), end = m_code.newLabel();
    const std::uint32_t object = temporary(), position = temporary(), item = temporary();
    value(stmt->b);
    m_code.op(Op::coerce_a);
    m_code.setLocal(object);
    m_code.op(Op::pushbyte, 0);
    m_code.setLocal(position);
    m_enclosing.push_back({Enclosing::Kind::Loop, takeLabels(), end, next, m_scopes.size()});
    m_code.jump(Op::jump, next);
    m_code.enteredFromBelow(body, next);
    m_code.markLoop(body);
    m_code.getLocal(object);
    m_code.getLocal(position);
    m_code.op(stmt->isEach ? Op::nextvalue : Op::nextname);
    if (stmt->init != nullptr) {
        m_code.op(Op::coerce_a);
        m_code.setLocal(item);
        Place place = resolve(stmt->init->variables[0].name);
        place.isConst = false;
        beginStore(place);
        m_code.getLocal(item);
        coerce(place.type, m_program.types().any);
        endStore(place, false);
    } else {
        m_code.op(Op::coerce_a);
        m_code.setLocal(item);
        storeInto(stmt->a, item, m_program.types().any);
    }
    statement(stmt->first);
    m_enclosing.pop_back();
    m_code.mark(next);
    m_code.hasNext(object, position);
    m_code.jump(Op::iftrue, body);
    m_code.mark(end);
    m_code.op(Op::kill, object);
    release(object);
    release(position);
    release(item);
}

void FunctionCompiler::switchStatement(const Stmt* stmt)
{
    const std::uint32_t reg = temporary();
    const Label end = m_code.newLabel();
    value(stmt->a);
    m_code.op(Op::coerce_a);
    m_code.setLocal(reg);
    std::vector<Label> labels;
    Label otherwise = end;
    for (const SwitchCase& entry : stmt->cases) {
        labels.push_back(m_code.newLabel());
        if (entry.test == nullptr) {
            otherwise = labels.back();
            continue;
        }
        m_code.getLocal(reg);
        value(entry.test);
        m_code.jump(Op::ifstricteq, labels.back());
    }
    m_code.jump(Op::jump, otherwise);
    m_enclosing.push_back({Enclosing::Kind::Switch, takeLabels(), end, end, m_scopes.size()});
    for (std::size_t i = 0; i < labels.size(); ++i) {
        m_code.mark(labels[i]);
        statements(stmt->cases[i].body);
    }
    m_enclosing.pop_back();
    m_code.mark(end);
    release(reg);
}

void FunctionCompiler::withStatement(const Stmt* stmt)
{
    const std::uint32_t reg = temporary();
    value(stmt->a);
    m_code.op(Op::dup);
    m_code.setLocal(reg);
    m_code.op(Op::pushwith);
    m_scopes.push_back({reg, true});
    ++m_with;
    statement(stmt->first);
    --m_with;
    m_scopes.pop_back();
    m_code.op(Op::popscope);
    release(reg);
}

// ---- ways out ---------------------------------------------------------------------------------------------

void FunctionCompiler::popTo(std::size_t scopes)
{
    for (std::size_t i = m_scopes.size(); i > scopes; --i) m_code.op(Op::popscope);
}

/// A jump that leaves a try goes to its finally, with a number that says where to go on behind it.
void FunctionCompiler::leaveTo(std::size_t target, bool isBreak)
{
    const auto scopes = m_code.scopes();
    for (std::size_t i = m_enclosing.size(); i-- > (target == kReturn ? 0 : target + 1);) {
        if (m_enclosing[i].kind != Enclosing::Kind::Finally) continue;
        Enclosing& enclosing = m_enclosing[i];
        const Label exit = m_code.newLabel();
        enclosing.exits.push_back(exit);
        m_code.pushInt(static_cast<std::int32_t>(enclosing.exits.size()),
                       m_program.abc.integer(static_cast<std::int32_t>(enclosing.exits.size())));
        m_code.setLocal(enclosing.selector);
        popTo(enclosing.scopes);
        m_code.jump(Op::jump, enclosing.breakTo);
        m_exits.push_back({exit, target, isBreak});
        m_code.setScopes(scopes);
        return;
    }
    if (target == kReturn) return;
    popTo(m_enclosing[target].scopes);
    m_code.jump(Op::jump, isBreak ? m_enclosing[target].breakTo : m_enclosing[target].continueTo);
    m_code.setScopes(scopes);
}

void FunctionCompiler::jumpStatement(const Stmt* stmt)
{
    const bool isBreak = stmt->kind == StmtKind::Break;
    for (std::size_t i = m_enclosing.size(); i-- > 0;) {
        const Enclosing& enclosing = m_enclosing[i];
        if (enclosing.kind == Enclosing::Kind::Finally) continue;
        if (stmt->text.empty() ? enclosing.kind == Enclosing::Kind::Labeled
                               : std::ranges::find(enclosing.labels, stmt->text) == enclosing.labels.end())
            continue;
        if (!isBreak && enclosing.kind != Enclosing::Kind::Loop) continue;
        leaveTo(i, isBreak);
        return;
    }
    if (!stmt->text.empty())
        error(stmt->where, "expected a label around this statement, found '" + stmt->text + "'");
    else
        error(stmt->where,
              isBreak ? "expected a loop or switch around 'break'" : "expected a loop around 'continue'");
}

namespace
{
/// What has a value whatever it is made of; a name or a call may be of nothing.
bool isSurelyValue(const Expr& expr)
{
    switch (expr.kind) {
    case ExprKind::Number:
    case ExprKind::String:
    case ExprKind::RegExp:
    case ExprKind::True:
    case ExprKind::False:
    case ExprKind::Null:
    case ExprKind::This:
    case ExprKind::Array:
    case ExprKind::Vector:
    case ExprKind::Object:
    case ExprKind::Function:
    case ExprKind::New: return true;
    default: return false;
    }
}
} // namespace

void FunctionCompiler::returnStatement(const Stmt* stmt)
{
    const bool hasFinally = std::ranges::any_of(
        m_enclosing, [](const Enclosing& enclosing) { return enclosing.kind == Enclosing::Kind::Finally; });
    const bool returnsNothing = m_returnType->kind == Type::Kind::Void;
    if (m_kind == Kind::ScriptInit || m_kind == Kind::StaticInit)
        error(stmt->where, "expected 'return' within a function");
    if (stmt->a != nullptr) {
        if (returnsNothing && isSurelyValue(*stmt->a))
            error(stmt->a->where, "expected no value from a function whose result is void");
        if (returnsNothing)
            effect(stmt->a);
        else
            valueAs(stmt->a, m_returnType);
    }
    const bool hasValue = stmt->a != nullptr && !returnsNothing;
    if (!hasFinally) {
        m_code.op(hasValue ? Op::returnvalue : Op::returnvoid);
        return;
    }
    if (m_returnRegister == 0) m_returnRegister = temporary();
    if (hasValue)
        m_code.op(Op::coerce_a);
    else
        m_code.op(Op::pushundefined);
    m_code.setLocal(m_returnRegister);
    leaveTo(kReturn, true);
}

void FunctionCompiler::tryStatement(const Stmt* stmt)
{
    const bool hasFinally = stmt->second != nullptr;
    const Label finally = m_code.newLabel(), end = m_code.newLabel();
    std::uint32_t thrown = 0;
    if (hasFinally) {
        Enclosing enclosing{Enclosing::Kind::Finally, {}, finally, finally, m_scopes.size()};
        enclosing.selector = temporary();
        thrown = temporary();
        m_enclosing.push_back(enclosing);
    }
    const std::size_t place = m_enclosing.size() - 1;
    const Label from = m_code.newLabel(), to = m_code.newLabel(), all = m_code.newLabel(),
                handled = m_code.newLabel();
    m_code.mark(from);
    statement(stmt->first);
    m_code.jump(Op::jump, handled);
    m_code.mark(to);
    for (const CatchClause& clause : stmt->catches) catchClause(clause, from, to, handled);
    m_code.mark(handled);
    if (!hasFinally) return;
    const std::uint32_t selector = m_enclosing[place].selector;
    m_code.op(Op::pushbyte, 0);
    m_code.setLocal(selector);
    m_code.jump(Op::jump, finally);
    // Whatever is thrown by the block or by a clause is thrown again behind the finally.
    m_code.mark(all);
    const Label handler = m_code.newLabel();
    m_code.addException(from, all, handler, 0, 0);
    m_code.markHandler(handler);
    m_code.op(Op::coerce_a);
    m_code.setLocal(thrown);
    restoreScopes();
    m_code.op(Op::pushbyte, static_cast<std::uint32_t>(-1));
    m_code.setLocal(selector);
    m_code.mark(finally);
    const std::vector<Label> exits = std::move(m_enclosing[place].exits);
    m_enclosing.pop_back();
    statement(stmt->second);
    // 0: on; above: one of the exits; below: throw.
    const Label rethrow = m_code.newLabel();
    std::vector<Label> targets = {end};
    targets.insert(targets.end(), exits.begin(), exits.end());
    m_code.getLocal(selector);
    m_code.op(Op::convert_i);
    m_code.lookupSwitch(rethrow, targets);
    for (const Label exit : exits) {
        const auto found = std::ranges::find(m_exits, exit, &Exit::from);
        const Exit taken = *found;
        m_exits.erase(found);
        m_code.mark(exit);
        leaveTo(taken.target, taken.isBreak);
        if (taken.target == kReturn && m_code.isReachable()) {
            m_code.getLocal(m_returnRegister);
            if (m_returnType->kind == Type::Kind::Void) {
                m_code.op(Op::pop);
                m_code.op(Op::returnvoid);
            } else {
                coerce(m_returnType, m_program.types().any);
                m_code.op(Op::returnvalue);
            }
        }
    }
    m_code.mark(rethrow);
    m_code.getLocal(thrown);
    m_code.op(Op::throw_);
    m_code.mark(end);
    release(selector);
    release(thrown);
}

void FunctionCompiler::catchClause(const CatchClause& clause, Label from, Label to, Label done)
{
    const TypePtr type = m_program.resolve(clause.type, scope());
    AbcFile& abc = m_program.abc;
    const Index name = clause.isCaptured ? abc.qname(m_program.publicNs(), clause.name) : 0;
    const std::uint32_t number = m_code.exceptionCount();
    const Label handler = m_code.newLabel();
    m_code.addException(from, to, handler, type->name, name);
    m_code.markHandler(handler);
    const std::uint32_t reg = temporary();
    if (!clause.isCaptured) {
        coerce(type, m_program.types().any);
        m_code.setLocal(reg);
        restoreScopes();
        m_catches.push_back({clause.name, false, reg, type});
        statement(clause.body);
    } else {
        const std::uint32_t error = temporary();
        m_code.op(Op::coerce_a);
        m_code.setLocal(error);
        restoreScopes();
        m_code.op(Op::newcatch, number);
        m_code.op(Op::dup);
        m_code.setLocal(reg);
        m_code.op(Op::dup);
        m_code.op(Op::pushscope);
        m_code.getLocal(error);
        m_code.op(Op::setslot, 1);
        release(error);
        m_scopes.push_back({reg, false});
        m_catches.push_back({clause.name, true, reg, type});
        statement(clause.body);
        m_scopes.pop_back();
        m_code.op(Op::popscope);
    }
    m_catches.pop_back();
    m_code.jump(Op::jump, done);
    release(reg);
}

/// The constructor of the base class.
void FunctionCompiler::superCall(const Stmt* stmt)
{
    if (m_kind != Kind::Constructor) error(stmt->where, "expected 'super(...)' in a constructor");
    m_code.getLocal(0);
    arguments(stmt->a);
    m_code.call(Op::constructsuper, static_cast<std::uint32_t>(stmt->a->list.size()));
}

} // namespace swfc::actionscript3
