#include "flash/video/FlvPlayer.h"

#include <algorithm>

namespace flash::video
{
namespace
{

constexpr double kSecond = 1000;

/// Index of the first entry after a time, in entries that are in order of their times.
template <typename Entry>
std::size_t firstAfter(const std::vector<Entry>& entries, double timeMs)
{
    const auto found = std::upper_bound(entries.begin(), entries.end(), timeMs,
                                        [](double time, const Entry& entry) { return time < entry.timeMs; });
    return static_cast<std::size_t>(found - entries.begin());
}

} // namespace

base::Result<std::unique_ptr<FlvPlayer>> FlvPlayer::open(FileBytes bytes)
{
    auto file = FlvFile::parse(*bytes);
    if (!file) return tl::unexpected(file.error());
    return std::unique_ptr<FlvPlayer>(new FlvPlayer(std::move(bytes), std::move(*file)));
}

FlvPlayer::FlvPlayer(FileBytes bytes, FlvFile file) : m_bytes(std::move(bytes)), m_file(std::move(file))
{
    // Tags out of order are damage; sorting them keeps the searches right.
    const auto byTime = [](const auto& a, const auto& b) { return a.timeMs < b.timeMs; };
    std::stable_sort(m_file.video.begin(), m_file.video.end(), byTime);
    std::stable_sort(m_file.scripts.begin(), m_file.scripts.end(), byTime);
}

std::size_t FlvPlayer::dueVideo(double timeMs) const { return firstAfter(m_file.video, timeMs); }

void FlvPlayer::advance(double ms) { m_timeMs = std::min(m_timeMs + ms, m_file.lastMs); }

bool FlvPlayer::seek(double timeMs)
{
    if (timeMs > m_file.lastMs) return false;
    std::size_t key = dueVideo(std::max(timeMs, 0.0));
    while (key > 0 && !m_file.video[key - 1].key) --key;
    m_timeMs = key > 0 ? m_file.video[key - 1].timeMs : std::max(timeMs, 0.0);
    m_decoded = key > 0 ? key - 1 : 0;
    if (m_decoder) m_decoder->reset();
    m_told = firstAfter(m_file.scripts, m_timeMs);
    return true;
}

std::optional<double> FlvPlayer::msToNext() const
{
    std::optional<double> next;
    const auto consider = [&](double timeMs) {
        if (!next || timeMs - m_timeMs < *next) next = timeMs - m_timeMs;
    };
    if (const std::size_t video = dueVideo(m_timeMs); video < m_file.video.size())
        consider(m_file.video[video].timeMs);
    if (const std::size_t script = firstAfter(m_file.scripts, m_timeMs); script < m_file.scripts.size())
        consider(m_file.scripts[script].timeMs);
    if (!atEnd()) consider(m_file.lastMs);
    return next;
}

std::shared_ptr<const swf::Bitmap> FlvPlayer::picture()
{
    const std::size_t due = dueVideo(m_timeMs);
    // From the last key frame on; what lies before it shows no more.
    for (std::size_t key = due; key > m_decoded; --key) {
        if (!m_file.video[key - 1].key) continue;
        m_decoded = key - 1;
        break;
    }
    while (m_decoded < due) {
        const FlvFile::Video& video = m_file.video[m_decoded++];
        if (!m_decoder || video.codec != m_codec) {
            m_codec = video.codec;
            m_decoder = VideoDecoder::open(m_codec, 0, 0, video.adjustment);
        }
        if (!m_decoder) continue;
        if (m_decoded < due)
            m_decoder->skip(video.packet);
        else if (auto picture = m_decoder->decode(video.packet))
            m_picture = std::move(picture);
    }
    return m_picture;
}

std::vector<base::Bytes> FlvPlayer::takeMessages()
{
    std::vector<base::Bytes> due;
    for (; m_told < m_file.scripts.size() && m_file.scripts[m_told].timeMs <= m_timeMs; ++m_told)
        due.push_back(m_file.scripts[m_told].message);
    return due;
}

int FlvPlayer::picturesInLastSecond() const
{
    return static_cast<int>(dueVideo(m_timeMs) - dueVideo(m_timeMs - kSecond));
}

} // namespace flash::video
