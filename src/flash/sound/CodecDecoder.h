#pragma once

#include "base/ByteReader.h"
#include "flash/codec/SoundCodec.h"
#include "flash/sound/RateConverter.h"

#include <memory>
#include <vector>

namespace flash::sound
{

/// Decodes all but plain samples and ADPCM by libavcodec. What cannot be decoded is left out.
class CodecDecoder
{
public:
    /// @param rate   Hz, as the movie states it; some formats bring their own
    /// @param config AAC: what stands before its packets; otherwise empty
    /// @returns null when the format is none of these or the library lacks it.
    static std::unique_ptr<CodecDecoder> open(codec::SoundCodec format, int rate, bool stereo,
                                              base::Bytes config = {});
    ~CodecDecoder();
    CodecDecoder(const CodecDecoder&) = delete;
    CodecDecoder& operator=(const CodecDecoder&) = delete;

    /// Takes the next bytes. Frames of MP3 and Nellymoser need not end where `bytes` ends, the others are
    /// whole packets. Appends what became whole to `out`.
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
