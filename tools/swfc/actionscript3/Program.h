#pragma once

#include "swfc/SourceFiles.h"
#include "swfc/actionscript3/Lexer.h"
#include "swfc/actionscript3/Symbols.h"

#include <memory>

namespace swfc::actionscript3
{

/// All sources of one movie: what they define, the types they name, and the block they become.
class Program
{
public:
    Program(SourceFiles& files, Diagnostics& diagnostics);

    /// Takes in a file of packages.
    void addFile(const SourceText& source);
    /// Makes the class that holds the scripts of a timeline: frame numbers from 0 on, and functions.
    struct FrameScript {
        std::uint32_t frame = 0;
        SourceText source;
    };
    /// @param base dotted name of the class it extends
    void addTimeline(const std::string& name, const std::string& base,
                     const std::vector<FrameScript>& scripts);
    /// Where classes that are imported are looked for: a/b/Name.as below it.
    void setRoot(const std::string& path) { m_root = path; }
    /// @returns the class of a dotted name, read from its file when it is not known yet; null if there is
    /// none
    ClassSymbol* findClass(const std::string& dotted);
    /// Compiles everything. The script of the file taken in first is the one that is run.
    std::vector<std::uint8_t> compile();

    AbcFile abc;
    void error(Position where, const std::string& message) { m_diagnostics.error(where, message); }

    // Types
    struct BuiltIn {
        TypePtr any, none, integer, uinteger, number, boolean, string, object, function, array, xml, cls;
    };
    [[nodiscard]] const BuiltIn& types() const { return m_types; }
    TypePtr resolve(const TypeExpr* type, Scope& scope);
    TypePtr vectorOf(TypePtr element);
    [[nodiscard]] const Member* findMember(const ClassSymbol* cls, const std::string& name, bool isStatic,
                                           const std::vector<Index>& namespaces, Member::Kind wanted);
    /// @returns the base class when it is one of the program's
    ClassSymbol* baseOf(ClassSymbol* cls);
    void declareMembers(ClassSymbol& cls);
    TypePtr typeOf(const Definition& definition);

    // Names
    struct Found {
        const Definition* definition = nullptr; ///< null: of the library, or not known
        Index name = 0;                         ///< multiname; 0: nothing but a guess at run time
    };
    /// What a plain name means outside of functions and classes.
    Found find(const std::string& name, Scope& scope);
    /// The same for a dotted one.
    Found findDotted(const std::string& dotted, Scope& scope);
    bool isPackage(const std::string& name, Scope& scope);
    std::vector<Index> openNamespaces(const Scope& scope, const ClassSymbol* cls);
    /// The name in all those namespaces, and those of whole imported packages when it may be a definition.
    Index openName(const std::string& name, const std::vector<Index>& namespaces, const Scope* imports,
                   bool isAttribute = false);
    /// A namespace by its name, as far as it is known before the movie runs.
    std::optional<Index> findNamespace(const std::string& name, Scope& scope, ClassSymbol* cls);
    Index publicNs(const std::string& package = {}) { return abc.ns(abc::NamespaceKind::Package, package); }
    [[nodiscard]] Index as3Ns() const { return m_as3; }
    void use(Scope& scope, const Stmt* stmt, ClassSymbol* cls);
    /// Notes an import; whether there is such a class, checkImport() asks when all sources are known.
    void import(Scope& scope, const Stmt* stmt);
    void checkImport(const Stmt* stmt);

private:
    friend class DefinitionCompiler;
    TypePtr addType(Type type);
    TypePtr builtIn(Type::Kind kind, const std::string& name);
    bool load(const std::string& dotted);
    void collect(File* file);
    void collectPackage(File* file, Package& package, Index fileNs);
    void define(Scope& scope, const std::string& name, Position where, Definition definition);
    ClassSymbol* addClass(Scope& scope, ClassDeclaration* declaration);
    Index access(const Scope& scope, const Modifiers& modifiers, Position where);
    Index memberAccess(ClassSymbol& cls, const Modifiers& modifiers, Position where);
    Index namespaceValue(const Scope& scope, const std::string& owner, const Stmt* stmt, ClassSymbol* cls);
    void declareMember(ClassSymbol& cls, const Stmt* stmt);
    void addMember(ClassSymbol& cls, const std::string& name, Position where, Member member);

    SourceFiles& m_files;
    Diagnostics& m_diagnostics;
    std::string m_root;
    Index m_as3 = 0;
    BuiltIn m_types{};
    std::vector<std::unique_ptr<Type>> m_allTypes;
    std::map<Index, TypePtr> m_typesByName;
    std::vector<std::unique_ptr<File>> m_sources;
    std::vector<std::unique_ptr<Scope>> m_scopes;
    std::vector<std::unique_ptr<ClassSymbol>> m_classes;
    std::map<std::string, Definition> m_definitions;               // by dotted name
    std::map<std::pair<File*, std::string>, Definition> m_outside; // of packages
    std::set<std::string> m_packages;
    std::map<std::string, bool> m_tried; // files that were looked for
    File* m_main = nullptr;
};

} // namespace swfc::actionscript3
