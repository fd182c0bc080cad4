#include "swfc/actionscript/Assembler.h"

#include "base/TextCodes.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_map>

namespace swfc::actionscript
{
namespace
{

constexpr std::size_t kLongestPayload = 65535;

void put16(std::vector<std::uint8_t>& out, std::size_t value)
{
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}

void put32(std::vector<std::uint8_t>& out, std::uint32_t value)
{
    put16(out, value & 0xFFFF);
    put16(out, value >> 16);
}

bool isInt32(double value)
{
    return value >= std::numeric_limits<std::int32_t>::min() &&
           value <= std::numeric_limits<std::int32_t>::max() && value == std::floor(value) &&
           !(value == 0 && std::signbit(value));
}

} // namespace

std::string numberText(double value)
{
    char buffer[40];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    return std::string(buffer, end);
}

void Assembler::op(Action action)
{
    m_items.push_back({ItemKind::Op, action, m_where, UndefinedValue{}, 0, 0});
}

void Assembler::push(Value value)
{
    m_items.push_back({ItemKind::Push, Action::Push, m_where, std::move(value), 0, 0});
}

void Assembler::branch(Action action, Label target)
{
    m_items.push_back({ItemKind::Branch, action, m_where, UndefinedValue{}, target, 0});
}

Label Assembler::newLabel() { return m_labels++; }

void Assembler::mark(Label label)
{
    m_items.push_back({ItemKind::Mark, Action::End, m_where, UndefinedValue{}, label, 0});
}

void Assembler::record(Action action, const Payload& payload)
{
    m_items.push_back({ItemKind::Record, action, m_where, UndefinedValue{}, 0, m_records.size()});
    m_records.push_back(payload);
}

Assembler::Payload& Assembler::Payload::u8(int value)
{
    m_parts.push_back({Part::Kind::Byte, static_cast<std::uint8_t>(value), {}, kHere, 0});
    return *this;
}
Assembler::Payload& Assembler::Payload::u16(int value) { return u8(value & 0xFF).u8((value >> 8) & 0xFF); }
Assembler::Payload& Assembler::Payload::text(std::string utf8)
{
    m_parts.push_back({Part::Kind::Text, 0, std::move(utf8), kHere, 0});
    return *this;
}
Assembler::Payload& Assembler::Payload::length(Label to) { return length(kHere, to); }
Assembler::Payload& Assembler::Payload::length(Label from, Label to)
{
    m_parts.push_back({Part::Kind::Length, 0, {}, from, to});
    return *this;
}

/// One pass over the items: every action's size is known when it is written, so only offsets wait.
class Assembler::Layout
{
public:
    explicit Layout(Assembler& source) : m_source(source), m_offsets(source.m_labels, 0) {}
    std::vector<std::uint8_t> run();

private:
    struct Patch {
        std::size_t at;       // of the two bytes
        std::size_t fromByte; // used when from is kHere
        Label from, to;
        bool isBranch;
        Position where;
    };
    void makePool();
    void writePool();
    void writePush(std::size_t& item);
    void writeRecord(const Item& item);
    void writeText(std::vector<std::uint8_t>& out, const std::string& utf8, Position where);
    void valueBytes(const Value& value, std::vector<std::uint8_t>& out, Position where);
    void patch();

    Assembler& m_source;
    std::vector<std::size_t> m_offsets;
    std::vector<std::uint8_t> m_out;
    std::vector<Patch> m_patches;
    std::unordered_map<std::string, std::size_t> m_pool;
    std::vector<std::string> m_poolOrder;
};

/// Strings pushed more than once go to the pool, the most used first, so that they get one-byte indices.
void Assembler::Layout::makePool()
{
    if (m_source.m_version < 5) return;
    std::unordered_map<std::string, std::size_t> uses;
    std::vector<const std::string*> order;
    for (const Item& item : m_source.m_items) {
        if (item.kind != ItemKind::Push) continue;
        const auto* text = std::get_if<std::string>(&item.value);
        if (text == nullptr) continue;
        if (++uses[*text] == 2) order.push_back(text);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](const auto* a, const auto* b) { return uses[*a] > uses[*b]; });
    std::size_t bytes = 2;
    for (const std::string* text : order) {
        if (bytes + text->size() + 1 > kLongestPayload) continue;
        bytes += text->size() + 1;
        m_pool.emplace(*text, m_poolOrder.size());
        m_poolOrder.push_back(*text);
    }
}

void Assembler::Layout::writePool()
{
    if (m_poolOrder.empty()) return;
    m_out.push_back(static_cast<std::uint8_t>(Action::ConstantPool));
    const std::size_t lengthAt = m_out.size();
    put16(m_out, 0);
    put16(m_out, m_poolOrder.size());
    for (const std::string& text : m_poolOrder) writeText(m_out, text, m_source.m_where);
    const std::size_t length = m_out.size() - lengthAt - 2;
    m_out[lengthAt] = static_cast<std::uint8_t>(length);
    m_out[lengthAt + 1] = static_cast<std::uint8_t>(length >> 8);
}

/// Texts are UTF-8 from version 6 on, the system's ANSI code page before.
void Assembler::Layout::writeText(std::vector<std::uint8_t>& out, const std::string& utf8, Position where)
{
    std::string bytes = utf8;
    if (m_source.m_version < 6) {
        bytes = base::ansiFromUtf8(utf8, '\x01');
        if (bytes.find('\x01') != std::string::npos && utf8.find('\x01') == std::string::npos) {
            m_source.m_diagnostics.error(where, "expected characters of windows-1251 before version 6");
        }
    }
    if (bytes.find('\0') != std::string::npos) {
        m_source.m_diagnostics.error(where, "expected a text without zero bytes");
    }
    out.insert(out.end(), bytes.begin(), bytes.end());
    out.push_back(0);
}

/// Appends a value as the push action writes it.
void Assembler::Layout::valueBytes(const Value& value, std::vector<std::uint8_t>& out, Position where)
{
    if (const auto* text = std::get_if<std::string>(&value)) {
        const auto pooled = m_pool.find(*text);
        if (pooled == m_pool.end()) {
            out.push_back(0);
            writeText(out, *text, where);
        } else if (pooled->second < 256) {
            out.push_back(8);
            out.push_back(static_cast<std::uint8_t>(pooled->second));
        } else {
            out.push_back(9);
            put16(out, pooled->second);
        }
    } else if (const auto* number = std::get_if<double>(&value)) {
        if (isInt32(*number)) {
            out.push_back(7);
            put32(out, static_cast<std::uint32_t>(static_cast<std::int32_t>(*number)));
        } else {
            // The high half comes first, each half little-endian.
            out.push_back(6);
            const auto bits = std::bit_cast<std::uint64_t>(*number);
            put32(out, static_cast<std::uint32_t>(bits >> 32));
            put32(out, static_cast<std::uint32_t>(bits));
        }
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        out.push_back(5);
        out.push_back(*flag ? 1 : 0);
    } else if (const auto* cell = std::get_if<Register>(&value)) {
        out.push_back(4);
        out.push_back(cell->number);
    } else {
        out.push_back(std::holds_alternative<NullValue>(value) ? 2 : 3);
    }
}

/// Writes the run of pushes that starts at `item` as one action, or several when it is very long.
void Assembler::Layout::writePush(std::size_t& item)
{
    std::vector<std::uint8_t> payload;
    const auto flush = [&] {
        m_out.push_back(static_cast<std::uint8_t>(Action::Push));
        put16(m_out, payload.size());
        m_out.insert(m_out.end(), payload.begin(), payload.end());
        payload.clear();
    };
    for (; item < m_source.m_items.size() && m_source.m_items[item].kind == ItemKind::Push; ++item) {
        const Item& push = m_source.m_items[item];
        std::vector<std::uint8_t> one;
        valueBytes(push.value, one, push.where);
        if (one.size() > kLongestPayload) {
            m_source.m_diagnostics.error(push.where, "expected a string of at most 65533 bytes");
            continue;
        }
        if (payload.size() + one.size() > kLongestPayload) flush();
        payload.insert(payload.end(), one.begin(), one.end());
    }
    --item;
    if (!payload.empty()) flush();
}

void Assembler::Layout::writeRecord(const Item& item)
{
    m_out.push_back(static_cast<std::uint8_t>(item.action));
    const std::size_t lengthAt = m_out.size();
    put16(m_out, 0);
    const std::size_t firstPatch = m_patches.size();
    for (const auto& part : m_source.m_records[item.record].m_parts) {
        switch (part.kind) {
        case Payload::Part::Kind::Byte: m_out.push_back(part.byte); break;
        case Payload::Part::Kind::Text: writeText(m_out, part.text, item.where); break;
        case Payload::Part::Kind::Length:
            m_patches.push_back({m_out.size(), 0, part.from, part.to, false, item.where});
            put16(m_out, 0);
            break;
        }
    }
    const std::size_t length = m_out.size() - lengthAt - 2;
    if (length > kLongestPayload) {
        m_source.m_diagnostics.error(item.where, "expected an action of at most 65535 bytes");
    }
    m_out[lengthAt] = static_cast<std::uint8_t>(length);
    m_out[lengthAt + 1] = static_cast<std::uint8_t>(length >> 8);
    for (std::size_t i = firstPatch; i < m_patches.size(); ++i) m_patches[i].fromByte = m_out.size();
}

void Assembler::Layout::patch()
{
    for (const Patch& patch : m_patches) {
        const std::size_t from = patch.from == Payload::kHere ? patch.fromByte : m_offsets[patch.from];
        const auto distance =
            static_cast<std::ptrdiff_t>(m_offsets[patch.to]) - static_cast<std::ptrdiff_t>(from);
        if (patch.isBranch && (distance < -32768 || distance > 32767)) {
            m_source.m_diagnostics.error(patch.where, "expected a block of less than 32 KB to branch over");
        } else if (!patch.isBranch && (distance < 0 || distance > 65535)) {
            m_source.m_diagnostics.error(patch.where, "expected a block of less than 64 KB of code");
        }
        m_out[patch.at] = static_cast<std::uint8_t>(distance);
        m_out[patch.at + 1] = static_cast<std::uint8_t>(distance >> 8);
    }
}

std::vector<std::uint8_t> Assembler::Layout::run()
{
    makePool();
    writePool();
    for (std::size_t i = 0; i < m_source.m_items.size(); ++i) {
        const Item& item = m_source.m_items[i];
        switch (item.kind) {
        case ItemKind::Op:
            m_out.push_back(static_cast<std::uint8_t>(item.action));
            // Codes from 0x80 up carry a payload length even when there is no payload.
            if (static_cast<int>(item.action) >= 0x80) put16(m_out, 0);
            break;
        case ItemKind::Push: writePush(i); break;
        case ItemKind::Mark: m_offsets[item.label] = m_out.size(); break;
        case ItemKind::Record: writeRecord(item); break;
        case ItemKind::Branch:
            m_out.push_back(static_cast<std::uint8_t>(item.action));
            put16(m_out, 2);
            m_patches.push_back(
                {m_out.size(), m_out.size() + 2, Payload::kHere, item.label, true, item.where});
            put16(m_out, 0);
            break;
        }
    }
    m_out.push_back(0);
    patch();
    return std::move(m_out);
}

std::vector<std::uint8_t> Assembler::finish() { return Layout(*this).run(); }

} // namespace swfc::actionscript
