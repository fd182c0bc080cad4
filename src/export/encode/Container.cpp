#include "export/encode/Container.h"

#include "export/Formats.h"

#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace exporter
{

namespace
{

constexpr int kBufferBytes = 1 << 16;

const char* muxerOf(Format format) { return format == Format::Mkv ? "matroska" : infoOf(format).extension; }

} // namespace

Container::~Container() = default;

int Container::write(void* self, std::uint8_t* bytes, int count)
{
    auto* container = static_cast<Container*>(self);
    int left = count;
    while (left > 0) {
        const ssize_t written = ::write(container->m_descriptor, bytes, static_cast<std::size_t>(left));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            if (container->m_systemError == 0) container->m_systemError = errno;
            return AVERROR(errno);
        }
        bytes += written;
        left -= static_cast<int>(written);
    }
    return count;
}

std::int64_t Container::seek(void* self, std::int64_t offset, int whence)
{
    const auto* container = static_cast<Container*>(self);
    if ((whence & AVSEEK_SIZE) != 0) {
        const off_t here = ::lseek(container->m_descriptor, 0, SEEK_CUR);
        const off_t end = ::lseek(container->m_descriptor, 0, SEEK_END);
        ::lseek(container->m_descriptor, here, SEEK_SET);
        return end;
    }
    return ::lseek(container->m_descriptor, offset, whence & ~AVSEEK_FORCE);
}

tl::unexpected<base::Error> Container::failure(const char* what, int error) const
{
    if (m_systemError != 0)
        return base::fail(base::ErrorCode::IoFailure,
                          std::string(what) + ": " + std::generic_category().message(m_systemError));
    return av::fail(what, error);
}

base::Result<std::unique_ptr<Container>> Container::open(Format format, int descriptor)
{
    std::unique_ptr<Container> container(new Container(descriptor));
    AVFormatContext* made = nullptr;
    const int error = avformat_alloc_output_context2(&made, nullptr, muxerOf(format), nullptr);
    if (error < 0) return av::fail(std::string("the file format ") + muxerOf(format), error);
    container->m_format.reset(made);
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(kBufferBytes));
    container->m_io.reset(
        avio_alloc_context(buffer, kBufferBytes, 1, container.get(), nullptr, &write, &seek));
    container->m_format->pb = container->m_io.get();
    return container;
}

bool Container::wantsGlobalHeader() const { return (m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0; }

base::Result<AVStream*> Container::addTrack(const AVCodecContext& encoder)
{
    AVStream* track = avformat_new_stream(m_format.get(), nullptr);
    if (track == nullptr) return av::fail("a track of the file", AVERROR(ENOMEM));
    const int error = avcodec_parameters_from_context(track->codecpar, &encoder);
    if (error < 0) return av::fail("a track of the file", error);
    track->time_base = encoder.time_base;
    track->avg_frame_rate = encoder.framerate;
    return track;
}

base::Result<void> Container::begin()
{
    AVDictionary* options = nullptr;
    av_dict_set(&options, "rf64", "auto", 0); // sounds of more than 4 GB; only WAV knows this
    const int error = avformat_write_header(m_format.get(), &options);
    av_dict_free(&options);
    if (error < 0) return failure("the file cannot be begun", error);
    return {};
}

base::Result<void> Container::encode(AVCodecContext& encoder, const AVFrame* frame, AVStream& track)
{
    const av::Owned<AVPacket> packet(av_packet_alloc());
    if (!packet) return av::fail("the encoder failed", AVERROR(ENOMEM));
    int error = avcodec_send_frame(&encoder, frame);
    if (error < 0) return av::fail("the encoder failed", error);
    while (true) {
        error = avcodec_receive_packet(&encoder, packet.get());
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF) return {};
        if (error < 0) return av::fail("the encoder failed", error);
        av_packet_rescale_ts(packet.get(), encoder.time_base, track.time_base);
        packet->stream_index = track.index;
        const std::lock_guard lock(m_writing);
        error = av_interleaved_write_frame(m_format.get(), packet.get());
        if (error >= 0) error = m_io->error;
        if (error < 0) return failure("the file cannot be written", error);
    }
}

base::Result<void> Container::finish()
{
    int error = av_write_trailer(m_format.get());
    avio_flush(m_io.get());
    if (error >= 0) error = m_io->error;
    if (error < 0) return failure("the file cannot be finished", error);
    return {};
}

} // namespace exporter
