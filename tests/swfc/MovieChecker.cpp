#include "MovieChecker.h"

#include <zlib.h>

#include <set>
#include <span>

namespace
{

using Bytes = std::span<const std::uint8_t>;

class Checker
{
public:
    void movie(const std::vector<std::uint8_t>& file);
    std::vector<std::string> faults;

private:
    void fault(const std::string& what)
    {
        if (faults.size() < 20) faults.push_back(what);
    }
    static std::uint32_t u16(Bytes b, std::size_t at)
    {
        return at + 2 <= b.size() ? b[at] | (b[at + 1] << 8) : 0U;
    }
    static std::uint32_t u32(Bytes b, std::size_t at) { return u16(b, at) | (u16(b, at + 2) << 16); }
    void tags(Bytes bytes, std::uint32_t statedFrames, const std::string& where);
    void tag(std::uint32_t code, Bytes body, const std::string& where);
    void imports(Bytes body, std::size_t reserved, const std::string& where);
    void placement(std::uint32_t code, Bytes body, const std::string& where);
    void button(Bytes body, const std::string& where);
    void actions(Bytes code, const std::string& where);
    int m_version = 0;
    std::set<std::uint32_t> m_defined;
};

/// Reads bits from the most significant end.
struct Bits {
    Bytes bytes;
    std::size_t at = 0; // in bits
    std::uint32_t read(int count)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i, ++at) {
            const std::size_t byte = at / 8;
            value = (value << 1) | (byte < bytes.size() ? (bytes[byte] >> (7 - at % 8)) & 1U : 0U);
        }
        return value;
    }
    std::size_t alignedByte() const { return (at + 7) / 8; }
};

std::size_t matrixBytes(Bytes bytes)
{
    Bits bits{bytes};
    for (int part = 0; part < 2; ++part) {
        if (bits.read(1) == 0) continue;
        const auto width = static_cast<int>(bits.read(5));
        bits.at += static_cast<std::size_t>(2 * width);
    }
    const auto width = static_cast<int>(bits.read(5));
    bits.at += static_cast<std::size_t>(2 * width);
    return bits.alignedByte();
}

std::size_t colorTransformBytes(Bytes bytes)
{
    Bits bits{bytes};
    const std::uint32_t parts = bits.read(1) + bits.read(1);
    const std::uint32_t width = bits.read(4);
    bits.at += static_cast<std::size_t>(4 * width * parts);
    return bits.alignedByte();
}

void Checker::movie(const std::vector<std::uint8_t>& file)
{
    if (file.size() < 12 || (file[0] != 'F' && file[0] != 'C') || file[1] != 'W' || file[2] != 'S') {
        fault("no movie header");
        return;
    }
    m_version = file[3];
    std::vector<std::uint8_t> plain(file.begin(), file.end());
    const std::uint32_t stated = u32(file, 4);
    if (file[0] == 'C') {
        plain.resize(stated);
        uLongf size = stated - 8;
        const int done =
            uncompress(plain.data() + 8, &size, file.data() + 8, static_cast<uLong>(file.size() - 8));
        if (done != Z_OK || size != stated - 8) fault("compressed body does not match the stated length");
    } else if (stated != file.size()) {
        fault("stated length " + std::to_string(stated) + " is not the file's " +
              std::to_string(file.size()));
    }
    Bits bits{Bytes(plain).subspan(8)};
    const auto width = static_cast<int>(bits.read(5));
    bits.at += static_cast<std::size_t>(4 * width);
    const std::size_t header = 8 + bits.alignedByte();
    if (header + 4 > plain.size()) {
        fault("header past the end");
        return;
    }
    tags(Bytes(plain).subspan(header + 4), u16(plain, header + 2), "movie");
}

void Checker::tags(Bytes bytes, std::uint32_t statedFrames, const std::string& where)
{
    std::size_t at = 0;
    std::uint32_t frames = 0;
    while (true) {
        if (at + 2 > bytes.size()) {
            fault(where + ": no end tag");
            return;
        }
        const std::uint32_t header = u16(bytes, at);
        at += 2;
        std::size_t length = header & 63;
        if (length == 63) {
            length = u32(bytes, at);
            at += 4;
        }
        if (at > bytes.size() || length > bytes.size() - at) {
            fault(where + ": tag " + std::to_string(header >> 6) + " runs past the end");
            return;
        }
        const std::uint32_t code = header >> 6;
        if (code == 0) break;
        if (code == 1) ++frames;
        tag(code, bytes.subspan(at, length), where + "/" + std::to_string(code));
        at += length;
    }
    if (at != bytes.size())
        fault(where + ": " + std::to_string(bytes.size() - at) + " bytes after the end tag");
    if (frames != statedFrames) {
        fault(where + ": " + std::to_string(frames) + " frames, stated " + std::to_string(statedFrames));
    }
}

void Checker::tag(std::uint32_t code, Bytes body, const std::string& where)
{
    // clang-format off
    const std::set<std::uint32_t> definitions = {2, 11, 14, 20, 21, 22, 32, 33, 34, 35, 36, 37, 39, 46, 48, 60, 75, 83, 84};
    // clang-format on
    if (definitions.contains(code)) {
        if (!m_defined.insert(u16(body, 0)).second) fault(where + ": character defined twice");
    }
    switch (code) {
    case 57: imports(body, 0, where); break;
    case 71: imports(body, 2, where); break;
    case 12: actions(body, where); break;
    case 59: actions(body.subspan(2), where); break;
    case 26:
    case 70: placement(code, body, where); break;
    case 34: button(body, where); break;
    case 39: tags(body.subspan(4), u16(body, 2), where + "#" + std::to_string(u16(body, 0))); break;
    default: break;
    }
}

/// Imported characters are defined by other movies.
/// @param reserved bytes between the address and the count
void Checker::imports(Bytes body, std::size_t reserved, const std::string& where)
{
    std::size_t at = 0;
    const auto skipText = [&] {
        while (at < body.size() && body[at] != 0) ++at;
        ++at;
    };
    skipText();
    at += reserved;
    const std::uint32_t count = u16(body, at);
    at += 2;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!m_defined.insert(u16(body, at)).second) fault(where + ": character defined twice");
        at += 2;
        skipText();
    }
    if (at != body.size()) fault(where + ": imports are not as long as their tag");
}

/// Walks to the clip's handlers. Filters are not walked over: a placement with both is skipped.
void Checker::placement(std::uint32_t code, Bytes body, const std::string& where)
{
    std::size_t at = 1;
    const std::uint32_t flags = body[0];
    std::uint32_t more = 0;
    if (code == 70) more = body[at++];
    at += 2;
    if ((flags & 2) != 0) {
        if (!m_defined.contains(u16(body, at))) fault(where + ": places what is not defined yet");
        at += 2;
    }
    if ((flags & 4) != 0) at += matrixBytes(body.subspan(at));
    if ((flags & 8) != 0) at += colorTransformBytes(body.subspan(at));
    if ((flags & 16) != 0) at += 2;
    if ((flags & 32) != 0) {
        while (at < body.size() && body[at] != 0) ++at;
        ++at;
    }
    if ((flags & 64) != 0) at += 2;
    if ((more & 1) != 0) return;
    if ((more & 2) != 0) ++at;
    if ((more & 4) != 0) ++at;
    if ((flags & 128) == 0) {
        if (at != body.size()) fault(where + ": bytes left over");
        return;
    }
    const std::size_t flagBytes = m_version >= 6 ? 4 : 2;
    const auto events = [&](std::size_t from) { return m_version >= 6 ? u32(body, from) : u16(body, from); };
    at += 2;
    const std::uint32_t all = events(at);
    at += flagBytes;
    std::uint32_t seen = 0;
    while (at + flagBytes <= body.size()) {
        const std::uint32_t mask = events(at);
        at += flagBytes;
        if (mask == 0) break;
        seen |= mask;
        std::size_t length = u32(body, at);
        at += 4;
        if (at + length > body.size()) {
            fault(where + ": handler past the end");
            return;
        }
        const std::size_t key = (mask & (1U << 17)) != 0 ? 1 : 0;
        actions(body.subspan(at + key, length - key), where);
        at += length;
    }
    if (at != body.size()) fault(where + ": handlers do not end with the tag");
    if (seen != all) fault(where + ": the handlers' events are not the announced ones");
}

void Checker::button(Bytes body, const std::string& where)
{
    const std::uint32_t offset = u16(body, 3);
    if (offset == 0) return;
    std::size_t at = 3 + offset;
    while (true) {
        if (at + 4 > body.size()) {
            fault(where + ": button handlers past the end");
            return;
        }
        const std::size_t size = u16(body, at);
        const std::size_t end = size == 0 ? body.size() : at + size;
        if (end > body.size()) {
            fault(where + ": button handler past the end");
            return;
        }
        actions(body.subspan(at + 4, end - at - 4), where);
        if (size == 0) return;
        at = end;
    }
}

void Checker::actions(Bytes code, const std::string& where)
{
    std::set<std::size_t> starts;
    struct Need {
        std::size_t target;
        std::string what;
    };
    std::vector<Need> needs;
    std::size_t at = 0;
    std::size_t poolSize = 0;
    while (at < code.size()) {
        starts.insert(at);
        const std::uint32_t action = code[at++];
        if (action == 0) break;
        if (action < 0x80) continue;
        const std::size_t length = u16(code, at);
        at += 2;
        if (at + length > code.size()) {
            fault(where + ": action past the end of its block");
            return;
        }
        const Bytes payload = code.subspan(at, length);
        at += length;
        const auto follows = [&](std::size_t distance, const char* what) {
            needs.push_back({at + distance, what});
        };
        switch (action) {
        case 0x88: poolSize = u16(payload, 0); break;
        case 0x96:
            for (std::size_t i = 0; i < payload.size();) {
                const std::uint32_t type = payload[i++];
                if (type == 0) {
                    while (i < payload.size() && payload[i] != 0) ++i;
                    ++i;
                } else if (type == 8 || type == 9) {
                    const std::uint32_t index = type == 8 ? payload[i] : u16(payload, i);
                    if (index >= poolSize) fault(where + ": constant not in the pool");
                    i += type == 8 ? 1 : 2;
                } else if (type <= 9) {
                    constexpr std::size_t kSizes[] = {0, 4, 0, 0, 1, 1, 8, 4};
                    i += kSizes[type];
                } else {
                    fault(where + ": unknown type of pushed value");
                    return;
                }
                if (i > payload.size()) fault(where + ": pushed value past its action");
            }
            break;
        case 0x99:
        case 0x9D:
            needs.push_back({static_cast<std::size_t>(static_cast<std::ptrdiff_t>(at) +
                                                      static_cast<std::int16_t>(u16(payload, 0))),
                             "branch"});
            break;
        case 0x94: follows(u16(payload, 0), "with block"); break;
        case 0x9B:
        case 0x8E: follows(u16(payload, payload.size() - 2), "function body"); break;
        case 0x8F: {
            const std::size_t sizes = u16(payload, 1) + u16(payload, 3) + u16(payload, 5);
            follows(u16(payload, 1), "try block");
            follows(u16(payload, 1) + u16(payload, 3), "catch block");
            follows(sizes, "finally block");
            break;
        }
        default: break;
        }
    }
    if (code.empty() || code[code.size() - 1] != 0 || at != code.size())
        fault(where + ": block does not end with its end action");
    for (const Need& need : needs) {
        if (!starts.contains(need.target))
            fault(where + ": " + need.what + " leads to byte " + std::to_string(need.target) +
                  ", which starts no action");
    }
}

} // namespace

std::vector<std::string> checkMovie(const std::vector<std::uint8_t>& file)
{
    Checker checker;
    checker.movie(file);
    return std::move(checker.faults);
}
