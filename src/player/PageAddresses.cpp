#include "player/PageAddresses.h"

#include "core/Application.h"
#include "core/Version.h"
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

QString aboutPage(const core::Application& application, const QString& greetings, const QString& thanks,
                  const QString& noAnimation)
{
    return application.GadgetsPath + "about.swf?about=" + core::GetAppVersion() +
           media::URLEncode(QString("<BR><BR>") + core::kLegalCopyright + "<BR><BR>" + greetings +
                            "<BR><BR> ") +
           media::URLEncode(thanks + "<BR><BR>" + core::kLegalTrademarks) + "&noanim=" + noAnimation;
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
    return file.startsWith("file:", Qt::CaseInsensitive) ? QUrl(file).toLocalFile() : file;
}

bool liesWithin(const QString& file, const QString& folder)
{
    const QString realFile = QFileInfo(file).canonicalFilePath();
    const QString realFolder = QDir(folder).canonicalPath();
    return !folder.isEmpty() && !realFile.isEmpty() && !realFolder.isEmpty() &&
           realFile.startsWith(realFolder + '/');
}

} // namespace player
