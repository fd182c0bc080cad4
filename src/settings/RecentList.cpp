#include "settings/RecentList.h"

#include <QFontMetrics>

#include <algorithm>

namespace settings
{
namespace
{

constexpr const char* kEllipsis = "...";

/// @returns the longest text made of a beginning of `head` and all of `tail` that fits; all of `tail` stays
QString longestFit(const QString& head, const QString& tail, int widthPixels, const QFontMetrics& metrics)
{
    qsizetype fits = 0;
    qsizetype tooLong = head.size() + 1;
    while (tooLong - fits > 1) {
        const qsizetype middle = (fits + tooLong) / 2;
        (metrics.horizontalAdvance(head.left(middle) + tail) <= widthPixels ? fits : tooLong) = middle;
    }
    // Half a surrogate pair is no character.
    if (fits > 0 && head[fits - 1].isHighSurrogate()) --fits;
    return head.left(fits) + tail;
}

} // namespace

void RecentList::AddRecent(const QString& path)
{
    if (!m_gadgetsPath.isEmpty() && path.contains(m_gadgetsPath, Qt::CaseInsensitive)) return;
    if (const int known = FindRecent(path); known >= 0) m_paths.removeAt(known);
    m_paths.prepend(path);
    if (m_paths.size() > kCapacity) m_paths.removeLast();
}

int RecentList::FindRecent(const QString& path) const
{
    const auto found = std::find_if(m_paths.begin(), m_paths.end(), [&path](const QString& known) {
        return known.compare(path, Qt::CaseInsensitive) == 0;
    });
    return found == m_paths.end() ? -1 : static_cast<int>(found - m_paths.begin());
}

QString CompactPath(const QString& path, int widthPixels, const QFontMetrics& metrics)
{
    if (metrics.horizontalAdvance(path) <= widthPixels) return path;
    const qsizetype nameAt = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    const QString folder = nameAt > 0 ? path.left(nameAt) : QString();
    const QString name = nameAt >= 0 ? path.mid(nameAt) : path; // its separator included
    const QString shortest = (nameAt >= 0 ? kEllipsis : "") + name;
    if (metrics.horizontalAdvance(shortest) <= widthPixels)
        return longestFit(folder, shortest, widthPixels, metrics);
    return longestFit(shortest, kEllipsis, widthPixels, metrics);
}

} // namespace settings
