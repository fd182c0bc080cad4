#include "base/TextCodeGuess.h"

#include <array>
#include <cstdint>

namespace base
{
namespace
{

/// What the bytes above ASCII look like, under each reading.
struct Look {
    int high = 0;                ///< bytes above ASCII
    int runs = 0, lone = 0;      ///< stretches of them; those of one byte beside or between ASCII letters
    int small = 0, capital = 0;  ///< Cyrillic letters of windows-1251
    int oddRuns = 0;             ///< stretches that two-byte characters cannot fill
    int letters = 0;             ///< bytes that are letters in both Cyrillic codes
    std::array<int, 256> lead{}; ///< first bytes, were the text of two-byte characters
    int kana = 0, shiftJisPairs = 0, shiftJisBad = 0;
    int lowTrail = 0, pairs = 0, badPairs = 0; ///< of the other two-byte codes; a low trail lies in ASCII
};

bool isHigh(std::uint8_t byte) { return byte >= 0x80; }
bool isLetter(std::uint8_t byte) { return (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z'; }

void lookAtShiftJis(Look& look, std::string_view texts)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto first = static_cast<std::uint8_t>(texts[i]);
        if (!isHigh(first) || (first >= 0xA1 && first <= 0xDF)) continue; // half-width katakana stand alone
        const auto second = i + 1 < texts.size() ? static_cast<std::uint8_t>(texts[i + 1]) : std::uint8_t{0};
        const bool leads = (first >= 0x81 && first <= 0x9F) || (first >= 0xE0 && first <= 0xFC);
        if (!leads || second < 0x40 || second == 0x7F || second > 0xFC) {
            ++look.shiftJisBad;
            continue;
        }
        ++look.shiftJisPairs;
        if (first >= 0x81 && first <= 0x83) ++look.kana;
        ++i;
    }
}

void lookAtPairs(Look& look, std::string_view texts)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const auto first = static_cast<std::uint8_t>(texts[i]);
        if (!isHigh(first)) continue;
        const auto second = i + 1 < texts.size() ? static_cast<std::uint8_t>(texts[i + 1]) : std::uint8_t{0};
        const bool low = second >= 0x40 && second < 0x7F;
        if (first < 0xA1 || first == 0xFF || (!low && second < 0xA1)) {
            ++look.badPairs;
            continue;
        }
        ++look.pairs;
        ++look.lead[first];
        if (low) ++look.lowTrail;
        ++i;
    }
}

Look lookAt(std::string_view texts)
{
    Look look;
    for (std::size_t i = 0; i < texts.size();) {
        if (!isHigh(static_cast<std::uint8_t>(texts[i]))) {
            ++i;
            continue;
        }
        const std::size_t start = i;
        for (; i < texts.size() && isHigh(static_cast<std::uint8_t>(texts[i])); ++i) {
            const auto byte = static_cast<std::uint8_t>(texts[i]);
            ++look.high;
            if (byte >= 0xC0) ++look.letters;
            if (byte >= 0xE0) ++look.small;
            if (byte >= 0xC0 && byte < 0xE0) ++look.capital;
        }
        ++look.runs;
        if ((i - start) % 2 != 0) ++look.oddRuns;
        const bool letterBefore = start > 0 && isLetter(static_cast<std::uint8_t>(texts[start - 1]));
        const bool letterAfter = i < texts.size() && isLetter(static_cast<std::uint8_t>(texts[i]));
        if (i - start == 1 && (letterBefore || letterAfter)) ++look.lone;
    }
    lookAtShiftJis(look, texts);
    lookAtPairs(look, texts);
    return look;
}

int leadsBetween(const Look& look, int first, int last)
{
    int count = 0;
    for (int byte = first; byte <= last; ++byte) count += look.lead[static_cast<std::size_t>(byte)];
    return count;
}

} // namespace

std::string_view guessTextCode(std::string_view texts)
{
    const Look look = lookAt(texts);
    if (look.high == 0) return {};
    // Japanese is never without kana, and their first bytes are no letters anywhere else.
    if (look.shiftJisPairs > 0 && look.shiftJisBad == 0 && look.kana * 4 >= look.shiftJisPairs)
        return "shift-jis";
    // Western letters stand alone among others.
    if (look.lone * 2 > look.runs) return "windows-1252";
    // Words of two-byte characters never have an odd number of bytes; of others every second one has.
    const bool isPaired =
        look.badPairs == 0 && look.pairs > 0 && (look.oddRuns == 0 || look.lowTrail * 2 >= look.oddRuns);
    if (isPaired && (look.runs >= 4 || look.pairs >= 8 || look.letters * 10 < look.high * 9)) {
        if (leadsBetween(look, 0xB0, 0xC8) * 10 >= look.pairs * 9) return "euc-kr";
        if (look.lowTrail * 5 >= look.pairs) return "big5";
        return "gbk";
    }
    // Small letters are the many: they lie high in one code and low in the other.
    if (look.letters * 10 >= look.high * 8) return look.small >= look.capital ? "windows-1251" : "koi8-r";
    return {};
}

} // namespace base
