#include "core/ErrorReport.h"

#include "core/ErrorScreen.h"
#include "core/RunTimeErrors.h"

namespace core
{

void LogError(Application& application, const base::Failure& error, const QString& place,
              const QString& detail)
{
    application.LogEvent({});
    application.LogEvent("<B><FONT color=\"#000000\">" + QString::number(error.number()));
    application.LogEvent(place);
    application.LogEvent(QString::fromStdString(error.source()));
    application.LogEvent(QString::fromStdString(error.description()));
    if (!detail.isEmpty())
        application.LogEvent("</B><I><FONT color=\"#333333\">" + HtmlEscape(detail) + "</FONT></I><B>");
    application.LogEvent("</FONT></B>");
}

void ReportError(Application& application, ErrorHost& host, const base::Failure& error, const QString& place,
                 const QString& detail)
{
    const bool touchTimer = error.number() != kFlashNotCreated;
    const bool timerWasEnabled = host.updateTimerEnabled();
    if (touchTimer) host.setUpdateTimerEnabled(false);

    LogError(application, error, place, detail);

    frmError screen(host.errorParent(), {error.number(), place, QString::fromStdString(error.source()),
                                         QString::fromStdString(error.description()), detail});
    QObject::connect(&screen, &frmError::exitRequested, &screen,
                     [&host] { host.Quit("Termination On Error", true); });
    host.ShowDialog(screen);

    if (touchTimer) host.setUpdateTimerEnabled(timerWasEnabled);
}

} // namespace core
