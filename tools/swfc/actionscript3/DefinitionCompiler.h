#pragma once

#include "swfc/actionscript3/FunctionCompiler.h"

namespace swfc::actionscript3
{

/// Makes the script of one file, with the classes, functions and variables that it defines.
class DefinitionCompiler
{
public:
    DefinitionCompiler(Program& program, File& file);
    /// @returns the script; it is not in the block yet
    abc::ScriptInfo run();

private:
    void defineClass(ClassSymbol& cls);
    void describeClass(ClassSymbol& cls, std::uint32_t depth);
    void members(ClassSymbol& cls, std::uint32_t depth);
    void fieldTraits(ClassSymbol& cls, const Stmt* stmt, FunctionCompiler& constants);
    void methodTrait(ClassSymbol& cls, const Stmt* stmt, std::uint32_t depth);
    Index staticInitializer(ClassSymbol& cls, std::uint32_t depth);
    Index constructor(ClassSymbol& cls, std::uint32_t depth);
    void checkOverride(ClassSymbol& cls, const Stmt* stmt, const Member& member);
    void checkOverridden(const ClassSymbol& cls, const Stmt* stmt, const ClassSymbol& holder);
    void checkInterfaces(ClassSymbol& cls);
    void packageTraits(Package& package);
    void packageStatements(Package& package);
    void addMetadata(abc::Trait& trait, const std::vector<Metadata>& list);
    [[nodiscard]] const Definition* definition(const Package& package, const std::string& name) const;
    abc::Trait namespaceTrait(const std::string& name, Index ns, Index value);

    Program& m_program;
    File& m_file;
    FunctionCompiler m_init;
    abc::ScriptInfo m_script;
    std::set<const ClassSymbol*> m_defined, m_pending;
};

} // namespace swfc::actionscript3
