#include "script/vbscript/Compiler.h"

#include "script/vbscript/Errors.h"
#include "script/vbscript/FunctionCompiler.h"

#include <algorithm>

namespace script::vbscript
{

namespace
{

// Procedures see no locals but their own.
const Surroundings kOutside;

class ProgramCompiler
{
public:
    ProgramCompiler(const Tree& tree, Names& names, const Surroundings& surroundings)
        : m_tree(tree), m_names(names), m_surroundings(surroundings), m_program(std::make_unique<Program>())
    {
    }

    Result<std::unique_ptr<Program>> run()
    {
        CHECK_RESULT(collectGlobals());
        // Classes first: every function must know the members of its own class.
        for (const ClassDeclaration* declared : m_tree.classes) CHECK_RESULT(declareClass(*declared));
        for (const Procedure* declared : m_tree.procedures) {
            m_program->globalFunctions.push_back(declareFunction(*declared, nullptr));
        }
        for (const auto& [function, procedure] : m_bodies) {
            FunctionCompiler compiler(*m_program, *function, m_names, kOutside, m_globals);
            CHECK_RESULT(compiler.procedure(*procedure));
        }
        m_program->main = std::make_unique<Function>();
        Function& main = *m_program->main;
        main.isMain = true;
        main.optionExplicit = m_tree.optionExplicit;
        main.returnSlot = static_cast<int>(main.slots++);
        main.name = m_names.intern(u"");
        if (!m_surroundings.functions.empty()) {
            main.seesLocals = true;
            main.owner = m_surroundings.functions.front()->owner;
            main.optionExplicit = m_surroundings.functions.front()->optionExplicit;
        }
        FunctionCompiler compiler(*m_program, main, m_names, m_surroundings, m_globals);
        CHECK_RESULT(compiler.main(m_tree));
        return std::move(m_program);
    }

private:
    // Names that this text itself declares outside procedures. Of procedures of one name the last counts; any
    // other name may be declared once.
    Result<void> collectGlobals()
    {
        for (const Procedure* procedure : m_tree.procedures)
            m_declared.push_back({procedure->name, procedure->position, true});
        for (const ClassDeclaration* declared : m_tree.classes)
            m_declared.push_back({declared->name, declared->position, false});
        if (m_surroundings.functions.empty()) collectFrom(m_tree.body);
        const auto isEarlier = [](const Declared& a, const Declared& b) {
            return std::pair(a.position.line, a.position.column) <
                   std::pair(b.position.line, b.position.column);
        };
        std::sort(m_declared.begin(), m_declared.end(), isEarlier);
        std::unordered_map<Symbol, bool> seen; // whether a procedure
        for (const Declared& one : m_declared) {
            const auto [known, isNew] = seen.emplace(one.name, one.isProcedure);
            if (!isNew && !(known->second && one.isProcedure))
                return failAt(error::kNameRedefined, one.position);
            if (isNew) m_globals.push_back(one.name);
        }
        std::sort(m_globals.begin(), m_globals.end());
        return {};
    }

    void collectFrom(const Block& block)
    {
        for (const Statement* one : block) {
            if (one->kind == Statement::Kind::Dim || one->kind == Statement::Kind::Const) {
                for (const Declarator& declared : one->declarators)
                    m_declared.push_back({declared.name, declared.position, false});
            }
            if (one->kind == Statement::Kind::ReDim) {
                for (const Declarator& array : one->declarators) m_program->redimmed.push_back(array.name);
            }
            for (const Branch& branch : one->branches) collectFrom(branch.body);
            collectFrom(one->otherwise);
            collectFrom(one->body);
        }
    }

    Function* declareFunction(const Procedure& procedure, ClassInfo* owner)
    {
        auto& made = m_program->functions.emplace_back(std::make_unique<Function>());
        made->kind = procedure.kind;
        made->byReference.assign(procedure.parameters.size(), 1); // counted before the body is compiled
        made->name = procedure.name;
        made->isPrivate = procedure.isPrivate;
        made->optionExplicit = m_tree.optionExplicit;
        made->owner = owner;
        m_bodies.emplace_back(made.get(), &procedure);
        return made.get();
    }

    Result<void> declareClass(const ClassDeclaration& declared)
    {
        auto& made = m_program->classes.emplace_back(std::make_unique<ClassInfo>());
        made->name = declared.name;
        made->fields = declared.fields;
        for (std::size_t i = 0; i < made->fields.size(); ++i) {
            ClassMember member;
            member.field = static_cast<int>(i);
            member.isPrivate = made->fields[i].isPrivate;
            if (!made->members.emplace(made->fields[i].name, member).second)
                return failAt(error::kNameRedefined, made->fields[i].position);
        }
        const Symbol initialize = m_names.intern(u"Class_Initialize");
        const Symbol terminate = m_names.intern(u"Class_Terminate");
        for (const Procedure* procedure : declared.procedures) {
            Function* function = declareFunction(*procedure, made.get());
            CHECK_RESULT(addMethod(*made, *procedure, function));
            const bool isEvent = procedure->kind == Procedure::Kind::Sub &&
                                 (procedure->name == initialize || procedure->name == terminate);
            if (isEvent) {
                if (!procedure->parameters.empty())
                    return failAt(error::kEventWithArguments, procedure->position);
                (procedure->name == initialize ? made->initialize : made->terminate) = function;
            }
        }
        return {};
    }

    static Result<void> addMethod(ClassInfo& owner, const Procedure& procedure, Function* function)
    {
        ClassMember& member = owner.members[procedure.name];
        const bool isCall =
            procedure.kind == Procedure::Kind::Sub || procedure.kind == Procedure::Kind::Function;
        Function*& place = isCall                                           ? member.call
                           : procedure.kind == Procedure::Kind::PropertyGet ? member.get
                           : procedure.kind == Procedure::Kind::PropertyLet ? member.let
                                                                            : member.set;
        const bool taken =
            member.field >= 0 || member.call || place || (isCall && (member.get || member.let || member.set));
        if (taken) return failAt(error::kNameRedefined, procedure.position);
        place = function;
        // Get, Let and Set of one property take the same index arguments.
        const auto indexes = [](const Function* one) {
            return one->byReference.size() - (one->kind == Procedure::Kind::PropertyGet ? 0 : 1);
        };
        for (const Function* other : {member.get, member.let, member.set}) {
            if (!isCall && other && indexes(other) != indexes(function)) {
                return failAt(error::kInconsistentArguments, procedure.position);
            }
        }
        if (procedure.isDefault) {
            if (owner.defaultMember) return failAt(error::kTwoDefaults, procedure.position);
            owner.defaultMember = procedure.name;
        }
        return {};
    }

    const Tree& m_tree;
    Names& m_names;
    const Surroundings& m_surroundings;
    std::unique_ptr<Program> m_program;
    struct Declared {
        Symbol name;
        Position position;
        bool isProcedure;
    };
    std::vector<Declared> m_declared;
    std::vector<Symbol> m_globals;
    std::vector<std::pair<Function*, const Procedure*>> m_bodies;
};

} // namespace

Result<std::unique_ptr<Program>> compile(const Tree& tree, Names& names, const Surroundings& surroundings)
{
    return ProgramCompiler(tree, names, surroundings).run();
}

} // namespace script::vbscript
