#include "flash/render/SpanPainter.h"

#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"

#include <algorithm>

namespace flash::render
{
namespace
{

// The four channels of a pixel in 16 bits each, to add up weighed pixels without losing fractions.
constexpr std::uint64_t spread(std::uint32_t pixel)
{
    return (std::uint64_t{pixel & 0xFF00FF00} << 24) | (pixel & 0x00FF00FF);
}
constexpr std::uint32_t gather(std::uint64_t sum)
{
    // Weights come to 256 at most, so a channel is below 65536 with the rounding.
    sum += 0x0080008000800080;
    const std::uint64_t high = sum >> 8 & 0x00FF00FF00FF00FF;
    return static_cast<std::uint32_t>(high) | static_cast<std::uint32_t>(high >> 24);
}

// Whether nothing below shows through, for long enough to be worth a start of its own.
bool coversAlone(const StyleSpan& span)
{
    constexpr int kLong = 48;
    constexpr std::uint32_t kFull = 256;
    return span.coverages == nullptr && span.coverage == kFull && span.count >= kLong;
}

} // namespace

void SpanPainter::setTarget(const Target& target, const Mask* mask)
{
    m_target = target;
    m_mask = mask;
    const auto width = static_cast<std::size_t>(target.view.width);
    if (m_fetched.size() < width) {
        constexpr std::size_t kReadBeyond = 8; // see Paint::lay()
        m_coverage.resize(width + kReadBeyond);
        m_fetched.resize(width);
        m_mixed.resize(width);
        m_sums.resize(4 * width);
    }
}

void SpanPainter::row(int y, std::span<const StyleSpan> spans)
{
    m_y = y;
    for (std::size_t i = 0; i < spans.size();) {
        std::size_t end = i + 1;
        while (end < spans.size() && spans[end].x == spans[i].x) ++end;
        if (end == i + 1)
            single(spans[i]);
        else
            shared(spans.subspan(i, end - i));
        i = end;
    }
    flushRun();
}

void SpanPainter::single(const StyleSpan& span)
{
    const StylePaint& style = m_styles[span.style - 1];
    if (style.paint != nullptr && m_mask == nullptr && coversAlone(span)) {
        const auto count = static_cast<std::size_t>(span.count);
        std::uint32_t* to = m_target.at(span.x, m_y);
        if (style.paint->hasRowColors()) {
            flushRun();
            composeSolid(to, count, style.paint->rowColor(m_y));
            return;
        }
        if (style.paint->isOpaque()) {
            flushRun();
            style.paint->fetch(span.x, m_y, count, to);
            return;
        }
    }
    if (style.paint != nullptr || m_mask != nullptr) {
        extendRun(span);
        return;
    }
    std::uint32_t* to = m_target.at(span.x, m_y);
    if (span.coverages != nullptr) {
        composeSolid(to, span.coverages, static_cast<std::size_t>(span.count), style.color);
        return;
    }
    const std::uint32_t color = scale256(style.color, span.coverage);
    if (span.count == 1)
        *to = over(color, *to);
    else
        composeSolid(to, static_cast<std::size_t>(span.count), color);
}

void SpanPainter::extendRun(const StyleSpan& span)
{
    if (span.style != m_runStyle || span.x != m_runEnd) {
        flushRun();
        m_runStyle = span.style;
        m_runStart = m_runEnd = span.x;
    }
    std::uint8_t* to = m_coverage.data() + (m_runEnd - m_runStart);
    if (span.coverages != nullptr)
        std::copy_n(span.coverages, span.count, to);
    else
        std::fill_n(to, span.count, toByte(span.coverage));
    m_runEnd += span.count;
}

void SpanPainter::flushRun()
{
    if (m_runStyle == 0) return;
    const StylePaint& style = m_styles[m_runStyle - 1];
    const auto count = static_cast<std::size_t>(m_runEnd - m_runStart);
    applyMask(m_runStart, count);
    std::uint32_t* to = m_target.at(m_runStart, m_y);
    if (isPlain(style)) {
        composeSolid(to, m_coverage.data(), count, colorOf(style));
    } else if (style.paint->canLay()) {
        style.paint->lay(m_runStart, m_y, m_coverage.data(), count, to);
    } else {
        style.paint->fetch(m_runStart, m_y, count, m_fetched.data());
        composePixels(to, m_fetched.data(), m_coverage.data(), count);
    }
    m_runStyle = 0;
}

bool SpanPainter::isPlain(const StylePaint& style)
{
    return style.paint == nullptr || style.paint->hasRowColors();
}

std::uint32_t SpanPainter::colorOf(const StylePaint& style) const
{
    return style.paint == nullptr ? style.color : style.paint->rowColor(m_y);
}

void SpanPainter::applyMask(int x, std::size_t count)
{
    if (m_mask != nullptr) scaleCoverage(m_coverage.data(), m_mask->at(x, m_y), count);
}

// Pixels that several styles share: their colours are added up by coverage first and then laid over what is
// below at once. One after the other, each would let through a little of what is below.
void SpanPainter::shared(std::span<const StyleSpan> parts)
{
    flushRun();
    if (parts[0].coverages == nullptr) {
        evenlyShared(parts);
        return;
    }
    const auto count = static_cast<std::size_t>(parts[0].count);
    const int x = parts[0].x;
    std::fill_n(m_sums.data(), 4 * count, std::uint16_t{0});
    for (const StyleSpan& part : parts) {
        const StylePaint& style = m_styles[part.style - 1];
        if (isPlain(style)) {
            addSolid(m_sums.data(), part.coverages, count, colorOf(style));
            continue;
        }
        style.paint->fetch(x, m_y, count, m_fetched.data());
        addPixels(m_sums.data(), part.coverages, count, m_fetched.data());
    }
    takeSums(m_mixed.data(), m_sums.data(), count);
    layMixed(x, count);
}

// Where all pixels are shared in the same way, as along an upright border.
void SpanPainter::evenlyShared(std::span<const StyleSpan> parts)
{
    const auto count = static_cast<std::size_t>(parts[0].count);
    const int x = parts[0].x;
    std::uint64_t solid = 0;
    bool allSolid = true;
    for (const StyleSpan& part : parts) {
        if (const StylePaint& style = m_styles[part.style - 1]; isPlain(style))
            solid += spread(colorOf(style)) * part.coverage;
        else
            allSolid = false;
    }
    if (allSolid && m_mask == nullptr) {
        std::uint32_t* to = m_target.at(x, m_y);
        const std::uint32_t color = gather(solid);
        if (count == 1)
            *to = over(color, *to);
        else
            composeSolid(to, count, color);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::uint64_t sum = solid;
        for (const StyleSpan& part : parts) {
            const StylePaint& style = m_styles[part.style - 1];
            if (isPlain(style)) continue;
            std::uint32_t pixel = 0;
            style.paint->fetch(x + static_cast<int>(i), m_y, 1, &pixel);
            sum += spread(pixel) * part.coverage;
        }
        m_mixed[i] = gather(sum);
    }
    layMixed(x, count);
}

void SpanPainter::layMixed(int x, std::size_t count)
{
    std::uint32_t* to = m_target.at(x, m_y);
    if (m_mask == nullptr) {
        composePixels(to, m_mixed.data(), count);
        return;
    }
    std::fill_n(m_coverage.data(), count, std::uint8_t{255});
    applyMask(x, count);
    composePixels(to, m_mixed.data(), m_coverage.data(), count);
}

} // namespace flash::render
