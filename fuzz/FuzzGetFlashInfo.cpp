#include "base/Files.h"
#include "media/MediaFiles.h"

#include <QDir>
#include <QTemporaryDir>

// Identification of any file at all, by way of the disk as in the program: header, header copy, projector.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    core::Application application; // no LogFile: nothing is logged
    application.CachePath = folder.filePath("cache/");
    QDir(folder.path()).mkdir("cache");
    QString path = folder.filePath("input");
    if (!base::replaceFile(core::filePath(path), base::Bytes(data, size))) std::abort();

    media::NoMediaHost host;
    media::MediaFiles media(application, host);
    if (media.GetFlashInfo(path).isEmpty()) {
        media::MediaInfo info = media.mediaInfo();
        if (info.Compressed) media.DecompressFlash(info, media::Extent::Full);
    }
    QDir(application.CachePath).removeRecursively();
    return 0;
}
