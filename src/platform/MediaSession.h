#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QVariantMap>

namespace platform
{

/// What plays, as the desktop shows it.
struct MediaState {
    enum class Playing { Stopped, Paused, Runs } playing = Playing::Stopped;
    bool hasMovie = false;
    QString path, title;
    QString picture; ///< path of a small picture of it; may be empty
    qint64 positionUs = 0, lengthUs = 0;
    double volume = 1, rate = 1; ///< 0 to 1; 1 is the movie's own speed
    bool loops = false, isFullScreen = false;
};

/// What the desktop's controls for players, and the keys of multimedia keyboards, ask for.
class MediaSessionHost
{
public:
    virtual ~MediaSessionHost() = default;
    [[nodiscard]] virtual MediaState mediaState() const = 0;
    virtual void sessionPlay() = 0;
    virtual void sessionPause() = 0;
    virtual void sessionPlayPause() = 0;
    virtual void sessionStop() = 0;
    /// @param step -1 or 1
    virtual void sessionWalk(int step) = 0;
    virtual void sessionSeek(qint64 positionUs) = 0;
    virtual void sessionSetVolume(double volume) = 0;
    virtual void sessionSetLoop(bool loops) = 0;
    virtual void sessionSetRate(double rate) = 0;
    virtual void sessionSetFullScreen(bool on) = 0;
    virtual void sessionRaise() = 0;
    virtual void sessionQuit() = 0;
    /// @param address of a file of this computer, "file://..."
    virtual void sessionOpen(const QString& address) = 0;
};

/// Shows the player to the desktop, where there is one that asks: on Linux by the interfaces
/// org.mpris.MediaPlayer2 on the session's bus. Without a bus it does nothing.
class MediaSession : public QObject
{
    Q_OBJECT
public:
    /// Slowest and fastest rate that the desktop may ask for.
    static constexpr double kSlowest = 0.25, kFastest = 4;

    /// @param host outlives the session
    explicit MediaSession(MediaSessionHost& host);
    ~MediaSession() override;

    /// Takes its name on the bus. @param product the program's name and that of its desktop entry
    void start(const QString& product, const QString& desktopEntry);
    /// Tells what has changed since the last call; to be called a few times a second.
    void refresh();

private:
    void tell(const char* interface, const QVariantMap& before, const QVariantMap& now);
    void noticeSeek(const MediaState& now);

    MediaSessionHost& m_host;
    QObject* m_exported = nullptr; ///< null: nobody listens
    QString m_service;
    QVariantMap m_player, m_root; ///< what was told last
    QElapsedTimer m_sinceTold;
    MediaState m_told;
};

/// Whether the user's session has a bus. Asking the library for one that nobody offers would start it.
bool isBusOffered();

} // namespace platform
