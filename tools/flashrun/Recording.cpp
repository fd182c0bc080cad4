#include "Recording.h"

#include "base/Files.h"

#include <vector>

namespace flashrun
{

namespace
{

constexpr std::uint32_t kFrameBytes = 4;
static_assert(sizeof(flash::sound::StereoFrame) == kFrameBytes);

void append(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void append(std::vector<std::uint8_t>& out, std::string_view text)
{
    out.insert(out.end(), text.begin(), text.end());
}

} // namespace

base::Result<void> writeSound(std::span<const flash::sound::StereoFrame> frames,
                              const std::filesystem::path& file)
{
    const auto dataBytes = static_cast<std::uint32_t>(frames.size() * kFrameBytes);
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
    for (const auto& frame : frames) {
        append(out, static_cast<std::uint16_t>(frame.left), 2);
        append(out, static_cast<std::uint16_t>(frame.right), 2);
    }
    return base::replaceFile(file, out);
}

} // namespace flashrun
