#include "flash/sound/Mp3Header.h"

#include <array>
#include <string_view>

namespace flash::sound
{

namespace
{

// Kilobits a second by the header's index, layer III; 0 stands for free and forbidden.
constexpr std::array<int, 16> kBitRates1 = {0,   32,  40,  48,  56,  64,  80,  96,
                                            112, 128, 160, 192, 224, 256, 320, 0};
constexpr std::array<int, 16> kBitRates2 = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};
constexpr std::array<int, 4> kRates1 = {44100, 48000, 32000, 0};

bool holdsIndex(base::Bytes frame)
{
    const std::string_view text(reinterpret_cast<const char*>(frame.data()), frame.size());
    const std::string_view head = text.substr(0, 64);
    return head.find("Xing") != head.npos || head.find("Info") != head.npos || head.find("VBRI") != head.npos;
}

} // namespace

std::optional<Mp3Header> readMp3Header(base::Bytes bytes)
{
    if (bytes.size() < 4 || bytes[0] != 0xFF || (bytes[1] & 0xE0U) != 0xE0) return {};
    const unsigned version = bytes[1] >> 3U & 3U; // 0: 2.5, 2: 2, 3: 1
    const unsigned layer = bytes[1] >> 1U & 3U;   // 1: layer III
    if (version == 1 || layer != 1) return {};
    const int kilobits = (version == 3 ? kBitRates1 : kBitRates2)[bytes[2] >> 4U];
    int rate = kRates1[bytes[2] >> 2U & 3U];
    if (kilobits == 0 || rate == 0) return {};
    if (version != 3) rate /= version == 2 ? 2 : 4;
    const int samples = version == 3 ? 1152 : 576;
    const int padding = bytes[2] >> 1U & 1;
    const auto length = static_cast<std::size_t>(samples / 8 * kilobits * 1000 / rate + padding);
    return Mp3Header{rate, samples, length};
}

base::Bytes mp3Music(base::Bytes file)
{
    constexpr std::size_t kTagHeadBytes = 10;
    while (file.size() >= kTagHeadBytes && file[0] == 'I' && file[1] == 'D' && file[2] == '3') {
        // The length has seven bits to the byte and does not count the head (and a foot of the same size).
        std::size_t length = kTagHeadBytes;
        length += static_cast<std::size_t>(file[6] & 127U) << 21U | (file[7] & 127U) << 14U |
                  (file[8] & 127U) << 7U | (file[9] & 127U);
        if ((file[5] & 0x10U) != 0) length += kTagHeadBytes;
        if (length >= file.size()) return {};
        file = file.subspan(length);
    }
    constexpr std::size_t kOldTagBytes = 128;
    if (file.size() >= kOldTagBytes) {
        const base::Bytes end = file.last(kOldTagBytes);
        if (end[0] == 'T' && end[1] == 'A' && end[2] == 'G') file = file.first(file.size() - kOldTagBytes);
    }
    if (const auto header = readMp3Header(file); header && header->bytes < file.size()) {
        if (holdsIndex(file.first(header->bytes))) file = file.subspan(header->bytes);
    }
    return file;
}

} // namespace flash::sound
