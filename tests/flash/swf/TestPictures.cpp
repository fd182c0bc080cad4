#include "TestPictures.h"

#include <cstdio>
#include <cstdlib>
#include <jpeglib.h>
#include <zlib.h>

namespace flash::swf
{
namespace
{

ByteList encodeGrey(unsigned size, std::uint8_t level)
{
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* out = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&info, &out, &length);
    info.image_width = info.image_height = size;
    info.input_components = 3;
    info.in_color_space = JCS_RGB;
    jpeg_set_defaults(&info);
    jpeg_start_compress(&info, TRUE);
    ByteList row(std::size_t{size} * 3, level);
    while (info.next_scanline < info.image_height) {
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    ByteList bytes(out, out + length);
    std::free(out);
    return bytes;
}

// Splits at the level of segments: quantisation (DB) and Huffman tables (C4) to one side, the rest to the
// other.
void split(const ByteList& jpeg, ByteList& tables, ByteList& picture)
{
    tables = picture = {0xFF, 0xD8};
    std::size_t at = 2;
    while (jpeg[at + 1] != 0xDA) {
        const std::size_t end = at + 2 + (std::size_t{jpeg[at + 2]} << 8U | jpeg[at + 3]);
        const bool isTable = jpeg[at + 1] == 0xDB || jpeg[at + 1] == 0xC4;
        ByteList& side = isTable ? tables : picture;
        side.insert(side.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at),
                    jpeg.begin() + static_cast<std::ptrdiff_t>(end));
        at = end;
    }
    tables.insert(tables.end(), {0xFF, 0xD9});
    picture.insert(picture.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at), jpeg.end());
}

void appendPngChunk(ByteList& png, std::string_view type, const ByteList& data)
{
    const auto bigEndian = [&](std::uint32_t value) {
        for (int shift = 24; shift >= 0; shift -= 8) png.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    bigEndian(static_cast<std::uint32_t>(data.size()));
    const std::size_t start = png.size();
    png.insert(png.end(), type.begin(), type.end());
    png.insert(png.end(), data.begin(), data.end());
    bigEndian(
        static_cast<std::uint32_t>(crc32(0, png.data() + start, static_cast<uInt>(png.size() - start))));
}

} // namespace

const ByteList& testJpeg()
{
    static const ByteList jpeg = encodeGrey(8, 0x80);
    return jpeg;
}

ByteList jpegTablesOf(const ByteList& jpeg)
{
    ByteList tables, picture;
    split(jpeg, tables, picture);
    return tables;
}

ByteList jpegPictureOf(const ByteList& jpeg)
{
    ByteList tables, picture;
    split(jpeg, tables, picture);
    return picture;
}

ByteList testPng(std::uint8_t sizeByte)
{
    ByteList png{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    appendPngChunk(png, "IHDR", {0, sizeByte, 0, 2, 0, sizeByte, 0, 1, 8, 6, 0, 0, 0});
    appendPngChunk(png, "IDAT", deflated({0, 255, 0, 0, 128, 0, 0, 255, 255}));
    appendPngChunk(png, "IEND", {});
    return png;
}

ByteList testGif()
{
    return {'G', 'I',  'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 0,    255, 0, 0,   0,
            0,   0x2C, 0,   0,   0,   0,   1, 0, 1, 0, 0,    2, 2, 0x44, 1,   0, 0x3B};
}

} // namespace flash::swf
