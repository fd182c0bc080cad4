#pragma once

#include "../swf/MovieWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace flash::test
{

/// 100 x 80 pixels, 12.5 frames a second, grey; a red square of 20 pixels that stands 20 pixels further right
/// on each frame.
inline swf::ByteList movingSquare(unsigned frames, const swf::ByteList& firstFrameActions = {})
{
    using swf::BodyWriter;
    using swf::tag;
    BodyWriter shape;
    shape.u16(1).rect(0, 400, 0, 400).u8(1).u8(0).rgb({255, 0, 0, 255}).u8(0).indexWidths(1, 0);
    shape.moveTo(0, 0).fill1(1).lineTo(400, 0).lineTo(0, 400).lineTo(-400, 0).lineTo(0, -400).endShape();
    std::vector<swf::ByteList> tags = {tag(9, BodyWriter().rgb({128, 128, 128, 255})), tag(2, shape)};
    for (unsigned i = 0; i < frames; ++i) {
        const auto x = static_cast<std::int32_t>(400 * i);
        if (i == 0)
            tags.push_back(tag(26, BodyWriter().u8(0b110).u16(1).u16(1).translation(x, 0)));
        else
            tags.push_back(tag(26, BodyWriter().u8(0b101).u16(1).translation(x, 0)));
        if (i == 0 && !firstFrameActions.empty())
            tags.push_back(tag(12, BodyWriter().raw(firstFrameActions)));
        tags.push_back(swf::kShowFrame);
    }
    return swf::movieBytes(6, tags, frames);
}

/// 100 x 80 pixels, two frames; many veils over all of it, that move from frame to frame.
inline swf::ByteList movingVeils()
{
    using swf::BodyWriter;
    using swf::tag;
    constexpr int kVeils = 150, kWidth = 2400, kHeight = 2000;
    BodyWriter shape;
    shape.u16(1).rect(0, kWidth, 0, kHeight).u8(1).u8(0).rgba({0, 0, 255, 40}).u8(0).indexWidths(1, 0);
    shape.moveTo(0, 0).fill1(1).lineTo(kWidth, 0).lineTo(0, kHeight).lineTo(-kWidth, 0);
    shape.lineTo(0, -kHeight).endShape();
    std::vector<swf::ByteList> tags = {tag(9, BodyWriter().rgb({255, 255, 255, 255})), tag(32, shape)};
    for (int frame = 0; frame < 2; ++frame) {
        for (std::uint32_t depth = 1; depth <= kVeils; ++depth) {
            BodyWriter place;
            if (frame == 0)
                place.u8(0b110).u16(depth).u16(1);
            else
                place.u8(0b101).u16(depth);
            tags.push_back(tag(26, place.translation(-200 + 20 * frame, -200)));
        }
        tags.push_back(swf::kShowFrame);
    }
    return swf::movieBytes(6, tags, 2);
}

/// Actions: getURL(url, target).
inline swf::ByteList getUrl(std::string_view url, std::string_view target)
{
    swf::BodyWriter strings;
    strings.text(url).text(target);
    return swf::BodyWriter()
        .u8(0x83)
        .u16(static_cast<std::uint32_t>(strings.bytes().size()))
        .raw(strings.bytes())
        .u8(0)
        .bytes();
}

/// Actions: fscommand(command, argument).
inline swf::ByteList fsCommand(std::string_view command, std::string_view argument)
{
    return getUrl("FSCommand:" + std::string(command), argument);
}

/// As movingSquare(), one frame without the square.
inline swf::ByteList blank(const swf::ByteList& actions)
{
    using swf::BodyWriter;
    using swf::tag;
    return swf::movieBytes(
        6,
        {tag(9, BodyWriter().rgb({128, 128, 128, 255})), tag(12, BodyWriter().raw(actions)), swf::kShowFrame},
        1);
}

/// As blank(), with a field to type into, 80 x 30 pixels, that sets the variable "v".
/// @param flags the first of the field's two bytes of them
inline swf::ByteList inputField(std::uint8_t flags = 0)
{
    using swf::BodyWriter;
    using swf::tag;
    return swf::movieBytes(6,
                           {tag(9, BodyWriter().rgb({128, 128, 128, 255})),
                            tag(37, BodyWriter().u16(1).rect(0, 1600, 0, 600).u8(flags).u8(0x08).text("v")),
                            tag(26, BodyWriter().u8(0b110).u16(1).u16(1).translation(100, 100)),
                            swf::kShowFrame},
                           1);
}

/// Movie files of one test.
class MovieFolder
{
public:
    QString write(const QString& name, const swf::ByteList& bytes) const
    {
        const QString path = m_folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<qint64>(bytes.size()));
        return path;
    }

    QString writeProgram(const QString& name, const QString& shellScript) const
    {
        const QByteArray text = "#!/bin/sh\n" + shellScript.toLocal8Bit();
        const QString path = write(name, swf::ByteList(text.begin(), text.end()));
        EXPECT_TRUE(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        return path;
    }

    [[nodiscard]] QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

} // namespace flash::test
