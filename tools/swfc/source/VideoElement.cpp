#include "swfc/source/MovieBuilder.h"

#include "flash/video/FlvFile.h"

namespace swfc::source
{

using output::Tag;
namespace
{

std::vector<std::uint8_t> pictureHead(std::uint16_t id, std::uint32_t number)
{
    output::BitWriter out;
    out.u16(id);
    out.u16(number);
    return out.bytes();
}

} // namespace

/// A place for pictures: those of an FLV file, embedded, or none, for what a script attaches.
void MovieBuilder::videoElement(const Element& element)
{
    if (!need(6, element, "video")) return;
    Attributes attributes(element, m_diagnostics);
    const auto id = define(attributes, CharacterKind::Video);
    constexpr int kMaxSide = 8191;
    const int width = attributes.integer("width", 160, 1, kMaxSide);
    const int height = attributes.integer("height", 120, 1, kMaxSide);
    const bool smooth = attributes.flag("smooth");
    const auto content = attributes.has("file") ? readFile(attributes, "file") : std::nullopt;
    if (!id || (attributes.has("file") && !content)) return;
    flash::video::FlvFile file;
    if (content) {
        auto parsed = flash::video::FlvFile::parse(*content);
        if (!parsed || parsed->video.empty() || parsed->video.size() > 65535) {
            attributes.error("expected an FLV file with 1 to 65535 pictures");
            return;
        }
        file = std::move(*parsed);
    }
    output::BitWriter out;
    out.u16(*id);
    out.u16(static_cast<std::uint32_t>(file.video.size()));
    out.u16(static_cast<std::uint32_t>(width));
    out.u16(static_cast<std::uint32_t>(height));
    out.u8(smooth ? 1 : 0); // deblocking as the pictures themselves say
    out.u8(file.video.empty() ? 0 : static_cast<std::uint32_t>(file.video.front().codec));
    definitions().add(Tag::DefineVideoStream, out);
    std::uint32_t number = 0;
    for (const auto& video : file.video) {
        std::vector<std::uint8_t> body = pictureHead(*id, number++);
        body.insert(body.end(), video.packet.begin(), video.packet.end());
        definitions().add(Tag::VideoFrame, body);
    }
}

} // namespace swfc::source
