#include "flash/control/RemoteMovie.h"

#include "flash/AudioOutput.h"
#include "flash/Engine.h"
#include "flash/control/FarEnd.h"
#include "flash/control/PicturePainting.h"
#include "flash/stage/ContextMenu.h"

#include <QPointer>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace flash::control
{

namespace
{

constexpr int kWatchMs = 500, kSoundMs = 100, kPictureMs = 40, kUnseenMs = 200;
// Between input that a busy movie has not taken yet, moves of the mouse are left out.
constexpr std::size_t kMuchUnsentBytes = 1U << 14U, kTooMuchUnsentBytes = 32U << 20U;
// So many messages of a movie are handled before the window gets its turn again.
constexpr int kMessagesAtOnce = 500;

class RingSource : public SoundSource
{
public:
    explicit RingSource(std::shared_ptr<SoundRing> ring, const State& state)
        : m_ring(std::move(ring)), m_state(state)
    {
    }
    void mix(std::span<sound::StereoFrame> frames) override { m_ring->read(frames); }
    [[nodiscard]] bool isSilent() override { return m_state.silent != 0; }

private:
    std::shared_ptr<SoundRing> m_ring;
    const State& m_state; // of the movie that owns the output
};

} // namespace

RemoteMovie::RemoteMovie(MovieListener& listener, std::unique_ptr<MovieProcess> process)
    : m_listener(listener), m_process(std::move(process)), m_feed([this] { receiveFromLoop(); })
{
    m_process->listen([this] { receiveFromLoop(); });
    m_watch.setTimerType(Qt::CoarseTimer);
    connect(&m_watch, &QTimer::timeout, this, [this] { watch(); });
    connect(&m_soundTimer, &QTimer::timeout, this, [this] { followSound(); });
    if (auto ring = SoundRing::create()) {
        m_ring = std::make_shared<SoundRing>(std::move(*ring));
        m_audio = std::make_unique<AudioOutput>(std::make_unique<RingSource>(m_ring, m_state));
        connect(m_audio.get(), &AudioOutput::lost, this,
                [this] { noteDevice("is lost; the movie plays on"); });
        connect(m_audio.get(), &AudioOutput::foundAgain, this, [this] { noteDevice("is back"); });
        send(SoundDevice{0}, m_ring->descriptor());
    }
    if (const int pictures = m_feed.takeFarEnd(); pictures >= 0) {
        send(PictureSocket{}, pictures);
        close(pictures);
    }
}

RemoteMovie::~RemoteMovie()
{
    if (m_audio) m_audio->release();
    m_process->setEndsGently(m_loaded && !m_frozen && !m_ended && !m_storage.empty());
    m_process.reset();
    // Of a movie that kept nothing, nothing stays.
    if (!m_storage.empty()) rmdir(m_storage.c_str());
}

void RemoteMovie::send(const ToMovie& message, int attached)
{
    if (m_ended) return;
    if (const auto* settings = std::get_if<Settings>(&message)) m_settings = *settings;
    if (!m_process->channel().send(message, attached) ||
        m_process->channel().waitingBytes() > kTooMuchUnsentBytes)
        ended();
}

template <class DoneNow>
bool RemoteMovie::waitFor(DoneNow&& done, int limitMs)
{
    QElapsedTimer waited;
    waited.start();
    while (!m_ended && !done()) {
        const auto left = limitMs - static_cast<int>(waited.elapsed());
        if (left <= 0) break;
        pollfd sockets[] = {{m_process->channel().descriptor(), POLLIN, 0}, {m_feed.descriptor(), POLLIN, 0}};
        if (m_process->channel().waitingBytes() > 0) sockets[0].events |= POLLOUT;
        if (poll(sockets, std::size(sockets), left) <= 0) continue;
        if ((sockets[0].revents & POLLOUT) != 0) m_process->channel().flush();
        receive();
    }
    tellChange(MovieListener::Painting::Later);
    return !m_ended && done();
}

int RemoteMovie::patienceMs()
{
    const int given = qEnvironmentVariableIntValue("ZORVEX_MOVIE_PATIENCE_MS");
    return given > 0 ? given : kPatienceMs;
}

MoviePort::Loading RemoteMovie::load(const Load& load, int patienceMs)
{
    // Opened here: the host may name any file, the movie's process may open few.
    const int file = open(Engine::pathOf(load.address).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    struct stat found = {};
    if (file < 0 || fstat(file, &found) != 0 || !S_ISREG(found.st_mode)) {
        const std::string reason = file < 0 ? std::strerror(errno) : "not a file";
        if (file >= 0) close(file);
        return {Loading::State::Failed, load.address + ": " + reason};
    }
    // Made here, because the process may only write into what is there when it is confined.
    if (!load.storageFolder.empty() && m_storage.empty()) {
        m_storage = Engine::storageOf(load.storageFolder, Engine::pathOf(load.address));
        std::error_code unwritable;
        std::filesystem::create_directories(m_storage, unwritable);
    }
    QElapsedTimer taken;
    taken.start();
    // One that was stopped while it waited is not one to load a movie into. One that is just starting finds
    // the movie when it has come up.
    if (m_asked == 0 && m_waits && m_process->hasWaited()) {
        sync();
        if (!waitFor([this] { return m_greeted && m_doneSync == m_lastSync; }, patienceMs / 2)) {
            close(file);
            return {Loading::State::NoProcess, "the movie's process does not answer"};
        }
    }
    m_process->letOpen(reachableFiles(load));
    m_loaded.reset();
    if (load.layer == 0) m_asked = load.id;
    send(load, file);
    close(file);
    m_watch.start(kWatchMs);
    m_waitsForLoad = true;
    if (m_waits) {
        waitFor([&] { return m_loaded && m_loaded->id == load.id; },
                patienceMs - static_cast<int>(taken.elapsed()));
    }
    m_waitsForLoad = false;
    if (m_ended && !hasBegun()) return {Loading::State::NoProcess, "the movie's process does not start"};
    if (!m_loaded) return {Loading::State::GoesOn, {}};
    return {m_loaded->done != 0 ? Loading::State::Done : Loading::State::Failed, m_loaded->error};
}

void RemoteMovie::command(const ToMovie& message)
{
    send(message);
    if (m_waits) {
        sync();
        waitFor([id = m_lastSync, this] { return m_doneSync == id; }, patienceMs());
    } else if (!std::exchange(m_syncs, true)) {
        // Once for what is said together: each draws a picture.
        QTimer::singleShot(0, this, [this] {
            m_syncs = false;
            sync();
        });
    }
}

void RemoteMovie::sync()
{
    if (!m_unanswered.isValid()) m_unanswered.start();
    send(Sync{++m_lastSync});
}

void RemoteMovie::pass(const ToMovie& message)
{
    const auto* mouse = std::get_if<Mouse>(&message);
    const bool isMove = mouse != nullptr && static_cast<Mouse::Kind>(mouse->kind) == Mouse::Kind::Move;
    if (isMove && m_process->channel().waitingBytes() > kMuchUnsentBytes) return;
    send(message);
}

std::optional<std::string> RemoteMovie::variable(const std::string& name)
{
    const std::uint32_t id = ++m_lastSync;
    m_value.reset();
    send(GetVariable{id, name});
    send(Sync{id});
    const bool came = waitFor([&] { return m_value && m_value->id == id; }, patienceMs());
    return came ? std::optional(m_value->text) : std::nullopt;
}

std::vector<MenuEntry> RemoteMovie::menu(const OpenMenu& open)
{
    m_menu.reset();
    send(open);
    sync();
    waitFor([&, id = m_lastSync] { return (m_menu && m_menu->id == open.id) || m_doneSync == id; },
            patienceMs());
    // One that comes late belongs to a menu that is open without it.
    if (!m_menu || m_menu->id != open.id) return {};
    return std::exchange(m_menu, std::nullopt)->items;
}

// ---- what the movie says ----------------------------------------------------------------------------------

void RemoteMovie::receiveFromLoop()
{
    receive();
    m_listener.settle();
    // Last: painting may wait for a picture of another size, and take what comes meanwhile.
    tellChange(MovieListener::Painting::Now);
}

void RemoteMovie::tellChange(MovieListener::Painting painting)
{
    if (const QRegion changed = m_feed.takeChanged(); !changed.isEmpty())
        m_listener.pictureChanged(changed, painting);
}

void RemoteMovie::receive()
{
    if (m_ended) return;
    // What was left over comes first, and meanwhile the socket fills up: a movie that talks too much waits.
    const bool connected = m_process->channel().hasNext() || m_process->channel().receive();
    // After it: a picture comes before what tells of it.
    if (!m_feed.take()) return ended();
    for (int i = 0; i < kMessagesAtOnce; ++i) {
        const auto body = m_process->channel().next();
        if (!body) break;
        auto message = decodeFromMovie(body->kind, body->bytes);
        if (!message) {
            ended();
            return;
        }
        take(std::move(*message));
        if (m_ended) return;
    }
    if (m_process->channel().hasNext()) {
        QTimer::singleShot(0, this, [this] { receiveFromLoop(); });
    } else if (!connected) {
        ended();
    }
}

void RemoteMovie::take(FromMovie message)
{
    if (const auto* hello = std::get_if<Hello>(&message)) {
        m_greeted = hello->version == kProtocolVersion;
        if (m_greeted) return;
        m_listener.heard(LogLine{"The movie's process is of another version."});
        ended();
        return;
    }
    if (const auto* state = std::get_if<State>(&message)) {
        m_state = *state;
        if (m_state.silent == 0 && m_audio && !m_soundTimer.isActive()) {
            m_soundTimer.start(kSoundMs);
            // The device is opened at once, but for whoever waits for the movie now.
            QTimer::singleShot(0, this, [this] { followSound(); });
        }
    } else if (std::holds_alternative<Picture>(message)) {
        return ended(); // not here
    } else if (const auto* done = std::get_if<Done>(&message)) {
        m_doneSync = done->id;
        if (m_doneSync == m_lastSync) m_unanswered.invalidate();
        if (std::exchange(m_frozen, false)) m_listener.lost(MovieListener::Loss::Answers);
        return;
    } else if (const auto* value = std::get_if<Value>(&message)) {
        m_value = *value;
        return;
    } else if (auto* menu = std::get_if<Menu>(&message)) {
        for (const MenuEntry& item : menu->items) {
            if (item.kind > static_cast<std::uint8_t>(stage::MenuItem::kLastKind)) return ended();
        }
        m_menu = std::move(*menu);
        return;
    } else if (const auto* begins = std::get_if<Begins>(&message)) {
        if (begins->id == m_asked) m_begun = m_asked;
        return;
    } else if (const auto* loaded = std::get_if<Loaded>(&message)) {
        m_loaded = *loaded;
        if (m_waitsForLoad) return; // load() tells
    } else if (const auto* ask = std::get_if<Ask>(&message)) {
        if (ask->what > static_cast<std::uint8_t>(Ask::What::AbortSlowScript)) {
            ended();
            return;
        }
        // From the event loop, because the answer may take the user a while.
        QTimer::singleShot(0, this, [this, asked = *ask] {
            if (m_ended || std::exchange(m_asking, true)) return;
            const QPointer<RemoteMovie> alive(this);
            Answer answer = m_listener.asked(static_cast<Ask::What>(asked.what));
            // The question let events through: the movie may be gone.
            if (alive.isNull()) return;
            m_asking = false;
            answer.id = asked.id;
            send(answer);
        });
        return;
    }
    m_listener.heard(std::move(message));
}

void RemoteMovie::ended()
{
    if (std::exchange(m_ended, true)) return;
    m_watch.stop();
    m_soundTimer.stop();
    if (m_audio) m_audio->release();
    const auto status = m_process->exitStatus();
    m_state = State();
    m_process->listen([] {});
    auto loss = MovieListener::Loss::Crashed;
    if (status == static_cast<int>(FarExit::OutOfMemory)) loss = MovieListener::Loss::OutOfMemory;
    if (!hasBegun()) loss = MovieListener::Loss::NeverBegan;
    // Whoever waits for it is told with the answer; others from the event loop, because they may be in the
    // middle of a call that must come back first.
    if (m_waitsForLoad && !hasBegun()) return;
    QTimer::singleShot(0, this, [this, loss] { m_listener.lost(loss); });
}

/// Looks whether a movie that moves, or was told something, still answers.
void RemoteMovie::watch()
{
    if (m_ended || m_asking) return;
    // This process may have stood still itself: the answer lies there then.
    if (m_unanswered.isValid() && m_unanswered.elapsed() > kFrozenMs) {
        receive();
        m_listener.settle();
        if (m_ended) return;
    }
    if (m_unanswered.isValid()) {
        if (m_unanswered.elapsed() > kFrozenMs && !std::exchange(m_frozen, true))
            m_listener.lost(MovieListener::Loss::Frozen);
        return;
    }
    // One that draws need not be asked.
    const bool draws = std::exchange(m_seenPictures, m_feed.count()) != m_feed.count();
    if ((m_state.playing == 0 || draws) && m_process->channel().waitingBytes() == 0 && m_loaded) return;
    sync();
}

// ---- picture and sound ------------------------------------------------------------------------------------

void RemoteMovie::setView(int width, int height, double deviceScale)
{
    if (const auto pictures = m_feed.setView(width, height))
        send(View{width, height, deviceScale}, *pictures);
}

/// Somebody wants a picture of what is on no screen.
void RemoteMovie::drawUnseen()
{
    const Settings settings = m_settings;
    Settings seen = settings;
    seen.unseen = 0;
    send(seen);
    sync();
    waitFor([id = m_lastSync, this] { return m_doneSync == id; }, kUnseenMs);
    // Unless the host has others meanwhile.
    if (m_settings == seen) send(settings);
}

void RemoteMovie::paint(QPainter& painter, const QRegion& region, double deviceScale)
{
    // The window has just changed its size: a movie that is quick about it saves the old picture a stretch.
    if (!m_feed.isOfView()) waitFor([&] { return m_feed.isOfView(); }, kPictureMs);
    if (m_settings.unseen != 0) drawUnseen();
    if (const QImage& picture = m_feed.paintable(); !picture.isNull())
        paintPicture(painter, picture, region, deviceScale);
}

const State& RemoteMovie::state() const
{
    // Any number may stand there.
    if (const auto frame = m_feed.frame())
        m_state.frame = std::clamp(*frame, -1, std::max(m_state.totalFrames - 1, -1));
    return m_state;
}

bool RemoteMovie::put(const ShownPlace& place) { return m_feed.put(place); }

void RemoteMovie::followSound()
{
    if (m_ended) return;
    m_audio->follow(kSoundMs);
    if (m_audio->isPulling() != m_deviceOpen) {
        m_deviceOpen = m_audio->isPulling();
        send(SoundDevice{static_cast<std::uint8_t>(m_deviceOpen ? 1 : 0)});
    }
    if (m_state.silent != 0 && !m_deviceOpen) m_soundTimer.stop();
}

void RemoteMovie::noteDevice(const char* what)
{
    m_listener.heard(LogLine{std::string("The sound device ") + what});
    m_listener.settle();
}

void RemoteMovie::releaseSound()
{
    if (!m_audio) return;
    m_audio->release();
    if (std::exchange(m_deviceOpen, false)) send(SoundDevice{0});
}

} // namespace flash::control
