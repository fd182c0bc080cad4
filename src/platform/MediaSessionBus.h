#pragma once

#include "platform/MediaSession.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QStringList>

// The two interfaces of org.mpris.MediaPlayer2, each property and method under the name that it has there.

namespace platform::mpris
{

inline constexpr const char* kPath = "/org/mpris/MediaPlayer2";
inline constexpr const char* kRoot = "org.mpris.MediaPlayer2";
inline constexpr const char* kPlayer = "org.mpris.MediaPlayer2.Player";

class RootAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ yes)
    Q_PROPERTY(bool CanRaise READ yes)
    Q_PROPERTY(bool CanSetFullscreen READ yes)
    Q_PROPERTY(bool Fullscreen READ Fullscreen WRITE setFullscreen)
    Q_PROPERTY(bool HasTrackList READ no)
    Q_PROPERTY(QString Identity READ Identity)
    Q_PROPERTY(QString DesktopEntry READ DesktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ SupportedUriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ SupportedMimeTypes)

public:
    RootAdaptor(QObject* exported, MediaSessionHost& host, QString identity, QString desktopEntry);
    [[nodiscard]] static bool yes() { return true; }
    [[nodiscard]] static bool no() { return false; }
    [[nodiscard]] bool Fullscreen() const { return m_host.mediaState().isFullScreen; }
    void setFullscreen(bool on) { m_host.sessionSetFullScreen(on); }
    [[nodiscard]] QString Identity() const { return m_identity; }
    [[nodiscard]] QString DesktopEntry() const { return m_desktopEntry; }
    [[nodiscard]] static QStringList SupportedUriSchemes() { return {"file"}; }
    [[nodiscard]] static QStringList SupportedMimeTypes();

public slots: // NOLINT: the names are the interface's
    void Raise() { m_host.sessionRaise(); }
    void Quit() { m_host.sessionQuit(); }

private:
    MediaSessionHost& m_host;
    const QString m_identity, m_desktopEntry;
};

class PlayerAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ PlaybackStatus)
    Q_PROPERTY(QString LoopStatus READ LoopStatus WRITE setLoopStatus)
    Q_PROPERTY(double Rate READ Rate WRITE setRate)
    Q_PROPERTY(double MinimumRate READ MinimumRate)
    Q_PROPERTY(double MaximumRate READ MaximumRate)
    Q_PROPERTY(QVariantMap Metadata READ Metadata)
    Q_PROPERTY(double Volume READ Volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ Position)
    Q_PROPERTY(bool CanGoNext READ hasMovie)
    Q_PROPERTY(bool CanGoPrevious READ hasMovie)
    Q_PROPERTY(bool CanPlay READ hasMovie)
    Q_PROPERTY(bool CanPause READ hasMovie)
    Q_PROPERTY(bool CanSeek READ CanSeek)
    Q_PROPERTY(bool CanControl READ CanControl)

public:
    PlayerAdaptor(QObject* exported, MediaSessionHost& host) : QDBusAbstractAdaptor(exported), m_host(host) {}
    [[nodiscard]] QString PlaybackStatus() const;
    [[nodiscard]] QString LoopStatus() const { return m_host.mediaState().loops ? "Track" : "None"; }
    void setLoopStatus(const QString& status) { m_host.sessionSetLoop(status != "None"); }
    [[nodiscard]] double Rate() const { return m_host.mediaState().rate; }
    void setRate(double rate);
    [[nodiscard]] static double MinimumRate() { return MediaSession::kSlowest; }
    [[nodiscard]] static double MaximumRate() { return MediaSession::kFastest; }
    [[nodiscard]] QVariantMap Metadata() const;
    [[nodiscard]] double Volume() const { return m_host.mediaState().volume; }
    void setVolume(double volume) { m_host.sessionSetVolume(volume); }
    [[nodiscard]] qlonglong Position() const { return m_host.mediaState().positionUs; }
    [[nodiscard]] bool hasMovie() const { return m_host.mediaState().hasMovie; }
    [[nodiscard]] bool CanSeek() const { return m_host.mediaState().lengthUs > 0; }
    [[nodiscard]] static bool CanControl() { return true; }

public slots: // NOLINT: the names are the interface's
    void Play() { m_host.sessionPlay(); }
    void Pause() { m_host.sessionPause(); }
    void PlayPause() { m_host.sessionPlayPause(); }
    void Stop() { m_host.sessionStop(); }
    void Next() { m_host.sessionWalk(1); }
    void Previous() { m_host.sessionWalk(-1); }
    void Seek(qlonglong Offset);
    void SetPosition(const QDBusObjectPath& TrackId, qlonglong Position);
    void OpenUri(const QString& Uri);

signals:
    void Seeked(qlonglong Position);

private:
    MediaSessionHost& m_host;
};

/// Of one movie; another has another.
QDBusObjectPath trackOf(const MediaState& state);

} // namespace platform::mpris
