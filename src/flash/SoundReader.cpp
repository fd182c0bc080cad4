#include "flash/SoundReader.h"

#include "flash/sound/SoundPlayer.h"

namespace flash
{

avm2::SoundReader soundReader(const stage::MoviePtr& movie, const swf::Sound* symbol,
                              const std::shared_ptr<const std::vector<std::uint8_t>>& file)
{
    std::shared_ptr<sound::SampleSource> source =
        symbol != nullptr ? sound::openSound(movie, *symbol) : sound::openSoundFile(file);
    if (source == nullptr) return {};
    return [source](std::optional<std::uint64_t> from, std::span<std::array<std::int16_t, 2>> out) {
        if (from) {
            source->rewind();
            source->seek(*from);
        }
        std::vector<sound::StereoFrame> frames(out.size());
        const std::size_t count = source->read(frames);
        for (std::size_t i = 0; i < count; ++i) out[i] = {frames[i].left, frames[i].right};
        return count;
    };
}

} // namespace flash
