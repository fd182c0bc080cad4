#include "PlayMovie.h"
#include "settings/SettingsFile.h"

#include <QDir>
#include <QFile>

// settings.xml from bytes: read, changed, saved. What was saved can be read, and says what was saved.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::startQt();
    static const QTemporaryDir folder("/dev/shm/fuzz-XXXXXX");
    const QString path = folder.filePath("settings.xml");
    core::Application application; // no LogFile: nothing is logged
    application.AppPath = application.SettingsPath = folder.path() + '/';
    {
        QFile file(path);
        if (!file.open(QFile::WriteOnly)) std::abort();
        file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    }
    settings::Options options;
    QStringList recent;
    settings::SettingsFile file(application);
    const bool isUsable = file.load(options, recent);
    options.volume = 42;
    if (!file.save(options, {path})) {
        if (isUsable) std::abort();
    } else {
        settings::Options read;
        settings::SettingsFile saved(application);
        if (!saved.load(read, recent)) std::abort();
    }
    for (const QString& name : QDir(folder.path()).entryList(QDir::Files))
        QFile::remove(folder.filePath(name));
    return 0;
}
