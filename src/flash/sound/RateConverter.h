#pragma once

#include "flash/sound/Samples.h"

#include <memory>
#include <vector>

struct SwrContext;

namespace flash::sound
{

/// What decoders yield. The numbers are those of libavutil's AVSampleFormat.
struct SampleLayout {
    int format = 0;
    int rate = 0;     ///< Hz
    int channels = 0; ///< 1 or 2; of more, libswresample makes two
    friend bool operator==(const SampleLayout&, const SampleLayout&) = default;
};

/// Makes stereo frames at kMixRate of samples in any layout. The layout may change on the way.
class RateConverter
{
public:
    RateConverter();
    ~RateConverter();
    RateConverter(const RateConverter&) = delete;
    RateConverter& operator=(const RateConverter&) = delete;

    /// @param planes one pointer for interleaved layouts, one for each channel for planar ones
    /// @param count  samples of each channel
    void convert(const SampleLayout& layout, const std::uint8_t* const* planes, int count,
                 std::vector<StereoFrame>& out);
    /// Yields what the filter still holds back.
    void flush(std::vector<StereoFrame>& out);
    void reset();

private:
    struct Free {
        void operator()(SwrContext* context) const;
    };
    bool prepare(const SampleLayout& layout);
    void append(const std::uint8_t* const* planes, int count, std::vector<StereoFrame>& out);

    std::unique_ptr<SwrContext, Free> m_context;
    SampleLayout m_layout;
};

} // namespace flash::sound
