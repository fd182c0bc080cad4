#include "MovieWriter.h"
#include "TestPictures.h"

#include <zlib.h>

namespace flash::swf
{

ByteList deflated(const ByteList& plain)
{
    uLongf length = compressBound(plain.size());
    ByteList out(length);
    EXPECT_EQ(compress(out.data(), &length, plain.data(), plain.size()), Z_OK);
    out.resize(length);
    return out;
}

ByteList compressedMovie(const ByteList& plain)
{
    ByteList file(plain.begin(), plain.begin() + 8);
    file[0] = 'C';
    const ByteList body = deflated({plain.begin() + 8, plain.end()});
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

ByteList sampleMovie()
{
    const Rgba red{255, 0, 0, 255}, half{0, 255, 0, 128};
    const auto triangle = [](BodyWriter body) {
        return body.indexWidths(1, 1)
            .fill1(1)
            .line(1)
            .moveTo(10, 20)
            .lineTo(100, 0)
            .curveTo(0, 50, -50, 50)
            .lineTo(-50, -100)
            .endShape();
    };
    const auto gradient = [&](unsigned type) {
        BodyWriter body;
        body.u8(type).translation(5, 5).u8(2).u8(0).rgba(red).u8(255).rgba(half);
        if (type == 0x13) body.u16(128);
        return body.bytes();
    };
    const ByteList glyph =
        BodyWriter().indexWidths(1, 0).fill1(1).moveTo(0, 0).lineTo(9, 9).endShape().bytes();
    const auto glyphOffset = static_cast<std::uint32_t>(glyph.size());
    const ByteList soundInfo = BodyWriter().u8(0x0F).u32(1).u32(2).u16(3).u8(1).u32(4).u16(5).u16(6).bytes();
    const ByteList filters = BodyWriter()
                                 .u8(3)
                                 .u8(1)
                                 .u32(0x20000)
                                 .u32(0x20000)
                                 .u8(0x08)
                                 .u8(4)
                                 .u8(1)
                                 .rgba(red)
                                 .u8(7)
                                 .u32(0)
                                 .u32(0)
                                 .u32(0)
                                 .u32(0)
                                 .u16(256)
                                 .u8(0x21)
                                 .u8(5)
                                 .u8(1)
                                 .u8(1)
                                 .u32(0x3F800000)
                                 .u32(0)
                                 .u32(0x3F800000)
                                 .rgba(half)
                                 .u8(3)
                                 .bytes();
    const auto size = [](const BodyWriter& part) { return static_cast<std::uint32_t>(part.bytes().size()); };
    const BodyWriter morphStyles =
        BodyWriter().u8(1).u8(0).rgba(red).rgba(half).u8(1).u16(20).u16(40).u16(0).rgba(red).rgba(half);
    const BodyWriter morphStart =
        BodyWriter().indexWidths(1, 1).fill1(1).moveTo(0, 0).lineTo(5, 5).endShape();
    const BodyWriter morphEnd = BodyWriter().indexWidths(0, 0).moveTo(0, 0).lineTo(7, 7).endShape();
    const BodyWriter buttonRecords =
        BodyWriter().u8(0x3F).u16(10).u16(1).translation(0, 0).bits(0, 6).raw(filters).u8(3).u8(0);
    const ByteList spriteTags = BodyWriter()
                                    .u16(30)
                                    .u16(2)
                                    .raw(tag(43, BodyWriter().text("inside").u8(1)))
                                    .raw(tag(12, BodyWriter().u8(6).u8(0)))
                                    .raw(kShowFrame)
                                    .raw(tag(28, BodyWriter().u16(1)))
                                    .raw(kShowFrame)
                                    .raw(kEnd)
                                    .bytes();
    return movieBytes(
        8,
        {
            tag(69, BodyWriter().u32(1)),
            tag(77, BodyWriter().text("<about/>")),
            tag(65, BodyWriter().u16(100).u16(20)),
            tag(9, BodyWriter().rgb(red)),
            tag(8, BodyWriter().raw(jpegTablesOf(testJpeg()))),
            tag(6, BodyWriter().u16(1).raw(jpegPictureOf(testJpeg()))),
            tag(35, BodyWriter()
                        .u16(2)
                        .u32(static_cast<std::uint32_t>(testJpeg().size()))
                        .raw(testJpeg())
                        .raw(deflated(ByteList(64, 100)))),
            tag(36, BodyWriter().u16(3).u8(5).u16(1).u16(1).raw(deflated({128, 64, 0, 0}))),
            tag(2,
                triangle(
                    BodyWriter().u16(10).rect(0, 200, 0, 200).u8(1).u8(0).rgb(red).u8(1).u16(20).rgb(red))),
            tag(83, triangle(BodyWriter()
                                 .u16(11)
                                 .rect(0, 200, 0, 200)
                                 .rect(1, 2, 3, 4)
                                 .u8(4)
                                 .u8(3)
                                 .raw(gradient(0x10))
                                 .raw(gradient(0x13))
                                 .u8(0x41)
                                 .u16(1)
                                 .translation(0, 0)
                                 .u8(1)
                                 .u16(20)
                                 .bits(0b0110'1111, 8)
                                 .bits(0b00000'1'01, 8)
                                 .u16(512)
                                 .raw(gradient(0x12)))),
            tag(84, BodyWriter()
                        .u16(12)
                        .rect(0, 9, 0, 9)
                        .rect(0, 9, 0, 9)
                        .rect(0, 9, 0, 9)
                        .rect(0, 9, 0, 9)
                        .u8(0)
                        .u32(size(morphStyles) + size(morphStart))
                        .raw(morphStyles.bytes())
                        .raw(morphStart.bytes())
                        .raw(morphEnd.bytes())),
            tag(75, BodyWriter()
                        .u16(20)
                        .u8(0x84)
                        .u8(0)
                        .u8(2)
                        .raw({'A', 'b'})
                        .u16(1)
                        .u16(4)
                        .u16(4 + glyphOffset)
                        .raw(glyph)
                        .u16('x')
                        .u16(900)
                        .u16(100)
                        .i16(0)
                        .i16(512)
                        .rect(0, 0, 0, 0)
                        .u16(1)
                        .u16('x')
                        .u16('y')
                        .i16(-3)),
            tag(10, BodyWriter().u16(21).u16(2).raw(glyph)),
            tag(13, BodyWriter().u16(21).u8(1).raw({'C'}).u8(1).u16('z')),
            tag(33, BodyWriter()
                        .u16(22)
                        .rect(0, 9, 0, 9)
                        .translation(0, 0)
                        .u8(4)
                        .u8(8)
                        .u8(0x8F)
                        .u16(21)
                        .rgba(half)
                        .i16(40)
                        .i16(50)
                        .u16(240)
                        .u8(1)
                        .bits(0, 4)
                        .signedBits(9, 8)
                        .align()
                        .u8(0)),
            tag(37, BodyWriter()
                        .u16(23)
                        .rect(0, 9, 0, 9)
                        .u8(0xFF & ~0x10U)
                        .u8(0x20)
                        .u16(20)
                        .u16(240)
                        .rgba(red)
                        .u16(9)
                        .u8(2)
                        .u16(1)
                        .u16(2)
                        .u16(3)
                        .i16(-4)
                        .text("variable")
                        .text("text")),
            tag(14, BodyWriter().u16(24).u8(0x2F).u32(1152).i16(100).raw({1, 2, 3})),
            tag(60, BodyWriter().u16(25).u16(1).u16(16).u16(16).u8(1).u8(2)),
            tag(61, BodyWriter().u16(25).u16(0).raw({9, 9})),
            tag(39, BodyWriter().raw(spriteTags)),
            tag(78, BodyWriter().u16(30).rect(1, 2, 3, 4)),
            tag(34, BodyWriter()
                        .u16(31)
                        .u8(1)
                        .u16(2 + size(buttonRecords))
                        .raw(buttonRecords.bytes())
                        .u16(6)
                        .u16(8)
                        .raw({6, 0})
                        .u16(0)
                        .u16(13U << 9U)
                        .raw({7, 0})),
            tag(17, BodyWriter().u16(31).u16(24).raw(soundInfo).u16(0).u16(0).u16(0)),
            tag(56, BodyWriter().u16(1).u16(30).text("Clip")),
            tag(71, BodyWriter().text("other.swf").u8(1).u8(0).u16(1).u16(40).text("Thing")),
            tag(59, BodyWriter().u16(30).raw({6, 0})),
            tag(45, BodyWriter().u8(0x2F).u8(0x2F).u16(576).i16(12)),
            tag(43, BodyWriter().text("start")),
            tag(70, BodyWriter()
                        .u8(0xFE)
                        .u8(0x67)
                        .u16(1)
                        .u16(30)
                        .translation(1, 2)
                        .bits(0, 6)
                        .u16(7)
                        .text("clip")
                        .u16(3)
                        .raw(filters)
                        .u8(2)
                        .u8(1)
                        .u8(1)
                        .rgba(red)
                        .u16(0)
                        .u32(0x20001)
                        .u32(1)
                        .u32(1)
                        .u8(0)
                        .u32(0x20000)
                        .u32(3)
                        .u8(65)
                        .raw({6, 0})
                        .u32(0)),
            tag(19, BodyWriter().raw({1, 2, 3, 4})),
            tag(15, BodyWriter().u16(24).raw(soundInfo)),
            tag(66, BodyWriter().u16(1).u16(2)),
            kShowFrame,
            tag(5, BodyWriter().u16(30).u16(1)),
            kShowFrame,
        },
        2);
}

} // namespace flash::swf
