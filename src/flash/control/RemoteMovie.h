#pragma once

#include "flash/control/Channel.h"
#include "flash/control/MoviePort.h"
#include "flash/control/MovieProcess.h"
#include "flash/control/PictureFeed.h"
#include "flash/control/SoundRing.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <filesystem>

namespace flash
{
class AudioOutput;
}

namespace flash::control
{

/// A movie in a process of its own. Nothing here waits for it longer than patienceMs(), and nothing that
/// comes from it is believed without a look.
class RemoteMovie : public QObject, public MoviePort
{
public:
    static constexpr int kPatienceMs = 200; ///< how long a call waits for a busy movie, see patienceMs()
    static constexpr int kFrozenMs = 2000;  ///< without an answer for so long, it counts as frozen

    /// @param listener borrowed
    RemoteMovie(MovieListener& listener, std::unique_ptr<MovieProcess> process);
    ~RemoteMovie() override;

    /// How long a call waits. ZORVEX_MOVIE_PATIENCE_MS says otherwise, for tests on machines that are busy.
    static int patienceMs();

    Loading load(const Load& load, int patienceMs) override;
    void command(const ToMovie& message) override;
    void pass(const ToMovie& message) override;
    std::optional<std::string> variable(const std::string& name) override;
    std::vector<MenuEntry> menu(const OpenMenu& open) override;
    void advance(double ms) override { command(Advance{ms}); }
    [[nodiscard]] const State& state() const override;
    [[nodiscard]] bool isBusy() const override { return false; }
    [[nodiscard]] qint64 busyForMs() const override { return 0; }
    void setWaits(bool waits) override { m_waits = waits; }
    [[nodiscard]] bool isBehind() const override
    {
        return m_ended || m_syncs || m_doneSync != m_lastSync || (m_asked != 0 && !m_loaded);
    }
    void setView(int width, int height, double deviceScale) override;
    void paint(QPainter& painter, const QRegion& region, double deviceScale) override;
    bool put(const ShownPlace& place) override;
    void letShow(const std::optional<ShownPlace>& place) override { m_feed.letShow(place); }
    QRegion stopShowing() override { return m_feed.stopShowing(); }
    void releaseSound() override;
    [[nodiscard]] qint64 processId() const override { return m_process->processId(); }

private:
    void receiveFromLoop();
    void receive();
    void tellChange(MovieListener::Painting painting);
    void take(FromMovie message);
    void ended();
    void watch();
    void followSound();
    void noteDevice(const char* what);
    void send(const ToMovie& message, int attached = -1);
    void sync();
    void drawUnseen();
    /// Takes messages until `done`. @returns whether it came to pass in time
    template <class Done>
    bool waitFor(Done&& done, int limitMs);
    [[nodiscard]] bool hasBegun() const { return m_asked != 0 && m_begun == m_asked; }

    MovieListener& m_listener;
    std::unique_ptr<MovieProcess> m_process;
    std::filesystem::path m_storage; // of the movie's shared objects
    mutable State m_state;           // its frame as it was seen last
    PictureFeed m_feed;
    Settings m_settings; // as the movie was told them last
    std::shared_ptr<SoundRing> m_ring;
    std::unique_ptr<AudioOutput> m_audio;
    bool m_deviceOpen = false;
    std::uint32_t m_lastSync = 0, m_doneSync = 0;
    std::uint32_t m_asked = 0, m_begun = 0; // loads of layer 0, by their ids
    std::optional<Loaded> m_loaded;
    std::optional<Value> m_value;
    std::optional<Menu> m_menu;
    std::uint64_t m_seenPictures = 0;
    QElapsedTimer m_unanswered; // since the oldest Sync that was not answered
    QTimer m_watch, m_soundTimer;
    bool m_frozen = false, m_ended = false, m_asking = false, m_waitsForLoad = false, m_greeted = false,
         m_waits = true, m_syncs = false;
};

} // namespace flash::control
