#pragma once

#include "flash/avm2/abc/Opcodes.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace flash::avm2::abc
{

/// One instruction as it stands in the file. Jumps are given as byte offsets into the code, which may lie
/// outside of it.
struct Instruction {
    std::uint32_t at = 0, next = 0;
    std::uint8_t op = 0;
    std::array<std::int32_t, 2> operands{}; ///< the default of a switch is the first
    std::vector<std::int32_t> cases;        ///< of a switch
};

/// Walks the code of a body.
class CodeReader
{
public:
    explicit CodeReader(std::span<const std::uint8_t> code, std::uint32_t at = 0) : m_code(code), m_at(at) {}
    [[nodiscard]] bool atEnd() const { return m_at >= m_code.size(); }
    [[nodiscard]] std::uint32_t position() const { return m_at; }

    /// @returns nothing when the instruction runs over the end or is none.
    std::optional<Instruction> next()
    {
        Instruction instruction;
        instruction.at = m_at;
        instruction.op = u8();
        const OpInfo& info = opInfo(instruction.op);
        if (info.name.empty()) return std::nullopt;
        for (std::size_t i = 0; i < info.operands.size(); ++i) {
            std::int32_t value = 0;
            switch (info.operands[i]) {
            case 'b': value = static_cast<std::int8_t>(u8()); break;
            case 'h': value = static_cast<std::int16_t>(u30()); break;
            case 'j': {
                const std::int32_t offset = s24();
                value = static_cast<std::int32_t>(m_at) + offset;
                break;
            }
            case 'L': {
                const auto base = static_cast<std::int32_t>(instruction.at);
                value = base + s24();
                const std::uint32_t count = u30();
                if (count >= m_code.size()) return std::nullopt;
                for (std::uint32_t k = 0; k <= count; ++k) instruction.cases.push_back(base + s24());
                break;
            }
            case 'D':
                u8();
                u30();
                u8();
                u30();
                break;
            default: value = static_cast<std::int32_t>(u30());
            }
            instruction.operands[i] = value;
        }
        if (m_failed) return std::nullopt;
        instruction.next = m_at;
        return instruction;
    }

private:
    std::uint8_t u8()
    {
        if (m_at >= m_code.size()) {
            m_failed = true;
            return 0;
        }
        return m_code[m_at++];
    }
    std::uint32_t u30()
    {
        std::uint32_t value = 0;
        for (unsigned shift = 0; shift < 35; shift += 7) {
            const std::uint32_t byte = u8();
            value |= (byte & 0x7FU) << shift;
            if ((byte & 0x80U) == 0) break;
        }
        return value;
    }
    std::int32_t s24()
    {
        const std::uint32_t low = u8(), middle = u8(), high = u8();
        return static_cast<std::int32_t>((low | middle << 8U | high << 16U) << 8U) >> 8;
    }

    std::span<const std::uint8_t> m_code;
    std::uint32_t m_at;
    bool m_failed = false;
};

} // namespace flash::avm2::abc
