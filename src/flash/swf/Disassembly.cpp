#include "flash/swf/Disassembly.h"

#include "base/ByteReader.h"
#include "base/TextCodes.h"
#include "flash/swf/ActionCodes.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <variant>
#include <vector>

namespace flash::swf
{

namespace
{

template <class... Arguments>
std::string formatted(const char* format, Arguments... arguments)
{
    char text[96];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

/// Writes one block. Every read is bounds-checked; what is missing reads as zero.
class Disassembler
{
public:
    Disassembler(base::Bytes bytes, int version) : m_bytes(bytes), m_version(version) {}

    std::string run()
    {
        std::size_t at = 0;
        while (at < m_bytes.size()) {
            while (!m_bodyEnds.empty() && at >= m_bodyEnds.back()) m_bodyEnds.pop_back();
            at = one(at);
        }
        return std::move(m_out);
    }

private:
    /// @returns the offset of the next action.
    std::size_t one(std::size_t at)
    {
        const std::uint8_t code = m_bytes[at];
        const ActionCodeInfo& info = kActionCodeByNumber[code];
        m_out += formatted("%6zu  ", at) + std::string(2 * m_bodyEnds.size(), ' ');
        m_out += info.name != nullptr ? std::string(info.name) : formatted("(0x%02X)", code);
        std::size_t next = at + 1;
        if (code >= kFirstLongAction) {
            base::ByteReader reader(m_bytes.subspan(next));
            const std::size_t length = reader.u16().value_or(0);
            const base::Bytes rest = reader.rest();
            const base::Bytes payload = rest.first(std::min(length, rest.size()));
            next = m_bytes.size() - rest.size() + payload.size();
            describe(info.payload, base::ByteReader(payload), next);
        }
        m_out += '\n';
        return next;
    }

    void describe(ActionPayload payload, base::ByteReader reader, std::size_t next)
    {
        const auto byte = [&] { return static_cast<unsigned>(reader.u8().value_or(0)); };
        const auto word = [&] { return static_cast<unsigned>(reader.u16().value_or(0)); };
        switch (payload) {
        case ActionPayload::None: break;
        case ActionPayload::Frame: m_out += formatted(" %u", word()); break;
        case ActionPayload::Register:
        case ActionPayload::Skip:
        case ActionPayload::Flags: m_out += formatted(" %u", byte()); break;
        case ActionPayload::Text: m_out += ' ' + text(reader); break;
        case ActionPayload::UrlAndWindow:
            m_out += ' ' + text(reader);
            m_out += ' ' + text(reader);
            break;
        case ActionPayload::FrameAndSkip: {
            const unsigned frame = word();
            m_out += formatted(" %u, skip %u", frame, byte());
            break;
        }
        case ActionPayload::FrameFlags: {
            const unsigned flags = byte();
            m_out += formatted(" flags %u, frame + %u", flags, (flags & 2) != 0 ? word() : 0U);
            break;
        }
        case ActionPayload::Branch: {
            const auto distance = static_cast<std::int16_t>(word());
            m_out += formatted(" to %lld", static_cast<long long>(next) + distance);
            break;
        }
        case ActionPayload::Region: openBody(next, word()); break;
        case ActionPayload::ConstantPool:
            for (unsigned i = 0, count = word(); i < count && !reader.atEnd(); ++i)
                m_out += formatted(" %u:", i) + text(reader);
            break;
        case ActionPayload::Try: {
            const unsigned flags = byte(), body = word(), caught = word(), last = word();
            m_out += formatted(" flags %u, body %u, catch %u, finally %u bytes", flags, body, caught, last);
            break;
        }
        case ActionPayload::Function:
        case ActionPayload::Function2: function(payload, reader, next); break;
        case ActionPayload::Push: push(reader); break;
        }
    }

    void function(ActionPayload payload, base::ByteReader reader, std::size_t next)
    {
        const bool second = payload == ActionPayload::Function2;
        m_out += ' ' + text(reader) + " (";
        const unsigned count = reader.u16().value_or(0);
        const unsigned registers = second ? reader.u8().value_or(0) : 0U;
        const unsigned flags = second ? reader.u16().value_or(0) : 0U;
        for (unsigned i = 0; i < count && !reader.atEnd(); ++i) {
            if (i > 0) m_out += ", ";
            if (second) m_out += formatted("r%u:", static_cast<unsigned>(reader.u8().value_or(0)));
            m_out += text(reader);
        }
        m_out += ')';
        if (second) m_out += formatted(" registers %u, flags 0x%X", registers, flags);
        openBody(next, reader.u16().value_or(0));
    }

    void openBody(std::size_t start, unsigned length)
    {
        m_out += formatted(" to %zu", start + length);
        if (length > 0) m_bodyEnds.push_back(start + length);
    }

    void push(base::ByteReader reader)
    {
        while (const auto type = reader.u8()) {
            m_out += ' ';
            switch (*type) {
            case 0: m_out += text(reader); break;
            case 1: m_out += formatted("%.9g", static_cast<double>(reader.f32().value_or(0))); break;
            case 2: m_out += "null"; break;
            case 3: m_out += "undefined"; break;
            case 4: m_out += formatted("r%u", static_cast<unsigned>(reader.u8().value_or(0))); break;
            case 5: m_out += reader.u8().value_or(0) != 0 ? "true" : "false"; break;
            case 6: {
                // The upper half comes first.
                const std::uint64_t upper = reader.u32().value_or(0);
                const std::uint64_t bits = upper << 32 | reader.u32().value_or(0);
                m_out += formatted("%.17g", std::bit_cast<double>(bits));
                break;
            }
            case 7: m_out += formatted("%d", reader.i32().value_or(0)); break;
            case 8: m_out += formatted("c%u", static_cast<unsigned>(reader.u8().value_or(0))); break;
            case 9: m_out += formatted("c%u", static_cast<unsigned>(reader.u16().value_or(0))); break;
            default: m_out += formatted("(type %u)", static_cast<unsigned>(*type)); break;
            }
        }
    }

    /// In quotes; control characters, quotes and backslashes are escaped.
    std::string text(base::ByteReader& reader)
    {
        const auto bytes = reader.cString();
        std::string_view view = bytes ? *bytes : std::string_view();
        std::string out = "\"";
        for (const char c :
             m_version < 6 ? base::utf8FromUtf16(base::utf16FromAnsi(view)) : std::string(view)) {
            if (static_cast<unsigned char>(c) < 0x20)
                out += formatted("\\x%02X", static_cast<unsigned>(c));
            else
                out += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
        }
        return out + '"';
    }

    base::Bytes m_bytes;
    int m_version;
    std::string m_out;
    std::vector<std::size_t> m_bodyEnds;
};

void append(std::string& out, const std::string& heading, ActionBlock block, int version)
{
    if (!block.isEmpty()) out += heading + '\n' + disassemble(block, version) + '\n';
}

void append(std::string& out, const std::string& where, const Timeline& timeline, int version)
{
    for (std::size_t frame = 0; frame < timeline.frames.size(); ++frame) {
        const std::string at = where + ", frame " + std::to_string(frame + 1);
        for (const ControlTag& tag : timeline.frames[frame].tags) {
            if (const auto* actions = std::get_if<DoAction>(&tag)) append(out, at, actions->actions, version);
            if (const auto* init = std::get_if<DoInitAction>(&tag))
                append(out, at + ", before sprite " + std::to_string(init->spriteId), init->actions, version);
            const auto* place = std::get_if<PlaceObject>(&tag);
            if (place == nullptr) continue;
            for (const ClipAction& action : place->clipActions)
                append(out,
                       at + ", depth " + std::to_string(place->depth) +
                           formatted(", events 0x%X", action.events),
                       action.actions, version);
        }
    }
}

} // namespace

std::string disassemble(ActionBlock block, int version) { return Disassembler(block.bytes, version).run(); }

std::string disassemble(const Movie& movie)
{
    std::string out;
    const int version = movie.header.version;
    append(out, "main timeline", movie.timeline, version);
    for (const auto& [id, character] : movie.characters) {
        if (const auto* sprite = std::get_if<Sprite>(&character->data); sprite && sprite->timeline)
            append(out, "sprite " + std::to_string(id), *sprite->timeline, version);
        if (const auto* button = std::get_if<Button>(&character->data)) {
            for (const ButtonAction& action : button->actions)
                append(out,
                       "button " + std::to_string(id) + formatted(", conditions 0x%X", action.conditions),
                       action.actions, version);
        }
    }
    return out;
}

} // namespace flash::swf
