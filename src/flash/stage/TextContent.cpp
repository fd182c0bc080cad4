#include "flash/stage/TextContent.h"

#include "flash/guard/Guard.h"

#include <algorithm>

namespace flash::stage
{

void TextContent::clear()
{
    m_text.clear();
    m_runs.clear();
    m_pictures.clear();
}

void TextContent::append(std::u16string_view text, const TextFormat& format)
{
    text = text.substr(0, roomFor(text.size()));
    if (text.empty()) return;
    m_text += text;
    if (!m_runs.empty() && m_runs.back().format == format)
        m_runs.back().length += text.size();
    else
        m_runs.push_back({text.size(), format});
}

void TextContent::append(TextPicture picture)
{
    constexpr std::size_t kMostPictures = 256;
    if (m_pictures.size() >= kMostPictures) {
        guard::refuse(guard::Bound::Texts, "A text field holds too many pictures; the rest is left out");
        return;
    }
    picture.index = m_text.size();
    m_pictures.push_back(std::move(picture));
}

void TextContent::removePicture(std::size_t place)
{
    if (place < m_pictures.size()) m_pictures.erase(m_pictures.begin() + static_cast<std::ptrdiff_t>(place));
}

std::size_t TextContent::roomFor(std::size_t units) const
{
    const std::size_t room = guard::kLongestFieldText - std::min(m_text.size(), guard::kLongestFieldText);
    if (units <= room) return units;
    guard::refuse(guard::Bound::Texts, "A text field holds too long a text; the rest is left out");
    return room;
}

std::size_t TextContent::cut(std::size_t index)
{
    std::size_t begin = 0;
    for (std::size_t i = 0; i < m_runs.size(); ++i) {
        if (begin == index) return i;
        const std::size_t length = m_runs[i].length;
        if (index < begin + length) {
            Run rest = m_runs[i];
            rest.length = begin + length - index;
            m_runs[i].length = index - begin;
            m_runs.insert(m_runs.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(rest));
            return i + 1;
        }
        begin += length;
    }
    return m_runs.size();
}

void TextContent::join()
{
    std::vector<Run> joined;
    for (Run& run : m_runs) {
        if (run.length == 0) continue;
        if (!joined.empty() && joined.back().format == run.format)
            joined.back().length += run.length;
        else
            joined.push_back(std::move(run));
    }
    m_runs = std::move(joined);
}

void TextContent::replace(std::size_t begin, std::size_t end, std::u16string_view text,
                          const TextFormat& format)
{
    end = std::min(end, m_text.size());
    begin = std::min(begin, end);
    text = text.substr(0, std::min(text.size(), roomFor(text.size()) + (end - begin)));
    const auto first = static_cast<std::ptrdiff_t>(cut(begin));
    const auto last = static_cast<std::ptrdiff_t>(cut(end));
    m_runs.erase(m_runs.begin() + first, m_runs.begin() + last);
    if (!text.empty()) m_runs.insert(m_runs.begin() + first, Run{text.size(), format});
    m_text.replace(begin, end - begin, text);
    std::erase_if(m_pictures, [&](const TextPicture& p) { return p.index > begin && p.index < end; });
    for (TextPicture& picture : m_pictures)
        if (picture.index >= end) picture.index = picture.index - end + begin + text.size();
    join();
}

void TextContent::apply(std::size_t begin, std::size_t end, const PartialTextFormat& change)
{
    end = std::min(end, m_text.size());
    if (begin >= end) return;
    const std::size_t first = cut(begin), last = cut(end);
    for (std::size_t i = first; i < last; ++i) change.applyTo(m_runs[i].format);
    join();
}

const TextFormat* TextContent::formatAt(std::size_t index) const
{
    if (m_runs.empty()) return nullptr;
    for (const Run& run : m_runs) {
        if (index < run.length) return &run.format;
        index -= run.length;
    }
    return &m_runs.back().format;
}

PartialTextFormat TextContent::common(std::size_t begin, std::size_t end) const
{
    PartialTextFormat common;
    bool any = false;
    std::size_t at = 0;
    for (const Run& run : m_runs) {
        const bool overlaps = at < end && at + run.length > begin;
        at += run.length;
        if (!overlaps) continue;
        if (any)
            common.keepCommon(run.format);
        else
            common = PartialTextFormat::of(run.format);
        any = true;
    }
    return common;
}

} // namespace flash::stage
