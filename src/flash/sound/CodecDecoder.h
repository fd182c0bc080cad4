#pragma once

#include "base/ByteReader.h"
#include "flash/sound/RateConverter.h"
#include "flash/swf/Movie.h"

#include <memory>
#include <vector>

namespace flash::sound
{

/// Decodes MP3, Nellymoser and Speex by libavcodec. What cannot be decoded is left out.
class CodecDecoder
{
public:
    /// @param rate Hz, as the movie states it; MP3 brings its own
    /// @returns null when the format is none of the three or the library lacks it.
    static std::unique_ptr<CodecDecoder> open(swf::SoundFormat format, int rate, bool stereo);
    ~CodecDecoder();
    CodecDecoder(const CodecDecoder&) = delete;
    CodecDecoder& operator=(const CodecDecoder&) = delete;

    /// Takes the next bytes; frames need not end where `bytes` ends. Appends what became whole to `out`.
    void feed(base::Bytes bytes, std::vector<StereoFrame>& out);
    /// The bytes have ended: appends the rest.
    void finish(std::vector<StereoFrame>& out);

private:
    struct Parts;
    explicit CodecDecoder(std::unique_ptr<Parts> parts);
    void decodePacket(base::Bytes packet, std::vector<StereoFrame>& out);
    void takeFrames(std::vector<StereoFrame>& out);
    std::unique_ptr<Parts> m_parts;
};

} // namespace flash::sound
