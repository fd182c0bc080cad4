#pragma once

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
    Assembler& op(std::uint8_t code)
    {
        m_bytes.push_back(code);
        return *this;
    }
    Assembler& ops(std::initializer_list<int> codes)
    {
        for (const int code : codes) m_bytes.push_back(static_cast<std::uint8_t>(code));
        return *this;
    }
    Assembler& longOp(std::uint8_t code, const std::vector<std::uint8_t>& payload)
    {
        m_bytes.push_back(code);
        word(payload.size());
        m_bytes.insert(m_bytes.end(), payload.begin(), payload.end());
        return *this;
    }
    Assembler& push(std::string_view text)
    {
        std::vector<std::uint8_t> payload{0};
        payload.insert(payload.end(), text.begin(), text.end());
        payload.push_back(0);
        return longOp(0x96, payload);
    }
    Assembler& push(const char* text) { return push(std::string_view(text)); }
    Assembler& push(double number)
    {
        const auto bits = std::bit_cast<std::uint64_t>(number);
        std::vector<std::uint8_t> payload{6};
        for (const int shift : {32, 40, 48, 56, 0, 8, 16, 24})
            payload.push_back(static_cast<std::uint8_t>(bits >> shift));
        return longOp(0x96, payload);
    }
    Assembler& push(int number) { return push(static_cast<double>(number)); }
    Assembler& push(bool flag) { return longOp(0x96, {5, static_cast<std::uint8_t>(flag)}); }
    Assembler& pushNull() { return longOp(0x96, {2}); }
    Assembler& pushUndefined() { return longOp(0x96, {3}); }
    Assembler& pushRegister(std::uint8_t number) { return longOp(0x96, {4, number}); }
    Assembler& storeRegister(std::uint8_t number) { return longOp(0x87, {number}); }
    Assembler& get(std::string_view variable) { return push(variable).op(0x1C); }
    /// Traces the value on the stack.
    Assembler& trace() { return op(0x26); }

    Assembler& label(const std::string& name)
    {
        m_labels[name] = m_bytes.size();
        return *this;
    }
    Assembler& jump(const std::string& label) { return jumpTo(0x99, label); }
    Assembler& jumpIf(const std::string& label) { return jumpTo(0x9D, label); }

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
        longOp(0x9B, payload);
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
        longOp(0x8E, payload);
        m_bytes.insert(m_bytes.end(), code.begin(), code.end());
        return *this;
    }
    Assembler& with(const Assembler& body)
    {
        const std::vector<std::uint8_t> code = body.bytes();
        std::vector<std::uint8_t> payload;
        appendWord(payload, code.size());
        longOp(0x94, payload);
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
        longOp(0x8F, payload);
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
    Assembler& jumpTo(std::uint8_t code, const std::string& label)
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
