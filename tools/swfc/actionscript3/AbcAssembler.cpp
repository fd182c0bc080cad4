#include "swfc/actionscript3/AbcAssembler.h"

#include "swfc/actionscript3/AbcFile.h"
#include "swfc/actionscript3/AbcNames.h"
#include "swfc/actionscript3/AssemblyWords.h"

#include "flash/avm2/abc/Opcodes.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace swfc::actionscript3
{
namespace
{

using abc::MethodInfo;
using abc::Trait;

struct Instruction {
    std::string_view name, operands;
    std::uint8_t code;
};
constexpr Instruction kInstructions[] = {
#define AVM2_ROW(code, name, operands, pops, pushes) {#name, operands, code},
    AVM2_OPCODES(AVM2_ROW)
#undef AVM2_ROW
};

constexpr std::uint32_t kMaxMethods = 65536;

class AbcAssembler : AssemblyWords
{
public:
    AbcAssembler(const SourceText& source, Diagnostics& diagnostics)
        : AssemblyWords(diagnostics), m_source(source)
    {
    }

    std::vector<std::uint8_t> run()
    {
        const std::size_t before = m_diagnostics.errorCount();
        m_where = m_source.start;
        std::string_view rest = m_source.text;
        while (!rest.empty()) {
            const auto end = rest.find('\n');
            line(rest.substr(0, end));
            if (end == std::string_view::npos) break;
            rest.remove_prefix(end + 1);
            ++m_where.line;
            m_where.column = 1;
        }
        endMethod();
        // Parts that are named and not there.
        for (const std::uint32_t method : m_methodsUsed) {
            if (method >= m_methods) error("expected method #" + std::to_string(method));
        }
        for (const std::uint32_t cls : m_classesUsed) {
            if (cls >= m_abc.data.instances.size())
                error("expected a class of the number " + std::to_string(cls));
        }
        if (m_diagnostics.errorCount() != before) return {};
        return m_abc.bytes();
    }

private:
    enum class In : std::uint8_t { Nothing, Class, Static, Script, Method };
    struct Fixup {
        std::size_t at, base;
        std::string label;
        Position where;
    };

    std::uint32_t methodNumber()
    {
        const std::uint32_t number = count();
        m_methodsUsed.push_back(number);
        return number;
    }
    std::uint32_t name(std::string_view written)
    {
        const auto found = assembleName(m_abc, written);
        if (!found) error("expected a name, found '" + std::string(written) + "'");
        return found.value_or(0);
    }

    // lines
    void line(std::string_view text)
    {
        m_rest = text;
        // Columns are of no use where each thing has its line.
        const std::string_view first = word();
        if (first.empty() || first == "block" || first.starts_with("//") || first.starts_with(';')) return;
        if (first == "method" && peekWord().starts_with('#')) {
            beginMethod();
        } else if (first == "script") {
            endMethod();
            m_in = In::Script;
            auto& script = m_abc.data.scripts.emplace_back();
            if (!acceptWord("init")) expected("'init'");
            script.initializer = methodNumber();
        } else if (first == "class" && m_in != In::Script) {
            beginClass();
        } else if (first == "static" && (m_in == In::Class || m_in == In::Static)) {
            m_in = In::Static;
        } else if (!trait(first)) {
            if (m_in == In::Method)
                instruction(first);
            else
                error("expected class, script, method or a trait, found '" + std::string(first) + "'");
        }
    }

    void beginClass()
    {
        endMethod();
        m_in = In::Class;
        abc::InstanceInfo info;
        info.flags = abc::InstanceInfo::Sealed;
        info.name = name(word());
        auto& cls = m_abc.data.classes.emplace_back();
        while (!word().empty()) {
            if (m_word == "extends")
                info.superName = name(word());
            else if (m_word == "implements")
                while (!peekWord().empty() && peekWord() != "init" && peekWord() != "final" &&
                       peekWord() != "dynamic")
                    info.interfaces.push_back(name(word()));
            else if (m_word == "final")
                info.flags |= abc::InstanceInfo::Final;
            else if (m_word == "interface")
                info.flags |= abc::InstanceInfo::Interface;
            else if (m_word == "dynamic")
                info.flags = static_cast<std::uint8_t>(info.flags & ~abc::InstanceInfo::Sealed);
            else if (m_word == "init")
                info.initializer = methodNumber();
            else if (m_word == "static")
                cls.initializer = methodNumber();
            else
                expected("extends, implements, init or static");
        }
        m_abc.data.instances.push_back(std::move(info));
    }

    bool trait(std::string_view first)
    {
        static constexpr std::string_view kKinds[] = {"slot",  "method",   "getter", "setter",
                                                      "class", "function", "const"};
        Trait made;
        for (; first == "override" || first == "final"; first = word())
            made.attributes |= first == "final" ? Trait::Final : Trait::Override;
        const auto* kind = std::ranges::find(kKinds, first);
        if (kind == std::end(kKinds) || m_in == In::Nothing) return false;
        made.kind = static_cast<Trait::Kind>(kind - kKinds);
        std::string_view written = word();
        if (made.kind == Trait::Kind::Slot || made.kind == Trait::Kind::Const) {
            // The colon between name and type is the last that stands alone.
            std::size_t colon = std::string_view::npos;
            for (std::size_t i = 1; i + 1 < written.size(); ++i) {
                if (written[i] == ':' && written[i - 1] != ':' && written[i + 1] != ':') colon = i;
            }
            if (colon != std::string_view::npos) {
                made.type = name(written.substr(colon + 1));
                written = written.substr(0, colon);
            }
        }
        made.name = name(written);
        const abc::MultinameKind nameKind = m_abc.data.multinames[made.name].kind;
        if (made.name == 0 ||
            (nameKind != abc::MultinameKind::QName && nameKind != abc::MultinameKind::QNameA))
            error("expected a name in one namespace, found '" + std::string(written) + "'");
        if (made.kind == Trait::Kind::Class) {
            made.index = count();
            m_classesUsed.push_back(made.index);
        } else if (made.kind != Trait::Kind::Slot && made.kind != Trait::Kind::Const) {
            made.index = methodNumber();
        } else if (acceptWord("=")) {
            made.value = constant();
        }
        traits().push_back(made);
        return true;
    }

    std::vector<Trait>& traits()
    {
        switch (m_in) {
        case In::Class: return m_abc.data.instances.back().traits;
        case In::Static: return m_abc.data.classes.back().traits;
        case In::Script: return m_abc.data.scripts.back().traits;
        default: return m_body.traits;
        }
    }

    abc::Constant constant()
    {
        const std::string_view next = peekWord();
        if (acceptWord("true")) return {0x0B, 0x0B};
        if (acceptWord("false")) return {0x0A, 0x0A};
        if (acceptWord("null")) return {0x0C, 0x0C};
        if (next.starts_with('"')) return {0x01, m_abc.string(text())};
        const double value = number();
        if (value ==
            static_cast<double>(static_cast<std::int32_t>(std::clamp(value, -2147483648.0, 2147483647.0))))
            return {0x03, m_abc.integer(static_cast<std::int32_t>(value))};
        return {0x06, m_abc.number(value)};
    }

    // methods
    void beginMethod()
    {
        endMethod();
        m_in = In::Method;
        m_body = {};
        m_body.maxScopeDepth = 16;
        const std::uint32_t index = count();
        if (index >= kMaxMethods) {
            expected("at most 65536 methods");
            return;
        }
        // name(Type,Type,): blanks may stand between the types
        std::string head;
        while (!m_rest.empty() && (head.empty() || head.back() != ')')) {
            head += m_rest.front();
            m_rest.remove_prefix(1);
        }
        MethodInfo info;
        const auto open = head.find('(');
        if (open == std::string::npos || head.back() != ')') {
            expected("parameters in parentheses");
            return;
        }
        const auto trimmed = [](std::string_view part) {
            while (part.starts_with(' ')) part.remove_prefix(1);
            while (part.ends_with(' ')) part.remove_suffix(1);
            return part;
        };
        info.name = m_abc.string(std::string(trimmed(std::string_view(head).substr(0, open))));
        for (const std::string_view part :
             splitNames(std::string_view(head).substr(open + 1, head.size() - open - 2))) {
            if (!trimmed(part).empty()) info.parameterTypes.push_back(name(trimmed(part)));
        }
        if (!peekWord().empty() && peekWord() != "stack") info.returnType = name(word());
        while (!word().empty()) {
            if (m_word == "stack")
                m_body.maxStack = count();
            else if (m_word == "locals")
                m_body.localCount = count();
            else if (m_word == "scopes") {
                m_body.initScopeDepth = count();
                m_body.maxScopeDepth = count();
            } else if (m_word == "rest")
                info.flags |= MethodInfo::NeedRest;
            else if (m_word == "arguments")
                info.flags |= MethodInfo::NeedArguments;
            else if (m_word == "activation")
                info.flags |= MethodInfo::NeedActivation;
            else if (m_word == "dxns")
                info.flags |= MethodInfo::SetDxns;
            else
                expected("stack, locals, scopes, rest, arguments, activation or dxns");
        }
        if (m_abc.data.methods.size() <= index) m_abc.data.methods.resize(index + 1);
        m_methods = std::max(m_methods, index + 1);
        m_abc.data.methods[index] = std::move(info);
        m_body.method = index;
        if (!m_bodies.insert(index).second)
            error("expected one method of this number, found #" + std::to_string(index));
    }

    void endMethod()
    {
        if (m_in != In::Method) return;
        const auto place = [&](const std::string& label, Position where) -> std::int64_t {
            const auto found = m_labels.find(label);
            if (found != m_labels.end()) return static_cast<std::int64_t>(found->second);
            m_diagnostics.error(where, "expected a label of this method, found '" + label + "'");
            return 0;
        };
        // The end of the code is a place, too.
        m_labels.try_emplace("end", m_code.size());
        for (const Fixup& fixup : m_fixups) {
            const std::int64_t distance =
                place(fixup.label, fixup.where) - static_cast<std::int64_t>(fixup.base);
            for (unsigned i = 0; i < 3; ++i)
                m_code[fixup.at + i] =
                    static_cast<std::uint8_t>(static_cast<std::uint64_t>(distance) >> 8U * i);
        }
        for (const auto& handler : m_handlers) {
            m_body.exceptions.push_back({static_cast<std::uint32_t>(place(handler.from, handler.where)),
                                         static_cast<std::uint32_t>(place(handler.to, handler.where)),
                                         static_cast<std::uint32_t>(place(handler.target, handler.where)),
                                         handler.type, handler.name});
        }
        m_abc.addBody(std::move(m_body), std::move(m_code));
        m_body = {};
        m_code.clear();
        m_labels.clear();
        m_fixups.clear();
        m_handlers.clear();
        m_in = In::Nothing;
    }

    void u8(std::uint32_t value) { m_code.push_back(static_cast<std::uint8_t>(value)); }
    void u30(std::uint32_t value)
    {
        for (; value >= 0x80; value >>= 7U) u8(value | 0x80U);
        u8(value);
    }
    void jump(std::size_t base)
    {
        m_fixups.push_back({m_code.size(), base, std::string(word()), m_where});
        m_code.insert(m_code.end(), 3, 0);
    }

    void instruction(std::string_view first)
    {
        // A label, or the offset that a disassembly has there.
        if (first.ends_with(':') || std::ranges::all_of(first, [](char c) { return c >= '0' && c <= '9'; })) {
            if (first.ends_with(':')) first.remove_suffix(1);
            if (!m_labels.emplace(std::string(first), m_code.size()).second)
                error("expected a new label, found '" + std::string(first) + "' a second time");
            first = word();
            if (first.empty()) return;
        }
        if (first == "catch") {
            handler();
            return;
        }
        const auto* found = std::ranges::find_if(kInstructions, [&](const Instruction& entry) {
            return entry.name == first ||
                   (entry.name.ends_with('_') && entry.name.substr(0, entry.name.size() - 1) == first);
        });
        if (found == std::end(kInstructions)) {
            error("expected an instruction, found '" + std::string(first) + "'");
            return;
        }
        if (found->operands == "D") return; // for debuggers only
        const std::size_t at = m_code.size();
        u8(found->code);
        for (const char kind : found->operands) operand(kind, at);
        if (!word().empty() && !m_word.starts_with("//")) expected("the end of the line");
    }

    void operand(char kind, std::size_t at)
    {
        switch (kind) {
        case 'm': u30(name(word())); break;
        case 's': u30(m_abc.string(text())); break;
        case 'i': u30(m_abc.integer(static_cast<std::int32_t>(integer()))); break;
        case 'U': u30(m_abc.uinteger(static_cast<std::uint32_t>(integer()))); break;
        case 'd': u30(m_abc.number(number())); break;
        case 'n': u30(assembleNamespace(m_abc, word()).value_or(0)); break;
        case 'b': u8(static_cast<std::uint32_t>(integer())); break;
        case 'h': u30(static_cast<std::uint32_t>(integer()) & kMaxNumber); break;
        case 'f': u30(methodNumber()); break;
        case 'c':
            m_classesUsed.push_back(count());
            u30(m_classesUsed.back());
            break;
        case 'j':
            acceptWord("->");
            jump(at + 4);
            break;
        case 'L': {
            acceptWord("->");
            jump(at);
            std::vector<std::string> targets;
            while (!peekWord().empty()) targets.emplace_back(word());
            if (targets.empty()) {
                error("expected a label for each number, found none");
                return;
            }
            u30(static_cast<std::uint32_t>(targets.size()) - 1);
            for (std::string& target : targets) {
                m_fixups.push_back({m_code.size(), at, std::move(target), m_where});
                m_code.insert(m_code.end(), 3, 0);
            }
            break;
        }
        default: u30(count());
        }
    }

    void handler()
    {
        const std::string_view range = word();
        const auto dots = range.find("..");
        if (dots == std::string_view::npos) {
            expected("two labels with '..' between them");
            return;
        }
        Handler made;
        made.where = m_where;
        made.from = range.substr(0, dots);
        made.to = range.substr(dots + 2);
        acceptWord("->");
        made.target = word();
        if (!peekWord().empty()) made.type = name(word());
        if (!peekWord().empty()) made.name = name(word());
        m_handlers.push_back(made);
    }

    struct Handler {
        std::string from, to, target;
        std::uint32_t type = 0, name = 0;
        Position where;
    };
    const SourceText& m_source;
    AbcFile m_abc;
    In m_in = In::Nothing;
    abc::Body m_body;
    std::vector<std::uint8_t> m_code;
    std::map<std::string, std::size_t> m_labels;
    std::vector<Fixup> m_fixups;
    std::vector<Handler> m_handlers;
    std::set<std::uint32_t> m_bodies;
    std::uint32_t m_methods = 0;
    std::vector<std::uint32_t> m_methodsUsed, m_classesUsed;
};

} // namespace

std::vector<std::uint8_t> assemble(const SourceText& source, Diagnostics& diagnostics)
{
    return AbcAssembler(source, diagnostics).run();
}

} // namespace swfc::actionscript3
