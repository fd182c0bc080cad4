#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Sound: bytes of a movie -> samples, and many of them at once -> what is heard. Works on simulated time and
// on two channels of 16 bits at one rate; nothing in this folder opens a device or a file.
namespace flash::sound
{

/// Frames a second of everything behind a decoder.
constexpr int kMixRate = 44100;

/// One moment of sound, both channels.
struct StereoFrame {
    std::int16_t left = 0, right = 0;
    friend bool operator==(const StereoFrame&, const StereoFrame&) = default;
};

/// Sound to be pulled, at kMixRate.
class SampleSource
{
public:
    SampleSource() = default;
    virtual ~SampleSource() = default;
    SampleSource(const SampleSource&) = delete;
    SampleSource& operator=(const SampleSource&) = delete;

    /// @returns how many frames were written to `out` from its start; fewer than asked for only at the end.
    virtual std::size_t read(std::span<StereoFrame> out) = 0;
    virtual void rewind() = 0;
    /// Moves to a frame counted from the start. The default decodes what lies between.
    virtual void seek(std::uint64_t frame);
};

} // namespace flash::sound
