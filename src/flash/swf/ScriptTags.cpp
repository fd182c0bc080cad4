#include "flash/swf/ScriptTags.h"

#include "flash/swf/BodyReader.h"

namespace flash::swf
{

namespace
{

constexpr std::size_t kHeaderBytes = 8;
constexpr std::uint32_t kMaxLabels = 16'384;

enum Code : std::uint16_t {
    kEnd = 0,
    kShowFrame = 1,
    kRawAbc = 72,
    kSymbolClass = 76,
    kAbc = 82,
    kScenes = 86,
    kBinary = 87,
};

std::uint32_t variable32(BodyReader& body)
{
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 35; shift += 7) {
        const std::uint32_t byte = body.u8();
        value |= (byte & 0x7FU) << shift;
        if ((byte & 0x80U) == 0) break;
    }
    return value;
}

std::string text(BodyReader& body)
{
    std::string result;
    while (!body.overrun() && !body.atEnd()) {
        const auto byte = body.u8();
        if (byte == 0) break;
        result += static_cast<char>(byte);
    }
    return result;
}

std::vector<ScriptTags::Label> labels(BodyReader& body)
{
    std::vector<ScriptTags::Label> found;
    const std::uint32_t count = std::min(variable32(body), kMaxLabels);
    for (std::uint32_t i = 0; i < count && !body.overrun() && !body.atEnd(); ++i) {
        ScriptTags::Label label;
        label.frame = variable32(body);
        label.name = text(body);
        found.push_back(std::move(label));
    }
    return found;
}

void readTag(ScriptTags& tags, std::uint16_t code, base::Bytes bytes, std::size_t frame)
{
    BodyReader body(bytes, 0);
    switch (code) {
    case kRawAbc: tags.blocks.push_back({frame, {}, false, bytes}); break;
    case kAbc: {
        ScriptTags::Block block{frame, {}, (body.u32() & 1U) != 0, {}};
        block.name = text(body);
        if (body.overrun()) break;
        block.bytes = bytes.subspan(body.position());
        tags.blocks.push_back(std::move(block));
        break;
    }
    case kSymbolClass: {
        const std::uint16_t count = body.u16();
        for (int i = 0; i < count && !body.overrun() && !body.atEnd(); ++i) {
            ScriptTags::Symbol symbol{frame, body.u16(), {}};
            symbol.className = text(body);
            if (!body.overrun()) tags.symbols.push_back(std::move(symbol));
        }
        break;
    }
    case kScenes:
        tags.scenes = labels(body);
        tags.labels = labels(body);
        break;
    case kBinary: {
        const std::uint16_t id = body.u16();
        body.skip(4);
        if (!body.overrun()) tags.binaries.try_emplace(id, bytes.subspan(body.position()));
        break;
    }
    default: break;
    }
}

} // namespace

ScriptTags readScriptTags(const Movie& movie)
{
    ScriptTags tags;
    const base::Bytes all(movie.bytes);
    if (all.size() < kHeaderBytes + 1) return tags;
    // The rectangle of the frame stands before the rate and the count.
    const unsigned bits = all[kHeaderBytes] >> 3U;
    std::size_t at = kHeaderBytes + (5 + bits * 4 + 7) / 8 + 4;
    std::size_t frame = 0;
    while (at + 2 <= all.size()) {
        const auto head = static_cast<std::uint16_t>(all[at] | all[at + 1] << 8U);
        at += 2;
        std::size_t length = head & 0x3FU;
        if (length == 0x3F) {
            if (at + 4 > all.size()) break;
            length = all[at] | all[at + 1] << 8U | all[at + 2] << 16U |
                     static_cast<std::size_t>(all[at + 3]) << 24U;
            at += 4;
        }
        length = std::min(length, all.size() - at);
        const auto code = static_cast<std::uint16_t>(head >> 6U);
        if (code == kEnd) break;
        if (code == kShowFrame) ++frame;
        readTag(tags, code, all.subspan(at, length), frame);
        at += length;
    }
    return tags;
}

} // namespace flash::swf
