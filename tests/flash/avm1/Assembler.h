#pragma once

#include "flash/swf/ActionCodes.h"

#include <bit>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace flash::avm1::test
{

/// Puts action bytes together. Labels may be used before they are defined.
class Assembler
{
public:
    using Code = swf::ActionCode;
    Assembler& op(Code code)
    {
        m_bytes.push_back(static_cast<std::uint8_t>(code));
        return *this;
    }
    Assembler& ops(std::initializer_list<Code> codes)
    {
        for (const Code code : codes) op(code);
        return *this;
    }
    Assembler& longOp(Code code, const std::vector<std::uint8_t>& payload)
    {
        op(code);
        word(payload.size());
        m_bytes.insert(m_bytes.end(), payload.begin(), payload.end());
        return *this;
    }
    Assembler& push(std::string_view text)
    {
        std::vector<std::uint8_t> payload{0};
        payload.insert(payload.end(), text.begin(), text.end());
        payload.push_back(0);
        return longOp(Code::Push, payload);
    }
    Assembler& push(const char* text) { return push(std::string_view(text)); }
    Assembler& push(double number)
    {
        const auto bits = std::bit_cast<std::uint64_t>(number);
        std::vector<std::uint8_t> payload{6};
        for (const int shift : {32, 40, 48, 56, 0, 8, 16, 24})
            payload.push_back(static_cast<std::uint8_t>(bits >> shift));
        return longOp(Code::Push, payload);
    }
    Assembler& push(int number) { return push(static_cast<double>(number)); }
    Assembler& push(bool flag) { return longOp(Code::Push, {5, static_cast<std::uint8_t>(flag)}); }
    Assembler& pushNull() { return longOp(Code::Push, {2}); }
    Assembler& pushUndefined() { return longOp(Code::Push, {3}); }
    Assembler& pushRegister(std::uint8_t number) { return longOp(Code::Push, {4, number}); }
    Assembler& storeRegister(std::uint8_t number) { return longOp(Code::StoreRegister, {number}); }
    Assembler& get(std::string_view variable) { return push(variable).op(Code::GetVariable); }
    /// Traces the value on the stack.
    Assembler& trace() { return op(Code::Trace); }

    Assembler& label(const std::string& name)
    {
        m_labels[name] = m_bytes.size();
        return *this;
    }
    Assembler& jump(const std::string& label) { return jumpTo(Code::Jump, label); }
    Assembler& jumpIf(const std::string& label) { return jumpTo(Code::If, label); }

    /// A function expression (empty name) or declaration without registers.
    Assembler& function(std::string_view name, const std::vector<std::string>& parameters,
                        const Assembler& body)
    {
        std::vector<std::uint8_t> payload;
        appendText(payload, name);
        appendWord(payload, parameters.size());
        for (const std::string& parameter : parameters) appendText(payload, parameter);
        const std::vector<std::uint8_t> code = body.bytes();
        appendWord(payload, code.size());
        longOp(Code::DefineFunction, payload);
        m_bytes.insert(m_bytes.end(), code.begin(), code.end());
        return *this;
    }
    Assembler& function2(std::string_view name, int registers, int flags,
                         const std::vector<std::pair<int, std::string>>& parameters, const Assembler& body)
    {
        std::vector<std::uint8_t> payload;
        appendText(payload, name);
        appendWord(payload, parameters.size());
        payload.push_back(static_cast<std::uint8_t>(registers));
        appendWord(payload, static_cast<std::size_t>(flags));
        for (const auto& [number, parameter] : parameters) {
            payload.push_back(static_cast<std::uint8_t>(number));
            appendText(payload, parameter);
        }
        const std::vector<std::uint8_t> code = body.bytes();
        appendWord(payload, code.size());
        longOp(Code::DefineFunction2, payload);
        m_bytes.insert(m_bytes.end(), code.begin(), code.end());
        return *this;
    }
    Assembler& with(const Assembler& body)
    {
        const std::vector<std::uint8_t> code = body.bytes();
        std::vector<std::uint8_t> payload;
        appendWord(payload, code.size());
        longOp(Code::With, payload);
        m_bytes.insert(m_bytes.end(), code.begin(), code.end());
        return *this;
    }
    /// A null body means that the part is absent.
    Assembler& tryBlock(const Assembler& body, std::string_view catchName, const Assembler* caught,
                        const Assembler* last)
    {
        const auto bodyCode = body.bytes();
        const auto caughtCode = caught == nullptr ? std::vector<std::uint8_t>() : caught->bytes();
        const auto lastCode = last == nullptr ? std::vector<std::uint8_t>() : last->bytes();
        std::vector<std::uint8_t> payload{
            static_cast<std::uint8_t>((caught != nullptr ? 1 : 0) | (last != nullptr ? 2 : 0))};
        appendWord(payload, bodyCode.size());
        appendWord(payload, caughtCode.size());
        appendWord(payload, lastCode.size());
        appendText(payload, catchName);
        longOp(Code::Try, payload);
        for (const auto* code : {&bodyCode, &caughtCode, &lastCode})
            m_bytes.insert(m_bytes.end(), code->begin(), code->end());
        return *this;
    }

    Assembler& append(const Assembler& other)
    {
        const std::vector<std::uint8_t> code = other.bytes();
        m_bytes.insert(m_bytes.end(), code.begin(), code.end());
        return *this;
    }

    [[nodiscard]] std::vector<std::uint8_t> bytes() const
    {
        std::vector<std::uint8_t> bytes = m_bytes;
        for (const auto& [at, label] : m_jumps) {
            const auto distance = static_cast<std::uint16_t>(m_labels.at(label) - (at + 2));
            bytes[at] = static_cast<std::uint8_t>(distance);
            bytes[at + 1] = static_cast<std::uint8_t>(distance >> 8);
        }
        return bytes;
    }

private:
    Assembler& jumpTo(Code code, const std::string& label)
    {
        longOp(code, {0, 0});
        m_jumps.emplace_back(m_bytes.size() - 2, label);
        return *this;
    }
    void word(std::size_t value)
    {
        m_bytes.push_back(static_cast<std::uint8_t>(value));
        m_bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    static void appendWord(std::vector<std::uint8_t>& out, std::size_t value)
    {
        out.push_back(static_cast<std::uint8_t>(value));
        out.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    static void appendText(std::vector<std::uint8_t>& out, std::string_view text)
    {
        out.insert(out.end(), text.begin(), text.end());
        out.push_back(0);
    }
    std::vector<std::uint8_t> m_bytes;
    std::map<std::string, std::size_t> m_labels;
    std::vector<std::pair<std::size_t, std::string>> m_jumps;
};

} // namespace flash::avm1::test
