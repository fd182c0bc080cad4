#include "browser/FolderScan.h"

#include "base/Files.h"
#include "core/Application.h"
#include "core/Files.h"
#include "media/CacheName.h"

#include <QCollator>
#include <QDir>
#include <QLocale>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace browser
{
namespace
{

namespace fs = std::filesystem;

bool isSeparator(QChar letter) { return letter == '/' || letter == '\\'; }

qsizetype lastSeparator(QStringView text)
{
    for (qsizetype at = text.size(); at-- > 0;) {
        if (isSeparator(text[at])) return at;
    }
    return -1;
}

std::optional<ItemKind> mediaKind(const QString& name)
{
    const QString ending = name.right(4).toUpper();
    if (ending == ".SWF") return ItemKind::Movie;
    if (ending == ".EXE") return ItemKind::Projector;
    return {};
}

qint64 rankOf(const fs::directory_entry& entry, Order order)
{
    std::error_code unknown;
    switch (order) {
    case Order::Name: break;
    case Order::Date: {
        const auto time = entry.last_write_time(unknown);
        return unknown ? 0 : time.time_since_epoch() / std::chrono::milliseconds(1);
    }
    case Order::Size:
        if (entry.is_directory(unknown)) break;
        const auto bytes = entry.file_size(unknown);
        return unknown ? 0 : static_cast<qint64>(bytes);
    }
    return 0;
}

} // namespace

Order orderNamed(const QString& word)
{
    for (const Order order : {Order::Date, Order::Size})
        if (word == wordOf(order)) return order;
    return Order::Name;
}

QString wordOf(Order order)
{
    switch (order) {
    case Order::Name: return "name";
    case Order::Date: return "date";
    case Order::Size: return "size";
    }
    return {};
}

std::vector<FolderEntry> listFolder(const QString& folder, Order order)
{
    std::vector<FolderEntry> entries;
    std::error_code error;
    fs::directory_iterator at(core::filePath(folder), error);
    if (error) return entries;
    base::sweepTemporaryFiles(core::filePath(folder)); // of movies that a killed run was to write there
    if (!QDir(folder).isRoot()) entries.push_back({"..", true});
    for (; !error && at != fs::directory_iterator(); at.increment(error)) {
        std::error_code unknown; // a link that leads nowhere, say: a file, then
        const QString name = core::fileName(QByteArray::fromStdString(at->path().filename().native()));
        if (!name.startsWith('.')) entries.push_back({name, at->is_directory(unknown), rankOf(*at, order)});
    }
    QCollator collator{QLocale(QLocale::Russian)}; // the bare one knows of no language, nor of numbers
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    const auto byName = [&collator](const FolderEntry& one, const FolderEntry& other) {
        if (one.rank != other.rank) return one.rank > other.rank;
        const int difference = collator.compare(one.name, other.name);
        return difference != 0 ? difference < 0 : one.name < other.name;
    };
    const bool hasWayUp = !entries.empty() && entries.front().name == "..";
    std::sort(entries.begin() + (hasWayUp ? 1 : 0), entries.end(), byName);
    return entries;
}

FolderContent contentOf(const QString& folder, const QString& cachePath)
{
    constexpr int kMaxEntries = 2000;
    constexpr qsizetype kMaxThumbnails = 4;
    FolderContent content;
    std::error_code error;
    fs::directory_iterator at(core::filePath(folder), error);
    for (int seen = 0; !error && at != fs::directory_iterator() && seen < kMaxEntries; at.increment(error)) {
        ++seen;
        const QString name = core::fileName(QByteArray::fromStdString(at->path().filename().native()));
        std::error_code unknown;
        if (name.startsWith('.') || !mediaKind(name) || at->is_directory(unknown)) continue;
        ++content.mediaCount;
        const QString thumbnail = cachePath + media::CacheName(folder + name, ".jpg");
        if (content.thumbnails.size() < kMaxThumbnails && core::fileExists(thumbnail))
            content.thumbnails += thumbnail;
    }
    return content;
}

QString normalisedFolder(const QString& folder)
{
    QString path = folder;
    if (path.isEmpty()) return path;
    if (!isSeparator(path.back())) path += QDir::separator();
    const QStringView ending = QStringView(path).right(4);
    if (ending.size() == 4 && isSeparator(ending[0]) && ending.mid(1, 2) == u".." && isSeparator(ending[3]))
        path.truncate(lastSeparator(QStringView(path).chopped(4)) + 1);
    return path;
}

std::vector<BrowseItem> itemsOf(const std::vector<FolderEntry>& entries, const QString& folder,
                                const QString& cachePath)
{
    std::vector<BrowseItem> items;
    for (const FolderEntry& entry : entries) {
        if (entry.isFolder && entry.name != ".") items.push_back({entry.name, ItemKind::Folder, {}});
    }
    for (const FolderEntry& entry : entries) {
        if (const auto kind = mediaKind(entry.name))
            items.push_back({entry.name, *kind, cachePath + media::CacheName(folder + entry.name, ".jpg")});
    }
    return items;
}

} // namespace browser
