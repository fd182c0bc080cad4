#include "player/PageAddresses.h"

#include "core/Application.h"
#include "core/Files.h"
#include "core/Version.h"
#include "media/CacheName.h"
#include "media/UrlEncode.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace player
{

QString welcomePage(const core::Application& application, const QString& error, const QString& noAnimation)
{
    return application.GadgetsPath + "welcome.swf?version=" + core::GetAppVersion() +
           "&error=" + media::URLEncode(error) + "&noanim=" + noAnimation;
}

QString moviesForPage(const core::Application& application, const QStringList& recent)
{
    constexpr int kMax = 4;
    QStringList movies;
    for (const QString& path : recent)
        if (movies.size() < kMax && core::fileExists(path)) movies += path;
    const auto own = static_cast<int>(movies.size());
    const QDir samples(application.AppPath + "media/samples");
    for (const QFileInfo& sample : samples.entryInfoList({"*.swf"}, QDir::Files, QDir::Name))
        if (movies.size() < kMax && !movies.contains(sample.filePath())) movies += sample.filePath();
    QString query = "&recent=" + QString::number(own) + languageForPage();
    if (*core::kUpdateAddress == '\0') query += "&noupdate=1";
    const auto encoded = [](const QString& text) {
        return QString::fromLatin1(QUrl::toPercentEncoding(text));
    };
    for (int i = 0; i < movies.size(); ++i) {
        query += QString("&movie%1=").arg(i + 1) + encoded(movies[i]);
        QString picture = application.CachePath + media::CacheName(movies[i], ".jpg");
        // Nobody has to have played a sample for it to be shown.
        if (!core::fileExists(picture) && QFileInfo(movies[i]).path() == samples.path())
            picture = application.GadgetsPath + "samples/" + QFileInfo(movies[i]).completeBaseName() + ".png";
        if (core::fileExists(picture)) query += QString("&shot%1=").arg(i + 1) + encoded(picture);
    }
    return query;
}

QString languageForPage()
{
    const QString code = core::languageCode();
    return code == core::Language::kRussian ? QString() : "&lang=" + code;
}

QString failureForPage(const QString& file, const QString& advice)
{
    const auto told = [](const char* name, const QString& text) {
        return text.isEmpty() ? QString() : name + QString::fromLatin1(QUrl::toPercentEncoding(text));
    };
    return (*core::kUpdateAddress == '\0' ? QString("&noupdate=1") : QString()) + told("&file=", file) +
           told("&advice=", advice) + languageForPage();
}

QString aboutPage(const core::Application& application, const QString& greetings, const QString& thanks,
                  const QString& noAnimation)
{
    return application.GadgetsPath + "about.swf?about=" + core::GetAppVersion() +
           media::URLEncode(QString("<BR><BR>") + core::kLegalCopyright + "<BR><BR>" + greetings +
                            "<BR><BR> ") +
           media::URLEncode(thanks + "<BR><BR>" + core::kLegalTrademarks) + "&noanim=" + noAnimation +
           languageForPage();
}

QString soundPage(const QString& gadgetsPath, int volume, int pan)
{
    return gadgetsPath + QString("sound.swf?volume=%1&pan=%2").arg(volume).arg(pan);
}

QString filePartOf(const QString& address)
{
    if (core::fileExists(address)) return address;
    const qsizetype mark = address.lastIndexOf('?');
    const QString file = mark < 0 ? address : address.left(mark);
    return file.startsWith("file:", Qt::CaseInsensitive) ? core::localFile(QUrl(file)) : file;
}

bool liesWithin(const QString& file, const QString& folder)
{
    const QString realFile = QFileInfo(file).canonicalFilePath();
    const QString realFolder = QDir(folder).canonicalPath();
    return !folder.isEmpty() && !realFile.isEmpty() && !realFolder.isEmpty() &&
           realFile.startsWith(realFolder + '/');
}

} // namespace player
