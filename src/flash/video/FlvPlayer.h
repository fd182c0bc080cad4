#pragma once

#include "flash/video/FlvFile.h"

#include <memory>
#include <optional>
#include <vector>

namespace flash::video
{

/// Plays an FLV file on simulated time: which picture shows, and which of the file's messages are due. What
/// is heard is the owner's affair, who gets the file for it.
class FlvPlayer
{
public:
    using FileBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

    /// @errors as FlvFile::parse()
    static base::Result<std::unique_ptr<FlvPlayer>> open(FileBytes bytes);

    [[nodiscard]] double timeMs() const { return m_timeMs; }
    [[nodiscard]] double endMs() const { return m_file.lastMs; }
    [[nodiscard]] bool atEnd() const { return m_timeMs >= m_file.lastMs; }
    [[nodiscard]] std::size_t byteCount() const { return m_bytes->size(); }

    /// What the file holds, in order of time.
    [[nodiscard]] const FlvFile& file() const { return m_file; }
    /// Packets of video that are due by now.
    [[nodiscard]] std::size_t duePictures() const { return dueVideo(m_timeMs); }
    /// To the picture so many further on, or back when negative. @returns false, with nothing changed, when
    /// there is none
    bool step(int pictures);

    /// Moves on; stops at the end.
    void advance(double ms);
    /// To the key frame at or before a time. @returns false, with nothing changed, beyond the end
    bool seek(double timeMs);
    /// Until the next packet or message after the present time; nothing when there is none.
    [[nodiscard]] std::optional<double> msToNext() const;

    /// The picture that shows now; null before the first. Decodes what is new.
    std::shared_ptr<const swf::Bitmap> picture(Deblocking deblocking = Deblocking::AsCoded);
    /// The messages that became due since the last call.
    std::vector<base::Bytes> takeMessages();
    /// Pictures that became due in the second before now.
    [[nodiscard]] int picturesInLastSecond() const;

    /// The file, for a sound system that plays what is heard of it from timeMs() on; null when it holds no
    /// sound.
    [[nodiscard]] FileBytes soundFile() const { return m_file.sound.empty() ? nullptr : m_bytes; }

private:
    FlvPlayer(FileBytes bytes, FlvFile file);
    void decodeInOrder(Deblocking deblocking);
    void decodeReordered();
    void restartAt(std::size_t packet);
    void openDecoder(const FlvFile::Video& video);
    /// Of the packets of video, those due at a time.
    [[nodiscard]] std::size_t dueVideo(double timeMs) const;

    FileBytes m_bytes;
    FlvFile m_file;
    double m_timeMs = 0;
    std::size_t m_decoded = 0; ///< packets given to the decoder
    std::size_t m_told = 0;    ///< messages taken
    std::unique_ptr<VideoDecoder> m_decoder;
    VideoCodec m_codec{};
    base::Bytes m_config;                  ///< of the decoder
    std::optional<std::int64_t> m_waiting; ///< H.264: the picture that the decoder has come to, by showMs
    bool m_hasAll = false;                 ///< H.264: the decoder knows that there are no more packets
    double m_shownMs = -1;                 ///< H.264: showMs of m_picture
    bool m_isReordered = false;            ///< H.264 it is
    std::vector<double> m_showTimes;       ///< H.264: of all pictures, in their order
    std::shared_ptr<const swf::Bitmap> m_picture;
};

} // namespace flash::video
