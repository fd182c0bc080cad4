#pragma once

#include "export/Settings.h"
#include "export/encode/Ffmpeg.h"

#include <mutex>

namespace exporter
{

/// The file that tracks are written to. Several threads may encode at once, each with an encoder of its own.
class Container
{
public:
    /// @param descriptor open for reading and writing, at its start; borrowed
    static base::Result<std::unique_ptr<Container>> open(Format format, int descriptor);
    ~Container();

    /// @returns a track of the file, to be told of its encoder before begin().
    base::Result<AVStream*> addTrack(const AVCodecContext& encoder);
    /// Whether encoders have to put what describes them outside their packets.
    [[nodiscard]] bool wantsGlobalHeader() const;
    /// Writes the head: when all tracks are known.
    base::Result<void> begin();
    /// Sends a picture or a stretch of sound through an encoder, and what comes out of it to the file.
    /// @param frame null: the encoder is to give what it holds back
    base::Result<void> encode(AVCodecContext& encoder, const AVFrame* frame, AVStream& track);
    /// Writes the end of the file.
    base::Result<void> finish();

private:
    explicit Container(int descriptor) : m_descriptor(descriptor) {}
    static int write(void* self, std::uint8_t* bytes, int count);
    static std::int64_t seek(void* self, std::int64_t offset, int whence);
    /// An error of the muxer; the system's own reason where writing failed.
    [[nodiscard]] tl::unexpected<base::Error> failure(const char* what, int error) const;

    int m_descriptor;
    int m_systemError = 0; // of the write that failed first
    av::Owned<AVIOContext> m_io;
    av::Owned<AVFormatContext> m_format;
    std::mutex m_writing; // of m_format, m_io and m_systemError once the head is written
};

} // namespace exporter
