#include "flash/render/GpuProgram.h"

#include <algorithm>
#include <bit>
#include <string_view>

namespace flash::render
{

namespace
{

constexpr std::size_t kHeaderBytes = 7, kStepBytes = 24, kMaxSteps = 2048;
constexpr int kMaxVersion = 3, kMaxNesting = 32;

struct OpInfo {
    std::string_view name;
    std::uint8_t sources;
    enum Flag : std::uint8_t { NoTarget = 1, Fragment = 2, Rows3 = 4, Rows4 = 8, Samples = 16 };
    std::uint8_t flags = 0;
};
/// @returns null for what is no instruction
const OpInfo* infoOf(std::uint32_t op)
{
    static constexpr OpInfo kFirst[] = {
        {"mov", 1},
        {"add", 2},
        {"sub", 2},
        {"mul", 2},
        {"div", 2},
        {"rcp", 1},
        {"min", 2},
        {"max", 2},
        {"frc", 1},
        {"sqt", 1},
        {"rsq", 1},
        {"pow", 2},
        {"log", 1},
        {"exp", 1},
        {"nrm", 1},
        {"sin", 1},
        {"cos", 1},
        {"crs", 2},
        {"dp3", 2},
        {"dp4", 2},
        {"abs", 1},
        {"neg", 1},
        {"sat", 1},
        {"m33", 2, OpInfo::Rows3},
        {"m44", 2, OpInfo::Rows4},
        {"m34", 2, OpInfo::Rows3},
        {"ddx", 1, OpInfo::Fragment},
        {"ddy", 1, OpInfo::Fragment},
        {"ife", 2, OpInfo::NoTarget},
        {"ine", 2, OpInfo::NoTarget},
        {"ifg", 2, OpInfo::NoTarget},
        {"ifl", 2, OpInfo::NoTarget},
        {"els", 0, OpInfo::NoTarget},
        {"eif", 0, OpInfo::NoTarget},
    };
    static constexpr OpInfo kSecond[] = {
        {"kil", 1, OpInfo::NoTarget | OpInfo::Fragment},
        {"tex", 1, OpInfo::Fragment | OpInfo::Samples},
        {"sge", 2},
        {"slt", 2},
        {"sgn", 1},
        {"seq", 2},
        {"sne", 2},
    };
    constexpr auto kSecondAt = static_cast<std::uint32_t>(GpuOp::Kill);
    if (op < std::size(kFirst)) return &kFirst[op];
    if (op >= kSecondAt && op - kSecondAt < std::size(kSecond)) return &kSecond[op - kSecondAt];
    return nullptr;
}

std::size_t countOf(GpuFile file)
{
    switch (file) {
    case GpuFile::Attribute: return GpuProgram::kAttributes;
    case GpuFile::Constant: return GpuProgram::kConstants;
    case GpuFile::Temporary: return GpuProgram::kTemporaries;
    case GpuFile::Varying: return GpuProgram::kVaryings;
    case GpuFile::Sampler: return GpuProgram::kSamplers;
    case GpuFile::Output:
    case GpuFile::Depth: return 1;
    }
    return 0;
}

class Parser
{
public:
    Parser(std::span<const std::uint8_t> bytes, GpuStage stage, GpuProgram& program)
        : m_bytes(bytes), m_stage(stage), m_program(program)
    {
    }

    std::optional<GpuFault> parse()
    {
        m_program = {};
        m_program.stage = m_stage;
        if (auto fault = header()) return fault;
        const std::size_t count = (m_bytes.size() - kHeaderBytes) / kStepBytes;
        if (count > kMaxSteps) return fault(3624, "AGAL validation failed: Too many tokens for ");
        for (m_token = 0; m_token < count; ++m_token) {
            if (auto fault = step(kHeaderBytes + m_token * kStepBytes)) return fault;
        }
        if (!m_branches.empty())
            return fault(3627, "AGAL validation failed: Conditional block is not closed, in ");
        if (!m_writesOutput)
            return fault(3632, "AGAL validation failed: The output register is never written to in ");
        return {};
    }

private:
    [[nodiscard]] std::string stageName() const
    {
        return m_stage == GpuStage::Vertex ? "vertex program." : "fragment program.";
    }
    [[nodiscard]] GpuFault fault(int number, const std::string& text) const
    {
        return {number, text + stageName()};
    }
    [[nodiscard]] GpuFault faultHere(int number, const std::string& text) const
    {
        return {number, "AGAL validation failed: " + text + " at token " + std::to_string(m_token + 1) +
                            " of " + stageName()};
    }
    [[nodiscard]] std::uint32_t u8(std::size_t at) const { return m_bytes[at]; }
    [[nodiscard]] std::uint32_t u16(std::size_t at) const { return u8(at) | u8(at + 1) << 8U; }
    [[nodiscard]] std::uint32_t u32(std::size_t at) const { return u16(at) | u16(at + 2) << 16U; }

    std::optional<GpuFault> header()
    {
        if (m_bytes.size() < kHeaderBytes + kStepBytes)
            return fault(3615, "AGAL validation failed: Program size below minimum length for ");
        if (m_bytes[0] != 0xA0)
            return fault(3616, "AGAL validation failed: Not an AGAL program. Wrong magic byte for ");
        if (u32(1) < 1 || u32(1) > kMaxVersion)
            return fault(3617, "AGAL validation failed: Bad AGAL version for ");
        if (m_bytes[5] != 0xA1)
            return fault(3618, "AGAL validation failed: Bad AGAL program type identifier for ");
        if (m_bytes[6] != (m_stage == GpuStage::Vertex ? 0 : 1))
            return fault(
                3619, "AGAL validation failed: The program type must be that which it is uploaded for, in ");
        if ((m_bytes.size() - kHeaderBytes) % kStepBytes != 0)
            return fault(3615, "AGAL validation failed: Program size below minimum length for ");
        return {};
    }

    [[nodiscard]] bool mayRead(GpuFile file) const
    {
        if (file == GpuFile::Constant || file == GpuFile::Temporary) return true;
        return file == (m_stage == GpuStage::Vertex ? GpuFile::Attribute : GpuFile::Varying);
    }
    [[nodiscard]] bool mayWrite(GpuFile file) const
    {
        if (file == GpuFile::Output || file == GpuFile::Temporary) return true;
        return file == (m_stage == GpuStage::Vertex ? GpuFile::Varying : GpuFile::Depth);
    }

    /// @param rows registers that are read one after another
    std::optional<GpuFault> source(std::size_t at, GpuSource& to, std::size_t rows)
    {
        const std::uint32_t file = u8(at + 4) & 0xFU;
        if (file > static_cast<std::uint32_t>(GpuFile::Depth) || !mayRead(static_cast<GpuFile>(file)))
            return faultHere(3636, "Source register type is not allowed");
        to.file = static_cast<GpuFile>(file);
        for (std::uint32_t i = 0; i < 4; ++i)
            to.swizzle[i] = static_cast<std::uint8_t>(u8(at + 3) >> 2 * i & 3U);
        to.isIndirect = (u8(at + 7) & 0x80U) != 0;
        if (!to.isIndirect) {
            to.index = static_cast<std::uint16_t>(u16(at));
            if (to.index + rows > countOf(to.file))
                return faultHere(3637, "Source register index is out of bounds");
            for (std::size_t i = 0; i < rows; ++i) noteRead(to.file, to.index + i);
            return {};
        }
        const std::uint32_t chooser = u8(at + 5) & 0xFU;
        if (m_stage != GpuStage::Vertex || to.file != GpuFile::Constant)
            return faultHere(3639, "Indirect addressing is only allowed for constants of vertices");
        if (chooser > static_cast<std::uint32_t>(GpuFile::Temporary))
            return faultHere(3640, "Indirect addressing by a register that cannot choose");
        to.chooser = static_cast<GpuFile>(chooser);
        to.chooserIndex = static_cast<std::uint16_t>(u16(at));
        to.index = static_cast<std::uint16_t>(u8(at + 2));
        to.chooserComponent = static_cast<std::uint8_t>(u8(at + 6) & 3U);
        if (to.chooserIndex >= countOf(to.chooser))
            return faultHere(3637, "Source register index is out of bounds");
        noteRead(to.chooser, to.chooserIndex);
        return {};
    }
    void noteRead(GpuFile file, std::size_t index)
    {
        if (file == GpuFile::Attribute) m_program.attributes |= 1U << index;
        if (file == GpuFile::Varying) m_program.varyings |= 1U << index;
    }

    std::optional<GpuFault> sampler(std::size_t at, GpuStep& step)
    {
        const std::uint32_t how = u32(at + 4);
        if ((how & 0xFU) != static_cast<std::uint32_t>(GpuFile::Sampler))
            return faultHere(3652, "Texture sampler expected");
        step.sampler = static_cast<std::uint16_t>(u16(at));
        if (step.sampler >= GpuProgram::kSamplers)
            return faultHere(3653, "Sampler register index is out of bounds");
        m_program.samplers |= 1U << step.sampler;
        step.sampling.bias = static_cast<float>(static_cast<std::int8_t>(u8(at + 2))) / 8;
        step.isCube = (how >> 12U & 0xFU) == 1;
        step.keepsState = (how >> 16U & 4U) != 0;
        const std::uint32_t wrap = how >> 20U & 0xFU;
        step.sampling.repeatsU = wrap == 1 || wrap == 3;
        step.sampling.repeatsV = wrap == 1 || wrap == 2;
        step.sampling.mips = static_cast<GpuMips>(std::min(how >> 24U & 0xFU, 2U));
        step.sampling.filter = static_cast<GpuFilter>(std::min(how >> 28U & 0xFU, 1U));
        return {};
    }

    std::optional<GpuFault> branch(GpuOp op)
    {
        switch (op) {
        case GpuOp::IfEqual:
        case GpuOp::IfNotEqual:
        case GpuOp::IfGreater:
        case GpuOp::IfLess:
            if (m_branches.size() >= kMaxNesting) return faultHere(3626, "Conditional blocks are too deep");
            m_branches.push_back(false);
            break;
        case GpuOp::Else:
            if (m_branches.empty() || m_branches.back()) return faultHere(3628, "Else without if");
            m_branches.back() = true;
            break;
        case GpuOp::EndIf:
            if (m_branches.empty()) return faultHere(3628, "End of a block without its begin");
            m_branches.pop_back();
            break;
        default: break;
        }
        return {};
    }

    std::optional<GpuFault> step(std::size_t at)
    {
        const OpInfo* info = infoOf(u32(at));
        if (info == nullptr)
            return faultHere(3620, "Invalid opcode, value out of range: " + std::to_string(u32(at)));
        if ((info->flags & OpInfo::Fragment) != 0 && m_stage == GpuStage::Vertex)
            return faultHere(3622,
                             "Opcode " + std::string(info->name) + " only allowed in fragment programs");
        GpuStep step;
        step.op = static_cast<GpuOp>(u32(at));
        if ((info->flags & OpInfo::NoTarget) == 0) {
            const std::uint32_t file = u8(at + 7) & 0xFU;
            if (file > static_cast<std::uint32_t>(GpuFile::Depth) || !mayWrite(static_cast<GpuFile>(file)))
                return faultHere(3629, "Destination register type is not allowed");
            step.target = static_cast<GpuFile>(file);
            step.targetIndex = static_cast<std::uint16_t>(u16(at + 4));
            step.mask = static_cast<std::uint8_t>(u8(at + 6) & 0xFU);
            if (step.targetIndex >= countOf(step.target))
                return faultHere(3630, "Destination register index is out of bounds");
            if (step.mask == 0) return faultHere(3633, "Destination writemask is invalid");
            m_writesOutput = m_writesOutput || step.target == GpuFile::Output;
            if (step.target == GpuFile::Varying) m_program.varyings |= 1U << step.targetIndex;
            m_program.writesDepth = m_program.writesDepth || step.target == GpuFile::Depth;
        }
        m_program.kills = m_program.kills || step.op == GpuOp::Kill;
        const std::size_t rows = (info->flags & OpInfo::Rows4) != 0   ? 4
                                 : (info->flags & OpInfo::Rows3) != 0 ? 3
                                                                      : 1;
        if (info->sources > 0) {
            if (auto fault = source(at + 8, step.a, 1)) return fault;
        }
        if (info->sources > 1) {
            if (auto fault = source(at + 16, step.b, rows)) return fault;
        }
        if ((info->flags & OpInfo::Samples) != 0) {
            if (auto fault = sampler(at + 16, step)) return fault;
        }
        if (auto fault = branch(step.op)) return fault;
        m_program.steps.push_back(step);
        return {};
    }

    std::span<const std::uint8_t> m_bytes;
    GpuStage m_stage;
    GpuProgram& m_program;
    std::size_t m_token = 0;
    std::vector<bool> m_branches; ///< whether each is past its else
    bool m_writesOutput = false;
};

} // namespace

std::optional<GpuFault> parseGpuProgram(std::span<const std::uint8_t> bytes, GpuStage stage,
                                        GpuProgram& program)
{
    return Parser(bytes, stage, program).parse();
}

std::optional<GpuFault> checkGpuLinkage(const GpuProgram& vertex, const GpuProgram& fragment)
{
    const std::uint32_t missing = fragment.varyings & ~vertex.varyings;
    if (missing == 0) return {};
    return GpuFault{3654, "AGAL linkage: Varying " + std::to_string(std::countr_zero(missing)) +
                              " is read in the fragment program but not written to by the vertex program."};
}

} // namespace flash::render
