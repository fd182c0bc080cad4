#pragma once

#include "export/encode/EncodingThread.h"
#include "export/encode/Palette.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

class QImage;

namespace exporter
{

/// The encoder that a format's pictures or sound want on this machine.
/// @errors Unsupported: FFmpeg has none; `what` names those that would do
base::Result<const AVCodec*> pictureEncoder(Format format);
base::Result<const AVCodec*> soundEncoder(Format format);

/// What is seen: pictures at a steady rate, encoded beside the caller.
class PictureTrack
{
public:
    /// @param size    pixels; even where the format wants it, see fitting()
    /// @param palette for GIF, otherwise null
    static base::Result<PictureTrack> add(Container& container, const Settings& settings, QSize size,
                                          Rate rate, std::unique_ptr<Palette> palette);
    /// The size nearest to `size`, and no smaller, that the format takes.
    [[nodiscard]] static QSize fitting(Format format, QSize size);

    /// @param picture Format_ARGB32_Premultiplied; null: the one before stays for another moment
    /// @errors also those of pictures before
    base::Result<void> take(const QImage* picture);
    base::Result<void> finish();

private:
    PictureTrack() = default;
    base::Result<void> fill(const QImage& picture);

    Container* m_container = nullptr; // borrowed
    AVStream* m_stream = nullptr;
    av::Owned<AVCodecContext> m_encoder;
    av::Owned<AVFrame> m_frame;
    av::Owned<SwsContext> m_converter;
    std::unique_ptr<Palette> m_palette;
    Rate m_rate;
    std::int64_t m_count = 0;
    std::unique_ptr<EncodingThread> m_encoding; // from the first picture on; the last: it uses m_encoder
};

/// What is heard.
class SoundTrack
{
public:
    static base::Result<SoundTrack> add(Container& container, Format format);

    /// @param samples interleaved, two channels, flash::sound::kMixRate
    base::Result<void> take(std::span<const std::int16_t> samples);
    base::Result<void> finish();

private:
    SoundTrack() = default;
    base::Result<void> encodeWaiting(bool isEnd);

    Container* m_container = nullptr; // borrowed
    AVStream* m_stream = nullptr;
    av::Owned<AVCodecContext> m_encoder;
    av::Owned<SwrContext> m_converter;
    av::Owned<AVAudioFifo> m_waiting;
    std::int64_t m_position = 0; // of the next sample for the encoder
};

} // namespace exporter
