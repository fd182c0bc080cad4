#include "swfc/actionscript/Compiler.h"
#include "swfc/actionscript/Parser.h"

#include "base/TextCodes.h"

#include <algorithm>

namespace swfc::actionscript
{

bool Compiler::need(int version, Position where, std::string_view what)
{
    if (m_version >= version) return true;
    error(where, "version " + std::to_string(version) + " or later for " + std::string(what) +
                     ", found version " + std::to_string(m_version));
    return false;
}

void Compiler::error(Position where, const std::string& expected)
{
    m_context.diagnostics.error(where, "expected " + expected);
}

std::vector<std::uint8_t> Compiler::run(const std::vector<Stmt*>& body)
{
    hoisted(body);
    return m_asm.finish();
}

/// Classes and functions exist before the first statement runs, wherever they stand in the list.
void Compiler::hoisted(const std::vector<Stmt*>& body)
{
    const auto isHoisted = [](const Stmt* s) {
        return s->kind == StmtKind::Class || s->kind == StmtKind::Import || s->kind == StmtKind::Function;
    };
    for (const Stmt* stmt : body) {
        if (stmt->kind == StmtKind::Class) m_context.classes.add(*stmt->declaration);
    }
    for (const StmtKind kind : {StmtKind::Import, StmtKind::Class, StmtKind::Function}) {
        for (const Stmt* stmt : body) {
            if (stmt->kind == kind) statement(stmt);
        }
    }
    for (const Stmt* stmt : body) {
        if (!isHoisted(stmt)) statement(stmt);
    }
}

void Compiler::statements(const std::vector<Stmt*>& body)
{
    for (const Stmt* stmt : body) statement(stmt);
}

void Compiler::statement(const Stmt* stmt)
{
    m_asm.at(stmt->where);
    std::vector<std::string> labels;
    labels.swap(m_pendingLabels);
    switch (stmt->kind) {
    case StmtKind::Empty: break;
    case StmtKind::Expression: effect(stmt->a); break;
    case StmtKind::Block: statements(stmt->body); break;
    case StmtKind::Var: varStatement(stmt); break;
    case StmtKind::If: ifChain(stmt); break;
    case StmtKind::While:
    case StmtKind::DoWhile:
    case StmtKind::For:
        m_pendingLabels.swap(labels);
        loop(stmt);
        break;
    case StmtKind::ForIn:
        m_pendingLabels.swap(labels);
        forIn(stmt);
        break;
    case StmtKind::Return: returnStatement(stmt); break;
    case StmtKind::Break:
    case StmtKind::Continue: jump(stmt); break;
    case StmtKind::Labeled: {
        labels.push_back(stmt->text);
        const StmtKind inner = stmt->first->kind;
        const bool takesLabels = inner == StmtKind::While || inner == StmtKind::DoWhile ||
                                 inner == StmtKind::For || inner == StmtKind::ForIn ||
                                 inner == StmtKind::Switch || inner == StmtKind::Labeled;
        if (takesLabels) {
            m_pendingLabels.swap(labels);
            statement(stmt->first);
            break;
        }
        const Label end = m_asm.newLabel();
        body(stmt->first, {Enclosing::Kind::Labeled, labels, end, end});
        m_asm.mark(end);
        break;
    }
    case StmtKind::Switch:
        m_pendingLabels.swap(labels);
        switchStatement(stmt);
        break;
    case StmtKind::With: withStatement(stmt); break;
    case StmtKind::Throw:
        if (!need(7, stmt->where, "'throw'")) break;
        value(stmt->a);
        m_asm.op(Action::Throw);
        break;
    case StmtKind::Try: tryStatement(stmt); break;
    case StmtKind::Function:
        if (need(5, stmt->where, "functions")) function(*stmt->function, stmt->function->name, {});
        break;
    case StmtKind::Class:
        if (need(6, stmt->where, "classes")) classDeclaration(*stmt->declaration);
        break;
    case StmtKind::Import: importClass(stmt); break;
    case StmtKind::TellTarget: tellTarget(stmt); break;
    case StmtKind::IfFrameLoaded: ifFrameLoaded(stmt); break;
    }
    m_pendingLabels.clear();
}

void Compiler::body(const Stmt* stmt, Enclosing enclosing)
{
    m_scope.enclosing.push_back(std::move(enclosing));
    statement(stmt);
    m_scope.enclosing.pop_back();
}

void Compiler::varStatement(const Stmt* stmt)
{
    for (std::size_t i = 0; i < stmt->names.size(); ++i) {
        const std::string& name = stmt->names[i];
        const Expr* initial = stmt->values[i];
        const auto cell = m_scope.registers.find(name);
        if (m_version == 4 || cell != m_scope.registers.end()) {
            if (initial == nullptr) continue;
            if (m_version == 4) m_asm.push(name);
            value(initial);
            if (m_version == 4) {
                m_asm.op(Action::SetVariable);
            } else {
                m_asm.record(Action::StoreRegister, Assembler::Payload().u8(cell->second));
                m_asm.op(Action::Pop);
            }
            continue;
        }
        m_asm.push(name);
        if (initial == nullptr) {
            m_asm.op(Action::DefineLocal2);
            continue;
        }
        value(initial);
        m_asm.op(Action::DefineLocal);
    }
}

void Compiler::ifChain(const Stmt* stmt)
{
    const Label end = m_asm.newLabel();
    while (true) {
        const Label otherwise = m_asm.newLabel();
        condition(stmt->a, otherwise, false);
        statement(stmt->first);
        if (stmt->second != nullptr) m_asm.branch(Action::Jump, end);
        m_asm.mark(otherwise);
        if (stmt->second == nullptr) break;
        stmt = stmt->second;
        if (stmt->kind == StmtKind::If) {
            m_asm.at(stmt->where);
            continue;
        }
        statement(stmt);
        break;
    }
    m_asm.mark(end);
}

void Compiler::loop(const Stmt* stmt)
{
    Enclosing enclosing{Enclosing::Kind::Loop, std::move(m_pendingLabels), m_asm.newLabel(),
                        m_asm.newLabel()};
    m_pendingLabels.clear();
    const Label breakTo = enclosing.breakTo, continueTo = enclosing.continueTo, top = m_asm.newLabel();
    if (stmt->init != nullptr) statement(stmt->init);
    m_asm.mark(top);
    if (stmt->kind == StmtKind::While) m_asm.mark(continueTo);
    if (stmt->kind != StmtKind::DoWhile && stmt->a != nullptr) condition(stmt->a, breakTo, false);
    body(stmt->first, std::move(enclosing));
    m_asm.at(stmt->where);
    if (stmt->kind == StmtKind::DoWhile) {
        m_asm.mark(continueTo);
        condition(stmt->a, top, true);
    } else {
        if (stmt->kind == StmtKind::For) m_asm.mark(continueTo);
        if (stmt->b != nullptr) effect(stmt->b);
        m_asm.branch(Action::Jump, top);
    }
    m_asm.mark(breakTo);
}

/// Pushes the names of an object's members, a null below them.
void Compiler::forInObject(const Expr* object)
{
    if (m_version >= 6) {
        value(object);
        m_asm.op(Action::Enumerate2);
        return;
    }
    // Version 5 only has an action that takes a path to the object.
    std::string path;
    const Expr* at = object;
    for (; at->kind == ExprKind::Member; at = at->a) path = "." + at->text + path;
    const bool isRegister = at->kind == ExprKind::Name || at->kind == ExprKind::This;
    if (!isRegister) {
        need(6, object->where, "'for..in' over an expression that is not a path");
        return;
    }
    m_asm.push((at->kind == ExprKind::This ? "this" : at->text) + path);
    m_asm.op(Action::Enumerate);
}

void Compiler::forIn(const Stmt* stmt)
{
    Enclosing enclosing{Enclosing::Kind::ForIn, std::move(m_pendingLabels), m_asm.newLabel(),
                        m_asm.newLabel()};
    m_pendingLabels.clear();
    if (!need(5, stmt->where, "'for..in'")) return;
    const Label top = enclosing.continueTo, drainFrom = enclosing.breakTo, end = m_asm.newLabel();
    const std::uint8_t current = m_scope.temporary[0];
    const auto take = [&] {
        m_asm.record(Action::StoreRegister, Assembler::Payload().u8(current));
        m_asm.push(NullValue{});
        m_asm.op(Action::Equals2);
    };
    forInObject(stmt->b);
    m_asm.mark(top);
    take();
    m_asm.branch(Action::If, end);
    if (!stmt->names.empty()) {
        const auto cell = m_scope.registers.find(stmt->names[0]);
        if (cell == m_scope.registers.end()) m_asm.push(stmt->names[0]);
        m_asm.push(Register{current});
        if (cell == m_scope.registers.end()) {
            m_asm.op(Action::DefineLocal);
        } else {
            m_asm.record(Action::StoreRegister, Assembler::Payload().u8(cell->second));
            m_asm.op(Action::Pop);
        }
    } else if (stmt->a->kind == ExprKind::Name) {
        m_asm.push(Register{current});
        storeName(stmt->a->text, Wanted::Effect);
    } else if (stmt->a->kind == ExprKind::Member || stmt->a->kind == ExprKind::Index) {
        memberTarget(stmt->a, false);
        m_asm.push(Register{current});
        m_asm.op(Action::SetMember);
    } else {
        error(stmt->a->where, "a variable or member before 'in'");
    }
    body(stmt->first, std::move(enclosing));
    m_asm.at(stmt->where);
    m_asm.branch(Action::Jump, top);
    drain(drainFrom);
    m_asm.mark(end);
}

/// Takes the names that a loop left early has not used yet from the stack.
void Compiler::drain(Label start)
{
    m_asm.mark(start);
    m_asm.push(NullValue{});
    m_asm.op(Action::Equals2);
    m_asm.op(Action::Not);
    m_asm.branch(Action::If, start);
}

/// Tests come first and each leads to a stub that takes the tested value from the stack; so nothing is left
/// there while the cases run, and break, return and continue need no care.
void Compiler::switchStatement(const Stmt* stmt)
{
    Enclosing enclosing{Enclosing::Kind::Switch, std::move(m_pendingLabels), m_asm.newLabel(), 0};
    m_pendingLabels.clear();
    if (!need(5, stmt->where, "'switch'")) return;
    const Label end = enclosing.breakTo;
    std::vector<Label> stubs, bodies;
    value(stmt->a);
    for (const SwitchCase& entry : stmt->cases) {
        stubs.push_back(m_asm.newLabel());
        bodies.push_back(m_asm.newLabel());
        if (entry.test == nullptr) continue;
        m_asm.op(Action::PushDuplicate);
        value(entry.test);
        m_asm.op(m_version >= 6 ? Action::StrictEquals : Action::Equals2);
        m_asm.branch(Action::If, stubs.back());
    }
    Label otherwise = end;
    for (std::size_t i = 0; i < stmt->cases.size(); ++i) {
        if (stmt->cases[i].test == nullptr) otherwise = bodies[i];
    }
    m_asm.op(Action::Pop);
    m_asm.branch(Action::Jump, otherwise);
    for (std::size_t i = 0; i < stmt->cases.size(); ++i) {
        if (stmt->cases[i].test == nullptr) continue;
        m_asm.mark(stubs[i]);
        m_asm.op(Action::Pop);
        m_asm.branch(Action::Jump, bodies[i]);
    }
    m_scope.enclosing.push_back(std::move(enclosing));
    for (std::size_t i = 0; i < stmt->cases.size(); ++i) {
        m_asm.mark(bodies[i]);
        statements(stmt->cases[i].body);
    }
    m_scope.enclosing.pop_back();
    m_asm.mark(end);
}

void Compiler::withStatement(const Stmt* stmt)
{
    if (!need(5, stmt->where, "'with'")) return;
    const Label end = m_asm.newLabel();
    value(stmt->a);
    m_asm.record(Action::With, Assembler::Payload().length(end));
    statement(stmt->first);
    m_asm.mark(end);
}

void Compiler::tellTarget(const Stmt* stmt)
{
    if (stmt->a->kind == ExprKind::String || stmt->a->kind == ExprKind::SlashPath) {
        m_asm.record(Action::SetTarget, Assembler::Payload().text(stmt->a->text));
    } else if (const auto path = m_version == 4 ? slashPath(stmt->a) : std::nullopt) {
        m_asm.record(Action::SetTarget, Assembler::Payload().text(*path));
    } else {
        value(stmt->a);
        m_asm.op(Action::SetTarget2);
    }
    Enclosing enclosing;
    enclosing.kind = Enclosing::Kind::TellTarget;
    body(stmt->first, std::move(enclosing));
    m_asm.record(Action::SetTarget, Assembler::Payload().text(""));
}

/// The action skips a number of actions when the frame is not there; the one it skips is a jump to the body.
void Compiler::ifFrameLoaded(const Stmt* stmt)
{
    const Label loaded = m_asm.newLabel(), otherwise = m_asm.newLabel(), end = m_asm.newLabel();
    if (stmt->a->kind == ExprKind::Number && stmt->a->number >= 1 && stmt->a->number <= 65536) {
        const int frame = static_cast<int>(stmt->a->number) - 1;
        m_asm.record(Action::WaitForFrame, Assembler::Payload().u16(frame).u8(1));
    } else {
        value(stmt->a);
        m_asm.record(Action::WaitForFrame2, Assembler::Payload().u8(1));
    }
    m_asm.branch(Action::Jump, loaded);
    m_asm.branch(Action::Jump, otherwise);
    m_asm.mark(loaded);
    statement(stmt->first);
    if (stmt->second != nullptr) m_asm.branch(Action::Jump, end);
    m_asm.mark(otherwise);
    if (stmt->second != nullptr) statement(stmt->second);
    m_asm.mark(end);
}

/// Makes the short name known, and brings in the class from a/b/Name.as beside the script when it is not
/// declared yet.
void Compiler::importClass(const Stmt* stmt)
{
    const std::string& name = stmt->text;
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || name.back() == '*') return;
    m_imports[name.substr(dot + 1)] = name;
    if (m_context.classes.contains(name)) return;
    constexpr int kDeepestImport = 32;
    if (m_importDepth >= kDeepestImport) {
        error(stmt->where, "at most 32 nested imports");
        return;
    }
    std::string file = name;
    std::replace(file.begin(), file.end(), '.', '/');
    SourceText source;
    source.path = besideFile(m_path, file + ".as");
    const auto content = m_context.files.read(source.path);
    if (!content) return; // one of the player's own classes
    source.text.assign(content->begin(), content->end());
    if (!base::isUtf8(source.text)) source.text = base::utf8FromAnsi(source.text);
    source.start = {m_context.diagnostics.addFile(source.path), 1, 1};
    m_imported.push_back(
        parse(source, ScriptKind::Statements, m_version, m_context.files, m_context.diagnostics));
    const Program& program = *m_imported.back();
    if (m_context.diagnostics.hasErrors()) return;
    ++m_importDepth;
    hoisted(program.main.body);
    --m_importDepth;
}

} // namespace swfc::actionscript
