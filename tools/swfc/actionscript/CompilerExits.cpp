#include "swfc/actionscript/Compiler.h"

#include <algorithm>

// The ways out of a statement: exceptions, jumps and returns, and what 'finally' does about them.
namespace swfc::actionscript
{

void Compiler::tryStatement(const Stmt* stmt)
{
    if (!need(7, stmt->where, "'try'")) return;
    const bool hasCatch = !stmt->catches.empty(), hasFinally = stmt->second != nullptr;
    // Clauses that test a type share one variable; the first clause's name serves.
    const std::string name = hasCatch ? stmt->catches[0].name : "";
    const auto cell = m_scope.registers.find(name);
    const bool inRegister = hasCatch && cell != m_scope.registers.end();
    const Label tryEnd = m_asm.newLabel(), catchEnd = m_asm.newLabel(), finallyEnd = m_asm.newLabel();
    Assembler::Payload header;
    header.u8((hasCatch ? 1 : 0) | (hasFinally ? 2 : 0) | (inRegister ? 4 : 0));
    header.length(tryEnd).length(tryEnd, catchEnd).length(catchEnd, finallyEnd);
    if (inRegister)
        header.u8(cell->second);
    else
        header.text(name);
    m_asm.record(Action::Try, header);
    if (hasFinally) {
        Enclosing enclosing;
        enclosing.kind = Enclosing::Kind::Finally;
        m_scope.enclosing.push_back(std::move(enclosing));
    }
    statement(stmt->first);
    // The player would go on with what catches.
    if (hasCatch) m_asm.branch(Action::Jump, catchEnd);
    m_asm.mark(tryEnd);
    if (hasCatch) catchClauses(stmt);
    m_asm.mark(catchEnd);
    if (!hasFinally) return m_asm.mark(finallyEnd);
    const std::vector<Exit> exits = std::move(m_scope.enclosing.back().exits);
    m_scope.enclosing.pop_back();
    statement(stmt->second);
    m_asm.mark(finallyEnd);
    exitsOfTry(stmt, exits);
}

/// The player runs 'finally' at a return and a throw, but a branch out of 'try' passes it by: each such
/// branch leads here, behind the whole statement, where an exception of the copy meets no clause of its own.
void Compiler::exitsOfTry(const Stmt* stmt, const std::vector<Exit>& exits)
{
    if (exits.empty()) return;
    // Copies within copies double with each level. The count of all copies bounds the work on hostile
    // sources; once the error is reported nothing more is copied.
    constexpr int kMaxNested = 6;
    constexpr int kMaxTotal = 2000;
    if (m_finallyCopiesInAll > kMaxTotal) return;
    m_finallyCopiesInAll += static_cast<int>(exits.size());
    if (m_scope.finallyCopies == kMaxNested || m_finallyCopiesInAll > kMaxTotal) {
        error(stmt->where,
              "at most 6 'finally' blocks within each other, and 2000 in all, that a jump leaves");
        m_finallyCopiesInAll = kMaxTotal + 1;
        return;
    }
    ++m_scope.finallyCopies;
    const Label end = m_asm.newLabel();
    m_asm.branch(Action::Jump, end);
    for (const Exit& exit : exits) {
        m_asm.mark(exit.from);
        statement(stmt->second);
        jumpTo(exit.target, exit.isBreak);
    }
    m_asm.mark(end);
    --m_scope.finallyCopies;
}

void Compiler::catchClauses(const Stmt* stmt)
{
    const std::string& shared = stmt->catches[0].name;
    const Label end = m_asm.newLabel();
    bool catchesAll = false;
    for (const CatchClause& clause : stmt->catches) {
        const Label otherwise = m_asm.newLabel();
        if (!clause.type.empty()) {
            nameValue(shared, stmt->where);
            dottedValue(fullClassName(clause.type), false);
            m_asm.op(Action::InstanceOf);
            m_asm.op(Action::Not);
            m_asm.branch(Action::If, otherwise);
        }
        if (clause.name != shared) {
            nameValue(shared, stmt->where);
            storeName(clause.name, Wanted::Effect);
        }
        statement(clause.body);
        if (!clause.type.empty()) m_asm.branch(Action::Jump, end);
        m_asm.mark(otherwise);
        if (clause.type.empty()) {
            catchesAll = true;
            break;
        }
    }
    if (!catchesAll) {
        nameValue(shared, stmt->where);
        m_asm.op(Action::Throw);
    }
    m_asm.mark(end);
}

/// Tidies up what a jump out of a statement would leave behind.
void Compiler::leave(const Enclosing& enclosing)
{
    if (enclosing.kind == Enclosing::Kind::ForIn) drain(m_asm.newLabel());
    if (enclosing.kind == Enclosing::Kind::TellTarget) {
        m_asm.record(Action::SetTarget, Assembler::Payload().text(""));
    }
}

void Compiler::jump(const Stmt* stmt)
{
    const bool isBreak = stmt->kind == StmtKind::Break;
    const auto& around = m_scope.enclosing;
    std::size_t target = around.size();
    for (std::size_t i = around.size(); i-- > 0;) {
        using Kind = Enclosing::Kind;
        const Kind kind = around[i].kind;
        if (kind == Kind::TellTarget || kind == Kind::Finally) continue;
        const bool isLoop = kind == Kind::Loop || kind == Kind::ForIn;
        if (!isBreak && !isLoop) continue;
        if (stmt->text.empty()) {
            if (kind == Kind::Labeled) continue;
        } else if (std::find(around[i].labels.begin(), around[i].labels.end(), stmt->text) ==
                   around[i].labels.end()) {
            continue;
        }
        target = i;
        break;
    }
    if (target == around.size()) {
        const std::string what = isBreak ? "'break'" : "'continue'";
        if (stmt->text.empty())
            error(stmt->where, "a loop around " + what);
        else
            error(stmt->where, "a statement with the label '" + stmt->text + "' around " + what);
        return;
    }
    jumpTo(target, isBreak);
}

void Compiler::jumpTo(std::size_t target, bool isBreak)
{
    auto& around = m_scope.enclosing;
    for (std::size_t i = around.size() - 1; i > target; --i) {
        if (around[i].kind != Enclosing::Kind::Finally) {
            leave(around[i]);
            continue;
        }
        auto& exits = around[i].exits;
        auto exit = std::find_if(exits.begin(), exits.end(), [&](const Exit& known) {
            return known.target == target && known.isBreak == isBreak;
        });
        if (exit == exits.end()) exit = exits.insert(exit, {m_asm.newLabel(), target, isBreak});
        m_asm.branch(Action::Jump, exit->from);
        return;
    }
    m_asm.branch(Action::Jump, isBreak ? around[target].breakTo : around[target].continueTo);
}

void Compiler::returnStatement(const Stmt* stmt)
{
    if (!m_scope.isFunction) {
        error(stmt->where, "a function around 'return'");
        return;
    }
    if (stmt->a != nullptr)
        value(stmt->a);
    else
        m_asm.push(UndefinedValue{});
    // The value may depend on the target, and the names that loops still hold lie below it on the stack.
    const auto& around = m_scope.enclosing;
    const bool inForIn = std::any_of(around.begin(), around.end(), [](const Enclosing& enclosing) {
        return enclosing.kind == Enclosing::Kind::ForIn;
    });
    const std::uint8_t kept = m_scope.temporary[1];
    if (inForIn) {
        m_asm.record(Action::StoreRegister, Assembler::Payload().u8(kept));
        m_asm.op(Action::Pop);
    }
    for (std::size_t i = around.size(); i-- > 0;) leave(around[i]);
    if (inForIn) m_asm.push(Register{kept});
    m_asm.op(Action::Return);
}

} // namespace swfc::actionscript
