#include "flash/sound/RateConverter.h"

#include "flash/codec/Ffmpeg.h"

#include <cstring>

namespace flash::sound
{

namespace
{

// The lowest rate of the format is an eighth of 44100 and is written down rounded.
constexpr int kRoundedRate = 5512;

} // namespace

// A context exists only when the libraries were found.
void RateConverter::Free::operator()(SwrContext* context) const { codec::Ffmpeg::get()->swr_free(&context); }

RateConverter::RateConverter() = default;
RateConverter::~RateConverter() = default;

bool RateConverter::prepare(const SampleLayout& layout)
{
    if (m_context && layout == m_layout) return true;
    m_context.reset();
    if (layout.rate < 1000 || layout.rate > 192000 || layout.channels < 1 || layout.channels > 8)
        return false;
    const codec::Ffmpeg* ffmpeg = codec::Ffmpeg::get();
    if (ffmpeg == nullptr) return false;
    const bool doubled = layout.rate == kRoundedRate;
    AVChannelLayout from;
    ffmpeg->av_channel_layout_default(&from, layout.channels);
    AVChannelLayout to = AV_CHANNEL_LAYOUT_STEREO;
    SwrContext* context = nullptr;
    const int made = ffmpeg->swr_alloc_set_opts2(
        &context, &to, AV_SAMPLE_FMT_S16, doubled ? kMixRate * 2 : kMixRate, &from,
        static_cast<AVSampleFormat>(layout.format), doubled ? 11025 : layout.rate, 0, nullptr);
    m_context.reset(context);
    // One channel is heard from both speakers at its full level, not at the level that keeps the power.
    constexpr double kBoth[] = {1, 1};
    if (made >= 0 && layout.channels == 1 && ffmpeg->swr_set_matrix(context, kBoth, 1) < 0) return false;
    if (made < 0 || ffmpeg->swr_init(context) < 0) {
        m_context.reset();
        return false;
    }
    m_layout = layout;
    return true;
}

void RateConverter::convert(const SampleLayout& layout, const std::uint8_t* const* planes, int count,
                            std::vector<StereoFrame>& out)
{
    if (count <= 0) return;
    if (layout == SampleLayout{AV_SAMPLE_FMT_S16, kMixRate, 2}) {
        const std::size_t before = out.size();
        out.resize(before + static_cast<std::size_t>(count));
        std::memcpy(out.data() + before, planes[0], static_cast<std::size_t>(count) * sizeof(StereoFrame));
        return;
    }
    if (m_context && layout != m_layout) flush(out);
    if (prepare(layout)) append(planes, count, out);
}

void RateConverter::append(const std::uint8_t* const* planes, int count, std::vector<StereoFrame>& out)
{
    const codec::Ffmpeg& ffmpeg = *codec::Ffmpeg::get(); // found when the context was made
    const int room = ffmpeg.swr_get_out_samples(m_context.get(), count);
    if (room <= 0) return;
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(room));
    auto* target = reinterpret_cast<std::uint8_t*>(out.data() + before);
    const int got =
        ffmpeg.swr_convert(m_context.get(), &target, room, const_cast<const std::uint8_t**>(planes), count);
    out.resize(before + static_cast<std::size_t>(got > 0 ? got : 0));
}

void RateConverter::flush(std::vector<StereoFrame>& out)
{
    if (m_context) append(nullptr, 0, out);
    m_context.reset();
}

void RateConverter::reset() { m_context.reset(); }

} // namespace flash::sound
