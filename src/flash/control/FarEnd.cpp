#include "flash/control/FarEnd.h"

#include "flash/Engine.h"
#include "flash/sound/Mixer.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace flash::control
{

namespace
{

// Enough to bridge a slow frame, little enough for a click to sound with its button.
constexpr std::size_t kSoundAheadFrames = sound::kMixRate / 16;
constexpr int kSoundWaitMs = 20, kMaxStaleRects = 64;
// A window that does not listen stops a movie that talks.
constexpr std::size_t kMaxUnsentBytes = 1U << 18U;

/// Between pictures of one size.
void copyPart(const QImage& from, QImage& to, const QRect& part)
{
    for (int y = part.top(); y <= part.bottom(); ++y) {
        std::copy_n(reinterpret_cast<const QRgb*>(from.constScanLine(y)) + part.left(), part.width(),
                    reinterpret_cast<QRgb*>(to.scanLine(y)) + part.left());
    }
}

bool isSamePart(const QImage& a, const QImage& b, const QRect& part)
{
    const auto lineBytes = static_cast<std::size_t>(part.width()) * sizeof(QRgb);
    for (int y = part.top(); y <= part.bottom(); ++y) {
        if (std::memcmp(reinterpret_cast<const QRgb*>(a.constScanLine(y)) + part.left(),
                        reinterpret_cast<const QRgb*>(b.constScanLine(y)) + part.left(), lineBytes) != 0)
            return false;
    }
    return true;
}

[[noreturn]] void endWith(FarExit status) { _exit(static_cast<int>(status)); }

} // namespace

ReachableFiles reachableFiles(const Load& load)
{
    ReachableFiles files;
    files.read = systemFiles();
    const std::filesystem::path movie = Engine::pathOf(load.address);
    files.read.push_back(movie.parent_path());
    if (!load.sharedFolder.empty()) files.read.emplace_back(load.sharedFolder);
    if (!load.storageFolder.empty()) files.write.push_back(Engine::storageOf(load.storageFolder, movie));
    return files;
}

FarEnd::FarEnd(int socket, int broker, const std::vector<Restraint>& restraints)
    : m_channel(socket, Channel::Descriptors::Taken), m_broker(broker), m_runner(*this)
{
    say(Hello{});
    tell(restraints);
}

/// The journal names what this system lacks.
void FarEnd::tell(const std::vector<Restraint>& restraints)
{
    for (const Restraint& restraint : restraints) {
        if (!restraint.holds) say(LogLine{"Confinement without " + restraint.name + ": " + restraint.reason});
    }
}

int FarEnd::run()
{
    while (!m_gone) {
        while (!m_waiting.empty()) {
            const ToMovie message = std::move(m_waiting.front());
            m_waiting.pop_front();
            handle(message);
        }
        while (const auto message = nextMessage()) handle(*message);
        if (const auto wait = m_runner.msToNextStep(); wait && *wait <= 0) m_runner.step(soundClock());
        publishPicture();
        fillRing();
        exchange(msToWait());
    }
    return 0;
}

int FarEnd::msToWait()
{
    const auto step = m_runner.msToNextStep();
    if (!step) return -1;
    const int wait = static_cast<int>(std::ceil(*step));
    return m_deviceOpen && m_runner.state().silent == 0 ? std::min(wait, kSoundWaitMs) : wait;
}

bool FarEnd::exchange(int ms)
{
    if (!m_channel.flush()) m_gone = true;
    // -1 is left out.
    pollfd sockets[] = {{m_channel.descriptor(), POLLIN, 0},
                        {m_pictureChannel ? m_pictureChannel->descriptor() : -1, POLLIN, 0}};
    pollfd &said = sockets[0], &pictures = sockets[1];
    if (m_channel.waitingBytes() > 0) said.events |= POLLOUT;
    const int ready = poll(sockets, std::size(sockets), ms);
    if (ready < 0 && errno != EINTR) m_gone = true;
    if (ready > 0) {
        if ((said.revents & POLLOUT) != 0 && !m_channel.flush()) m_gone = true;
        if ((said.revents & (POLLIN | POLLHUP | POLLERR)) != 0 && !m_channel.receive()) m_gone = true;
        if (pictures.revents != 0 && !takeReleases()) m_gone = true;
    }
    return !m_gone;
}

/// The picture that waits for one follows by itself. @returns false when the window's end has gone
bool FarEnd::takeReleases()
{
    const bool isThere = m_pictureChannel->receive();
    while (const auto body = m_pictureChannel->next()) {
        const auto message = decodeToMovie(body->kind, body->bytes);
        if (!message || !std::holds_alternative<Release>(*message)) endWith(FarExit::BadMessage);
    }
    return isThere;
}

std::optional<ToMovie> FarEnd::nextMessage()
{
    const auto body = m_channel.next();
    if (!body) return std::nullopt;
    auto message = decodeToMovie(body->kind, body->bytes);
    if (!message) endWith(FarExit::BadMessage);
    return std::move(*message);
}

void FarEnd::handle(const ToMovie& message)
{
    if (const auto* load = std::get_if<Load>(&message)) {
        prepare(*load);
        say(Begins{load->id});
        if (!m_channel.flush()) m_gone = true;
        m_runner.load(*load, attachedFile());
        return;
    } else if (const auto* view = std::get_if<View>(&message)) {
        prepare(*view);
    } else if (std::holds_alternative<PictureSocket>(message)) {
        const int socket = m_channel.takeDescriptor();
        if (socket < 0 || m_pictureChannel) endWith(FarExit::BadMessage);
        m_pictureChannel.emplace(socket, Channel::Descriptors::Refused);
        return;
    } else if (std::holds_alternative<Release>(message)) {
        endWith(FarExit::BadMessage); // not here
    } else if (const auto* settings = std::get_if<Settings>(&message)) {
        m_unseen = settings->unseen != 0;
    } else if (const auto* device = std::get_if<SoundDevice>(&message)) {
        takeSound(*device);
        return;
    } else if (std::holds_alternative<Sync>(message)) {
        // Whoever waits looks at the picture next.
        publishPicture();
    }
    m_runner.handle(message);
}

/// From the first byte of the movie on, only what it may read is there.
void FarEnd::prepare(const Load& load)
{
    if (m_confined) return;
    m_confined = true;
    tell(confine(reachableFiles(load), m_broker));
}

/// What the window's end opened, which may lie where nothing can be opened from here.
std::optional<std::vector<std::uint8_t>> FarEnd::attachedFile()
{
    const int file = m_channel.takeDescriptor();
    if (file < 0) return std::nullopt;
    std::vector<std::uint8_t> bytes;
    constexpr std::size_t kPiece = 1U << 20U;
    for (;;) {
        const std::size_t before = bytes.size();
        bytes.resize(before + kPiece);
        const ssize_t got = pread(file, bytes.data() + before, kPiece, static_cast<off_t>(before));
        bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got <= 0) break;
    }
    close(file);
    return bytes;
}

void FarEnd::prepare(const View& view)
{
    auto pictures = PictureMemory::attach(m_channel.takeDescriptor(), view.width, view.height);
    if (!pictures) endWith(FarExit::BadMessage);
    m_pictures = std::move(*pictures);
    m_pictures.setFrame(m_runner.state().frame);
    ++m_view;
    m_last = -1;
    for (int i = 0; i < PictureMemory::kPictures; ++i) {
        m_picture[i] = m_pictures.picture(i, QImage::Format_ARGB32_Premultiplied);
        m_stale[i] = m_picture[i].rect();
    }
}

void FarEnd::publishPicture()
{
    if (m_picture[0].isNull() || !m_pictureChannel || !m_runner.isOpen() || m_unseen) return;
    const QRect all = m_picture[0].rect();
    const std::vector<QRect> changed = m_last < 0 ? std::vector{all} : m_runner.dirtyRects();
    if (changed.empty()) return;
    const int free = m_pictures.takeFree();
    if (free < 0) return;
    const auto index = static_cast<std::size_t>(free);
    QImage& picture = m_picture[index];
    // What the pictures before it brought, and what is not drawn anew, is copied.
    QRegion drawn;
    for (const QRect& part : changed) drawn |= part;
    if (m_last >= 0 && m_last != free) {
        for (const QRect& missed : m_stale[index] - drawn)
            copyPart(m_picture[static_cast<std::size_t>(m_last)], picture, missed);
    }
    m_runner.render(picture, changed);
    // What scripts set anew in every frame often looks as before: the window need not hear of it.
    if (m_last >= 0 && m_last != free && std::ranges::all_of(changed, [&](const QRect& part) {
            return isSamePart(m_picture[static_cast<std::size_t>(m_last)], picture, part & all);
        })) {
        m_stale[index] = QRegion();
        return;
    }
    for (QRegion& stale : m_stale) {
        stale |= drawn;
        // One that has not been drawn to for long; what it is too much will do no harm.
        if (stale.rectCount() > kMaxStaleRects) stale = stale.boundingRect();
    }
    m_stale[index] = QRegion();
    m_pictures.hold(free);
    m_last = free;
    Picture ready{static_cast<std::uint8_t>(free), m_view, {}};
    for (const QRect& part : changed)
        ready.changed.push_back({part.left(), part.top(), part.width(), part.height()});
    // Before anything that is said later.
    if (!m_pictureChannel->send(FromMovie(std::move(ready)))) m_gone = true;
}

void FarEnd::takeSound(const SoundDevice& device)
{
    if (m_ring.isEmpty()) {
        auto ring = SoundRing::attach(m_channel.takeDescriptor());
        if (!ring) endWith(FarExit::BadMessage);
        m_ring = std::move(*ring);
    }
    m_deviceOpen = device.open != 0;
    m_takenBefore = m_ring.taken();
}

SoundClock FarEnd::soundClock() const
{
    if (!m_deviceOpen) return std::nullopt;
    return static_cast<double>(m_ring.taken() - m_takenBefore) * 1000 / sound::kMixRate;
}

void FarEnd::fillRing()
{
    if (!m_deviceOpen || m_runner.isBusy()) return;
    const std::size_t waiting = m_ring.waiting();
    if (waiting >= kSoundAheadFrames) return;
    std::vector<sound::StereoFrame> mixed(kSoundAheadFrames - waiting);
    m_runner.mix(mixed);
    m_ring.write(mixed);
}

void FarEnd::say(FromMovie message)
{
    if (!m_channel.queue(message)) m_gone = true;
    while (!m_gone && m_channel.waitingBytes() > kMaxUnsentBytes) exchange(-1);
}

bool FarEnd::showsFrame(int frame)
{
    if (m_picture[0].isNull()) return false;
    m_pictures.setFrame(frame);
    return true;
}

Answer FarEnd::ask(Ask::What what)
{
    const std::uint32_t id = ++m_lastAsked;
    say(Ask{id, static_cast<std::uint8_t>(what)});
    for (;;) {
        while (auto message = nextMessage()) {
            if (const auto* answer = std::get_if<Answer>(&*message); answer != nullptr && answer->id == id)
                return *answer;
            m_waiting.push_back(std::move(*message));
        }
        // Nobody will answer any more: the script ends, and then the process.
        if (!exchange(-1)) return {id, 1, {}};
    }
}

} // namespace flash::control
