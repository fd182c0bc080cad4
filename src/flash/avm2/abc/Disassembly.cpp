#include "flash/avm2/abc/Disassembly.h"

#include "flash/avm2/abc/CodeReader.h"
#include "flash/avm2/abc/Opcodes.h"

#include <array>

namespace flash::avm2::abc
{

namespace
{

consteval std::array<OpInfo, 256> makeTable()
{
    std::array<OpInfo, 256> table{};
#define AVM2_ROW(code, name, operands, pops, pushes) table[code] = {#name, operands, pops, pushes};
    AVM2_OPCODES(AVM2_ROW)
#undef AVM2_ROW
    return table;
}
constexpr auto kTable = makeTable();

std::string namespaceText(const Abc& abc, std::uint32_t index)
{
    return index == 0 ? "*" : abc.strings[abc.namespaces[index].name];
}

std::string nameOfAt(const Abc& abc, std::uint32_t index, int depth)
{
    constexpr int kDeepest = 8;
    if (index == 0) return "*";
    if (depth > kDeepest) return "...";
    const MultinameInfo& info = abc.multinames[index];
    std::string text = info.isAttribute() ? "@" : "";
    const std::string name =
        info.name == 0 ? "*" : abc.strings[info.kind == MultinameKind::TypeName ? 0 : info.name];
    switch (info.kind) {
    case MultinameKind::QName:
    case MultinameKind::QNameA: {
        const std::string ns = namespaceText(abc, info.ns);
        return text + (ns.empty() ? "" : ns + "::") + name;
    }
    case MultinameKind::RtqName:
    case MultinameKind::RtqNameA: return text + "[]::" + name;
    case MultinameKind::RtqNameL:
    case MultinameKind::RtqNameLA: return text + "[]::[]";
    case MultinameKind::TypeName: {
        text += nameOfAt(abc, info.name, depth + 1) + ".<";
        for (const std::uint32_t parameter : info.parameters) text += nameOfAt(abc, parameter, depth + 1);
        return text + ">";
    }
    default: break;
    }
    text += "{";
    for (const std::uint32_t ns : abc.namespaceSets[info.ns]) text += namespaceText(abc, ns) + ",";
    if (text.back() == ',') text.pop_back();
    return text + "}::" + (info.hasRuntimeName() ? "[]" : name);
}

void appendTraits(std::string& out, const Abc& abc, const std::vector<Trait>& traits)
{
    static constexpr const char* kKinds[] = {"slot",  "method",   "getter", "setter",
                                             "class", "function", "const"};
    for (const Trait& trait : traits) {
        out += std::string("    ") + kKinds[static_cast<int>(trait.kind)] + ' ' + nameOf(abc, trait.name);
        if (trait.kind == Trait::Kind::Slot || trait.kind == Trait::Kind::Const)
            out += ':' + nameOf(abc, trait.type);
        else
            out += " #" + std::to_string(trait.index);
        out += '\n';
    }
}

void appendInstruction(std::string& out, const Abc& abc, const Instruction& instruction)
{
    const OpInfo& info = opInfo(instruction.op);
    out +=
        "    " + std::to_string(instruction.at) + "  " + (info.name.empty() ? "?" : std::string(info.name));
    for (std::size_t i = 0; i < info.operands.size(); ++i) {
        const std::int32_t value = instruction.operands[i];
        const auto index = static_cast<std::uint32_t>(value);
        switch (info.operands[i]) {
        case 'm': out += ' ' + (index < abc.multinames.size() ? nameOf(abc, index) : "?"); break;
        case 's': out += index < abc.strings.size() ? " \"" + abc.strings[index] + '"' : " ?"; break;
        case 'i': out += index < abc.ints.size() ? ' ' + std::to_string(abc.ints[index]) : " ?"; break;
        case 'U': out += index < abc.uints.size() ? ' ' + std::to_string(abc.uints[index]) : " ?"; break;
        case 'd': out += index < abc.doubles.size() ? ' ' + std::to_string(abc.doubles[index]) : " ?"; break;
        case 'j': out += " -> " + std::to_string(value); break;
        case 'L':
            out += " -> " + std::to_string(value);
            for (const std::int32_t target : instruction.cases) out += ' ' + std::to_string(target);
            break;
        default: out += ' ' + std::to_string(value);
        }
    }
    out += '\n';
}

} // namespace

const OpInfo& opInfo(std::uint8_t code) { return kTable[code]; }

std::string nameOf(const Abc& abc, std::uint32_t multiname) { return nameOfAt(abc, multiname, 0); }

std::string disassemble(const Abc& abc)
{
    std::string out;
    for (std::size_t i = 0; i < abc.instances.size(); ++i) {
        const InstanceInfo& info = abc.instances[i];
        out += "class " + nameOf(abc, info.name) + " extends " + nameOf(abc, info.superName) + " init #" +
               std::to_string(info.initializer) + " static #" + std::to_string(abc.classes[i].initializer) +
               '\n';
        appendTraits(out, abc, info.traits);
        out += "  static\n";
        appendTraits(out, abc, abc.classes[i].traits);
    }
    for (const ScriptInfo& script : abc.scripts) {
        out += "script init #" + std::to_string(script.initializer) + '\n';
        appendTraits(out, abc, script.traits);
    }
    for (const Body& body : abc.bodies) {
        const MethodInfo& method = abc.methods[body.method];
        out += "method #" + std::to_string(body.method) + ' ' + abc.strings[method.name] + '(';
        for (const std::uint32_t type : method.parameterTypes) out += nameOf(abc, type) + ',';
        out += ") " + nameOf(abc, method.returnType) + " stack " + std::to_string(body.maxStack) +
               " locals " + std::to_string(body.localCount) + '\n';
        CodeReader reader(body.code);
        while (!reader.atEnd()) {
            const auto instruction = reader.next();
            if (!instruction) {
                out += "    (damaged)\n";
                break;
            }
            appendInstruction(out, abc, *instruction);
        }
        for (const ExceptionInfo& info : body.exceptions)
            out += "    catch " + std::to_string(info.from) + ".." + std::to_string(info.to) + " -> " +
                   std::to_string(info.target) + ' ' + nameOf(abc, info.type) + '\n';
    }
    return out;
}

} // namespace flash::avm2::abc
