#include "script/vbscript/Errors.h"
#include "script/vbscript/FunctionCompiler.h"
#include "script/vbscript/Operators.h"

#include <algorithm>

namespace script::vbscript
{

using Kind = Statement::Kind;

// Dim and Const count for the whole procedure, wherever they stand in it; so does ReDim of a name that
// nothing else declares.
Result<void> FunctionCompiler::declareLocals(const Block& statements)
{
    for (const Statement* one : statements) {
        switch (one->kind) {
        case Kind::Dim:
        case Kind::Const:
            for (const Declarator& declared : one->declarators)
                CHECK_RESULT(declareLocal(declared, one->kind));
            break;
        case Kind::ReDim:
            for (const Declarator& array : one->declarators) {
                if (m_function.optionExplicit && place(array.name).kind == Place::Kind::Global &&
                    !std::binary_search(m_programGlobals.begin(), m_programGlobals.end(), array.name))
                    implicit(array.name, isExecuted() ? outside(array.name) : std::nullopt);
            }
            break;
        default:
            for (const Branch& branch : one->branches) CHECK_RESULT(declareLocals(branch.body));
            CHECK_RESULT(declareLocals(one->otherwise));
            CHECK_RESULT(declareLocals(one->body));
        }
    }
    return checkCount(m_function.shapes.size(), {});
}

Result<void> FunctionCompiler::declareLocal(const Declarator& declared, Kind kind)
{
    // In executed text a second Dim means the variable that is there already.
    const bool known = m_function.names.count(declared.name) != 0 || isReturnName(declared.name);
    if (known) return failAt(error::kNameRedefined, declared.position);
    LocalName local;
    if (kind == Kind::Const) {
        local.constant = static_cast<int>(constant(declared.literal));
        m_function.names[declared.name] = local;
        return {};
    }
    local.slot = newSlot();
    if (isExecuted()) {
        const auto procedure = static_cast<std::uint32_t>(m_outer.functions.size() - 1);
        auto held = outside(declared.name);
        if (!held || held->constant) held = Outside{procedure, -1, nullptr, false};
        m_function.captures.push_back({local.slot, held->slot, declared.name, held->depth, true});
    }
    if (declared.isArray) {
        mark(declared.position);
        m_function.shapes.push_back(declared.bounds);
        emit(Op::MakeArray, 0, local.slot, m_function.shapes.size() - 1);
    }
    m_function.names[declared.name] = local;
    return {};
}

Result<void> FunctionCompiler::block(const Block& statements)
{
    for (const Statement* one : statements) CHECK_RESULT(statement(*one));
    return {};
}

Result<void> FunctionCompiler::statement(const Statement& one)
{
    if (one.kind == Kind::Dim || one.kind == Kind::Const) {
        const bool isGlobal = m_function.isMain && !isExecuted();
        if (isGlobal) {
            auto& list = one.kind == Kind::Dim ? m_program.variables : m_program.constants;
            list.insert(list.end(), one.declarators.begin(), one.declarators.end());
        }
        return {};
    }
    mark(one.position);
    switch (one.kind) {
    case Kind::ReDim: return reDim(one);
    case Kind::Erase:
        CHECK_RESULT(reference(one.target));
        emit(Op::Erase, -1);
        return {};
    case Kind::Let:
    case Kind::Set: return assignment(one);
    case Kind::Call: return callStatement(one);
    case Kind::If: return ifStatement(one);
    case Kind::Select: return select(one);
    case Kind::For: return forLoop(one);
    case Kind::ForEach: return forEach(one);
    case Kind::Do: return doLoop(one);
    case Kind::With: return with(one);
    case Kind::Exit: return exit(one);
    case Kind::OnErrorResumeNext: emit(Op::OnError, 0, 0, 0, 1); return {};
    case Kind::OnErrorGoToZero: emit(Op::OnError, 0, 0, 0, 0); return {};
    case Kind::Dim:
    case Kind::Const:
    case Kind::Stop: return {};
    }
    return {};
}

// ---- assignments

Result<void> FunctionCompiler::store(Place found, std::uint8_t flags, Position position)
{
    switch (found.kind) {
    case Place::Kind::Local: emit(Op::StoreLocal, -1, found.index, 0, flags); return {};
    case Place::Kind::Global: emit(Op::StoreGlobal, -1, found.index, 0, flags); return {};
    case Place::Kind::Implicit: emit(Op::StoreImplicit, -1, found.index, 0, flags); return {};
    case Place::Kind::Field: emit(Op::StoreField, -1, found.index, 0, flags); return {};
    case Place::Kind::Constant: return failAt(error::kIllegalAssignment, position);
    case Place::Kind::Own: break;
    }
    Function* own = (flags & kSet) != 0 && found.member->set ? found.member->set : found.member->let;
    if (!own && found.member->set) own = found.member->set;
    if (!own) return failAt(error::kIllegalAssignment, position);
    emit(Op::PutOwn, -1, callee(own), 0, flags);
    return {};
}

Result<void> FunctionCompiler::assignment(const Statement& one)
{
    const std::uint8_t flags = one.kind == Kind::Set ? kSet : 0;
    if (!one.target) { // the value of an evaluated expression
        CHECK_RESULT(value(one.value));
        emit(Op::StoreLocal, -1, static_cast<std::uint32_t>(m_function.returnSlot), 0, kSet | kPreserve);
        return {};
    }
    switch (one.target->kind) {
    case Expression::Kind::Name: {
        CHECK_RESULT(value(one.value));
        return store(assignedPlace(one.target->name), flags, one.target->position);
    }
    case Expression::Kind::Member:
        CHECK_RESULT(value(one.value));
        CHECK_RESULT(object(one.target));
        emit(Op::PutMember, -2, site(one.target->name, one.target->left), 0, flags);
        return {};
    case Expression::Kind::Call:
        // The value comes before the indexes, so that what it changes is seen by them.
        CHECK_RESULT(value(one.value));
        return storeIndexed(one.target, flags);
    default: return failAt(error::kIllegalAssignment, one.target->position);
    }
}

Result<void> FunctionCompiler::storeIndexed(const Expression* target, std::uint8_t flags)
{
    const Expression* base = target->left;
    const auto& list = target->arguments;
    const auto effect = -1 - static_cast<int>(list.size());
    if (base->kind == Expression::Kind::Member) {
        CHECK_RESULT(object(base));
        CHECK_RESULT(arguments(list, true));
        emit(Op::PutMember, effect - 1, site(base->name, base->left), list.size(), flags);
        return {};
    }
    if (base->kind != Expression::Kind::Name) {
        // a(1)(2) = 3: the inner element is written in place.
        if (base->kind == Expression::Kind::Call)
            CHECK_RESULT(call(base, kWantReference));
        else
            CHECK_RESULT(value(base));
        CHECK_RESULT(arguments(list, true));
        emit(Op::PutValue, effect - 1, 0, list.size(), flags);
        return {};
    }
    const Place found = place(base->name);
    CHECK_RESULT(arguments(list, true));
    switch (found.kind) {
    case Place::Kind::Local: emit(Op::PutLocal, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Global: emit(Op::PutGlobal, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Implicit: emit(Op::PutImplicit, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Field: emit(Op::PutField, effect, found.index, list.size(), flags); return {};
    case Place::Kind::Constant: return failAt(error::kIllegalAssignment, base->position);
    case Place::Kind::Own: break;
    }
    Function* own = (flags & kSet) != 0 && found.member->set ? found.member->set : found.member->let;
    if (!own) return failAt(error::kIllegalAssignment, base->position);
    emit(Op::PutOwn, effect, callee(own), list.size(), flags);
    return {};
}

Result<void> FunctionCompiler::callStatement(const Statement& one)
{
    // Inside a function its bare name as a statement calls it again, like name().
    CHECK_RESULT(call(one.value, kStatementCall));
    emit(Op::Pop, -1);
    return {};
}

// Something whose variable an instruction changes.
Result<void> FunctionCompiler::reference(const Expression* target)
{
    if (target->kind == Expression::Kind::Name) {
        assignedPlace(target->name);
        return name(target, true);
    }
    if (target->kind == Expression::Kind::Call) return call(target, kWantReference);
    return value(target);
}

Result<void> FunctionCompiler::reDim(const Statement& one)
{
    for (const Declarator& array : one.declarators) {
        Expression target;
        target.kind = Expression::Kind::Name;
        target.name = array.name;
        target.position = array.position;
        CHECK_RESULT(reference(&target));
        for (const Expression* bound : array.newBounds) CHECK_RESULT(value(bound));
        emit(Op::ReDim, -1 - static_cast<int>(array.newBounds.size()), 0, array.newBounds.size(),
             one.preserve ? kPreserve : 0);
    }
    return {};
}

// ---- control flow. Each block ends in a mark without a position: after an error in its last statement
// On Error Resume Next goes on there and not in the next block of the text.

Result<void> FunctionCompiler::ifStatement(const Statement& one)
{
    std::vector<std::size_t> ends;
    bool first = true;
    for (const Branch& branch : one.branches) {
        if (!first) mark(branch.position);
        first = false;
        CHECK_RESULT(value(branch.conditions.front()));
        const std::size_t skip = emitJump(Op::JumpFalse, -1);
        CHECK_RESULT(block(branch.body));
        mark();
        ends.push_back(emitJump(Op::Jump, 0));
        patch(skip);
    }
    CHECK_RESULT(block(one.otherwise));
    for (const std::size_t jump : ends) patch(jump);
    return {};
}

Result<void> FunctionCompiler::select(const Statement& one)
{
    const std::uint32_t subject = newSlot();
    // Without a value to compare there is no case to go on in.
    const std::size_t statement = m_function.statements.size() - 1;
    CHECK_RESULT(value(one.value));
    emit(Op::StoreLocal, -1, subject);
    std::vector<std::size_t> ends;
    for (const Branch& branch : one.branches) {
        mark(branch.position);
        std::vector<std::size_t> matches;
        for (const Expression* candidate : branch.conditions) {
            emit(Op::Local, 1, subject);
            CHECK_RESULT(value(candidate));
            emit(Op::Equal, -1, 0, 0, literals(one.value, candidate) | kNeverMismatched);
            matches.push_back(emitJump(Op::JumpTrue, -1));
        }
        const std::size_t skip = emitJump(Op::Jump, 0);
        for (const std::size_t jump : matches) patch(jump);
        CHECK_RESULT(block(branch.body));
        mark();
        ends.push_back(emitJump(Op::Jump, 0));
        patch(skip);
    }
    CHECK_RESULT(block(one.otherwise));
    for (const std::size_t jump : ends) patch(jump);
    m_function.statements[statement].resume = here();
    mark();
    emit(Op::ClearLocal, 0, subject);
    return {};
}

Result<void> FunctionCompiler::forLoop(const Statement& one)
{
    const std::uint32_t hidden = newSlot();
    newSlot();
    const Place variable = assignedPlace(one.target->name);
    if (variable.kind == Place::Kind::Constant || variable.kind == Place::Kind::Own) {
        return failAt(error::kInvalidLoopVariable, one.target->position);
    }
    const auto kind =
        static_cast<std::uint8_t>(variable.kind == Place::Kind::Local      ? VariableKind::Local
                                  : variable.kind == Place::Kind::Global   ? VariableKind::Global
                                  : variable.kind == Place::Kind::Implicit ? VariableKind::Implicit
                                                                           : VariableKind::Field);
    CHECK_RESULT(value(one.value));
    CHECK_RESULT(value(one.limit));
    if (one.step)
        CHECK_RESULT(value(one.step));
    else
        emit(Op::Constant, 1, constant(Value::integer(1)));
    emit(Op::ForPrepare, -2, 0, hidden);
    CHECK_RESULT(store(variable, 0, one.position));
    emit(Op::ForTest, 0, variable.index, hidden, kind);
    const std::size_t enter = emitJump(Op::Jump, 0);
    const std::size_t leave = emitJump(Op::Jump, 0);
    patch(enter);
    const std::uint32_t body = here();
    m_loops.push_back({true, {leave}, -1});
    CHECK_RESULT(block(one.body));
    mark(one.closing);
    emit(Op::ForNext, 0, variable.index, hidden, kind);
    emit(Op::Loop, 0, body);
    for (const std::size_t jump : m_loops.back().exits) patch(jump);
    m_loops.pop_back();
    return {};
}

Result<void> FunctionCompiler::forEach(const Statement& one)
{
    const std::uint32_t hidden = newSlot();
    const Place variable = assignedPlace(one.target->name);
    CHECK_RESULT(value(one.value));
    emit(Op::ForEachPrepare, -1, 0, hidden);
    const std::size_t toNext = emitJump(Op::Jump, 0);
    const std::uint32_t assign = here();
    m_depth = 1; // the element
    // Objects are taken as they are, like with Set.
    CHECK_RESULT(store(variable, kSet | kPreserve, one.position));
    m_loops.push_back({true, {}, static_cast<int>(hidden)});
    CHECK_RESULT(block(one.body));
    patch(toNext);
    mark(one.closing);
    emit(Op::ForEachNext, 1, 0, hidden);
    emit(Op::Loop, -1, assign);
    for (const std::size_t jump : m_loops.back().exits) patch(jump);
    m_loops.pop_back();
    mark();
    emit(Op::ClearLocal, 0, hidden);
    return {};
}

Result<void> FunctionCompiler::doLoop(const Statement& one)
{
    m_loops.push_back({false, {}, -1});
    const std::uint32_t top = here();
    if (one.test == Statement::Test::Before) {
        mark(one.position);
        CHECK_RESULT(value(one.value));
        m_loops.back().exits.push_back(emitJump(one.until ? Op::JumpTrue : Op::JumpFalse, -1));
    }
    CHECK_RESULT(block(one.body));
    mark(one.closing);
    if (one.test == Statement::Test::After) {
        CHECK_RESULT(value(one.value));
        m_loops.back().exits.push_back(emitJump(one.until ? Op::JumpTrue : Op::JumpFalse, -1));
    }
    emit(Op::Loop, 0, top);
    for (const std::size_t jump : m_loops.back().exits) patch(jump);
    m_loops.pop_back();
    return {};
}

Result<void> FunctionCompiler::with(const Statement& one)
{
    const std::uint32_t slot = newSlot();
    CHECK_RESULT(value(one.value));
    emit(Op::WithPrepare, -1, slot);
    m_withSlots.push_back(slot);
    CHECK_RESULT(block(one.body));
    m_withSlots.pop_back();
    mark();
    emit(Op::ClearLocal, 0, slot);
    return {};
}

Result<void> FunctionCompiler::exit(const Statement& one)
{
    if (one.exit == Statement::Exit::Procedure) {
        emit(Op::Return, 0);
        return {};
    }
    // While loops stand in the list as well, so that the parser's check may have counted a loop that is none
    // here.
    for (auto loop = m_loops.rbegin(); loop != m_loops.rend(); ++loop) {
        if (loop->isFor == (one.exit == Statement::Exit::For)) {
            // Its own For Each slot is cleared at the loop's end.
            loop->exits.push_back(emitJump(Op::Jump, 0));
            return {};
        }
        if (loop->eachSlot >= 0) emit(Op::ClearLocal, 0, static_cast<std::uint32_t>(loop->eachSlot));
    }
    return failAt(error::kInvalidExit, one.position);
}

} // namespace script::vbscript
