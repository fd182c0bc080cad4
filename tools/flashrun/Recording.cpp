#include "Recording.h"

#include "base/Files.h"

#include <algorithm>
#include <cmath>

namespace flashrun
{

namespace
{

constexpr std::uint32_t kFrameBytes = 4;
// The lengths in the file have 32 bits.
constexpr double kMaxFrames = 0xFFFFFF00 / kFrameBytes;

void append(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void append(std::vector<std::uint8_t>& out, std::string_view text)
{
    out.insert(out.end(), text.begin(), text.end());
}

} // namespace

void Recording::take(flash::sound::Mixer& mixer, double ms)
{
    m_owedFrames += std::max(ms, 0.0) * flash::sound::kMixRate / 1000;
    const double whole = std::floor(m_owedFrames);
    m_owedFrames -= whole;
    const std::size_t before = m_frames.size();
    m_tooLong = m_tooLong || static_cast<double>(before) + whole > kMaxFrames;
    if (m_tooLong) return;
    m_frames.resize(before + static_cast<std::size_t>(whole));
    mixer.mix(std::span(m_frames).subspan(before));
}

base::Result<void> Recording::write(const std::filesystem::path& file) const
{
    if (m_tooLong)
        return base::fail(base::ErrorCode::LimitReached, file.string() + ": a sound file ends at 4 GB");
    const auto dataBytes = static_cast<std::uint32_t>(m_frames.size() * kFrameBytes);
    constexpr std::uint32_t kFormatBytes = 16, kHeadBytes = 36;
    std::vector<std::uint8_t> out;
    append(out, "RIFF");
    append(out, kHeadBytes + dataBytes, 4);
    append(out, "WAVEfmt ");
    append(out, kFormatBytes, 4);
    append(out, 1, 2); // PCM
    append(out, 2, 2);
    append(out, flash::sound::kMixRate, 4);
    append(out, flash::sound::kMixRate * kFrameBytes, 4);
    append(out, kFrameBytes, 2);
    append(out, 16, 2);
    append(out, "data");
    append(out, dataBytes, 4);
    for (const auto& frame : m_frames) {
        append(out, static_cast<std::uint16_t>(frame.left), 2);
        append(out, static_cast<std::uint16_t>(frame.right), 2);
    }
    return base::replaceFile(file, out);
}

} // namespace flashrun
