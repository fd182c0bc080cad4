#include "base/Inflate.h"
#include "flash/swf/Picture.h"
#include "flash/swf/Tags.h"

#include <algorithm>

namespace flash::swf::tags
{
namespace
{

constexpr std::size_t kRowAlignment = 4;

void defineBitmap(TagContext& tag, std::uint16_t id, Bitmap bitmap)
{
    tag.builder.define(id, BitmapCharacter{std::make_shared<const Bitmap>(std::move(bitmap))});
}

bool isOpaque(const std::vector<std::uint32_t>& pixels)
{
    return std::all_of(pixels.begin(), pixels.end(),
                       [](std::uint32_t pixel) { return pixel >> 24U == 0xFFU; });
}

// Files hold colours multiplied by alpha already. Those brighter than their alpha, which no multiplication
// yields (JPEG's blur does), are brought down to it: everything downstream counts on the invariant.
std::uint32_t premultiplied(std::uint32_t a, std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return a << 24U | std::min(r, a) << 16U | std::min(g, a) << 8U | std::min(b, a);
}

std::uint32_t opaqueColor(std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return 0xFF000000U | r << 16U | g << 8U | b;
}

// ---- lossless ---------------------------------------------------------------------------------------------

enum class LosslessFormat : std::uint8_t { ColorMap = 3, Rgb15 = 4, Rgb24 = 5 };

struct LosslessHeader {
    LosslessFormat format = LosslessFormat::ColorMap;
    std::size_t width = 0, height = 0;
    std::size_t colors = 0; // of a colour map
    bool hasAlpha = false;

    [[nodiscard]] std::size_t tableBytes() const { return colors * (hasAlpha ? 4 : 3); }
    [[nodiscard]] std::size_t rowBytes() const
    {
        const std::size_t pixelBytes = format == LosslessFormat::ColorMap ? 1
                                       : format == LosslessFormat::Rgb15  ? 2
                                                                          : 4;
        return (width * pixelBytes + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    }
};

using ColorTable = std::array<std::uint32_t, 256>;

// An index past the table is transparent, or black where there is no alpha.
ColorTable readColorTable(const LosslessHeader& header, base::Bytes data)
{
    ColorTable table;
    table.fill(header.hasAlpha ? 0 : 0xFF000000U);
    const std::size_t entry = header.hasAlpha ? 4 : 3;
    for (std::size_t i = 0; i < header.colors && (i + 1) * entry <= data.size(); ++i) {
        const std::uint8_t* c = data.data() + i * entry;
        table[i] = header.hasAlpha ? premultiplied(c[3], c[0], c[1], c[2]) : opaqueColor(c[0], c[1], c[2]);
    }
    return table;
}

void convertRow(const LosslessHeader& header, const ColorTable& table, const std::uint8_t* in,
                std::uint32_t* out)
{
    switch (header.format) {
    case LosslessFormat::ColorMap:
        for (std::size_t x = 0; x < header.width; ++x) out[x] = table[in[x]];
        break;
    case LosslessFormat::Rgb15: // big-endian: one unused bit, then 5 each
        for (std::size_t x = 0; x < header.width; ++x, in += 2) {
            const std::uint32_t value = std::uint32_t{in[0]} << 8U | in[1];
            const auto widen = [](std::uint32_t v) { return (v & 0x1FU) << 3U | (v & 0x1FU) >> 2U; };
            out[x] = opaqueColor(widen(value >> 10U), widen(value >> 5U), widen(value));
        }
        break;
    case LosslessFormat::Rgb24: // alpha or nothing, then red, green, blue
        if (header.hasAlpha)
            for (std::size_t x = 0; x < header.width; ++x, in += 4)
                out[x] = premultiplied(in[0], in[1], in[2], in[3]);
        else
            for (std::size_t x = 0; x < header.width; ++x, in += 4) out[x] = opaqueColor(in[1], in[2], in[3]);
        break;
    }
}

base::Result<Bitmap> decodeLossless(TagContext& tag, const LosslessHeader& header)
{
    const std::size_t wanted = header.tableBytes() + header.rowBytes() * header.height;
    if (header.width * header.height > kMaxPicturePixels)
        return base::fail(base::ErrorCode::LimitReached, "picture of " + std::to_string(header.width) +
                                                             " x " + std::to_string(header.height) +
                                                             " pixels is too big");
    const base::Inflated data = base::inflateZlib(tag.body.rest(), wanted);
    if (data.bytes.size() < header.tableBytes() + header.rowBytes())
        return base::fail(base::ErrorCode::Malformed, "its compressed data hold not even one row");
    CHECK_RESULT(takePixels(tag.builder.bitmaps(), header.width, header.height));
    if (data.bytes.size() < wanted) tag.warn("ends early; the rows before its end are used");

    Bitmap bitmap;
    bitmap.width = static_cast<int>(header.width);
    bitmap.height = static_cast<int>(header.height);
    bitmap.pixels.resize(header.width * header.height, header.hasAlpha ? 0 : 0xFF000000U);
    const ColorTable table = readColorTable(header, data.bytes);
    const std::size_t rows =
        std::min(header.height, (data.bytes.size() - header.tableBytes()) / header.rowBytes());
    for (std::size_t y = 0; y < rows; ++y)
        convertRow(header, table, data.bytes.data() + header.tableBytes() + y * header.rowBytes(),
                   bitmap.pixels.data() + y * header.width);
    bitmap.opaque = !header.hasAlpha || isOpaque(bitmap.pixels);
    return bitmap;
}

// ---- alpha beside JPEG ------------------------------------------------------------------------------------

void applyAlpha(TagContext& tag, base::Bytes compressed, Bitmap& bitmap)
{
    const base::Inflated alpha = base::inflateZlib(compressed, bitmap.pixels.size());
    if (alpha.bytes.size() < bitmap.pixels.size()) tag.warn("its alpha channel is damaged or ends early");
    for (std::size_t i = 0; i < alpha.bytes.size(); ++i) {
        const std::uint32_t pixel = bitmap.pixels[i];
        bitmap.pixels[i] =
            premultiplied(alpha.bytes[i], pixel >> 16U & 0xFFU, pixel >> 8U & 0xFFU, pixel & 0xFFU);
    }
    bitmap.opaque = isOpaque(bitmap.pixels);
}

} // namespace

base::Result<void> jpegTables(TagContext& tag)
{
    if (tag.builder.jpegTables.empty()) tag.builder.jpegTables = tag.body.rest();
    return {};
}

base::Result<void> defineBits(TagContext& tag)
{
    const std::uint16_t id = tag.body.u16();
    CHECK_RESULT(tag.body.check());
    defineBitmap(tag, id,
                 TRY_RESULT(decodeJpeg(tag.builder.jpegTables, tag.body.rest(), tag.builder.bitmaps())));
    return {};
}

base::Result<void> defineBitsJpeg(TagContext& tag)
{
    BodyReader& body = tag.body;
    const std::uint16_t id = body.u16();
    std::size_t pictureBytes = body.remaining();
    const bool mayHaveAlpha = tag.info.form >= 3;
    if (mayHaveAlpha) {
        pictureBytes = body.u32();
        if (tag.info.form >= 4) body.u16(); // deblocking
    }
    CHECK_RESULT(body.check());
    const base::Bytes picture = body.bytes(std::min(pictureBytes, body.remaining()));
    Bitmap bitmap = TRY_RESULT(decodeImage({}, picture, tag.builder.bitmaps()));
    if (mayHaveAlpha && !body.atEnd() && !isPngOrGif(picture)) applyAlpha(tag, body.rest(), bitmap);
    defineBitmap(tag, id, std::move(bitmap));
    return {};
}

base::Result<void> defineBitsLossless(TagContext& tag)
{
    BodyReader& body = tag.body;
    LosslessHeader header;
    const std::uint16_t id = body.u16();
    const std::uint8_t format = body.u8();
    header.width = body.u16();
    header.height = body.u16();
    header.hasAlpha = tag.info.form >= 2;
    if (format == static_cast<std::uint8_t>(LosslessFormat::ColorMap)) header.colors = body.u8() + 1U;
    CHECK_RESULT(body.check());
    if (format < static_cast<std::uint8_t>(LosslessFormat::ColorMap) ||
        format > static_cast<std::uint8_t>(LosslessFormat::Rgb24))
        return base::fail(base::ErrorCode::Malformed, "unknown pixel format " + std::to_string(format));
    header.format = static_cast<LosslessFormat>(format);
    defineBitmap(tag, id, TRY_RESULT(decodeLossless(tag, header)));
    return {};
}

} // namespace flash::swf::tags
