#include "flash/video/FlvPlayer.h"

#include <algorithm>
#include <cmath>

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
    m_isReordered = std::ranges::any_of(
        m_file.video, [](const FlvFile::Video& video) { return video.codec == VideoCodec::H264; });
    if (m_isReordered)
        for (const FlvFile::Video& video : m_file.video) m_showTimes.push_back(video.showMs);
    std::ranges::sort(m_showTimes);
    std::stable_sort(m_file.scripts.begin(), m_file.scripts.end(), byTime);
}

std::size_t FlvPlayer::dueVideo(double timeMs) const { return firstAfter(m_file.video, timeMs); }

void FlvPlayer::advance(double ms) { m_timeMs = std::min(m_timeMs + ms, m_file.lastMs); }

void FlvPlayer::restartAt(std::size_t packet)
{
    m_decoded = packet;
    m_waiting.reset();
    m_hasAll = false;
    m_shownMs = -1;
    if (m_decoder) m_decoder->reset();
}

bool FlvPlayer::seek(double timeMs)
{
    if (timeMs > m_file.lastMs) return false;
    std::size_t key = dueVideo(std::max(timeMs, 0.0));
    while (key > 0 && !m_file.video[key - 1].key) --key;
    m_timeMs = key > 0 ? m_file.video[key - 1].showMs : std::max(timeMs, 0.0);
    restartAt(key > 0 ? key - 1 : 0);
    m_told = firstAfter(m_file.scripts, m_timeMs);
    return true;
}

bool FlvPlayer::step(int pictures)
{
    const auto due = static_cast<std::int64_t>(dueVideo(m_timeMs));
    const std::int64_t wanted = due - 1 + pictures;
    if (pictures == 0 || wanted < 0 || wanted >= std::ssize(m_file.video)) return false;
    const double timeMs = m_file.video[static_cast<std::size_t>(wanted)].timeMs;
    // Back there is only what a key frame leads to.
    if (pictures < 0) seek(timeMs);
    if (timeMs > m_timeMs) advance(timeMs - m_timeMs);
    return true;
}

std::optional<double> FlvPlayer::msToNext() const
{
    std::optional<double> next;
    const auto consider = [&](double timeMs) {
        if (!next || timeMs - m_timeMs < *next) next = timeMs - m_timeMs;
    };
    if (m_isReordered) {
        const auto shows = std::ranges::upper_bound(m_showTimes, m_timeMs);
        if (shows != m_showTimes.end()) consider(*shows);
    } else if (const std::size_t video = dueVideo(m_timeMs); video < m_file.video.size()) {
        consider(m_file.video[video].timeMs);
    }
    if (const std::size_t script = firstAfter(m_file.scripts, m_timeMs); script < m_file.scripts.size())
        consider(m_file.scripts[script].timeMs);
    if (!atEnd()) consider(m_file.lastMs);
    return next;
}

void FlvPlayer::openDecoder(const FlvFile::Video& video)
{
    if (m_decoder && video.codec == m_codec && video.config.data() == m_config.data()) return;
    m_codec = video.codec;
    m_config = video.config;
    m_decoder = VideoDecoder::open(m_codec, 0, 0, video.adjustment, m_config);
}

std::shared_ptr<const swf::Bitmap> FlvPlayer::picture(Deblocking deblocking)
{
    if (m_isReordered)
        decodeReordered();
    else
        decodeInOrder(deblocking);
    return m_picture;
}

/// The decoder gives its pictures out by the time they show; for one it may need packets of later ones.
void FlvPlayer::decodeReordered()
{
    const auto after = std::ranges::upper_bound(m_showTimes, m_timeMs);
    if (after == m_showTimes.begin()) return;
    const double wanted = *(after - 1);
    if (wanted == m_shownMs) return;
    // From the last key frame on that shows no later.
    for (std::size_t key = m_file.video.size(); key > m_decoded; --key) {
        const FlvFile::Video& video = m_file.video[key - 1];
        if (!video.key || video.showMs > wanted) continue;
        if (key - 1 > m_decoded) restartAt(key - 1);
        break;
    }
    while (true) {
        while (!m_waiting) {
            if (m_decoder) m_waiting = m_decoder->next();
            if (m_waiting || m_hasAll) break;
            if (m_decoded == m_file.video.size()) {
                m_hasAll = true;
                if (m_decoder) m_decoder->feedEnd();
                continue;
            }
            const FlvFile::Video& video = m_file.video[m_decoded++];
            openDecoder(video);
            if (m_decoder) m_decoder->feed(video.packet, std::llround(video.showMs));
        }
        if (!m_waiting || static_cast<double>(*m_waiting) > wanted) return;
        if (static_cast<double>(*m_waiting) == wanted) {
            if (auto picture = m_decoder->picture()) m_picture = std::move(picture);
            m_shownMs = wanted;
            m_waiting.reset();
            return;
        }
        m_waiting.reset();
    }
}

void FlvPlayer::decodeInOrder(Deblocking deblocking)
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
        openDecoder(video);
        if (!m_decoder) continue;
        m_decoder->setDeblocking(deblocking);
        if (m_decoded < due)
            m_decoder->skip(video.packet);
        else if (auto picture = m_decoder->decode(video.packet))
            m_picture = std::move(picture);
    }
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
