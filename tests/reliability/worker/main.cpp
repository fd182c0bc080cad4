// Does one operation that writes the user's files, for a test that kills it on the way.
//   reliability_worker OPERATION FOLDER
// Stops itself (SIGSTOP) right before the operation begins when it is traced; exit status 0: it was done.

#include "base/Files.h"
#include "browser/BrowserHost.h"
#include "browser/BrowserState.h"
#include "browser/Thumbnails.h"
#include "flash/net/FileSharedObjects.h"
#include "media/MediaFiles.h"
#include "player/SaveAs.h"
#include "settings/RecentList.h"
#include "settings/SettingsFile.h"

#include <QApplication>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <map>
#include <unistd.h>

namespace
{

class Worker
{
public:
    explicit Worker(QString folder) : m_folder(std::move(folder)), m_media(m_application, m_host)
    {
        m_application.AppPath = m_application.SettingsPath = m_folder + '/';
        m_application.CachePath = path("cache/");
    }

    /// @returns whether the operation was done; its preparations are made before it is announced
    bool run(const std::string& operation)
    {
        const std::map<std::string, std::function<bool()>> operations = {
            {"settings", [this] { return saveSettings(); }},
            {"recent", [this] { return addRecent(); }},
            {"compress",
             [this] { return !loaded("movie.swf") || !m_media.CompressFlash(announced(), 9).isEmpty(); }},
            {"decompress", [this] { return convert(media::Extent::Full); }},
            {"header", [this] { return convert(media::Extent::HeaderOnly); }},
            {"saveAs", [this] { return saveAs(); }},
            {"extract", [this] { return extract(media::ExtractTo::Cache); }},
            {"extractOver", [this] { return extract(media::ExtractTo::ProjectorItself); }},
            {"thumbnail", [this] { return makeThumbnail(); }},
            {"sharedObject", [this] { return keepObject(); }},
        };
        return operations.at(operation)();
    }

private:
    [[nodiscard]] QString path(const QString& name) const { return m_folder + '/' + name; }
    static void announce() { std::raise(SIGSTOP); }
    media::MediaInfo& announced()
    {
        announce();
        return m_media.mediaInfo();
    }
    bool loaded(const QString& name)
    {
        QString file = path(name);
        return m_media.GetFlashInfo(file).isEmpty();
    }

    bool saveSettings()
    {
        settings::Options options;
        QStringList recent;
        settings::SettingsFile file(m_application);
        if (!file.load(options, recent)) return false;
        options.volume = 77;
        options.skin = "lagoon";
        announce();
        return file.save(options, recent);
    }
    bool addRecent()
    {
        settings::Options options;
        QStringList paths;
        settings::SettingsFile file(m_application);
        if (!file.load(options, paths)) return false;
        const QString gadgets = path("gadgets/");
        settings::RecentList recent(gadgets);
        for (const QString& listed : paths) recent.AddRecent(listed);
        announce();
        recent.AddRecent(path("movie.swf"));
        return file.save(options, recent.paths());
    }
    bool convert(media::Extent extent)
    {
        // Reading a compressed movie makes its header copy; the operation is all of that.
        if (extent == media::Extent::HeaderOnly) announce();
        if (!loaded("packed.swf")) return false;
        if (extent == media::Extent::HeaderOnly) return true;
        return !m_media.DecompressFlash(announced(), extent).isEmpty();
    }
    bool saveAs()
    {
        if (!loaded("packed.swf")) return false;
        return player::saveMovie(announced(), path("saved.swf")).outcome == player::SaveOutcome::Saved;
    }
    bool extract(media::ExtractTo target)
    {
        announce();
        return !m_media.ExtractEXE(path("projector.exe"), target).isEmpty();
    }
    bool makeThumbnail()
    {
        browser::NoBrowserHost host;
        browser::BrowserState state;
        browser::Thumbnails thumbnails(m_application, host, state);
        thumbnails.seed = 1;
        announce();
        thumbnails.MakeThumbnail(path("movie.swf"), path("cache/picture.jpg"));
        return core::fileExists(path("cache/picture.jpg"));
    }
    bool keepObject()
    {
        flash::net::FileSharedObjects store(path("stored").toStdString());
        const std::vector<std::uint8_t> content(20'000, 'n');
        announce();
        return store.write("score", content) && store.write("new", content);
    }

    QString m_folder;
    core::Application m_application; // no LogFile: nothing is logged
    media::NoMediaHost m_host;
    media::MediaFiles m_media;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("reliability_worker OPERATION FOLDER\n", stderr);
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool needsWindows = std::strcmp(argv[1], "thumbnail") == 0;
    const std::unique_ptr<QCoreApplication> application(needsWindows ? new QApplication(argc, argv)
                                                                     : new QCoreApplication(argc, argv));
    return Worker(QString::fromLocal8Bit(argv[2])).run(argv[1]) ? 0 : 1;
}
