#include "flash/sound/EventSource.h"
#include "flash/sound/Mixer.h"
#include "flash/sound/Sources.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

// Ten seconds of sound are mixed; `core` says what share of a processor's core that takes while it is heard.

namespace
{

using namespace flash::sound;

constexpr double kSeconds = 10;
constexpr std::size_t kPortion = 735; // a sixtieth of a second

class Tone final : public SampleSource
{
public:
    explicit Tone(double hertz)
    {
        for (std::size_t i = 0; i < m_wave.size(); ++i) {
            const auto value = static_cast<std::int16_t>(
                8000 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / kMixRate));
            m_wave[i] = {value, value};
        }
    }
    std::size_t read(std::span<StereoFrame> out) override
    {
        for (StereoFrame& frame : out) frame = m_wave[m_at++ % m_wave.size()];
        return out.size();
    }
    void rewind() override { m_at = 0; }

private:
    std::vector<StereoFrame> m_wave = std::vector<StereoFrame>(kMixRate / 10);
    std::size_t m_at = 0;
};

void mixFor(Mixer& mixer, double seconds)
{
    std::vector<StereoFrame> out(kPortion);
    for (double played = 0; played < seconds; played += static_cast<double>(kPortion) / kMixRate) {
        mixer.mix(out);
        benchmark::DoNotOptimize(out.data());
    }
}

void tellShare(benchmark::State& state)
{
    state.counters["core"] = benchmark::Counter(kSeconds * static_cast<double>(state.iterations()),
                                                benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void mixVoices(benchmark::State& state)
{
    Mixer mixer;
    for (int i = 0; i < state.range(0); ++i)
        mixer.add(std::make_unique<Tone>(200 + 90 * i), {0.5F, 0.1F, 0.1F, 0.4F});
    for (auto _ : state) mixFor(mixer, kSeconds);
    tellShare(state);
}
BENCHMARK(mixVoices)->Arg(1)->Arg(8)->Arg(32)->Unit(benchmark::kMillisecond);

// Eight sounds of 22 kHz, 16 bits, that are decoded and converted as they play, as most movies have them.
void playSounds(benchmark::State& state)
{
    auto movie = std::make_shared<flash::swf::Movie>();
    movie->bytes.resize(22050 * 2 * 12, 17);
    flash::swf::Sound sound;
    sound.rate = 22050;
    sound.data = movie->bytes;
    sound.sampleCount = static_cast<std::uint32_t>(movie->bytes.size() / 2);
    for (auto _ : state) {
        Mixer mixer;
        for (int i = 0; i < 8; ++i) mixer.add(openSound(movie, sound));
        mixFor(mixer, kSeconds);
    }
    tellShare(state);
}
BENCHMARK(playSounds)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
