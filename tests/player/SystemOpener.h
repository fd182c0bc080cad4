#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

namespace player
{

/// Takes the place of the system's programs for as long as it lives.
class SystemOpener : public QObject
{
    Q_OBJECT
public:
    SystemOpener()
    {
        for (const char* scheme : kSchemes) QDesktopServices::setUrlHandler(scheme, this, "open");
    }
    ~SystemOpener() override
    {
        for (const char* scheme : kSchemes) QDesktopServices::unsetUrlHandler(scheme);
    }
    QStringList opened;
public slots:
    void open(const QUrl& url) { opened += url.toString(); }

private:
    static constexpr const char* kSchemes[] = {"http", "https", "file"};
};

} // namespace player
